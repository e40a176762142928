#include "zulog/zlCommandLine.h"

#include "zulog/zlCompletion.h"
#include "zulog/zlTime.h"

#include <algorithm>
#include <charconv>
#include <CLI/CLI.hpp>
#include <optional>
#include <utility>

namespace Zu
{

namespace
{

using Name = ZlCommand::Name;
using Times = ZlFormatOptions::Times;

constexpr int WRONG_USE = 2;
constexpr const char* ALL_LEVEL_NAMES =
    "Internal Error, Fatal Error, Error, Warning, Informational, Tracing or Profiling";

// What most people choose from.
constexpr const char* LEVEL_TYPE = "LEVEL:{Internal Error,Fatal Error,Error,Warning,Informational,"
                                   "Tracing,Profiling}";

// The options as they are written. They are turned into values when all of them are known.
struct Words
{
    std::vector<std::string> _files;
    bool _areRotatedAdded = false;
    std::string _format = "text";
    std::string _colour = "auto";
    bool _isUtc = false;
    bool _isRelative = false;
    bool _isTicks = false;
    bool _isRaw = false;
    bool _hasHosts = false;
    bool _hasFiles = false;
    bool _isUnpaged = false;
    std::string _level;
    std::vector<std::string> _threads;
    std::string _since;
    std::string _until;
    std::string _figures = "text";
    std::string _list = "text";
    std::string _process;
    std::vector<std::string> _changes;
    std::string _shell;
};

// A number in decimal, or in hexadecimal behind "0x", as threads are written.
std::optional<std::uint32_t> parseNumber(std::string_view text)
{
    const bool isHex = text.substr(0, 2) == "0x";
    if (isHex) text.remove_prefix(2);
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [place, error] = std::from_chars(text.data(), end, number, isHex ? 16 : 10);
    return error == std::errc() && place == end ? std::optional(number) : std::nullopt;
}

[[noreturn]] void refuse(const std::string& option, const std::string& value,
                         const std::string& expected)
{
    throw CLI::ValidationError(option, "\"" + value + "\" can't be used: expected " + expected);
}

// The same check with a refusal in the form of the others.
CLI::Validator saying(const CLI::Validator& validator, const std::string& expected)
{
    const auto check = [validator, expected](std::string& value) -> std::string
    {
        if (validator(value).empty()) return {};
        return "\"" + value + "\" can't be used: expected " + expected;
    };
    CLI::Validator result = validator;
    return result.operation(check);
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    std::string expected;
    for (std::size_t i = 0; i < words.size(); ++i)
        expected += (i == 0 ? "" : i + 1 < words.size() ? ", " : " or ") + words[i];
    return saying(CLI::IsMember(words), expected);
}

CLI::Validator numberFrom(int least)
{
    constexpr int MOST = 1000000;
    return saying(CLI::Range(least, MOST),
                  "a whole number from " + std::to_string(least) + " to " + std::to_string(MOST));
}

std::int64_t timeOf(const std::string& option, const std::string& value, std::int64_t now)
{
    const auto time = zlParseTime(value, now);
    if (!time)
        refuse(option, value,
               R"(a time such as "2026-11-22 23:10:51", "23:10", "5m ago" or "now")");
    return *time;
}

const CLI::App* findCommand(const CLI::App& app, const std::string& name)
{
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (command->get_name() == name) return command;
    return nullptr;
}

// The command at the beginning of the words, as in "zulog recover list". The parser itself would
// only miss a command that it does not know.
std::string commandOf(const CLI::App& app, const std::vector<std::string>& words)
{
    std::string names = app.get_name();
    const CLI::App* command = &app;
    for (const std::string& word : words)
    {
        const CLI::App* const next = findCommand(*command, word);
        if (!next) break;
        command = next;
        names += " " + word;
    }
    return names;
}

void refuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& words)
{
    const CLI::App* command = &app;
    for (const std::string& word : words)
    {
        const bool hasCommands =
            !command->get_subcommands([](const CLI::App*) { return true; }).empty();
        if (!hasCommands || word.substr(0, 1) == "-") return;
        const CLI::App* const next = findCommand(*command, word);
        if (!next)
            throw CLI::ParseError("\"" + word + "\" is no command" +
                                      (command == &app ? "" : " of " + command->get_name()),
                                  CLI::ExitCodes::ExtrasError);
        command = next;
    }
}

void refuseWrongExpressions(const std::string& option, const std::vector<std::string>& expressions)
{
    for (const std::string& expression : expressions)
    {
        const std::string fault = zlFaultOfExpression(expression);
        if (!fault.empty()) throw CLI::ValidationError(option, fault);
    }
}

// Of the command that the words name.
std::string helpOf(const CLI::App& app, const std::string& names)
{
    const auto chosen = app.get_subcommands();
    const std::string all = names.empty() ? app.get_name() : names + " " + app.get_name();
    return chosen.empty() ? app.help(names) + "\n" : helpOf(*chosen.front(), all);
}

void addFiles(CLI::App& command, Words& words)
{
    command
        .add_option("FILE", words._files,
                    "Log files, directories with logs, or - for standard input")
        ->type_name("")
        ->required();
    command.add_flag("--rotated", words._areRotatedAdded,
                     "Add the files that each file was rotated to");
}

void addForm(CLI::App& command, Words& words)
{
    command.add_option("--format", words._format, "The form of the output")
        ->type_name("FORM")
        ->check(oneOf({"text", "iso", "json", "csv", "logfmt"}))
        ->capture_default_str();
    CLI::Option* const utc = command.add_flag("--utc", words._isUtc, "Show times in UTC");
    CLI::Option* const relative = command.add_flag(
        "--relative", words._isRelative, "Show seconds since the first record with a known time");
    CLI::Option* const ticks =
        command.add_flag("--ticks", words._isTicks, "Show ticks as they stand in the file");
    utc->excludes(relative, ticks);
    relative->excludes(ticks);
    command.add_flag("--raw", words._isRaw, "Undo the escapes in texts");
    command.add_flag("--hosts", words._hasHosts, "Show the host in each line");
    command.add_flag("--files", words._hasFiles, "Show file and line in front of each line");
    command.add_option("--color", words._colour, "When levels are coloured")
        ->type_name("WHEN")
        ->check(oneOf({"auto", "always", "never"}))
        ->capture_default_str();
}

void addFilters(CLI::App& command, Words& words, ZlSelection& selection)
{
    command
        .add_option("--level", words._level,
                    "This level and the more severe ones; =Tracing or Error,Tracing for these "
                    "levels alone")
        ->type_name(LEVEL_TYPE);
    command.add_option("--group", selection._groups, "Groups, with * and ? as wildcards")
        ->type_name("GROUP")
        ->allow_extra_args(false);
    command.add_option("--thread", words._threads, "Threads, as 4711 or 0x00001267")
        ->type_name("THREAD")
        ->allow_extra_args(false);
    command.add_option("--process", selection._processes, "Processes, by their ids")
        ->type_name("ID")
        ->allow_extra_args(false);
    command
        .add_option("--match", selection._matches,
                    "Records in whose group and text a regular expression is found")
        ->type_name("EXPRESSION")
        ->allow_extra_args(false);
    command.add_option("--exclude", selection._exclusions, "Records in which it is not found")
        ->type_name("EXPRESSION")
        ->allow_extra_args(false);
    command.add_option("--since", words._since, "Records from this time on")->type_name("TIME");
    command.add_option("--until", words._until, "Records before this time")->type_name("TIME");
    command.add_flag("--no-marks", selection._areMarksHidden,
                     "Hide starts, ends and other marks of the logger");
}

void addContext(CLI::App& command, ZlCommand& result)
{
    command
        .add_option("--context", result._show._context,
                    "So many records in front of and behind each that is selected")
        ->check(numberFrom(0));
}

// The commands, and what each of them stands for.
class Commands
{
public:
    Commands(CLI::App& app, Words& words, ZlCommand& result)
        : _app(app), _words(words), _result(result)
    {
        addShow();
        addFollow();
        addStats();
        addHtml();
        addRecover();
        addProcesses();
        addLevel();
        addShip();
        addCompletion();
    }

