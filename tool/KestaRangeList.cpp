#include "KestaRangeList.h"

#include "KestaInput.h"
#include "KestaRangeArgument.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>

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
    std::string strText;
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
        strText += bytes;

    std::string_view rest = strText;
    if (rest.substr(0, byteOrderMark.size()) == byteOrderMark)
        rest.remove_prefix(byteOrderMark.size());
    for (std::size_t ulLine = 1; !rest.empty(); ++ulLine)
    {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        const std::string_view range = withoutBlanks(line.substr(0, line.find('#')));
        if (!range.empty())
            add(std::string(range), input.name() + ":" + std::to_string(ulLine) + ": ");
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
}

const KestaIPRangeSet& CKestaRangeList::build()
{
    m_ranges.build();
    return m_ranges;
}
