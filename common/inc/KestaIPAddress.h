#ifndef KESTA_IP_ADDRESS_H
#define KESTA_IP_ADDRESS_H

#include "KestaExport.h"
#include "KestaString.h"

#include <iosfwd>

#include <sys/socket.h>

/// An IP address, stored twice: as text and as a socket address. The base of the two families.
///
/// In the socket address only the family and the address bytes have a meaning; the address is in
/// network byte order, in bytes 4 to 7 for IPv4 (`sockaddr_in`) and 8 to 23 for IPv6
/// (`sockaddr_in6`). The rest is zero after construction.
///
/// The operators that take a pointer compare the address bytes, the first byte most significant,
/// and never look at the family: for the other family they compare whatever bytes are at that
/// offset. The pointer must not be null and stays the caller's.
///
/// Two values of one family can also be compared with each other, kept in `std::map` and
/// `std::unordered_map`, and written to a stream. These operations use the address bytes, except
/// for the stream, which gets the text, and trace nothing.
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

    /// True when this address is below the other or equal to it. Neither is changed, and an
    /// override must not change them either: it is called for const addresses, too.
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

    /// The socket address itself, valid as long as this object.
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

    KESTA_LOCAL void takeOver(KestaIPAddress& other) noexcept;   // other keeps its socket address
};

/// Parameter type of the address and range operators. It needs a conversion, so a host's own
/// operator that takes the value or its base class is always the better match.
template <class TValue>
struct KestaOperand
{
    KestaOperand(const TValue& operand) : value(operand) {}   ///< Implicit.

    const TValue& value;   ///< Valid while the operator runs.
};

/// Writes the text of an address.
template <class TTraits>
std::basic_ostream<char, TTraits>& operator<<(std::basic_ostream<char, TTraits>& os,
                                              KestaOperand<KestaIPAddress> address)
{
    return os << address.value.getStrAddress().c_str();
}

#endif
