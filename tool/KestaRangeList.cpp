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
        if (m_bKeepTexts)
            m_texts.push_back(strText);
    }
    catch (const CKestaToolError& error)
    {
        report(error.what());
        m_bAllRead = false;
    }
}

void CKestaRangeList::addFile(const std::string& strPath)
{
    CKestaInput input(strPath);
    std::string strLine;
    std::size_t ulLine = 0;
    const auto addLine = [&]
    {
        ++ulLine;
        const std::string_view range =
            withoutBlanks(std::string_view(strLine).substr(0, strLine.find_first_of("#;")));
        if (!range.empty())
            add(std::string(range), input.name() + ":" + std::to_string(ulLine) + ": ");
        strLine.clear();
    };
    for (std::string_view bytes = input.readFirst(); !bytes.empty(); bytes = input.read())
    {
        for (std::size_t ulNewline; (ulNewline = bytes.find('\n')) != bytes.npos;)
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
