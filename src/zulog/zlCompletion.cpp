#include "zulog/zlCompletion.h"

#include <CLI/App.hpp>
#include <cstddef>
#include <functional>
#include <vector>

namespace Zu
{

namespace
{

constexpr const char* BEGIN =
    R"bash(# Completion of zulog's command line, made by "zulog completion bash".

_zulog_values() {
    local IFS=$'\n' value
    while read -r value; do
        COMPREPLY+=("$(printf '%q' "$value")")
    done < <(compgen -W "$1" -- "$word")
}

_zulog_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
}

# Skips an option's value in the caller's loop.
_zulog_skip() {
    if [ "${COMP_WORDS[++i]}" = = ]; then ((++i)); fi
}

_zulog() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=zulog i
    local words=0
    # "--option=value" consists of three words.
    if [ "$word" = = ]; then
        word=
    elif [ "$before" = = ]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
)bash";

constexpr const char* END = R"bash(}

complete -F _zulog zulog
)bash";

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

using Visitor = std::function<void(const CLI::App& app, const std::string& path)>;

// The program itself and all commands, with their names as they are written.
void visit(const CLI::App& app, const std::string& path, const Visitor& visitor)
{
    visitor(app, path);
    for (const CLI::App* const command : commandsOf(app))
        visit(*command, path + " " + command->get_name(), visitor);
}

// Values of a set as one word of the shell, with line feeds between them.
std::string quoted(const std::string& values)
{
    std::string text = "$'";
    for (const char character : values)
        text += character == ',' ? std::string("\\n") : std::string(1, character);
    return text + "'";
}

// What an option is checked for: its type is "FORM:{text,json}". Empty if it is no set.
std::string setOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{');
    const std::size_t end = type.find('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    return type.substr(begin + 1, end - begin - 1);
}

bool isFile(const std::string& type)
{
    return type == "FILE" || type == "DIRECTORY" || type == "MAP";
}

// What completes a value; empty if nothing does.
std::string completionOf(const CLI::Option& option, const std::string& type)
{
    if (const std::string values = setOf(option); !values.empty())
        return "_zulog_values " + quoted(values);
    if (isFile(type)) return "_zulog_files";
    if (type == "PROCESS")
        return "_zulog_values \"$(zulog ps 2>/dev/null | awk 'NR > 1 { print $1 }')\"";
    return {};
}

std::string namesOf(const CLI::App& app, bool areOptions)
{
    std::string names;
    for (const CLI::App* const command : commandsOf(app))
        if (!areOptions) names += (names.empty() ? "" : ",") + command->get_name();
    for (const CLI::Option* const option : app.get_options())
        for (const std::string& name : option->get_lnames())
            if (areOptions) names += (names.empty() ? "--" : ",--") + name;
    return names;
}

bool takesValue(const CLI::Option& option)
{
    return !option.get_positional() && option.get_items_expected_max() > 0;
}

std::string firstNameOf(const std::string& path, const CLI::Option& option)
{
    return "\"" + path + " --" + option.get_lnames().front() + "\"";
}

// Finds out which command is being written, and how many words of its own are there already.
void appendCommands(std::string& script, const CLI::App& app)
{
    script += "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
              "        case \"$command ${COMP_WORDS[i]}\" in\n";
    const auto add = [&](const CLI::App& command, const std::string& path)
    {
        if (path != "zulog")
            script += "            \"" + path + "\") command=\"" + path + "\" ;;\n";
        for (const CLI::Option* const option : command.get_options())
            if (takesValue(*option))
                script += "            " + firstNameOf(path, *option) + ") _zulog_skip ;;\n";
    };
    visit(app, "zulog", add);
    script += "            \"$command -\"*) ;;\n"
              "            *) ((++words)) ;;\n"
              "        esac\n    done\n";
}

void appendChoice(std::string& script, const std::string& pattern, const std::string& action)
{
    if (pattern.empty()) return;
    script += "        " + pattern + ")\n            ";
    if (!action.empty()) script += action + "\n            ";
    script += "return\n            ;;\n";
}

// Behind an option, its value.
void appendValues(std::string& script, const CLI::App& app)
{
    script += "    case \"$command $before\" in\n";
    const auto add = [&](const CLI::App& command, const std::string& path)
    {
        std::string others;
        for (const CLI::Option* const option : command.get_options())
        {
            if (!takesValue(*option)) continue;
            const std::string pattern = firstNameOf(path, *option);
            const std::string action = completionOf(*option, option->get_type_name());
            if (action.empty())
                others += (others.empty() ? "" : " | ") + pattern;
            else
                appendChoice(script, pattern, action);
        }
        appendChoice(script, others, "");
    };
    visit(app, "zulog", add);
    script += "    esac\n";
}

// What a positional word can be: a command, or what the first positional stands for. What follows
// a positional of one word is of another kind, and is left to the user.
std::string completionOfWord(const CLI::App& app)
{
    if (const std::string names = namesOf(app, false); !names.empty())
        return "_zulog_values " + quoted(names);
    for (const CLI::Option* const option : app.get_options())
    {
        if (!option->get_positional()) continue;
        const std::string action = completionOf(*option, option->get_name());
        const bool isOne = option->get_items_expected_max() == 1;
        return action.empty() || !isOne ? action : "((words > 0)) || " + action;
    }
    return {};
}

void appendWords(std::string& script, const CLI::App& app)
{
    script += "    case \"$command\" in\n";
    const auto add = [&](const CLI::App& command, const std::string& path)
    {
        script += "        \"" + path + "\")\n            if [[ $word = -* ]]; then\n" +
                  "                _zulog_values " + quoted(namesOf(command, true)) + "\n";
        if (const std::string action = completionOfWord(command); !action.empty())
            script += "            else\n                " + action + "\n";
        script += "            fi\n            ;;\n";
    };
    visit(app, "zulog", add);
    script += "    esac\n";
}

} // namespace

std::string zlBashCompletion(const CLI::App& app)
{
    std::string script = BEGIN;
    appendCommands(script, app);
    appendValues(script, app);
    appendWords(script, app);
    return script + END;
}

} // namespace Zu
