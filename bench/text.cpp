#include "bench.h"

#include "KestaString.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#ifdef BENCH_WITH_ABSEIL
#include <absl/strings/ascii.h>
#include <absl/strings/str_split.h>
#endif

namespace
{

std::string repeated(const std::string& text, std::size_t count)
{
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

// The result of a walk over the fields of a text: enough to show that everyone saw the same ones.
struct Fields
{
    std::size_t count = 0;
    std::size_t bytes = 0;
    unsigned int sum = 0;   // of their last characters

    void add(std::string_view field)
    {
        ++count;
        bytes += field.size();
        sum += static_cast<unsigned char>(field.back());
    }
    bool operator==(const Fields& other) const
    {
        return count == other.count && bytes == other.bytes && sum == other.sum;
    }
};

std::string fieldText(std::size_t fields)
{
    std::string text;
    for (std::size_t i = 0; i < fields; ++i)
    {
        if (i > 0)
            text += ',';
        text += "10." + std::to_string(i % 256) + "." + std::to_string(i / 256 % 256) + ".1";
    }
    return text;
}

Fields kestaFields(const CKestaString& text)
{
    Fields fields;
    CKestaString token;
    for (bool more = text.getNextToken(token, ","); more; more = text.getNextToken(token, ""))
        fields.add(token);
    return fields;
}

// Looks for the delimiters, and copies nothing.
Fields floorFields(const std::string& text)
{
    Fields fields;
    const char* const end = text.data() + text.size();
    for (const char* start = text.data(); start < end;)
    {
        const void* found = std::memchr(start, ',', static_cast<std::size_t>(end - start));
        const char* stop = found != nullptr ? static_cast<const char*>(found) : end;
        fields.add(std::string_view(start, static_cast<std::size_t>(stop - start)));
        start = stop + 1;
    }
    return fields;
}

#ifdef BENCH_WITH_ABSEIL
// Each piece copied out into one string, as our token is.
Fields abseilFields(const std::string& text)
{
    Fields fields;
    std::string token;
    for (const absl::string_view piece : absl::StrSplit(text, ','))
    {
        token.assign(piece.data(), piece.size());
        fields.add(token);
    }
    return fields;
}

// Each piece in a string of its own, which is the shortest to write.
Fields abseilVectorFields(const std::string& text)
{
    Fields fields;
    const std::vector<std::string> tokens = absl::StrSplit(text, ',');
    for (const std::string& token : tokens)
        fields.add(token);
    return fields;
}
#endif

void addTokenising(std::size_t count)
{
    const std::string text = fieldText(count);
    const Work<Fields> tokenising("tokenise, " + std::to_string(count) + " fields, each",
                                  {floorFields(text)}, count);
    tokenising.by("kesta", std::vector<CKestaString>{text}, kestaFields);
    tokenising.by("floor", std::vector<std::string>{text}, floorFields);
#ifdef BENCH_WITH_ABSEIL
    tokenising.by("abseil", std::vector<std::string>{text}, abseilFields);
    tokenising.by("abseil vector", std::vector<std::string>{text}, abseilVectorFields);
#endif
}

bool isSpace(unsigned char byte)
{
    return std::isspace(byte) != 0;
}

std::string barelyTrimmed(const std::string& source)
{
    const auto start = std::find_if_not(source.begin(), source.end(), isSpace);
    const auto end = std::find_if_not(source.rbegin(), source.rend(), isSpace).base();
    return start < end ? std::string(start, end) : std::string();
}

std::string barelyWithoutSpaces(std::string text)
{
    text.erase(std::remove_if(text.begin(), text.end(), isSpace), text.end());
    return text;
}

void addCounting(const std::string& size, const std::string& text)
{
    const int commas = static_cast<int>(std::count(text.begin(), text.end(), ','));
    const Work<int> counting("countDelims, " + size, {commas});
    counting.by("kesta", std::vector<CKestaString>{text},
                [delimiter = CKestaString(",")](const CKestaString& source)
                { return source.countDelims(delimiter); });
    counting.by("floor", std::vector<std::string>{text},
                [](const std::string& source)
                { return static_cast<int>(std::count(source.begin(), source.end(), ',')); });
#ifdef BENCH_WITH_ABSEIL
    counting.by("abseil", std::vector<std::string>{text},
                [](const std::string& source)
                {
                    int pieces = 0;
                    for (const absl::string_view piece : absl::StrSplit(source, ','))
                    {
                        benchmark::DoNotOptimize(piece);
                        ++pieces;
                    }
                    return pieces - 1;
                });
#endif
}

// Both of our operations change the text, so everybody first makes a copy of it. The second copy,
// which our operations return, is part of their time.
void addStripping(const std::string& size, const std::string& text)
{
    const Work<std::string> trimming("copy and trim, " + size, {barelyTrimmed(text)});
    trimming.by("kesta", std::vector<CKestaString>{text},
                [](const CKestaString& source) { return CKestaString(source).trim(); });
    trimming.by("floor", std::vector<std::string>{text}, barelyTrimmed);
#ifdef BENCH_WITH_ABSEIL
    trimming.by("abseil", std::vector<std::string>{text},
                [](std::string source)
                {
                    absl::StripAsciiWhitespace(&source);
                    return source;
                });
#endif

    const Work<std::string> removing("copy and removeSpaces, " + size, {barelyWithoutSpaces(text)});
    removing.by("kesta", std::vector<CKestaString>{text},
                [](const CKestaString& source) { return CKestaString(source).removeSpaces(); });
    removing.by("floor", std::vector<std::string>{text}, barelyWithoutSpaces);
}

}   // namespace

void addTextWork()
{
    for (const std::size_t fields : {1000u, 10000u, 100000u, 1000000u})
        addTokenising(fields);

    const std::string piece = " 10.1.2.3,\t";
    for (const auto& [size, count] : {std::pair("1 kB", 100), std::pair("1 MB", 100000)})
    {
        const std::string text = repeated(piece, static_cast<std::size_t>(count));
        addCounting(size, text);
        addStripping(size, text);
    }
}
