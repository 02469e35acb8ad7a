#include "KestaIPAddress.h"

#include <cstddef>
#include <cstring>

namespace
{

// In parts, because g++ clears the whole with an instruction that takes longer than all else that
// goes into an address.
void clear(sockaddr_storage& address)
{
    constexpr std::size_t ulPart = 32;
    static_assert(sizeof address % ulPart == 0);
    char* pBytes = reinterpret_cast<char*>(&address);
    for (std::size_t ulOffset = 0; ulOffset < sizeof address; ulOffset += ulPart)
        std::memset(pBytes + ulOffset, 0, ulPart);
}

}   // namespace

KestaIPAddress::KestaIPAddress()
{
    clear(m_binIPAddress);
}

KestaIPAddress::KestaIPAddress(const CKestaString& strAddress) : m_strIPAddress(strAddress)
{
    clear(m_binIPAddress);
}

KestaIPAddress::~KestaIPAddress() = default;
