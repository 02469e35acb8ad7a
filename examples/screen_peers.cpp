// A service that lets peers in by a list of ranges, which it reads from a file, one per line. Its
// socket accepts both IPv6 and IPv4, so an IPv4 peer has an IPv4-mapped address: the service looks
// up its IPv4 part, and every other address as it is.

#include "KestaException.h"
#include "KestaIPRangeSet.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace
{

class Screen
{
public:
    explicit Screen(std::istream& list)
    {
        for (std::string line; std::getline(list, line);)
            if (!line.empty() && line.front() != '#')
                add(line);
        m_ranges.build();
    }

    // The rule that lets a peer in; null when none does.
    const std::string* ruleFor(const in6_addr& peer) const
    {
        const long index =
            IN6_IS_ADDR_V4MAPPED(&peer) ? m_ranges.indexOf(ipv4Part(peer)) : m_ranges.indexOf(peer);
        return index < 0 ? nullptr : &m_rules[static_cast<std::size_t>(index)];
    }

private:
    void add(const std::string& rule)
    {
        try
        {
            m_ranges.add(KestaIPRange(rule));
            m_rules.push_back(rule);
        }
        catch (const CKestaExc& exc)
        {
            std::cout << "not a range to let in: " << exc.GetErrorMessage() << '\n';
        }
    }

    static in_addr ipv4Part(const in6_addr& peer)
    {
        in_addr result;
        std::memcpy(&result, &peer.s6_addr[12], sizeof result);
        return result;
    }

    KestaIPRangeSet m_ranges;
    std::vector<std::string> m_rules;   // in the order of the ranges
};

// Stands for the address that accept() gives of a peer. A text that is not an address throws.
in6_addr peerOf(const std::string& text)
{
    const KestaIPv6Address address(text);
    return reinterpret_cast<const sockaddr_in6&>(address.viewSockAddress()).sin6_addr;
}

}   // namespace

int main(int argc, char** argv)
{
    std::ifstream list(argc > 1 ? argv[1] : "screen_peers.list");
    KestaIPv4Address::m_bIPv4LinkLocal = true;   // a range of such addresses is refused
    const Screen screen(list);
    for (const char* peer : {"::ffff:10.1.200.3", "::ffff:a01:203", "::ffff:10.2.0.1", "::ffff:1",
                             "2001:db8:1fff::1", "2001:db8:2000::1", "fe80::1", "no address"})
    {
        try
        {
            const std::string* rule = screen.ruleFor(peerOf(peer));
            if (rule != nullptr)
                std::cout << "let in   " << peer << " by " << *rule << '\n';
            else
                std::cout << "refused  " << peer << '\n';
        }
        catch (const CKestaExc& exc)
        {
            std::cout << "refused  " << peer << ": " << exc.GetErrorMessage() << '\n';
        }
    }
}
