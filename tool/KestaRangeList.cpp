#include "KestaRangeList.h"

#include "KestaInput.h"
#include "KestaRangeArgument.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <cstddef>
#include <memory>

void CKestaRangeList::add(const std::string& strText, const std::string& strPlace)
{
    try
    {
        m_ranges.add(*readRange(strText, strPlace));
    }
    catch (const CKestaToolError& error)
    {
        report(error.what());
        m_bComplete = false;
    }
}

void CKestaRangeList::addFile(const std::string& strPath)
{
    CKestaInput input(strPath);
    std::string strLine;
    std::size_t ulLine = 0;
    const auto addLine = [&]
    {
        std::string_view line = strLine;
        if (++ulLine == 1 && line.substr(0, byteOrderMark.size()) == byteOrderMark)
            line.remove_prefix(byteOrderMark.size());
        const std::string_view range = withoutBlanks(line.substr(0, line.find('#')));
        if (!range.empty())
            add(std::string(range), input.name() + ":" + std::to_string(ulLine) + ": ");
        strLine.clear();
    };
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        for (std::size_t ulNewline; (ulNewline = bytes.find('\n')) != std::string_view::npos;)
        {
            strLine += bytes.substr(0, ulNewline);
            bytes.remove_prefix(ulNewline + 1);
            addLine();
        }
        strLine += bytes;
    }
    addLine();
}

const KestaIPRangeSet& CKestaRangeList::build()
{
    m_ranges.build();
    return m_ranges;
}
