#include "KestaLineFile.h"
#include "KestaLogDecoder.h"
#include "fuzz.h"

#include <algorithm>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

/// The text of a log that comes in blocks of these sizes, in turn.
std::string decoded(const std::string& log, const std::string& sizes)
{
    CKestaLogDecoder decoder;
    std::string text;
    for (std::size_t at = 0, length, block = 0; at < log.size(); at += length, ++block)
    {
        length = 1 + static_cast<unsigned char>(sizes[block % sizes.size()]);
        decoder.feed(std::string_view(log).substr(at, length), text);
        CKestaLogDecoder copy = decoder;   // how much does it hold back?
        std::string rest;
        copy.finish(rest);
        CHECK(rest.size() < 32);
    }
    decoder.finish(text);
    return text;
}

/// The bytes of a framed log of these lines, which is opened again before some of them.
std::string framed(const std::vector<std::string>& lines, const std::string& reopened)
{
    static const int file = memfd_create("log", 0);
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    CHECK(ftruncate(file, 0) == 0);
    CKestaLineFile writer;
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        if (i == 0 || reopened[i % reopened.size()] % 2 == 1)
            writer.open(path, "a+b", true);
        CHECK(writer.writeLine(lines[i]));
    }
    std::string log(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    CHECK(pread(file, log.data(), log.size(), 0) == static_cast<ssize_t>(log.size()));
    return log;
}

}   // namespace

/// Input: the sizes of blocks; where a log is torn; the bytes of a log, which also serve as lines.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fields(data, size, 3);
    const std::string sizes = input[0] + '\xFF';
    CHECK(decoded(input[2], sizes) == decoded(input[2], "\xFF"));

    std::vector<std::string> lines(1, "[MSG]:");
    for (const char c : upToNul(input[2]))
        if (c == '|')
            lines.push_back("[MSG]:");
        else if (c != '\xFE')   // it would begin a mark
            lines.back() += c;
    std::string text;
    for (std::string& line : lines)
        text += line += '\n';
    const std::string log = framed(lines, sizes);
    CHECK(decoded(log, sizes) == text);

    // A torn log loses only its end, and what is written after that is whole again.
    const std::string torn =
        log.substr(0, static_cast<std::size_t>(std::atoi(input[1].c_str())) % log.size());
    const std::string tornText = decoded(torn, sizes);
    CHECK(tornText.empty() || tornText.back() == '\n');
    CHECK(text.compare(0, tornText.size() - !tornText.empty(), tornText, 0,
                       tornText.size() - !tornText.empty()) == 0);
    CHECK(decoded(torn + log, sizes) == tornText + text);
    return 0;
}
