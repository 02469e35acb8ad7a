#include "support.h"

#include "KestaConfiguration.h"

using Configuration = CKestaConfiguration;
using ConfigurationTest = TraceFixture;

TEST_F(ConfigurationTest, Files)
{
    const std::string rows[][2] = {{"", "|0|ALL|0||"},
        {"# trace\n[DEBUGINFORMATION]\nDEBUG=Y\nDEBUGLEVEL = 3 \r\nDEBUGFILEPATH=/var/tmp\n"
         "DEBUGSIZE=500\nDEBUGNEWFILE=\t/tmp/old\nDEBUGITEMS=A,B",
            "Y|3|A,B|500|/var/tmp|/tmp/old"},
        {"DEBUGLEVEL=\n", "|0|ALL|0||"}, {"DEBUGSIZE=200\nDEBUGLEVEL=\n", "|200|ALL|200||"},
        {"OTHER=9\n# DEBUGSIZE=1\n\nDEBUGLEVEL =\t\n", "|9|ALL|0||"},
        {"DEBUGLEVEL==\nDEBUGSIZE=\n", "|0|ALL|0||"},
        {"DEBUGLEVEL=7\n[DEBUGINFORMATION]\n[OTHER]\nDEBUGSIZE=8\n", "|7|ALL|8||"},
        {"[DEBUGINFORMATION]\n[DEBUGINFORMATION]\n[x=y]\nDEBUGLEVEL=-7x\n", "|-7|ALL|0||"},
        {"  \n   # DEBUG=Y\nDEBUGLEVEL=x\n", "|0|ALL|0||"},
        {"DEBUG=Y # note\n", "Y # note|0|ALL|0||"},
        {"debuglevel=7\nDebug=Y\nDEBUG\nDEBUGLEVEL 7\n", "|0|ALL|0||"},
        {"DEBUGLEVEL=1\nDEBUGLEVEL=2\nDEBUGFILEPATH=b=c\n", "|2|ALL|0|b|"},
        {"DEBUGFILEPATH= a b \n=9\n", "|0|ALL|0|a b|"},
        {"DEBUGIT=" + std::string(1015, 'x') + "DEBUGSIZE=5\nDEBUGLEVEL=4\n", "|4|ALL|5||"},
        {std::string("DEBUGLEVEL=3\0garbage\nDEBUGSIZE=2\n", 33), "|3|ALL|2||"}};
    for (const auto& [bytes, want] : rows)
    {
        configure("DEBUGLEVEL=0\nDEBUG==\nDEBUGSIZE=0\n");
        Configuration::initialize("KestaDebug.ini");
        std::ofstream(dir + "conf/test.ini", std::ios::binary) << bytes;
        EXPECT_EQ(Configuration::initialize("test.ini"), 0);
        const Lines got{Configuration::getDebugInfo(), CKestaString(Configuration::getDebugLevel()),
            Configuration::getDebugItems(), CKestaString(Configuration::getDebugSize()),
            Configuration::getDebugFile(), Configuration::getNewFile()};
        EXPECT_EQ(got, Lines(replaced(want, "|", "\n") + "\n")) << bytes;
    }
}

TEST_F(ConfigurationTest, UnreadableFilesKeepWhatWasThere)
{
    configure("DEBUGLEVEL=5\nDEBUGITEMS=X\n");
    EXPECT_EQ(Configuration::initialize("KestaDebug.ini"), 0);
    EXPECT_EQ(Configuration::setDebugInfo(dir + "missing.ini"), -1);
    EXPECT_EQ(Configuration::getDebugItems(), "X");
    CKestaHostSetup::setParameter(1, dir.substr(0, dir.size() - 1));   // "conf" follows directly
    EXPECT_EQ(Configuration::initialize("KestaDebug.ini"), -1);
    EXPECT_EQ(Configuration::getDebugItems(), "ALL");
    EXPECT_EQ(Configuration::getDebugLevel(), 5);
    EXPECT_EQ(Configuration::getInstalledDir() + "/" + Configuration::getDataDir(), dir + dir);
}

TEST(Configuration, KeysAndComments)
{
    const std::tuple<const char*, bool, const char*, const char*> rows[] = {
        {" A = b ", true, "A", "b"}, {"A=b=c", true, "A", "b"}, {"A==", true, "A", ""},
        {"A=", true, "A", "old"}, {"=v", true, "", "v"}, {"A=b=", true, "A", "b"},
        {"=", true, "", "old"}, {"Ab", false, "old", "old"}};
    for (const auto& [line, result, wantKey, wantValue] : rows)
    {
        CKestaString key("old"), value("old");
        EXPECT_EQ(Configuration::getKeyValue(line, key, value), result) << line;
        EXPECT_EQ(key, wantKey) << line;
        EXPECT_EQ(value, wantValue) << line;
    }
    EXPECT_TRUE(Configuration::isComment("#") && !Configuration::isComment(" #"));
}
