#ifndef KESTA_TESTS_FILTER_SINK_H
#define KESTA_TESTS_FILTER_SINK_H

#include "KestaFilterScanner.h"

#include <string>

/// Collects what a scanner finds: selected lines and unreadable texts, with their line numbers.
struct Found : CKestaFilterScanner::CSink
{
    void selected(std::uint64_t line, std::string_view bytes) override
    {
        for (const char c : bytes)
        {
            if (lines.empty() || lines.back() == '\n')
                lines += std::to_string(line++) + ":";
            lines += c;
        }
    }
    void unreadable(std::uint64_t line, std::string_view text) override
    {
        errors += std::to_string(line) + ":" + std::string(text) + "\n";
    }

    std::string lines, errors;
};

#endif
