#include "KestaIPAddress.h"

#include <cstring>

namespace
{

// In parts, for which g++ uses vector stores; for the whole it uses "rep stosq", which is slow to
// start: an address from a text then takes a quarter longer.
void clear(sockaddr_storage& address)
{
    char* const pBytes = reinterpret_cast<char*>(&address);
    constexpr std::size_t ulPart = sizeof address / 4;
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

// Swapping the texts allocates nothing.
void KestaIPAddress::takeOver(KestaIPAddress& other) noexcept
{
    m_strIPAddress.swap(other.m_strIPAddress);
    m_binIPAddress = other.m_binIPAddress;
}
