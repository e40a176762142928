#include "zulog/zlCommandLine.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::ZlCommand;
using Words = std::vector<std::string>;
using Times = Zu::ZlFormatOptions::Times;

constexpr std::int64_t NOW = 1795385451000000000;

ZlCommand read(const Words& words, bool isTerminal = false, bool isColourRefused = false)
{
    return Zu::zlReadCommandLine(words, {isTerminal, isColourRefused, NOW});
}

TEST(ZlCommandLine, ReadsWhatIsToBeShown)
{
    const ZlCommand command = read(
        {"show",       "--utc",     "--level",    "Warning",   "--group", "Ord*",     "--group",
         "Stock",      "--thread",  "0x0000000a", "--process", "12",      "--match",  "a b",
         "--exclude",  "c",         "--since",    "5m ago",    "--until", "now",      "--context",
         "3",          "--rotated", "--raw",      "--hosts",   "--files", "--format", "text",
         "--no-marks", "a.log",     "b.log"});
    ASSERT_EQ(command._name, ZlCommand::Name::Show) << command._text;
    const Zu::ZlShowOptions& show = command._show;
    EXPECT_EQ(show._words, Words({"a.log", "b.log"}));
    EXPECT_TRUE(show._areRotatedAdded);
    EXPECT_EQ(show._context, 3U);
    EXPECT_EQ(show._formatOptions._times, Times::Utc);
    EXPECT_TRUE(show._formatOptions._isRaw);
    EXPECT_TRUE(show._formatOptions._hasHosts);
    EXPECT_TRUE(show._formatOptions._hasFiles);
    EXPECT_EQ(show._selection._levels, 15U);
    EXPECT_EQ(show._selection._groups, Words({"Ord*", "Stock"}));
    EXPECT_EQ(show._selection._threads, std::vector<std::uint32_t>({10}));
    EXPECT_EQ(show._selection._processes, std::vector<std::uint32_t>({12}));
    EXPECT_EQ(show._selection._matches, Words({"a b"}));
    EXPECT_EQ(show._selection._exclusions, Words({"c"}));
    EXPECT_EQ(show._selection._since, NOW - 300000000000);
    EXPECT_EQ(show._selection._until, NOW);
    EXPECT_TRUE(show._selection._areMarksHidden);
}

TEST(ZlCommandLine, NotesABeginningInTheFuture)
{
    EXPECT_EQ(read({"show", "--since", "2200-01-01", "-"})._notes,
              Words{"--since \"2200-01-01\" is in the future"});
    EXPECT_TRUE(read({"show", "--since", "now", "--until", "2200-01-01", "-"})._notes.empty());
}

TEST(ZlCommandLine, ShowsAllByDefault)
{
    const ZlCommand command = read({"show", "-"});
    ASSERT_EQ(command._name, ZlCommand::Name::Show) << command._text;
    EXPECT_EQ(command._show._format, "text");
    EXPECT_EQ(command._show._formatOptions._times, Times::Local);
    EXPECT_EQ(command._show._selection._levels, Zu::ZlSelection::ALL_LEVELS);
    EXPECT_FALSE(command._show._formatOptions._isColoured);
    EXPECT_FALSE(command._isPaged);
}

TEST(ZlCommandLine, ColoursAndPagesOnATerminal)
{
    const struct
    {
        Words _words;
        bool _isTerminal;
        bool _isColourRefused;
        bool _isColoured;
        bool _isPaged;
    } rows[] = {
        {{"show", "a"}, true, false, true, true},
        {{"show", "a"}, true, true, false, true},
        {{"show", "a", "--color", "always"}, false, true, true, false},
        {{"show", "a", "--color", "never", "--no-pager"}, true, false, false, false},
        {{"show", "a", "--format", "json"}, true, false, false, true},
    };
    for (const auto& row : rows)
    {
        const ZlCommand command = read(row._words, row._isTerminal, row._isColourRefused);
        EXPECT_EQ(command._show._formatOptions._isColoured, row._isColoured);
        EXPECT_EQ(command._isPaged, row._isPaged);
    }
}

