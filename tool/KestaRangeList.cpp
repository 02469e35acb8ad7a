#include "KestaRangeList.h"

#include "KestaArgument.h"
#include "KestaException.h"
#include "KestaInput.h"
#include "KestaRangeEntry.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

void CKestaRangeList::add(const std::string& strText, const std::string& strFile,
                          std::size_t ulLine)
{
    const auto place = [&]
    {
        return strFile.empty() ? "" : strFile + ":" + std::to_string(ulLine) + ": ";
    };
    try
    {
        m_ranges.add(strText);
        if (!isPlain(strText))
            report(place() + "range " + inQuotes(strText) + " " +
                   explanation(strText, parseEntry(strText)));
        if (m_bKeepTexts)
            m_texts.push_back(strText);
    }
    catch (const CKestaExc& exc)
    {
        report(place() + rangeError(strText, exc).what());
        m_bAllRead = false;
    }
}

void CKestaRangeList::addFile(const std::string& strPath)
{
    CKestaInput input(strPath);
    std::string strBegun;   // a line that continues in the next piece
    std::size_t ulLine = 0;
    const auto addLine = [&](std::string_view line)
    {
        ++ulLine;
        const auto isComment = [](char c)
        {
            return c == '#' || c == ';';
        };
        const auto itEnd = std::find_if(line.begin(), line.end(), isComment);
        line = withoutBlanks(line.substr(0, static_cast<std::size_t>(itEnd - line.begin())));
        if (!line.empty())
            add(std::string(line), input.name(), ulLine);
    };
    for (std::string_view bytes = input.readFirst(); !bytes.empty(); bytes = input.read())
    {
        for (std::size_t ulNewline; (ulNewline = bytes.find('\n')) != bytes.npos;)
        {
            addLine(strBegun.empty() ? bytes.substr(0, ulNewline)
                                     : strBegun.append(bytes, 0, ulNewline));
            strBegun.clear();
            bytes.remove_prefix(ulNewline + 1);
        }
        strBegun += bytes;
    }
    addLine(strBegun);
}

const KestaIPRangeSet& CKestaRangeList::build()
{
    m_ranges.build();
    return m_ranges;
}
