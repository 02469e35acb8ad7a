#include "KestaTable.h"

#include "KestaOutput.h"
#include "KestaToolText.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace
{

// The escape sequences of EColour, in its order.
constexpr const char* colourCodes[] = {"", "\x1b[1m", "\x1b[32m", "\x1b[31m"};

}   // namespace

void CKestaTable::add(EColour eColour, const std::vector<std::string>& cells)
{
    CRow row{eColour, {}};
    for (const std::string& strCell : cells)
        row.cells.push_back(printable(strCell));
    m_rows.push_back(row);
}

void CKestaTable::print(CKestaOutput& output) const
{
    std::vector<std::size_t> widths;
    for (const CRow& row : m_rows)
    {
        widths.resize(std::max(widths.size(), row.cells.size()));
        for (std::size_t ul = 0; ul < row.cells.size(); ++ul)
            widths[ul] = std::max(widths[ul], row.cells[ul].size());
    }

    const bool bColoured = CKestaOutput::isColoured();
    for (const CRow& row : m_rows)
    {
        const bool bColouredRow = bColoured && row.eColour != EColour::plain;
        std::string strLine = bColouredRow ? colourCodes[static_cast<int>(row.eColour)] : "";
        for (std::size_t ul = 0; ul < row.cells.size(); ++ul)
        {
            if (ul > 0)
                strLine.append(2 + widths[ul - 1] - row.cells[ul - 1].size(), ' ');
            strLine += row.cells[ul];
        }
        output.write(strLine + (bColouredRow ? "\x1b[0m\n" : "\n"));
    }
}
