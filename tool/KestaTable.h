#ifndef KESTA_TABLE_H
#define KESTA_TABLE_H

#include <string>
#include <vector>

class CKestaOutput;

/// Rows of text in aligned columns, two blanks between them.
class CKestaTable
{
public:
    enum class EColour
    {
        plain,
        heading,
        good,
        bad
    };

    /// Adds a row, which is coloured if the output shows colours. Its cells are made printable.
    void add(EColour eColour, const std::vector<std::string>& cells);

    void print(CKestaOutput& output) const;

private:
    struct CRow
    {
        EColour eColour;
        std::vector<std::string> cells;
    };

    std::vector<CRow> m_rows;
};

#endif
