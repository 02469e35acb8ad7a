// A program of its own: what a host sets stays set for the rest of its process.

#include "KestaHostSetup.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

static bool raisedPrivileges = false;

extern "C" char* secure_getenv(const char* name) noexcept
{
    return raisedPrivileges ? nullptr : std::getenv(name);
}

TEST(HostSetup, Parameters)
{
    const std::string longest(2047, 'x'), tooLong(2048, 'x');
    setenv("KESTA_INSTALLED_DIR", "/from/environment/", 1);
    unsetenv("KESTA_DATA_DIR");
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "/from/environment/");
    EXPECT_EQ(CKestaHostSetup::getParameter(2), KESTA_DEFAULT_DATA_DIR);
    raisedPrivileges = true;
    EXPECT_EQ(CKestaHostSetup::getParameter(1), KESTA_DEFAULT_INSTALLED_DIR);
    raisedPrivileges = false;
    setenv("KESTA_INSTALLED_DIR", tooLong.c_str(), 1);
    EXPECT_EQ(CKestaHostSetup::getParameter(1), KESTA_DEFAULT_INSTALLED_DIR);
    setenv("KESTA_INSTALLED_DIR", longest.c_str(), 1);
    EXPECT_FALSE(CKestaHostSetup::setParameter(1, tooLong));
    EXPECT_EQ(CKestaHostSetup::getParameter(1), longest);
    for (const int unknown : {0, 3})
        EXPECT_FALSE(CKestaHostSetup::setParameter(unknown, "x")) << unknown;
    EXPECT_EQ(CKestaHostSetup::getParameter(3), "");
    EXPECT_TRUE(CKestaHostSetup::setParameter(1, ""));
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "") << "an empty text counts as set";
}
