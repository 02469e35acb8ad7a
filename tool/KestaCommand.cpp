#include "KestaCommand.h"

#include <CLI/CLI.hpp>

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

void CKestaCommand::addTexts(const char* pszName, std::vector<std::string>& texts,
                             const char* pszHelp, bool bRequired)
{
    m_app.add_option(pszName, texts, pszHelp)->type_name("")->required(bRequired);
}
