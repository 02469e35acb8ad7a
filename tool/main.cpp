#include "KestaCommandLine.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// The number of a closed standard file would go to the next file that is opened, and the result
// could end up in the trace log. What takes its place here fails as a closed file does.
void occupyStandardFiles()
{
    for (int iFile = STDIN_FILENO; iFile <= STDERR_FILENO; ++iFile)
    {
        if (fcntl(iFile, F_GETFD) == -1)
            open("/dev/null", iFile == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}   // namespace

int main(int argc, char** argv)
{
    occupyStandardFiles();
    // A write that is not possible fails, instead of ending the process within an entry.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return runKesta(argc, argv);
}
