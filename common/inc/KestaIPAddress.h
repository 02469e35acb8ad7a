#ifndef KESTA_IP_ADDRESS_H
#define KESTA_IP_ADDRESS_H

#include "KestaExport.h"
#include "KestaString.h"

#include <iosfwd>

#include <sys/socket.h>

/// An IP address, held twice: as the text that it was made from, and as a socket address. The base
/// of the two families.
///
/// Of the socket address only the family and the address bytes mean something; the address is in
/// network byte order, at bytes 4 to 7 for IPv4 (`sockaddr_in`) and 8 to 23 for IPv6
/// (`sockaddr_in6`). The rest is zero after construction from text.
///
/// The operators that take a pointer order by the address bytes, the first byte weighing most, and
/// never look at the family: an address of the other family is judged by the bytes that stand in
/// the same place. The pointer must not be null and stays the caller's.
///
/// Two values of one family can be compared as well, by `==` and `<`, kept in `std::map` and
/// `std::unordered_map`, and written to a stream. These trace nothing, and go by the address bytes;
/// a stream gets the text.
///
/// Thread contract: values; distinct objects are independent, and several threads may read one.
class KESTA_API KestaIPAddress
{
public:
    /// The level of every trace line of addresses, ranges and host queries.
    static constexpr int KESTA_TRACE_LEVEL = 3;

    /// An empty text and no address.
    KestaIPAddress();
    KestaIPAddress(const KestaIPAddress& other) = default;
    KestaIPAddress& operator=(const KestaIPAddress& other) = default;
    virtual ~KestaIPAddress();

    /// True when this address is below the other or equal to it. An operator changes neither, nor
    /// may one that a subclass puts in its place: it is called for constant addresses, too.
    virtual bool operator<=(KestaIPAddress* pAddress) = 0;
    /// True when this address is above the other or equal to it.
    virtual bool operator>=(KestaIPAddress* pAddress) = 0;
    /// True when the two addresses are equal.
    virtual bool operator==(KestaIPAddress* pAddress) = 0;

    /// The same for constant addresses.
    bool operator<=(const KestaIPAddress* pAddress) const
    {
        return *variable(this) <= variable(pAddress);
    }
    /// The same for constant addresses.
    bool operator>=(const KestaIPAddress* pAddress) const
    {
        return *variable(this) >= variable(pAddress);
    }
    /// The same for constant addresses.
    bool operator==(const KestaIPAddress* pAddress) const
    {
        return *variable(this) == variable(pAddress);
    }

    /// A copy of the socket address.
    sockaddr_storage getSockAddress() const { return m_binIPAddress; }

    /// The socket address where it stands, as long as this object does.
    const sockaddr_storage& viewSockAddress() const { return m_binIPAddress; }

    /// Replaces the socket address; the text stays as it is.
    void setSockAddress(const sockaddr_storage& address) { m_binIPAddress = address; }

    /// A copy of the text.
    CKestaString getStrAddress() const { return m_strIPAddress; }

    /// Replaces the text; the socket address stays as it is.
    void setStrAddress(const CKestaString& strAddress) { m_strIPAddress = strAddress; }

protected:
    /// A text and no address yet.
    explicit KestaIPAddress(const CKestaString& strAddress);

    CKestaString m_strIPAddress;       ///< The text.
    sockaddr_storage m_binIPAddress;   ///< The socket address.

private:
    friend class KestaIPRange;

    static KestaIPAddress* variable(const KestaIPAddress* pAddress)
    {
        return const_cast<KestaIPAddress*>(pAddress);
    }

    KESTA_LOCAL void takeOver(KestaIPAddress& other) noexcept;   // which keeps its socket address
};

/// A value as the operators below take it, so that they yield to every operator of the host's own:
/// one that takes the value, or its base class, is the better match; and they are templates.
template <class TValue>
struct KestaOperand
{
    KestaOperand(const TValue& operand) : value(operand) {}   ///< Implicit.

    const TValue& value;   ///< Valid as long as the operator is at work.
};

/// Writes the text of an address.
template <class TTraits>
std::basic_ostream<char, TTraits>& operator<<(std::basic_ostream<char, TTraits>& os,
                                              KestaOperand<KestaIPAddress> address)
{
    return os << address.value.getStrAddress().c_str();
}

#endif
