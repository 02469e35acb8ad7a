#include "KestaAddressSet.h"

void CKestaAddressSet::add(const KestaIPRange& range)
{
    const CKestaIPv6Number first = numberOf(*range.getStartAddress()).number;
    const CKestaIPv6Number last = numberOf(*range.getEndAddress()).number;
    if (range.getAddressFamily() == KestaIPRange::KESTA_IPV6_FAMILY)
        m_ipv6.add(first, last);
    else
        m_ipv4.add(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last));
}

bool CKestaAddressSet::contains(const CKestaAddressNumber& address) const
{
    return address.bIPv6 ? contains(address.number)
                         : contains(static_cast<std::uint32_t>(address.number));
}
