#include "KestaConfiguration.h"
#include "fuzz.h"

#include <algorithm>
#include <map>

#include <sys/mman.h>
#include <unistd.h>

namespace
{

// A smoke test: the model reads a file as the library does, so it notices when the two drift apart
// for any bytes, but not what both misunderstand. The tables of configuration_test.cpp say what is
// right.
typedef std::map<std::string, std::string> Model;

bool split(const std::string& line, std::string& key, std::string& value)
{
    const std::size_t sign = line.find('=');
    if (sign == line.npos)
        return false;
    key = trimmed(line.substr(0, sign));
    if (sign + 1 < line.size())
        value = trimmed(line.substr(sign + 1, line.find('=', sign + 1) - sign - 1));
    return true;
}

void read(Model& model, const std::string& bytes)
{
    std::string key, value;
    for (std::size_t at = 0, length; at < bytes.size(); at += length)
    {
        length = std::min<std::size_t>(bytes.find('\n', at) - at, 1022) + 1;
        const std::string line = trimmed(upToNul(bytes.substr(at, length)));
        CHECK(CKestaConfiguration::isComment(line) == (line[0] == '#'));
        if (line[0] == '#')
            continue;
        CKestaString gotKey(key), gotValue(value);
        const bool found = split(line, key, value);
        CHECK(CKestaConfiguration::getKeyValue(line, gotKey, gotValue) == found);
        CHECK(gotKey == key && gotValue == value);
        if (found)
            model[key] = value;
    }
}

void check(Model& model)
{
    CHECK(CKestaConfiguration::getDebugItems() == model["DEBUGITEMS"]);
    CHECK(CKestaConfiguration::getDebugFile() == model["DEBUGFILEPATH"]);
    CHECK(CKestaConfiguration::getDebugInfo() == model["DEBUG"]);
    CHECK(CKestaConfiguration::getNewFile() == model["DEBUGNEWFILE"]);
    CHECK(CKestaConfiguration::getDebugLevel() == std::atoi(model["DEBUGLEVEL"].c_str()));
    CHECK(CKestaConfiguration::getDebugSize() == std::atoi(model["DEBUGSIZE"].c_str()));
}

}   // namespace

/// Input: a configuration file. It is read over known settings, and again over those that it has
/// left.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = memfd_create("configuration", 0);
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const std::string bytes(data, data + size);
    const std::string known = "DEBUGITEMS=a\nDEBUGFILEPATH=b\nDEBUG=c\nDEBUGNEWFILE=d\n"
                              "DEBUGLEVEL=5\nDEBUGSIZE=6\n";
    Model model;
    for (const std::string& content : {known, bytes, bytes})
    {
        CHECK(ftruncate(file, 0) == 0 && pwrite(file, content.data(), content.size(), 0) >= 0);
        CHECK(CKestaConfiguration::setDebugInfo(path) == 0);
        read(model, content);
        check(model);
        CHECK(CKestaConfiguration::initialize("missing.ini") == -1);
        model["DEBUGITEMS"] = "ALL";
        check(model);
    }
    return 0;
}
