// In place of a fuzzer: runs its checks on each of its seeds, and on each seed with a byte removed
// or inserted. Long seeds are changed in a hundred places.

#include "fuzz.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

static std::string input;

static void check(const std::string& bytes)
{
    input = bytes;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

int main(int, char** arguments)
{
    using namespace std::string_literals;
    std::signal(SIGABRT, [](int) { std::fwrite(input.data(), 1, input.size(), stderr); });
    for (const auto& seed : std::filesystem::directory_iterator(arguments[1]))
    {
        std::ifstream file(seed.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        for (std::size_t at = 0; at <= bytes.size(); at += 1 + bytes.size() / 100)
        {
            const std::string before = bytes.substr(0, at), after = bytes.substr(at);
            check(before + after.substr(std::min<std::size_t>(after.size(), 1)));
            for (const char other : "\t\n #%*+,-./0159:=Aafgx\xFF"s + '\0')
                check(before + other + after);
        }
    }
    return 0;
}