TEST(ZlCommandLine, TheTitleOfAPageNamesTheFirstFileAndCountsTheOthers)
{
    EXPECT_EQ(read({"html", "rot"})._pageTitle, "rot");
    EXPECT_EQ(read({"html", "rot", "b"})._pageTitle, "rot and 1 other");
    EXPECT_EQ(read({"html", "rot", "b", "c"})._pageTitle, "rot and 2 others");
    EXPECT_EQ(read({"html", "rot", "b", "--title", "Mine"})._pageTitle, "Mine");
}

TEST(ZlCommandLine, RefusesWhatItCantUse)
{
    const struct
    {
        Words _words;
        const char* _part;
    } rows[] = {
        {{}, "required"},
        {{"show"}, "FILE is required\n`zulog show --help` shows what can be used.\n"},
        {{"list"}, "zulog: \"list\" is no command\n`zulog --help` shows"},
        {{"recover", "bogus"},
         "zulog: \"bogus\" is no command of recover\n`zulog recover --help` shows"},
        {{"recover", "list", "--bogus"},
         "zulog: \"--bogus\" is not expected here\n"
         "`zulog recover list --help` shows what can be used.\n"},
        {{"recover", "remove"}, "MAP: which maps are to be removed must be said, or --all"},
        {{"show", "--match", "a", "--match", "a(b", "f"},
         "--match: \"a(b\" is no regular expression, see character 4: "},
        {{"stats", "--exclude", "[", "f"}, "--exclude: \"[\" is no regular expression"},
        {{"show", "a", "--colour", "always"}, "\"--colour\" is not expected here\n"},
        {{"show", "a", "--level", "Errors"},
         "--level: \"Errors\" can't be used: expected Internal Error, Fatal Error, Error, "},
        {{"show", "a", "--thread", "0xg"}, "--thread: \"0xg\" can't be used: expected a number"},
        {{"show", "a", "--process", "x"}, "--process"},
        {{"show", "a", "--since", "soon"}, "--since: \"soon\" can't be used: expected a time"},
        {{"show", "a", "--since", "now", "--until", "5m ago"},
         "zulog: --since is later than --until\n"},
        {{"level", "12", "Server=loud"},
         "\"loud\" is no level: expected Internal Error, Fatal Error, Error, Warning, "},
        {{"level", "12", "Server"}, "\"Server\" can't be used: expected a group and a level"},
        {{"show", "a", "--context", "-1"},
         "--context: \"-1\" can't be used: expected a whole number from 0 to 1000000\n"},
        {{"show", "a", "--format", "xml"},
         "--format: \"xml\" can't be used: expected text, iso, json, csv or logfmt\n"},
        {{"show", "a", "--utc", "--ticks"}, "--utc"},
        {{"follow", "-"}, "standard input can't be followed"},
        {{"recover"}, "required"},
        {{"level"}, "PROCESS"},
        {{"level", "shop", "UI"}, "CHANGE: \"UI\" can't be used: expected a group and a level"},
        {{"level", "shop", "UI=Error", "--reset"}, "--reset"},
        {{"completion"}, "SHELL"},
        {{"completion", "zsh"}, "SHELL: \"zsh\" can't be used: expected bash\n"},
        {{"stats", "a", "--rows", "0"},
         "--rows: \"0\" can't be used: expected a whole number from 1 to 1000000\n"},
        {{"stats", "a", "--rows", "many"},
         "--rows: \"many\" can't be used: expected a whole number from 1 to 1000000\n"},
        {{"show", "a", "--ticks", "--format", "csv"}, "--relative and --ticks go with the format"},
    };
    for (const auto& row : rows)
    {
        const ZlCommand command = read(row._words);
        EXPECT_EQ(command._name, ZlCommand::Name::Print);
        EXPECT_EQ(command._exit, 2);
        EXPECT_EQ(command._text.substr(0, 7), "zulog: ");
        EXPECT_NE(command._text.find(row._part), std::string::npos) << command._text;
    }
}

