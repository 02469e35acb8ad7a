#include "bench.h"

#include "KestaEntry.h"
#include "KestaHostSetup.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef BENCH_WITH_SPDLOG
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>
#endif

namespace
{

constexpr int level = 3;
constexpr char message[] = "In KestaIPRange::isMember()";

/// An installation in a temporary directory, which the library is told to use.
class Installation
{
public:
    Installation()
    {
        std::string name = std::filesystem::temp_directory_path() / "kesta_bench_XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            disagree("an installation", name);
        m_directory = name;
        std::filesystem::create_directory(m_directory / "conf");
        std::filesystem::create_directory(m_directory / "log");
        CKestaHostSetup::setParameter(1, name + "/");
        CKestaHostSetup::setParameter(2, name + "/");
    }
    ~Installation() { std::filesystem::remove_all(m_directory); }

    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    std::string configuration() const { return m_directory / "conf" / "KestaDebug.ini"; }
    std::string log() const { return m_directory / "log" / "KestaDebug_C.log"; }
    std::string otherLog() const { return m_directory / "log" / "other.log"; }

    /// Sets the trace level; the logs start empty.
    void configure(int traceLevel) const
    {
        std::ofstream(configuration())
            << "# trace settings\n[DEBUGINFORMATION]\nDEBUG=Y\n"
            << "DEBUGLEVEL=" << traceLevel << "\nDEBUGFILEPATH=" << (m_directory / "log").string()
            << "\nDEBUGSIZE=1000000\nDEBUGNEWFILE=" << (m_directory / "log").string() << "\n";
        std::filesystem::remove(log());
        std::filesystem::remove(otherLog());
    }

private:
    std::filesystem::path m_directory;
};

// Outlives main, because the measurements that use it do.
const Installation& installation()
{
    static const Installation instance;
    return instance;
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// ---- A trace call while tracing is off ----

void addIdle()
{
    const std::string work = "trace call, tracing off";
    measure(work, "kesta",
            [](benchmark::State& state)
            {
                for (auto _ : state)
                {
                    KESTA_DEBUG1(message, level);
                    benchmark::ClobberMemory();
                }
            });
    measure(work, "floor",
            [](benchmark::State& state)
            {
                static int enabled;
                benchmark::DoNotOptimize(&enabled);
                for (auto _ : state)
                {
                    if (enabled >= level)
                        std::abort();
                    benchmark::ClobberMemory();
                }
            });
#ifdef BENCH_WITH_SPDLOG
    measure(work, "spdlog",
            [](benchmark::State& state)
            {
                spdlog::logger logger("idle", std::make_shared<spdlog::sinks::null_sink_st>());
                logger.set_level(spdlog::level::off);
                for (auto _ : state)
                {
                    logger.trace(message);
                    benchmark::ClobberMemory();
                }
            });
#endif
}

// ---- A traced line ----

/// One form of the log: the level that gives it, and the ends of its lines.
struct Form
{
    const char* name;
    int level;
    std::string fileStart;
    std::string lineEnd;

    std::string line() const { return "[MSG]:FH:" + std::string(message) + lineEnd; }
};

const Form forms[] = {{"plain", 52813, "", "\n"},
                      {"framed", level, "\xFE\xFF", std::string("\n\0\n", 3)}};

/// An entry with the log on.
class KestaLog
{
public:
    explicit KestaLog(const Form&) {}

    static std::string path() { return installation().log(); }
    void write() { KESTA_DEBUG1(message, level); }

private:
    CKestaEntry m_entry;
};

class BareLog
{
public:
    explicit BareLog(const Form& form) : m_line(form.line()) {}

    static std::string path() { return installation().otherLog(); }
    void write()
    {
        // fputs would stop at the NUL of a framed line.
        std::fwrite(m_line.data(), 1, m_line.size(), m_file.get());
        std::fflush(m_file.get());
    }

private:
    struct Close
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string m_line;
    std::unique_ptr<std::FILE, Close> m_file{std::fopen(path().c_str(), "a")};
};

#ifdef BENCH_WITH_SPDLOG
class SpdLog
{
public:
    explicit SpdLog(const Form& form)
        : m_logger("log", std::make_shared<spdlog::sinks::basic_file_sink_st>(path(), true))
    {
        m_logger.set_formatter(std::make_unique<spdlog::pattern_formatter>(
            "[MSG]:FH:%v", spdlog::pattern_time_type::local, form.lineEnd));
        m_logger.set_level(spdlog::level::trace);
        m_logger.flush_on(spdlog::level::trace);
    }

    static std::string path() { return installation().otherLog(); }
    void write() { m_logger.trace(message); }

private:
    spdlog::logger m_logger;
};
#endif

template <class Log>
void addLine(const char* who, const Form& form, const std::string& fileStart = "")
{
    const std::string work = std::string("a traced line, ") + form.name;
    {
        installation().configure(form.level);
        Log log(form);
        log.write();
        log.write();
    }
    if (contentOf(Log::path()) != fileStart + form.line() + form.line())
        disagree(work, who);
    measure(work, who,
            [&form](benchmark::State& state)
            {
                installation().configure(form.level);
                Log log(form);
                for (auto _ : state)
                    log.write();
            });
}

// ---- An entry ----

/// The system calls that an entry can't do without, and nothing else.
void bareEntry(const char* configuration, const char* log)
{
    const int settings = open(configuration, O_RDONLY | O_CLOEXEC);
    char buffer[4096];
    while (read(settings, buffer, sizeof buffer) > 0)
        ;
    close(settings);
    const int lines = open(log, O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    close(lines);
    struct stat status;
    benchmark::DoNotOptimize(stat(log, &status));
}

void addEntries()
{
    measure("an entry, tracing on", "kesta",
            [](benchmark::State& state)
            {
                installation().configure(level);
                for (auto _ : state)
                    const CKestaEntry entry;
            });
    measure("an entry, tracing on", "floor",
            [](benchmark::State& state)
            {
                installation().configure(level);
                const std::string configuration = installation().configuration();
                const std::string log = installation().log();
                for (auto _ : state)
                    bareEntry(configuration.c_str(), log.c_str());
            });
}

}   // namespace

void addTraceWork()
{
    addIdle();
    for (const Form& form : forms)
    {
        addLine<KestaLog>("kesta", form, form.fileStart);
        addLine<BareLog>("floor", form);
#ifdef BENCH_WITH_SPDLOG
        addLine<SpdLog>("spdlog", form);
#endif
    }
    addEntries();
}
