#include "KestaAddressCodec.h"
#include "fuzz.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>

namespace
{

typedef CKestaAddressCodec Codec;

/// What is read is what the system reads; and what the scan takes on its own is no more than that.
template <class Address, class Number, class Read, class Scan, class ReadBySystem>
void checkReading(const std::string& text, Read read, Scan scan, ReadBySystem readBySystem)
{
    Address got = {}, want = {};
    const std::string cut = text.substr(0, text.find('%'));
    const bool isAddress = readBySystem(cut.c_str(), &want);
    CHECK(read(text.c_str(), got) == isAddress);
    CHECK(std::memcmp(&got, &want, sizeof got) == 0);

    Number number = 0;
    const char* const end = scan(text.c_str(), number);
    if (end == nullptr)
        return;
    const std::string scanned(text.c_str(), end);
    CHECK(readBySystem(scanned.c_str(), &want) && KestaAddressNumber::of(want) == number);
}

template <class Address, class Number, std::size_t size, class Write>
void checkWriting(int family, const std::string& bytes, Write write)
{
    Address address = {};
    std::memcpy(&address, bytes.data(), std::min(bytes.size(), sizeof address));
    char got[size], want[size];
    const Number number = KestaAddressNumber::of(address);
    CHECK(*write(number, got) == '\0');
    inet_ntop(family, &address, want, size);
    CHECK(std::strcmp(got, want) == 0);
}

}   // namespace

/// A text; or the bytes of an address.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size), text = upToNul(bytes);
    checkReading<in_addr, KestaIPv4Number>(text, &Codec::readIPv4, &Codec::scanIPv4, &inet_aton);
    checkReading<in6_addr, KestaIPv6Number>(text, &Codec::readIPv6, &Codec::scanIPv6,
                                            [](const char* psz, in6_addr* address)
                                            { return inet_pton(AF_INET6, psz, address) == 1; });
    checkWriting<in_addr, KestaIPv4Number, INET_ADDRSTRLEN>(AF_INET, bytes, &Codec::writeIPv4);
    checkWriting<in6_addr, KestaIPv6Number, INET6_ADDRSTRLEN>(AF_INET6, bytes, &Codec::writeIPv6);
    return 0;
}
