#include "KestaString.h"
#include "fuzz.h"

#include <algorithm>
#include <cctype>

#include <strings.h>

namespace
{

// Searches as the tokeniser does: it guards against crashes and lost state, and proves no rule of
// tokens. The unit tests do that.
struct Model
{
    std::string text, delimiter = "";
    std::size_t cursor = 0;

    bool nextToken(std::string& token, const std::string& named)
    {
        if (!named.empty())
            *this = {text, named, 0};
        const std::size_t found = text.find(delimiter, cursor);
        if (delimiter.empty() || cursor >= text.size() || (found == text.npos && cursor == 0))
            return false;
        token = upToNul(text.substr(cursor, found - cursor));
        cursor = found == text.npos ? text.size() : found + delimiter.size();
        return true;
    }
};

std::string withoutSpaces(std::string text)
{
    const auto isSpace = [](unsigned char c)
    {
        return std::isspace(c) != 0;
    };
    text.erase(std::remove_if(text.begin(), text.end(), isSpace), text.end());
    return text;
}

void checkQuestions(const CKestaString& text, const CKestaString& other)
{
    const std::string whole = text, cut = upToNul(whole), asked = upToNul(other);
    CHECK((text == other) == (cut == asked));
    CHECK(text.equals(other, true) == (cut == asked));
    CHECK(text.equals(other, false) == (strcasecmp(cut.c_str(), asked.c_str()) == 0));
    CHECK(text.beginsWith(other) == (whole.find(asked) == 0));
    CHECK(text.endsWith(other) == (whole.size() - 1 == whole.find_last_of(asked)));
    int count = 0;
    for (std::size_t at = 0; !asked.empty(); at += asked.size(), ++count)
        if ((at = whole.find(asked, at)) == whole.npos)
            break;
    CHECK(text.countDelims(other) == count);
    CHECK(text.countTokens(other) == count + (count > 0));
    CHECK(std::string(text + other) == cut + std::string(other));
    CHECK(text.toInt() == static_cast<int>(std::strtol(cut.c_str(), nullptr, 10)));
    CHECK(std::to_string(text.toDouble()) == std::to_string(std::atof(cut.c_str())));
}

}   // namespace

/// Input: letters, each an operation; a delimiter; a second text; the text.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fields(data, size, 4);
    CKestaString text, other, token;
    text.append(input[3]);
    other.append(input[2]);
    checkQuestions(text, other);

    Model model{input[3]};
    std::string expected;
    for (const char operation : input[0].substr(0, 100))
    {
        const std::string named = operation == 'd' ? input[1] : operation == 'o' ? input[2] : "";
        if (operation == 't' || operation == 's')
        {
            CHECK((operation == 't' ? text.trim() : text.removeSpaces()) == text);
            const std::string cut = upToNul(model.text);
            if (!model.text.empty())
                model = {operation == 't' ? trimmed(cut) : withoutSpaces(cut)};
        }
        else if (operation == 'h')   // halves the text between two tokens
        {
            text.resize(text.size() / 2);
            model.text.resize(text.size());
        }
        else
            CHECK(text.getNextToken(token, named) == model.nextToken(expected, named));
        CHECK(std::string(text) == model.text);
        CHECK(std::string(token) == expected);
    }
    return 0;
}
