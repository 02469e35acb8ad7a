// The kesta command, run as its users run it.

#include "support.h"

class ToolTest : public TraceFixture
{
protected:
    /// What a command line writes, columns closed up: its output, exit status and errors.
    std::string run(const std::string& arguments) const
    {
        const std::string command = KESTA_COMMAND " " + arguments;
        EXPECT_EQ(0, std::system(("cd '" + dir + "'; { KESTA_INSTALLED_DIR=./ KESTA_DATA_DIR=./ " +
                                  command + " 2> err; echo $?; cat err; } | tr -s ' ' > out")
                                     .c_str()));
        return fileText(dir + "out");
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(dir + name, std::ios::binary) << bytes;
    }
};

TEST_F(ToolTest, LogsOfBothForms)
{
    configure("DEBUGLEVEL=3");
    traceLine("a");
    traceLine("b");
    const std::string lines = "[MSG]:FH:a\n[MSG]:FH:b\n";
    EXPECT_EQ(run("log " + logPath()), lines + "0\n");
    write("torn", log() + "\xFE\xFF[MSG]:FH:to");
    EXPECT_EQ(run("log torn"), lines + "[MSG]:FH:to\n0\n");
    write("torn", log() + "[MSG]:FH:to" + log());
    EXPECT_EQ(run("log torn"), lines + "[MSG]:FH:to\n" + lines + "0\n");
    configure("");
    traceLine("c");
    EXPECT_EQ(run("log"), lines + "[MSG]:FH:c\n0\n") << "the configured log, now in plain form";
}
