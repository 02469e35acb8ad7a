// A server that lets peers in by an address list, answers each line that a peer sends, and traces.
//
// It has a thread for each peer. An entry with tracing blocks those of all other threads, so each
// entry surrounds a piece of work that does not wait for the network. While the server runs, the
// list is read again at SIGHUP, and the trace configuration at each entry.

#include "KestaEntry.h"
#include "KestaException.h"
#include "KestaIPRangeSet.h"
#include "KestaIPv4Address.h"
#include "KestaString.h"

#include <cctype>
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

volatile std::sig_atomic_t reload = 1;   // read the list before the first peer

// The peers that are let in. A line that is not an entry lets nobody in.
std::shared_ptr<const KestaIPRangeSet> readList(const char* path)
{
    const CKestaEntry entry;
    auto list = std::make_shared<KestaIPRangeSet>();
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
    {
        CKestaString text = line.substr(0, line.find('#'));
        try
        {
            if (!text.trim().empty())
                list->add(text);
        }
        catch (const CKestaExc& exc)
        {
            CKestaDebug::logMessage(exc);
        }
    }
    list->build();
    std::cout << "let in: " << list->size() << " entries" << std::endl;
    return list;
}

// A line in capitals.
std::string answerTo(const std::string& peer, std::string line)
{
    const CKestaEntry entry;
    KESTA_DEBUG2("server", peer + " says " + line, 1);
    for (char& c : line)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return line + '\n';
}

// Returns false when the peer sends no more. It may take any time, so no entry is in progress.
bool readLine(int connection, std::string& line)
{
    line.clear();
    for (char c; read(connection, &c, 1) == 1 && line.size() < 1000; line += c)
    {
        if (c == '\n')
            return true;
    }
    return false;
}

void serve(int connection, const std::string& peer)
{
    for (std::string line; readLine(connection, line);)
    {
        const std::string answer = answerTo(peer, line);
        if (write(connection, answer.data(), answer.size()) < 0)
            break;
    }
    close(connection);
}

void admit(int connection, const sockaddr_in& address, const KestaIPRangeSet& list)
{
    const std::string peer = KestaIPv4Address(address.sin_addr).getStrAddress();
    const bool isListed = list.isMember(reinterpret_cast<const sockaddr*>(&address));
    {
        const CKestaEntry entry;
        KESTA_DEBUG2("server", peer + (isListed ? " comes in" : " is refused"), 1);
    }
    if (isListed)
        std::thread(serve, connection, peer).detach();
    else
        close(connection);
}

}   // namespace

int main(int argc, char** argv)
{
    struct sigaction onHangUp = {};
    onHangUp.sa_handler = [](int)
    {
        reload = 1;
    };   // and accept returns
    sigaction(SIGHUP, &onHangUp, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (argc != 2 || bind(server, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(server, SOMAXCONN) != 0)
        return 1;
    getsockname(server, reinterpret_cast<sockaddr*>(&address), &size);
    std::cout << "port " << ntohs(address.sin_port) << std::endl;

    for (std::shared_ptr<const KestaIPRangeSet> list;;)
    {
        if (reload != 0)
        {
            reload = 0;
            list = readList(argv[1]);
        }
        const int connection = accept(server, reinterpret_cast<sockaddr*>(&address), &size);
        if (connection >= 0)
            admit(connection, address, *list);
    }
}
