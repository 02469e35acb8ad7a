// A service that lets peers in by a list of ranges. Its socket takes IPv6 and IPv4 alike, so an
// IPv4 peer shows up as an IPv4-mapped address; ranges are asked for addresses of their own family
// only.

#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <deque>
#include <iostream>

namespace
{

class Screen
{
public:
    void allow(const char* range) { m_ranges.emplace_back(range); }

    bool lets(const CKestaString& peer) const
    {
        if (peer.beginsWith("::ffff:"))
            return isInAny(KestaIPRange::KESTA_IPV4_FAMILY, KestaIPv4Address(peer.substr(7)));
        return isInAny(KestaIPRange::KESTA_IPV6_FAMILY, KestaIPv6Address(peer));
    }

private:
    bool isInAny(int family, const KestaIPAddress& address) const
    {
        for (const KestaIPRange& range : m_ranges)
            if (range.getAddressFamily() == family && range.isMember(&address))
                return true;
        return false;
    }

    std::deque<KestaIPRange> m_ranges;   // ranges can't be copied or moved
};

}   // namespace

int main()
{
    KestaIPv4Address::m_bIPv4LinkLocal = true;   // a range of such addresses is refused
    Screen screen;
    for (const char* range : {"10.1.*.*", "192.0.2.7", "2001:db8:1*", "fe80::/10", "169.254.*.*"})
    {
        try
        {
            screen.allow(range);
        }
        catch (const CKestaExc& exc)
        {
            std::cout << "not a range to let in: " << exc.GetErrorMessage() << '\n';
        }
    }
    for (const char* peer : {"::ffff:10.1.200.3", "::ffff:10.2.0.1", "::ffff:192.0.2.7",
                             "2001:db8:1fff::1", "2001:db8:2000::1", "fe80::1"})
        std::cout << (screen.lets(peer) ? "let in   " : "refused  ") << peer << '\n';
}
