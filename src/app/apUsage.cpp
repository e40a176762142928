#include "app/apUsage.h"

#include "app/apText.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

namespace Zu
{

namespace
{

// The column in which descriptions begin.
constexpr std::size_t INDENT = 26;

std::string row(const std::string& left, const std::string& right)
{
    std::string text = "  " + left;
    if (right.empty()) return text + "\n";
    if (text.size() + 2 > INDENT) text += "\n" + std::string(INDENT, ' ');
    if (const std::size_t end = text.rfind('\n'); end == std::string::npos)
        text.resize(INDENT, ' ');
    return text + right + "\n";
}

std::string spelling(const ApOption& option)
{
    std::string text = option._letter != 0 ? std::string("-") + option._letter : "   ";
    if (!option._longName.empty())
        text += (option._letter != 0 ? ", --" : " --") + option._longName;
    if (!option._takesValue) return text;
    return text + (option._longName.empty() ? " VALUE" : "=VALUE");
}

// In square brackets behind a description.
std::string sourcesOf(const ApSetting& setting, bool namesVariable)
{
    std::string text;
    if (namesVariable && !setting._variable.empty()) text += " [" + setting._variable + "]";
    if (setting._isRequired && !setting._default) text += " [required]";
    if (setting._default)
    {
        text += " [default: " + (setting._default->empty() ? "empty" : *setting._default);
        if (!setting._defaultText.empty() && setting._defaultText != setting._description)
            text += ", " + setting._defaultText;
        text += "]";
    }
    return text;
}

// The library's own variables are not the program's.
bool isOwn(const ApSetting& setting)
{
    return setting._handle.rfind("Zu::", 0) != 0;
}

std::string commonText(const ApOption& option)
{
    if (option._longName == "help") return "shows this text, and ends";
    if (option._longName == "version") return "shows the version, and ends";
    if (option._longName == "settings") return "reads settings from this file";
    return "writes a completion for bash, and ends";
}

// As one word of a shell.
std::string quoted(const std::string& word)
{
    std::string text = "'";
    for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + "'";
}

void appendFact(std::string& text, const char* title, const char* fact)
{
    if (fact && *fact != '\0' && std::strcmp(fact, DbgBuildText::UNKNOWN) != 0)
        text += std::string(title) + fact + "\n";
}

} // namespace

std::string ApUsage::help() const
{
    std::string text = "usage: " + _program + " [option]...";
    if (!_words.empty()) text += " " + _words;
    text += "\n";
    if (!_purpose.empty()) text += _purpose + "\n";
    text += "\noptions:\n";
    for (const ApSetting& setting : _settings->get())
        if (setting._letter != 0)
            text += row(spelling({setting._letter, setting._takesValue, setting._longName}),
                        setting._description + sourcesOf(setting, true));
    for (const ApOption& option : _common)
    {
        const bool hasDefault = option._longName == "settings" && !_settingsFile.empty();
        text += row(spelling(option),
                    commonText(option) + (hasDefault ? " [default: " + _settingsFile + "]" : ""));
    }
    std::string variables;
    for (const ApSetting& setting : _settings->get())
        if (setting._letter == 0 && !setting._variable.empty() && isOwn(setting))
            variables += row(setting._variable, setting._description + sourcesOf(setting, false));
    if (!variables.empty()) text += "\nenvironment:\n" + variables;
    return text;
}

std::string ApUsage::completion() const
{
    std::string options;
    const auto add = [&](const ApOption& option)
    {
        if (option._letter != 0) options += std::string(" -") + option._letter;
        if (!option._longName.empty()) options += " --" + option._longName;
    };
    for (const ApOption& option : _settings->options()) add(option);
    for (const ApOption& option : _common) add(option);
    std::string function = "_complete_";
    for (const char c : _program)
        function += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    return function +
           "()\n{\n"
           "    [[ ${COMP_WORDS[COMP_CWORD]} == -* ]] || return 0\n"
           "    mapfile -t COMPREPLY < <(compgen -W '" +
           options.substr(1) + "' -- \"${COMP_WORDS[COMP_CWORD]}\")\n}\n" +
           "complete -o default -F " + function + " " + quoted(_program) + "\n";
}

std::string apVersion(const DbgBuildText& build)
{
    std::string text = std::string(build._apiName) + " " + std::to_string(build._majorVersion) +
                       "." + std::to_string(build._minorVersion);
    if (build._versionLabel && *build._versionLabel != '\0')
        text += std::string(" ") + build._versionLabel;
    text += "\n";
    appendFact(text, "library: ", build._libraryName);
    appendFact(text, "stamp: ", build._longStamp);
    appendFact(text, "built on: ", build._date);
    appendFact(text, "configuration: ", build._configuration);
    appendFact(text, "built by: ", build._builtBy);
    appendFact(text, "notes: ", build._notes);
    return text;
}

std::string apProgramName(std::string_view path)
{
    path = apLastPart(path);
    if (path.size() > 4 && path.substr(path.size() - 4) == ".exe") path.remove_suffix(4);
    return std::string(path);
}

} // namespace Zu