    Name chosen() const
    {
        for (const auto& [command, name] : _names)
            if (command->parsed()) return name;
        return Name::Print;
    }

private:
    CLI::App& add(CLI::App& to, const char* name, const char* purpose, Name value)
    {
        CLI::App* const command = to.add_subcommand(name, purpose);
        _names.emplace_back(command, value);
        return *command;
    }

    void addShow()
    {
        CLI::App& show = add(_app, "show", "Show what is in log files, merged by time", Name::Show);
        addFiles(show, _words);
        addForm(show, _words);
        addFilters(show, _words, _result._show._selection);
        addContext(show, _result);
        show.add_flag("--no-pager", _words._isUnpaged, "Don't start a pager on a terminal");
    }

    void addFollow()
    {
        CLI::App& follow = add(_app, "follow", "Show lines as they are written", Name::Follow);
        addFiles(follow, _words);
        addForm(follow, _words);
        addFilters(follow, _words, _result._show._selection);
        addContext(follow, _result);
        follow.add_option("--lines", _result._lines, "So many records of what is there already")
            ->check(numberFrom(0))
            ->capture_default_str();
    }

    void addStats()
    {
        CLI::App& stats = add(_app, "stats", "Count what is in log files", Name::Stats);
        addFiles(stats, _words);
        addFilters(stats, _words, _result._show._selection);
        stats.add_option("--format", _words._figures, "The form of the output")
            ->type_name("FORM")
            ->check(oneOf({"text", "json"}))
            ->capture_default_str();
        stats.add_flag("--utc", _words._isUtc, "Show times in UTC");
        stats.add_option("--rows", _result._stats._most, "The most rows of each list")
            ->check(numberFrom(1))
            ->capture_default_str();
    }

