#include "KestaAddressCodec.h"
#include "fuzz.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>

namespace
{

typedef CKestaAddressCodec Codec;

/// A text is read as the system reads it, and an address written as the system writes it.
template <class Address, std::size_t size, class Read, class ReadBySystem, class Write>
void check(int family, const std::string& bytes, Read read, ReadBySystem readBySystem, Write write)
{
    const std::string text = upToNul(bytes), cut = text.substr(0, text.find('%'));
    Address got = {}, want = {}, address = {};
    CHECK(read(text.c_str(), got) == (readBySystem(cut.c_str(), &want) == 1));
    CHECK(std::memcmp(&got, &want, sizeof got) == 0);

    std::memcpy(&address, bytes.data(), std::min(bytes.size(), sizeof address));
    char written[size], wanted[size];
    CHECK(*write(KestaAddressNumber::of(address), written) == '\0');
    inet_ntop(family, &address, wanted, size);
    CHECK(std::strcmp(written, wanted) == 0);
}

}   // namespace

/// Input: a text, or the bytes of an address.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    const auto readIPv6 = [](const char* text, in6_addr* address)
    {
        return inet_pton(AF_INET6, text, address);
    };
    check<in_addr, INET_ADDRSTRLEN>(AF_INET, bytes, &Codec::readIPv4, &inet_aton,
                                    &Codec::writeIPv4);
    check<in6_addr, INET6_ADDRSTRLEN>(AF_INET6, bytes, &Codec::readIPv6, readIPv6,
                                      &Codec::writeIPv6);
    return 0;
}
