#include "support.h"

#include "KestaConfiguration.h"

#include <cerrno>

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
