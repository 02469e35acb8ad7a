#ifndef KESTA_FUZZ_H
#define KESTA_FUZZ_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// What the fuzzers share. Each compares the library with a simple model of what it does.

/// Ends the run, and so keeps its input, when a condition does not hold.
#define CHECK(...) ((__VA_ARGS__) ? void() : failed(__FILE__, __LINE__, #__VA_ARGS__))

[[noreturn]] inline void failed(const char* file, int line, const char* condition)
{
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// The input, cut at newlines into a number of fields; the last one is everything that is left.
inline std::vector<std::string> fields(const std::uint8_t* data, std::size_t size,
                                       std::size_t count)
{
    std::vector<std::string> result(1);
    for (const char c : std::string(data, data + size))
        if (c == '\n' && result.size() < count)
            result.emplace_back();
        else
            result.back() += c;
    result.resize(count);
    return result;
}

inline std::string upToNul(const std::string& text)
{
    return text.c_str();
}

inline std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    return first == text.npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t\n\v\f\r") - first + 1);
}

#endif
