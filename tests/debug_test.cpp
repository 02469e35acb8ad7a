#include "support.h"

using DebugTest = TraceFixture;

TEST_F(DebugTest, LinesOfAllKinds)
{
    const std::string off("off");
    const auto work = [&off]
    {
        KESTA_DEBUG1("x", 1);
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()", "start", 3);
        KESTA_DEBUG1("two\nlines", 52813);
        CKestaDebug::logMessage("m", "s", "t", 3);
        CKestaDebug::logMessage(CKestaExc(-1, "src", "why"));
        CKestaDebug::enable(false);
        KESTA_DEBUG1(off, 1);
        KESTA_DEBUG2(off, off, 1);
        CKestaDebug::writeMessage("off");
        CKestaDebug::enable(true);
        CKestaDebug::writeMessage("as it stands");
    };
    EXPECT_EQ(
        traced(work), (Lines{"FH:x", "KestaIPUtilities::queryHostIP():start", "FH:two", "lines",
                          "[t]:s:m", "[EXC]:src:-1,Unknown Error:why", "as it stands"}));
}

TEST_F(DebugTest, ErrorObjectsAreAskedInOrder)
{
    struct Asked : CKestaExc
    {
        CKestaString GetErrorSource() const override { return order += "source "; }
        long GetErrorNumber() const override { return order += "number ", 7; }
        CKestaString GetErrorMessage() const override { return order += "message"; }
        mutable CKestaString order;
    } asked;
    EXPECT_EQ(traced([&] { CKestaDebug::logMessage(asked); }),
        Lines{"[EXC]:source :7,source number message"});
}

TEST_F(DebugTest, SwitchAndLevel)
{
    const std::tuple<const char*, std::size_t, bool> rows[] = {{"DEBUGLEVEL=2", 5, true},
        {"DEBUGLEVEL=1\nDEBUG=y", 4, true}, {"DEBUGLEVEL=52813", 6, true},
        {"DEBUGLEVEL=-1", 1, true}, {"DEBUGLEVEL=0", 0, false}, {"DEBUG=N", 0, true},
        {"DEBUG==", 0, true}, {"DEBUG=yes", 0, true}};
    for (const auto& [settings, written, fileMade] : rows)
    {
        configure(settings);
        std::filesystem::remove(logPath());
        for (int level = -1; level <= 3; ++level)
            traceLine("x", level);
        initialize();
        CKestaDebug::logMessage(CKestaExc("which is of level 1"));
        unInitialize();
        EXPECT_EQ(messages().size(), written) << settings;
        EXPECT_EQ(std::filesystem::exists(logPath()), fileMade) << settings;
    }
}

TEST_F(DebugTest, BytesOfTheFramedForm)
{
    const std::string line("[MSG]:FH:x\n\0\n", 13), marks("\xFE\xFF");
    configure("DEBUGLEVEL=3");
    traceLine("x");
    traceLine("x", 3);
    EXPECT_EQ(log(), marks + line + marks + line) << "marks again, as it was opened again";
    std::filesystem::remove(logPath());
    CKestaHostSetup::setLineCipher([](const std::string& text) { return "<" + text; });
    traceLine("x");
    CKestaHostSetup::setLineCipher([](const std::string&) -> std::string { throw 1; });
    traceLine("lost");
    CKestaHostSetup::setLineCipher(nullptr);
    EXPECT_EQ(log(), marks + "<" + line);
}

TEST_F(DebugTest, RollsOverAboveTheLimitOnly)
{
    const std::tuple<const char*, std::size_t, bool> rows[] = {{"DEBUGSIZE=5", 5000, false},
        {"DEBUGSIZE=5", 5001, true}, {"DEBUGSIZE=0", 0, false}, {"DEBUGSIZE=0", 1, true},
        {"DEBUGSIZE=-1", 0, true}, {"DEBUGSIZE=4294968", 705, true},
        {"DEBUGSIZE=4294968", 704, false}};   // wraps to 704
    for (const auto& [settings, bytes, rolled] : rows)
    {
        configure(settings);
        std::ofstream(oldLogPath()) << "the old one, replaced";
        std::ofstream(logPath()) << std::string(bytes, 'x');
        traceLine("not written", 52814);
        EXPECT_EQ(std::filesystem::exists(logPath()), !rolled) << settings << " " << bytes;
        EXPECT_EQ(
            fileText(oldLogPath()), rolled ? std::string(bytes, 'x') : "the old one, replaced");
    }
}

TEST_F(DebugTest, DirectoriesOfTheLogs)
{
    const std::string old = "DEBUGSIZE=0\nDEBUGNEWFILE=" + dir + "conf\n";
    configure(old + "DEBUGFILEPATH=" + dir);
    traceLine("x");
    EXPECT_EQ(fileText(dir + "conf/KestaDebugOld_C.log"), "[MSG]:FH:x\n");
    configure(old);
    traceLine("y");
    EXPECT_EQ(fileText(oldLogPath()), "[MSG]:FH:y\n") << "not in DEBUGNEWFILE";
}

TEST_F(DebugTest, WarnsOnceForEachEntryWhenTheSwitchIsOn)
{
    const std::string rows[][2] = {
        {"y", "Warning: Fernhold may not be able to Debug!!!\n"}, {"yes", ""}};
    for (const auto& [switchedTo, want] : rows)
    {
        configure("DEBUG=" + switchedTo + "\nDEBUGFILEPATH=" + dir + "missing\n");
        testing::internal::CaptureStdout();
        initialize();
        KESTA_DEBUG1("lost", 1);
        EXPECT_EQ(pthread_mutex_trylock(&ghMutex), EBUSY) << "held for the whole entry";
        unInitialize();
        std::fflush(stdout);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), want) << switchedTo;
    }
}

TEST_F(DebugTest, LevelZeroTakesNoMutexButReleasesIt)
{
    configure("DEBUGLEVEL=0");
    pthread_mutex_lock(&ghMutex);
    traceLine("x");   // would hang if it took the mutex
    EXPECT_EQ(pthread_mutex_trylock(&ghMutex), 0);
    traceLine("x");
    traceLine("x");   // releases a mutex that nobody holds
}
