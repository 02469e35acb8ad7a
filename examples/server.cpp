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
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

// The peers that are let in; null when there is no such file. A line that is not an entry lets
// nobody in.
std::shared_ptr<const KestaIPRangeSet> readList(const char* path)
{
    const CKestaEntry entry;
    auto list = std::make_shared<KestaIPRangeSet>();
    std::ifstream file(path);
    if (!file)
    {
        std::cerr << "can't read " << path << std::endl;
        return nullptr;
    }
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
    sigset_t hangUp;
    sigemptyset(&hangUp);
    sigaddset(&hangUp, SIGHUP);
    sigprocmask(SIG_BLOCK, &hangUp, nullptr);   // interrupts no thread; it is read from hangUps
    const int hangUps = signalfd(-1, &hangUp, SFD_CLOEXEC);
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

    auto list = readList(argv[1]);
    while (list != nullptr)
    {
        pollfd events[] = {{hangUps, POLLIN, 0}, {server, POLLIN, 0}};
        if (poll(events, 2, -1) < 0)
            continue;
        signalfd_siginfo info;   // first: a peer that comes after the signal meets the new list
        if (events[0].revents != 0 && read(hangUps, &info, sizeof info) > 0)
        {
            if (const auto newList = readList(argv[1]))
                list = newList;
        }
        const int connection = events[1].revents != 0
                                   ? accept(server, reinterpret_cast<sockaddr*>(&address), &size)
                                   : -1;
        if (connection >= 0)
            admit(connection, address, *list);
    }
    return 1;
}
