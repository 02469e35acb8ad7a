// A host for transcripts: traces the lines of standard input, one per entry, or as many per entry
// as its argument says.

#include "KestaDebug.h"
#include "KestaEntry.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

int main(int argc, char** argv)
{
    const int each = argc > 1 ? std::atoi(argv[1]) : 1;
    std::string line;
    while (std::cin.peek() != EOF)
    {
        const CKestaEntry entry;
        for (int i = 0; i < each && std::getline(std::cin, line); ++i)
            KESTA_DEBUG1(line, 1);
    }
}