    void addHtml()
    {
        CLI::App& html = add(_app, "html", "Make a page for a browser", Name::Html);
        addFiles(html, _words);
        addFilters(html, _words, _result._show._selection);
        html.add_option("--output", _result._pageFile,
                        "The file of the page; without it, the page goes to standard output")
            ->type_name("FILE");
        html.add_option("--title", _result._pageTitle, "The title of the page")->type_name("TEXT");
    }

    void addRecover()
    {
        CLI::App* const recover =
            _app.add_subcommand("recover", "Deal with the events that ended processes left");
        recover->require_subcommand(1);
        ZlRecoverOptions& options = _result._recover;
        const auto addMaps = [&](const char* name, const char* purpose, Name value) -> CLI::App&
        {
            CLI::App& command = add(*recover, name, purpose, value);
            command.add_option("MAP", options._maps, "Maps, by name or path; none for all")
                ->type_name("");
            command
                .add_option("--mappings", options._mapDirectory,
                            "Where the maps are, if not where a log service keeps them")
                ->type_name("DIRECTORY");
            command
                .add_option("--logs", options._logDirectory,
                            "Only those of services with this log directory")
                ->type_name("DIRECTORY");
            return command;
        };
        CLI::App& list = addMaps("list", "List what is there", Name::RecoverList);
        list.add_flag("--utc", _words._isUtc, "Show times in UTC");
        list.add_option("--format", _words._list, "The form of the output")
            ->type_name("FORM")
            ->check(oneOf({"text", "json"}))
            ->capture_default_str();
        addMaps("show", "Show the lines that the next log service would write", Name::RecoverShow)
            .add_flag("--utc", _words._isUtc, "Show times in UTC, whatever the lines would have");
        addMaps("write", "Write them into the log files, and remove the maps", Name::RecoverWrite);
        addMaps("remove", "Remove maps with all that is in them", Name::RecoverRemove)
            .add_flag("--all", options._isAll, "Remove all of them");
    }

    void addMappings(CLI::App& command)
    {
        command
            .add_option("--mappings", _result._control._directory,
                        "The mapping directory of the processes, if they have one of their own")
            ->type_name("DIRECTORY");
    }

    void addProcesses()
    {
        CLI::App& processes =
            add(_app, "ps", "Show which processes log, and how that goes", Name::Processes);
        processes
            .add_option("PROCESS", _result._control._processes,
                        "Ids of processes or names of programs, of which all is shown")
            ->type_name("");
        addMappings(processes);
        processes.add_option("--format", _words._list, "The form of the output")
            ->type_name("FORM")
            ->check(oneOf({"text", "json"}))
            ->capture_default_str();
        processes.add_flag("--utc", _words._isUtc, "Show times in UTC");
    }