TEST(ZlCommandLine, ReadsTheOtherCommands)
{
    const ZlCommand follow = read({"follow", "--lines", "3", "a.log"});
    EXPECT_EQ(follow._name, ZlCommand::Name::Follow);
    EXPECT_EQ(follow._lines, 3U);
    const ZlCommand stats = read({"stats", "--format", "json", "--rows", "5", "--utc", "a.log"});
    EXPECT_EQ(stats._name, ZlCommand::Name::Stats);
    EXPECT_TRUE(stats._isStatsJson);
    EXPECT_EQ(stats._stats._most, 5U);
    EXPECT_EQ(stats._stats._times, Zu::ZlTimeWriter::Form::Utc);
    const ZlCommand html = read({"html", "--output", "p.html", "a.log"});
    EXPECT_EQ(html._name, ZlCommand::Name::Html);
    EXPECT_EQ(html._pageFile, "p.html");
    EXPECT_EQ(html._pageTitle, "a.log");
    EXPECT_EQ(read({"html", "a.log"}, true)._exit, 2);
    const ZlCommand list = read({"recover", "list", "--format", "json", "--logs", "d", "m"});
    EXPECT_EQ(list._name, ZlCommand::Name::RecoverList);
    EXPECT_TRUE(list._recover._isJson);
    EXPECT_EQ(list._recover._logDirectory, "d");
    EXPECT_EQ(list._recover._maps, Words({"m"}));
    EXPECT_EQ(read({"recover", "show"})._name, ZlCommand::Name::RecoverShow);
    EXPECT_EQ(read({"recover", "show", "--utc"})._recover._times, Zu::ZlTimeWriter::Form::Utc);
    EXPECT_EQ(read({"recover", "write"})._name, ZlCommand::Name::RecoverWrite);
    const ZlCommand remove = read({"recover", "remove", "--all"});
    EXPECT_EQ(remove._name, ZlCommand::Name::RecoverRemove);
    EXPECT_TRUE(remove._recover._isAll);
}

TEST(ZlCommandLine, ReadsTheCommandsForRunningProcesses)
{
    const ZlCommand all = read({"ps", "--format", "json", "--mappings", "d", "--utc"});
    EXPECT_EQ(all._name, ZlCommand::Name::Processes);
    EXPECT_TRUE(all._control._isJson);
    EXPECT_EQ(all._control._directory, "d");
    EXPECT_EQ(all._control._times, Zu::ZlTimeWriter::Form::Utc);
    EXPECT_EQ(read({"ps", "shop", "4711"})._control._processes, Words({"shop", "4711"}));
    const ZlCommand level = read({"level", "shop", "Data*=error", "UI=Tracing"});
    EXPECT_EQ(level._name, ZlCommand::Name::Level);
    EXPECT_EQ(level._control._processes, Words({"shop"}));
    ASSERT_EQ(level._control._changes.size(), 2U);
    EXPECT_EQ(level._control._changes[0]._group, "Data*");
    EXPECT_EQ(level._control._changes[0]._level, Zu::LgTypes::Error);
    EXPECT_FALSE(level._control._isReset);
    EXPECT_TRUE(read({"level", "shop", "--reset"})._control._isReset);
}

TEST(ZlCommandLine, PrintsACompletion)
{
    const ZlCommand command = read({"completion", "bash"});
    EXPECT_EQ(command._name, ZlCommand::Name::Print);
    EXPECT_EQ(command._exit, 0);
    EXPECT_NE(command._text.find("complete -F _zulog zulog\n"), std::string::npos);
    EXPECT_EQ(read({"completion", "fish"})._exit, 2);
}

TEST(ZlCommandLine, HelpsAndNamesItsVersion)
{
    for (const Words& words : {Words{"--help"}, Words{"show", "--help"}})
    {
        const ZlCommand command = read(words);
        EXPECT_EQ(command._name, ZlCommand::Name::Print);
        EXPECT_EQ(command._exit, 0);
        EXPECT_NE(command._text.find("zulog"), std::string::npos) << command._text;
    }
    EXPECT_NE(read({"show", "--help"})._text.find("--context"), std::string::npos);
    EXPECT_EQ(read({"--version"})._text.substr(0, 6), "zulog ");
}

} // namespace
