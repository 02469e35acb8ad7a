#include "support.h"

#include "KestaConfiguration.h"

using Configuration = CKestaConfiguration;
using ConfigurationTest = TraceFixture;

TEST_F(ConfigurationTest, Files)
{
    const std::string rows[][2] = {
        {"# trace\n[DEBUGINFORMATION]\nDEBUG=y\nDEBUGLEVEL = 3 \r\nDEBUGFILEPATH=/var/tmp\n"
         "DEBUGSIZE=500\nDEBUGNEWFILE=\t/tmp/old\nDEBUGITEMS=A,B",
            "y|3|A,B|500|/var/tmp|/tmp/old"},
        {"DEBUGLEVEL=\n", "Y|0|ALL|1000000||"}, {"DEBUGSIZE=2\nDEBUGLEVEL=\n", "Y|2|ALL|2||"},
        {"DEBUGLEVEL=7\n[DEBUGINFORMATION]\n[OTHER]\nDEBUGSIZE=8\n", "Y|7|ALL|8||"},
        {"  # DEBUG=N\nDEBUG=Y # note\ndebuglevel=1\nDEBUGSIZE=x\n", "Y # note|52813|ALL|0||"},
        {"DEBUGIT=" + std::string(1015, 'x') + "DEBUGSIZE=5\nDEBUGFILEPATH=b=c\nDEBUG\n",
            "Y|52813|ALL|5|b|"}};
    for (const auto& [lines, want] : rows)
    {
        configure(lines);
        EXPECT_EQ(Configuration::initialize("KestaDebug.ini"), 0);
        const Lines got{Configuration::getDebugInfo(), CKestaString(Configuration::getDebugLevel()),
            Configuration::getDebugItems(), CKestaString(Configuration::getDebugSize()),
            Configuration::getDebugFile(), Configuration::getNewFile()};
        EXPECT_EQ(got, Lines(replaced(want, "|", "\n") + "\n")) << lines;
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
    CKestaString key, value("left over");
    EXPECT_TRUE(Configuration::getKeyValue(" A =", key, value) && key + value == "Aleft over");
    EXPECT_TRUE(Configuration::getKeyValue("B= c =d", key, value) && key + value == "Bc");
    EXPECT_FALSE(Configuration::getKeyValue("C", key, value));
    EXPECT_TRUE(Configuration::isComment("#") && !Configuration::isComment(" #"));
}
