#include "support.h"

#include "KestaConfiguration.h"

#include <cerrno>
#include <thread>

using Configuration = CKestaConfiguration;
using ConfigurationTest = TraceFixture;

TEST_F(ConfigurationTest, UnreadableFilesKeepWhatWasThere)
{
    configure("DEBUGLEVEL=5\nDEBUGITEMS=X\n");
    EXPECT_EQ(Configuration::initialize("KestaDebug.ini"), 0);
    EXPECT_EQ(Configuration::setDebugInfo(dir + "missing.ini"), -1);
    errno = EINTR;   // left over from an earlier call
    EXPECT_EQ(Configuration::setDebugInfo("/proc/version"), 0) << "of size 0, and no settings";
    EXPECT_EQ(Configuration::getDebugItems(), "X");
    CKestaHostSetup::setParameter(1, dir.substr(0, dir.size() - 1));   // "conf" follows directly
    EXPECT_EQ(Configuration::initialize("KestaDebug.ini"), -1);
    EXPECT_EQ(Configuration::getDebugItems(), "ALL");
    EXPECT_EQ(Configuration::getDebugLevel(), 5);
    EXPECT_EQ(Configuration::getInstalledDir() + "/" + Configuration::getDataDir(), dir + dir);
}

TEST_F(ConfigurationTest, LinesOfAFile)
{
    const std::string blanks(1000, ' ');
    const std::tuple<std::string, int, int, const char*> rows[] = {
        // the file; then level, size and items
        {"DEBUGLEVEL=3\n", 3, 0, "ALL"}, {" \tDEBUGLEVEL \v= \f7 \r\n", 7, 0, "ALL"},
        {"DEBUGLEVEL=3", 3, 0, "ALL"}, {"DEBUGLEVEL=3\nDEBUGLEVEL=4\n", 4, 0, "ALL"},
        {"debuglevel=3\nDEBUGLEVEL3\n#DEBUGLEVEL=3\n \t# DEBUGLEVEL=3\n", 0, 0, "ALL"},
        {"DEBUGLEVEL=1\n[DEBUGINFORMATION]\nDEBUGSIZE=2\n", 1, 2, "ALL"},
        {"[DEBUGINFORMATION]\n[OTHER]\nDEBUGLEVEL=7\n", 7, 0, "ALL"},
        {"[DEBUGLEVEL=7]\n", 0, 0, "ALL"}, {"DEBUGITEMS=x # note\n", 0, 0, "x # note"},
        {"DEBUGITEMS=a=b\n", 0, 0, "a"}, {"DEBUGITEMS==\n", 0, 0, ""},
        {"DEBUGLEVEL=\n", 0, 0, "ALL"}, {"DEBUGSIZE=200\nDEBUGLEVEL=\n", 200, 200, "ALL"},
        {"unknown=9\nDEBUGLEVEL=\n\n# comment\nDEBUGITEMS=\n", 9, 0, "9"},
        {"DEBUGSIZE=200\nDEBUGLEVEL==\n", 0, 200, "ALL"},
        {"DEBUGSIZE=-5x\nDEBUGLEVEL=x5\n", 0, -5, "ALL"},
        {"DEBUGSIZE=1\n" + blanks + "DEBUGITEMS=" + std::string(12, 'x') + "DEBUGLEVEL=4\n", 4, 1,
            "xxxxxxxxxxxx"}};   // a line of more than 1023 bytes is read as several
    for (const auto& [text, level, size, items] : rows)
    {
        SCOPED_TRACE(text);
        std::ofstream(dir + "conf/reset.ini") << "DEBUGLEVEL=0\nDEBUGSIZE=0\n";
        std::ofstream(dir + "conf/row.ini") << text;
        EXPECT_EQ(Configuration::initialize("reset.ini"), 0);
        EXPECT_EQ(Configuration::setDebugInfo(dir + "conf/row.ini"), 0);
        EXPECT_EQ(Configuration::getDebugLevel(), level);
        EXPECT_EQ(Configuration::getDebugSize(), size);
        EXPECT_EQ(Configuration::getDebugItems(), items);
    }
}

TEST_F(ConfigurationTest, KeyAndValueOfALine)
{
    const std::tuple<const char*, bool, const char*, const char*> rows[] = {
        {"A=b=c", true, "A", "b"}, {"A==", true, "A", ""}, {"A=", true, "A", "old value"},
        {" A b \t=\t c d ", true, "A b", "c d"}, {"A= ", true, "A", ""}, {"=b", true, "", "b"},
        {"A", false, "old key", "old value"}, {"", false, "old key", "old value"}};
    for (const auto& [line, found, wantedKey, wantedValue] : rows)
    {
        CKestaString key("old key"), value("old value");
        EXPECT_EQ(Configuration::getKeyValue(line, key, value), found) << line;
        EXPECT_EQ(key, wantedKey) << line;
        EXPECT_EQ(value, wantedValue) << line;
    }
    CKestaString key("A=b"), value("C=d"), both;
    EXPECT_TRUE(Configuration::getKeyValue(key, key, both));
    EXPECT_TRUE(Configuration::getKeyValue(value, both, value));
    EXPECT_EQ(key + value + both, "AdC");
    EXPECT_TRUE(Configuration::getKeyValue("A=b", both, both));
    EXPECT_EQ(both, "b") << "the value is stored last";
    EXPECT_TRUE(Configuration::isComment("# DEBUG=Y"));
    EXPECT_FALSE(Configuration::isComment(" # DEBUG=Y"));
}

// Two threads read files with different keys again and again: neither loses what it has read.
TEST_F(ConfigurationTest, ReadingsOfSeveralThreadsCount)
{
    for (const char* key : {"DEBUGSIZE", "DEBUGLEVEL"})
        for (const char* value : {"1", "2"})
            std::ofstream(dir + key + value) << key << '=' << value;
    const auto readAgainAndAgain = [this](const std::string& key, int (*get)())
    {
        for (int i = 0; i < 1000; ++i)
            for (int value : {1, 2})
            {
                EXPECT_EQ(Configuration::setDebugInfo(dir + key + std::to_string(value)), 0);
                EXPECT_EQ(get(), value);
            }
    };
    std::thread other(readAgainAndAgain, "DEBUGSIZE", Configuration::getDebugSize);
    readAgainAndAgain("DEBUGLEVEL", Configuration::getDebugLevel);
    other.join();
}
