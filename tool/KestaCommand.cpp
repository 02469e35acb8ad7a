#include "KestaCommand.h"

#include <CLI/CLI.hpp>

#include <memory>

CKestaCommand::CKestaCommand(CLI::App& root, const char* pszName, const char* pszHelp,
                             const char* pszFooter)
    : m_app(*root.add_subcommand(pszName, pszHelp))
{
    m_app.footer(pszFooter);
}

bool CKestaCommand::isChosen() const
{
    return m_app.parsed();
}

bool CKestaCommand::has(const char* pszName) const
{
    return m_app.count(pszName) > 0;
}
