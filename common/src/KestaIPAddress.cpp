#include "KestaIPAddress.h"

KestaIPAddress::KestaIPAddress() : m_binIPAddress{} {}

KestaIPAddress::KestaIPAddress(const CKestaString& strAddress)
    : m_strIPAddress(strAddress), m_binIPAddress{}
{
}

KestaIPAddress::~KestaIPAddress() = default;

// The texts are exchanged, which allocates nothing.
void KestaIPAddress::takeOver(KestaIPAddress& other) noexcept
{
    m_strIPAddress.swap(other.m_strIPAddress);
    m_binIPAddress = other.m_binIPAddress;
}
