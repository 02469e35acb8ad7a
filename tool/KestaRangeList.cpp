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

void CKestaRangeList::add(std::string_view text, const std::string& strFile, std::size_t ulLine)
{
    const auto place = [&]
    {
        return strFile.empty() ? "" : strFile + ":" + std::to_string(ulLine) + ": ";
    };
    try
    {
        m_ranges.add(text);
        if (!isPlain(text))
            report(place() + "range " + inQuotes(text) + " " +
                   explanation(std::string(text), parseEntry(text)));
        if (m_bKeepTexts)
            m_texts.emplace_back(text);
    }
    catch (const CKestaExc& exc)
    {
        report(place() + rangeError(std::string(text), exc).what());
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
        line = withoutBlanks(line.substr(0, std::min(line.find('#'), line.find(';'))));
        if (!line.empty())
            add(line, input.name(), ulLine);
    };
    for (std::string_view bytes = input.readFirst(); !bytes.empty(); bytes = input.read())
    {
        for (std::size_t ulNewline; (ulNewline = bytes.find('\n')) != std::string_view::npos;)
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
