// A service that lets peers in by a list of ranges, blocks and spans, which it reads from a file,
// one per line. It queries the list for addresses as `accept` returns them. Its socket accepts both
// IPv6 and IPv4, so an IPv4 peer has an IPv4-mapped address, which counts as IPv4.

#include "KestaException.h"
#include "KestaIPRangeSet.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaString.h"

#include <cstddef>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <sys/socket.h>

namespace
{

class Screen
{
public:
    explicit Screen(std::istream& list)
    {
        std::size_t number = 0;
        for (std::string line; std::getline(list, line);)
            add(line.substr(0, line.find('#')), ++number);
        m_ranges.build();
    }

    // The rule that lets a peer in; null when none does.
    const std::string* ruleFor(const sockaddr_storage& peer) const
    {
        const long index = m_ranges.indexOf(reinterpret_cast<const sockaddr*>(&peer));
        return index < 0 ? nullptr : &m_rules[static_cast<std::size_t>(index)];
    }

private:
    void add(CKestaString rule, std::size_t number)
    {
        if (rule.trim().empty())
            return;
        try
        {
            m_ranges.add(rule);
            m_rules.push_back(rule);
        }
        catch (const CKestaExc& exc)
        {
            std::cout << "line " << number << ": " << exc.GetErrorMessage() << '\n';
        }
    }

    KestaIPRangeSet m_ranges;
    std::vector<std::string> m_rules;   // in the order of the ranges
};

// Stands for the address that accept() returns. A text that is not an address throws.
sockaddr_storage peerOf(const std::string& text)
{
    if (text.find(':') == std::string::npos)
        return KestaIPv4Address(text).getSockAddress();
    return KestaIPv6Address(text).getSockAddress();
}

}   // namespace

int main(int argc, char** argv)
{
    const std::string path = argc > 1 ? argv[1] : "screen_peers.list";
    std::ifstream list(path);
    if (!list)
    {
        std::cerr << "can't read " << path << '\n';
        return 1;
    }
    KestaIPv4Address::m_bIPv4LinkLocal = true;   // a range of such addresses is refused
    const Screen screen(list);
    for (const char* peer : {"::ffff:10.1.200.3", "10.1.2.3", "::ffff:10.2.0.1", "::ffff:1",
                             "192.0.2.42", "2001:db8:1fff::1", "2001:db8:2000::1", "fe80::1"})
    {
        const std::string* rule = screen.ruleFor(peerOf(peer));
        if (rule != nullptr)
            std::cout << "let in   " << peer << " by " << *rule << '\n';
        else
            std::cout << "refused  " << peer << '\n';
    }
}