    void addLevel()
    {
        CLI::App& level =
            add(_app, "level", "Show and change what a process logs while it runs", Name::Level);
        level
            .add_option("PROCESS", _words._process, "The id of a process or the name of a program")
            ->type_name("")
            ->required();
        CLI::Option* const changes =
            level
                .add_option("CHANGE", _words._changes,
                            "Thresholds of groups, as Database=Tracing; with * and ? for several "
                            "groups")
                ->type_name("");
        level
            .add_flag("--reset", _result._control._isReset,
                      "Give all groups back what they had before they were changed")
            ->excludes(changes);
        addMappings(level);
    }

    void addShip()
    {
        CLI::App& ship = add(_app, "ship", "Send logs to another system", Name::Ship);
        addFiles(ship, _words);
        addFilters(ship, _words, _result._show._selection);
        ZlShipOptions& options = _result._ship;
        ship.add_option("--to", options._destinationText,
                        "Where they go: relp://HOST:PORT, tcp://HOST:PORT, journal: or "
                        "journal:PATH")
            ->type_name("DESTINATION")
            ->required();
        ship.add_option("--cursor", options._cursorFile,
                        "The file that keeps how far they were sent, for this destination")
            ->type_name("FILE")
            ->required();
        ship.add_flag("--once", options._isOnce, "End when all that is there was taken");
        ship.add_option("--app", options._app, "The program's name in messages")->type_name("NAME");
        ship.add_flag("--raw", _words._isRaw, "Undo the escapes in texts");
    }

    void addCompletion()
    {
        CLI::App& completion = add(_app, "completion",
                                   "Print a script that completes command lines", Name::Completion);
        completion.add_option("SHELL", _words._shell, "The shell")
            ->type_name("")
            ->check(oneOf({"bash"}))
            ->required();
    }

