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

TEST_F(ToolTest, CommandLines)
{
    const std::string ten = "family IPv4\nstart 10.1.0.0\nend 10.1.255.255\n";
    write("list", "10.1.2.3 a\nx\n10.2.0.1 b\n10.1.0.0\n");
    const std::pair<std::string, std::string> rows[] = {
        {"range '10.1.*.*' 10.1.2.3 10.2.0.1", ten + "inside 10.1.2.3\noutside 10.2.0.1\n0\n"},
        {"range '10.1.*.*' 10.2.0.1 ::1", ten + "outside 10.2.0.1\noutside ::1\n1\n"},
        {"range '10.1.*.*' '10.1.5.*' '10.*.*.*' 2001:db8::/32",
            ten + "inside 10.1.5.*\ninside 10.*.*.*\noutside 2001:db8::/32\n0\n"},
        {"range 2001:db8::/127 2001:db8::1",
            "family IPv6\nstart 2001:db8::\nend 2001:db8::1\ninside 2001:db8::1\n0\n"},
        {"date 2/29/2000 --plus 1 --format 4", "03/01/2000\n0\n"},
        {"date 2/29/2000 --plus 1",
            "1 DDMMYY 01/03/00\n2 DDMMYYYY 01/03/2000\n3 MMDDYY 03/01/00\n"
            "4 MMDDYYYY 03/01/2000\n5 MonDDYYYY Mar 1, 2000\n6 DDMonYYYY 1 Mar 2000\n0\n"},
        {"date 3/1/2007 --minus 2/28/2007", "1\n0\n"},
        {"filter '10.1.*.*' -f list",
            "10.1.2.3 a\n10.1.0.0\n0\nkesta: list:2: 'x' is no address\n"},
        {"filter '10.1.*.*' --count < /dev/null", "0\n1\n"}};
    for (const auto& [arguments, want] : rows)
        EXPECT_EQ(run(arguments), want) << arguments;
}

TEST_F(ToolTest, ErrorsAreOneLineAndStatus2)
{
    const std::pair<const char*, const char*> rows[] = {
        {"range 2001:db8::1/32", "Not a valid IPv6 address 2001:db8::1/32"},
        {"range '10.1.*.*' 10.1.2.3 x", "'x'"}, {"range --exclude x '10.1.*.*'", "'x'"},
        {"range", "TEXT"}, {"", "subcommand"}, {"date --format 7", "'7'"},
        {"log missing", "missing"}, {"filter x", "Not a valid IP address x"}};
    for (const auto& [arguments, names] : rows)
    {
        const std::string got = run(arguments);
        EXPECT_EQ(got.substr(0, 9), "2\nkesta: ") << arguments;
        EXPECT_TRUE(got.find(names) != got.npos && got.find('\n', 9) == got.size() - 1) << got;
    }
    EXPECT_EQ(messages().back(), "[EXC]:Fernhold:-9999,Not a valid IP address x") << "traced";
}

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
