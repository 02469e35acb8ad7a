// How failures reach a host, and what it can do with them: error objects and their catalogue.

#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaMap.h"

#include <iostream>

namespace
{

// A host's own failure: number and source are its own, the text begins with the catalogue's.
void openSettings()
{
    throw CKestaExc(1008, "Host::openSettings()", "settings.ini");
}

// Every failure of the library is a CKestaExc, thrown by value and caught by reference.
template <class Work>
void attempt(const char* name, Work work)
{
    try
    {
        work();
    }
    catch (const CKestaExc_ArrayOutOfBound&)   // some are recognised by their type
    {
        std::cout << name << ": past the end\n";
    }
    catch (const CKestaExc& exc)
    {
        CKestaDebug::logMessage(exc);       // one line of the trace log, if there is one
        std::cout << name << ": " << exc;   // number;source;message
    }
}

}   // namespace

int main()
{
    attempt("block", [] { const KestaIPRange range("2001:db8::1/32"); });
    attempt("settings", openSettings);

    CKestaMap<CKestaString, int> ports;
    ports.add("http", 80);
    attempt("port", [&ports] { ports.get("gopher"); });
    ports.resetIterator();
    ports.getNext();
    attempt("walk", [&ports] { ports.getNext(); });

    CKestaExc exc("start-up failed");
    exc.SetErrorMessage("no settings");   // appends to the message
    std::cout << exc;

    char text[512];
    for (const long number : {1008L, 4711L})
        if (CKestaExc::getErrMessage(number, text) == 0)
            std::cout << number << " means: " << text << '\n';
}