    CLI::App& _app;
    Words& _words;
    ZlCommand& _result;
    std::vector<std::pair<const CLI::App*, Name>> _names;
};

void finishForm(const Words& words, const ZlSurroundings& surroundings, ZlCommand& command)
{
    const bool isText = words._format == "text";
    if (!isText && (words._isRelative || words._isTicks))
        throw CLI::ValidationError("--format",
                                   "--relative and --ticks go with the format text alone");
    command._show._format = words._format;
    ZlFormatOptions& format = command._show._formatOptions;
    if (words._isUtc) format._times = Times::Utc;
    if (words._isRelative) format._times = Times::Relative;
    if (words._isTicks) format._times = Times::Ticks;
    format._isRaw = words._isRaw;
    format._hasHosts = words._hasHosts;
    format._hasFiles = words._hasFiles;
    format._isTerminal = surroundings._isOutputTerminal;
    const bool isColoured = surroundings._isOutputTerminal && !surroundings._isColourRefused;
    format._isColoured =
        isText && (words._colour == "auto" ? isColoured : words._colour == "always");
    command._isPaged =
        command._name == Name::Show && surroundings._isOutputTerminal && !words._isUnpaged;
}

void finishSelection(const Words& words, std::int64_t now, ZlSelection& selection)
{
    if (!words._level.empty())
    {
        const auto levels = zlParseLevels(words._level);
        if (!levels) refuse("--level", words._level, ALL_LEVEL_NAMES);
        selection._levels = *levels;
    }
    for (const std::string& text : words._threads)
    {
        const auto thread = parseNumber(text);
        if (!thread) refuse("--thread", text, "a number such as 4711 or 0x00001267");
        selection._threads.push_back(*thread);
    }
    refuseWrongExpressions("--match", selection._matches);
    refuseWrongExpressions("--exclude", selection._exclusions);
    if (!words._since.empty()) selection._since = timeOf("--since", words._since, now);
    if (!words._until.empty()) selection._until = timeOf("--until", words._until, now);
    if (selection._since && selection._until && *selection._since > *selection._until)
        throw CLI::ValidationError("--since is later than --until");
}

void refuseChange(const std::string& text)
{
    const std::size_t end = text.rfind('=');
    if (end == std::string::npos || end == 0)
        refuse("CHANGE", text, "a group and a level such as Database=Tracing");
    throw CLI::ValidationError("CHANGE", "\"" + text.substr(end + 1) + "\" is no level: expected " +
                                             ALL_LEVEL_NAMES);
}

void finishControl(const Words& words, ZlControlOptions& control)
{
    if (!words._process.empty()) control._processes = {words._process};
    for (const std::string& text : words._changes)
        if (!zlParseChange(text, control._changes.emplace_back())) refuseChange(text);
    control._isJson = words._list == "json";
}

void finishShip(bool hasInput, ZlShipOptions& ship)
{
    if (hasInput) throw CLI::ValidationError("FILE", "standard input has no places to go on from");
    const auto destination = zlParseDestination(ship._destinationText);
    if (!destination)
        refuse("--to", ship._destinationText,
               "relp://HOST:PORT, tcp://HOST:PORT, journal: or journal:PATH");
    ship._destination = *destination;
}

// Of the page, if none is given.
std::string titleOf(const std::vector<std::string>& files)
{
    if (files.empty()) return {};
    const std::size_t others = files.size() - 1;
    if (others == 0) return files[0];
    return files[0] + " and " + std::to_string(others) + (others == 1 ? " other" : " others");
}

void finish(const Words& words, const ZlSurroundings& surroundings, ZlCommand& command)
{
    command._show._words = words._files;
    command._show._areRotatedAdded = words._areRotatedAdded;
    const bool hasInput =
        std::find(words._files.begin(), words._files.end(), "-") != words._files.end();
    if (command._name == Name::Follow && hasInput)
        throw CLI::ValidationError("FILE", "standard input can't be followed");
    if (command._name == Name::Ship) finishShip(hasInput, command._ship);
    const bool isPageShown = command._name == Name::Html && command._pageFile.empty();
    if (isPageShown && surroundings._isOutputTerminal)
        throw CLI::ValidationError("--output", "a page does not go to a terminal");
    const bool isRemoval = command._name == Name::RecoverRemove;
    if (isRemoval && command._recover._maps.empty() && !command._recover._isAll)
        throw CLI::ValidationError("MAP", "which maps are to be removed must be said, or --all");
    finishForm(words, surroundings, command);
    finishSelection(words, surroundings._now, command._show._selection);
    const auto since = command._show._selection._since;
    if (since && *since > surroundings._now)
        command._notes.push_back("--since \"" + words._since + "\" is in the future");
    const ZlTimeWriter::Form times =
        words._isUtc ? ZlTimeWriter::Form::Utc : ZlTimeWriter::Form::Local;
    command._stats._times = times;
    command._stats._hasBlocks = surroundings._isOutputTerminal;
    command._isStatsJson = words._figures == "json";
    if (command._pageTitle.empty()) command._pageTitle = titleOf(words._files);
    command._recover._times = times;
    command._control._times = times;
    finishControl(words, command._control);
    command._recover._isJson = words._list == "json";
    command._recover._isTerminal = surroundings._isOutputTerminal;
}

void refuseUse(ZlCommand& command, const std::string& name, const std::string& reason)
{
    command._text = "zulog: " + reason + "\n`" + name + " --help` shows what can be used.\n";
    command._name = Name::Print;
    command._exit = WRONG_USE;
}

} // namespace

ZlCommand zlReadCommandLine(std::vector<std::string> words, const ZlSurroundings& surroundings)
{
    ZlCommand command;
    Words given;
    CLI::App app("Reads logs: shows, filters and merges them.", "zulog");
    app.set_version_flag("--version", "zulog " ZU_ZULOG_VERSION);
    app.require_subcommand(1);
    app.footer("`zulog COMMAND --help` shows the options of a command.\n"
               "Exit values: 0 done, 1 something could not be read or written, 2 wrong use.");
    const Commands commands(app, given, command);
    const std::string name = commandOf(app, words);
    try
    {
        refuseUnknownCommand(app, words);
        // It takes them from the end.
        std::reverse(words.begin(), words.end());
        app.parse(std::move(words));
        command._name = commands.chosen();
        finish(given, surroundings, command);
        if (command._name != Name::Completion) return command;
        command._name = Name::Print;
        command._text = zlBashCompletion(app);
    }
    catch (const CLI::CallForHelp&)
    {
        command._text = helpOf(app, "");
    }
    catch (const CLI::CallForVersion& version)
    {
        command._text = std::string(version.what()) + "\n";
    }
    catch (const CLI::ExtrasError&)
    {
        refuseUse(command, name, "\"" + app.remaining(true).front() + "\" is not expected here");
    }
    catch (const CLI::ParseError& error)
    {
        refuseUse(command, name, error.what());
    }
    return command;
}

} // namespace Zu
