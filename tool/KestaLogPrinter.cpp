#include "KestaLogPrinter.h"

#include "KestaOutput.h"
#include "KestaToolText.h"

CKestaLogPrinter::CKestaLogPrinter(CKestaOutput& output)
    : m_output(output), m_bTerminal(CKestaOutput::isTerminal())
{
}

void CKestaLogPrinter::print(std::string_view bytes)
{
    constexpr std::size_t ulLongest = 1024UL * 1024;
    m_decoder.feed(bytes, m_strText);
    write(m_strText.rfind('\n') + 1);
    if (m_strText.size() > ulLongest)
        write(m_strText.size());
}

void CKestaLogPrinter::finish()
{
    m_decoder.finish(m_strText);
    write(m_strText.size());
}

void CKestaLogPrinter::write(std::size_t ulLength)
{
    const std::string_view text = std::string_view(m_strText).substr(0, ulLength);
    if (m_bTerminal)
        m_output.write(printable(text, "\n\t"));
    else
        m_output.write(text);
    m_strText.erase(0, ulLength);
}
