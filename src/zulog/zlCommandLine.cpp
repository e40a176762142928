#include "zulog/zlCommandLine.h"

#include "zulog/zlTime.h"

#include <algorithm>
#include <charconv>
#include <CLI/CLI.hpp>
#include <optional>

namespace Zu
{

namespace
{

using Times = ZlFormatOptions::Times;

constexpr int WRONG_USE = 2;

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

std::int64_t timeOf(const std::string& option, const std::string& value, std::int64_t now)
{
    const auto time = zlParseTime(value, now);
    if (!time)
        refuse(option, value,
               "a time such as \"2026-11-22 23:10:51\", \"23:10\", \"5m ago\" or \"now\"");
    return *time;
}

// The parser itself would only miss a command.
void refuseUnknownCommand(const CLI::App& app, const std::vector<std::string>& words)
{
    if (words.empty() || words.front().substr(0, 1) == "-") return;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (command->get_name() == words.front()) return;
    throw CLI::ParseError("\"" + words.front() + "\" is no command", CLI::ExitCodes::ExtrasError);
}

void addFiles(CLI::App& command, Words& words)
{
    command
        .add_option("FILE", words._files,
                    "Log files, directories with logs, or - for standard input")
        ->required();
}

void addForm(CLI::App& command, Words& words)
{
    command.add_option("--format", words._format, "text, iso, json, csv or logfmt")
        ->check(CLI::IsMember({"text", "iso", "json", "csv", "logfmt"}))
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
    command.add_option("--color", words._colour, "Colours: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
}

void addFilters(CLI::App& command, Words& words, ZlShowOptions& show)
{
    ZlSelection& selection = show._selection;
    command.add_option("--level", words._level,
                       "This level and the more severe ones; =Tracing or Error,Tracing for these "
                       "levels alone");
    command.add_option("--group", selection._groups, "Groups, with * and ? as wildcards")
        ->allow_extra_args(false);
    command.add_option("--thread", words._threads, "Threads, as 4711 or 0x00001267")
        ->allow_extra_args(false);
    command.add_option("--process", selection._processes, "Processes, by their ids")
        ->allow_extra_args(false);
    command
        .add_option("--match", selection._matches,
                    "Records in whose group and text a regular expression is found")
        ->allow_extra_args(false);
    command.add_option("--exclude", selection._exclusions, "Records in which it is not found")
        ->allow_extra_args(false);
    command.add_option("--since", words._since, "Records from this time on");
    command.add_option("--until", words._until, "Records before this time");
    command
        .add_option("--context", show._context,
                    "So many records in front of and behind each that is selected")
        ->check(CLI::Range(0, 1000000));
    command.add_flag("--no-marks", selection._areMarksHidden,
                     "Hide starts, ends and other marks of the logger");
}

void finish(const Words& words, const ZlSurroundings& surroundings, bool isFollowed,
            ZlCommand& command)
{
    ZlShowOptions& show = command._show;
    show._words = words._files;
    show._areRotatedAdded = words._areRotatedAdded;
    show._format = words._format;
    ZlFormatOptions& format = show._formatOptions;
    if (words._isUtc) format._times = Times::Utc;
    if (words._isRelative) format._times = Times::Relative;
    if (words._isTicks) format._times = Times::Ticks;
    const bool isText = words._format == "text";
    if (!isText && (words._isRelative || words._isTicks))
        throw CLI::ValidationError("--format",
                                   "--relative and --ticks go with the format text alone");
    format._isRaw = words._isRaw;
    format._hasHosts = words._hasHosts;
    format._hasFiles = words._hasFiles;
    format._isTerminal = surroundings._isOutputTerminal;
    const bool isColoured = surroundings._isOutputTerminal && !surroundings._isColourRefused;
    format._isColoured =
        isText && (words._colour == "auto" ? isColoured : words._colour == "always");
    if (isFollowed &&
        std::find(words._files.begin(), words._files.end(), "-") != words._files.end())
        throw CLI::ValidationError("FILE", "standard input can't be followed");
    command._isPaged = !isFollowed && surroundings._isOutputTerminal && !words._isUnpaged;

    ZlSelection& selection = show._selection;
    if (!words._level.empty())
    {
        const auto levels = zlParseLevels(words._level);
        if (!levels)
            refuse("--level", words._level,
                   "Internal Error, Fatal Error, Error, Warning, Informational, Tracing or "
                   "Profiling");
        selection._levels = *levels;
    }
    for (const std::string& text : words._threads)
    {
        const auto thread = parseNumber(text);
        if (!thread) refuse("--thread", text, "a number such as 4711 or 0x00001267");
        selection._threads.push_back(*thread);
    }
    if (!words._since.empty())
        selection._since = timeOf("--since", words._since, surroundings._now);
    if (!words._until.empty())
        selection._until = timeOf("--until", words._until, surroundings._now);
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
    CLI::App* const show = app.add_subcommand("show", "Show what is in log files, merged by time");
    addFiles(*show, given);
    addForm(*show, given);
    addFilters(*show, given, command._show);
    show->add_flag("--rotated", given._areRotatedAdded,
                   "Add the files that each file was rotated to");
    show->add_flag("--no-pager", given._isUnpaged, "Don't start a pager on a terminal");
    CLI::App* const follow = app.add_subcommand("follow", "Show lines as they are written");
    addFiles(*follow, given);
    addForm(*follow, given);
    addFilters(*follow, given, command._show);
    follow->add_option("--lines", command._lines, "So many records of what is there already")
        ->check(CLI::Range(0, 1000000))
        ->capture_default_str();
    try
    {
        refuseUnknownCommand(app, words);
        // It takes them from the end.
        std::reverse(words.begin(), words.end());
        app.parse(std::move(words));
        finish(given, surroundings, follow->parsed(), command);
        command._name = follow->parsed() ? ZlCommand::Name::Follow : ZlCommand::Name::Show;
    }
    catch (const CLI::CallForHelp&)
    {
        const auto chosen = app.get_subcommands();
        command._text = (chosen.empty() ? app.help() : chosen.front()->help("zulog")) + "\n";
    }
    catch (const CLI::CallForVersion& version)
    {
        command._text = std::string(version.what()) + "\n";
    }
    catch (const CLI::ParseError& error)
    {
        command._text = std::string("zulog: ") + error.what() + "\n" +
                        "`zulog --help` shows what can be used.\n";
        command._exit = WRONG_USE;
    }
    return command;
}

} // namespace Zu
