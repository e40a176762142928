#include "base/trace.h"

#include "base/exInternalError.h"
#include "base/traceLevel.h"
#include "base/traceManager.h"
#include "base/traceStatement.h"

#include "support/childProcess.h"
#include "support/platform.h"
#include "support/traceTest.h"

#include <cstddef>
#include <cstdio>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

ZU_TRACE_LEVEL(Main);
// Is on only in tests that switch it on.
ZU_TRACE_LEVEL(TraceTestQuiet);

using support::coutOf;
using support::runProgram;
using support::traceOutputOf;
using Zu::Trace;
using Zu::TraceLevel;
using Zu::TraceManager;

static_assert(std::has_virtual_destructor_v<Trace>);
static_assert(!std::is_copy_constructible_v<Trace::Entry>);
static_assert(!std::is_copy_assignable_v<Trace::Entry>);

constexpr const char* FILE_NAME = "src/base/trace.cpp";

// Shows where in the line a derived class may write.
class Marked : public Trace
{
protected:
    void printPrefix(std::ostream& os) override
    {
        os << "[P]";
    }
};

std::string padded(const std::string& text, std::size_t width)
{
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

std::string prefixOf(Trace& trace, const char* file = FILE_NAME, int line = 5)
{
    std::ostringstream stream;
    trace.prefix(stream, file, line);
    return stream.str();
}

std::string logOf(Trace& trace, const char* file = FILE_NAME, int line = 5)
{
    std::ostringstream stream;
    trace.log(stream, file, line);
    return stream.str();
}

std::string levelsText()
{
    std::ostringstream stream;
    Trace::printLevels(stream);
    return stream.str();
}

// The row of a level as printLevels() writes it, with these tails of its files.
std::string rowOf(bool on, const std::string& name, const std::vector<std::string>& tails)
{
    std::string row = (on ? "X " : "  ") + padded(name, 30) + " ";
    for (std::size_t i = 0; i < tails.size(); ++i)
        row += (i == 0 ? "" : "\n" + std::string(33, ' ')) + tails[i];
    return row + "\n";
}

// Whether the levels have exactly this row, with no further files in it.
bool hasRow(const std::string& row)
{
    const std::string text = levelsText();
    const std::size_t at = text.find("\n" + row);
    return at != std::string::npos &&
           text.compare(at + 1 + row.size(), 33, std::string(33, ' ')) != 0;
}

// The reason of the ExInternalError that an option text raises.
std::string errorOf(const std::string& options)
{
    try
    {
        Trace::setOptions(options.c_str());
    }
    catch (const Zu::ExInternalError& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

class TraceTest : public support::TracingTest
{
protected:
    static Trace::Entry enter(Trace& trace, const char* name = "scope")
    {
        return Trace::Entry(trace, *Trace::MainTraceLevel, name, FILE_NAME, 5);
    }

    // What an exception of file "dir/thrown.cpp" and line 7 prints, reported by another place.
    static std::string reportOf(Trace& trace)
    {
        const Zu::ExInternalError exception("dir/thrown.cpp", 7, "why 100%s");
        return coutOf([&] { trace.printException(exception, FILE_NAME, 5); });
    }

    Trace _trace;
    Marked _marked;
};

const std::string REPORT = "Throwing exception [Exception Type = Zu::ExInternalError, File = "
                           "dir/thrown.cpp, Line=7]\nwhy 100%s\n";

TEST_F(TraceTest, TheLevelMainIsThereAndOn)
{
    ASSERT_TRUE(Trace::MainTraceLevel);
    EXPECT_STREQ(Trace::MainTraceLevel->getName(), "Main");
    EXPECT_EQ(Trace::registerLevel("Main", nullptr), Trace::MainTraceLevel);
    EXPECT_TRUE(Trace::isEnabled(*Trace::MainTraceLevel));
}

TEST_F(TraceTest, TheLevelExceptionsIsOn)
{
    EXPECT_TRUE(isOn("Exceptions"));
}

TEST_F(TraceTest, ALevelIsMadeOnceAndOff)
{
    const std::string name = newName();
    const TraceLevel* const level = Trace::registerLevel(name.c_str(), FILE_NAME);
    ASSERT_TRUE(level);
    EXPECT_FALSE(level->isOn());
    EXPECT_EQ(Trace::registerLevel(name.c_str(), "other.cpp"), level);
    EXPECT_EQ(Trace::registerLevel(name.c_str(), nullptr), level);
    EXPECT_NE(Trace::registerLevel((name + "x").c_str(), nullptr), level);
    EXPECT_NE(Trace::registerLevel("main", nullptr), Trace::MainTraceLevel);
}

TEST_F(TraceTest, RegistrationDoesNotChangeALevelsState)
{
    const std::string name = newName();
    set("show=" + name);
    const TraceLevel* const level = Trace::registerLevel(name.c_str(), FILE_NAME);
    EXPECT_TRUE(level->isOn());
    set("hide=all");
    Trace::registerLevel(name.c_str(), FILE_NAME);
    EXPECT_FALSE(level->isOn());
    set("show=all,hide=" + name);
    Trace::registerLevel(name.c_str(), FILE_NAME);
    EXPECT_FALSE(level->isOn());
}

TEST_F(TraceTest, NullAndEmptyOptionsDoNothing)
{
    set("line,noprefix");
    const std::string levels = levelsText();
    const std::string before = logOf(_marked);
    Trace::setOptions(nullptr);
    Trace::setOptions("");
    EXPECT_EQ(logOf(_marked), before);
    EXPECT_EQ(levelsText(), levels);
}

TEST_F(TraceTest, OptionsSayWhatOpensALine)
{
    const std::string pid = padded(std::to_string(support::processId()).substr(0, 9), 10);
    const std::string file = "trace.cpp            (   5) ";
    const struct
    {
        const char* _options;
        std::string _text;
    } cases[] = {
        {"", "[P]| "},
        {"noprefix", "| "},
        {"noprefix,prefix", "[P]| "},
        {"line", "[P]" + file + "| "},
        {"line,noline", "[P]| "},
        {"noindent", "[P]"},
        {"noindent,indent", "[P]| "},
        {"pid", pid + "[P]| "},
        {"pid,nopid", "[P]| "},
        {"pid,line", pid + "[P]" + file + "| "},
        {"pid,line,noindent", pid + "[P]" + file},
        {"pid,noprefix,line", pid + file + "| "},
        {"noprefix,noindent", ""},
        // Tokens that take no value.
        {"line=no,pid=0,noindent=0", pid + "[P]" + file},
        {"line,", "[P]" + file + "| "},
        // The number of directories.
        {"line,fndirs=1", "[P]base/trace.cpp       (   5) | "},
        {"line,fndirs=2", "[P]src/base/trace.cpp   (   5) | "},
        {"line,fndirs=3", "[P]src/base/trace.cpp   (   5) | "},
        {"line,fndirs=2147483647", "[P]src/base/trace.cpp   (   5) | "},
        {"line,fndirs=1,fndirs=0", "[P]" + file + "| "},
        {"line,fndirs=1,fndirs=-1", "[P]" + file + "| "},
        {"line,fndirs=1,fndirs=-2147483648", "[P]" + file + "| "},
        {"line,fndirs=1,fndirs=many", "[P]" + file + "| "},
        {"line,fndirs=1,fndirs", "[P]base/trace.cpp       (   5) | "},
        {"line,fndirs= +1x", "[P]base/trace.cpp       (   5) | "},
        // The width of the file.
        {"line,fnwidth=5", "[P]trace (   5) | "},
        {"line,fnwidth=8", "[P]trace.cp (   5) | "},
        {"line,fnwidth=9", "[P]trace.cpp (   5) | "},
        {"line,fnwidth=10", "[P]trace.cpp  (   5) | "},
        {"line,fnwidth=1", "[P]t (   5) | "},
        {"line,fnwidth=0", "[P] (   5) | "},
        {"line,fnwidth=wide", "[P] (   5) | "},
        {"line,fnwidth=5,fnwidth=-1", "[P]" + file + "| "},
        {"line,fnwidth=5,fnwidth=-2147483648", "[P]" + file + "| "},
        {"line,fnwidth=5,fnwidth", "[P]trace (   5) | "},
        {"line,fnwidth=6=9", "[P]trace. (   5) | "},
        {"line,fnwidth=10,fndirs=1", "[P]base/trace (   5) | "},
        {"fndirs=1,fnwidth=5", "[P]| "},
        // All as at the beginning.
        {"pid,line,noprefix,noindent,fndirs=1,fnwidth=5,reset", "[P]| "},
        {"pid,line,noprefix,noindent,fndirs=1,fnwidth=5,reset,line", "[P]" + file + "| "},
    };
    for (const auto& row : cases)
    {
        Trace::setOptions("reset");
        Trace::setOptions(row._options);
        EXPECT_EQ(logOf(_marked), row._text) << row._options;
    }
}

// What an operation writes to a stream with its own format, which it must restore.
template <class Write> std::string formattedTextOf(Write write)
{
    std::ostringstream stream;
    stream << std::hex << std::showbase << std::internal << std::setw(20) << std::setfill('*');
    const auto flags = stream.flags();
    write(stream);
    EXPECT_EQ(stream.flags(), flags);
    EXPECT_EQ(stream.width(), 20);
    EXPECT_EQ(stream.fill(), '*');
    return stream.str();
}

TEST_F(TraceTest, TheFormatOfAStreamDoesNotShowAndIsPutBack)
{
    set("pid,line,fnwidth=12");
    Marked trace;
    EXPECT_EQ(formattedTextOf([&](std::ostream& os) { trace.prefix(os, FILE_NAME, 77); }),
              padded(std::to_string(support::processId()), 10) + "[P]trace.cpp    (  77) ");
    set("nopid,noline");
    EXPECT_EQ(formattedTextOf([&](std::ostream& os) { trace.log(os, FILE_NAME, 77); }), "[P]| ");
    EXPECT_EQ(
        formattedTextOf([&](std::ostream& os) { trace.print(os, FILE_NAME, 77, "%s", "text"); }),
        "[P]| text");
    EXPECT_EQ(formattedTextOf([](std::ostream& os) { Trace::printLevels(os); }), levelsText());
}

TEST_F(TraceTest, AHookThatLeavesAFormatChangesNothingBehindIt)
{
    class HexTrace : public Trace
    {
        void printPrefix(std::ostream& os) override
        {
            os << std::hex << std::setfill('#') << std::setw(9);
        }
    };
    set("line,fnwidth=12");
    HexTrace trace;
    EXPECT_EQ(prefixOf(trace, FILE_NAME, 77), "trace.cpp    (  77) ");
}

TEST_F(TraceTest, OptionsHoldFromOneTextToTheNext)
{
    set("line");
    set("fnwidth=5");
    set("fndirs=1,noindent");
    EXPECT_EQ(logOf(_trace), "base/ (   5) ");
}

TEST_F(TraceTest, OnlySlashesSeparateTheDirectoriesOfAFile)
{
    const struct
    {
        const char* _file;
        const char* _tail;
    } cases[] = {
        {"a/b/c.cpp", "b/c.cpp"}, {"/b/c.cpp", "b/c.cpp"},      {"b/c.cpp", "b/c.cpp"},
        {"/c.cpp", "/c.cpp"},     {"c.cpp", "c.cpp"},           {"a\\b\\c.cpp", "a\\b\\c.cpp"},
        {"a/b/", "b/"},           {"a\\b/c.cpp", "a\\b/c.cpp"}, {"", ""},
    };
    set("line,fndirs=1");
    for (const auto& row : cases)
        EXPECT_EQ(prefixOf(_trace, row._file), padded(row._tail, 20) + " (   5) ") << row._file;
}

TEST_F(TraceTest, AFileOfJustTheWidthIsNotCut)
{
    set("line");
    EXPECT_EQ(prefixOf(_trace, "abcdefghijklmnop.cpp"), "abcdefghijklmnop.cpp (   5) ");
    EXPECT_EQ(prefixOf(_trace, "abcdefghijklmnopq.cpp"), "abcdefghijklmnopq.cp (   5) ");
}

TEST_F(TraceTest, LineNumbersStandAtTheRightOfFourColumns)
{
    set("line,fnwidth=0");
    EXPECT_EQ(prefixOf(_trace, "", 0), " (   0) ");
    EXPECT_EQ(prefixOf(_trace, "", 42), " (  42) ");
    EXPECT_EQ(prefixOf(_trace, "", 1234), " (1234) ");
    EXPECT_EQ(prefixOf(_trace, "", 12345), " (12345) ");
    EXPECT_EQ(prefixOf(_trace, "", -7), " (  -7) ");
    EXPECT_EQ(prefixOf(_trace, "", std::numeric_limits<int>::max()), " (2147483647) ");
}

TEST_F(TraceTest, ATokenThatIsNotKnownIsNamedInTheError)
{
    const struct
    {
        std::string _options;
        std::string _token;
    } cases[] = {
        {"nonsense", "nonsense"},
        {"nonsense=5", "nonsense"},
        {"nonsense,line", "nonsense"},
        {"ON", "ON"},
        {" on", " on"},
        {"on ", "on "},
        {"onn", "onn"},
        {"o", "o"},
        {"fnwidt=5", "fnwidt"},
        {",", ""},
        {"on,,off", ""},
        {"=5", ""},
        {"%s%n%d", "%s%n%d"},
        {"all", "all"},
        {"on;line", "on;line"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(errorOf(row._options), "Unknown token \"" + row._token + "\" in trace options.")
            << row._options;
}

TEST_F(TraceTest, AnErrorInTheOptionsIsAlsoAStandardException)
{
    try
    {
        Trace::setOptions("nonsense");
        FAIL();
    }
    catch (const std::runtime_error& exception)
    {
        EXPECT_STREQ(exception.what(), "Unknown token \"nonsense\" in trace options.");
    }
}

TEST_F(TraceTest, AnUnknownTokenOfAnyLengthIsAnError)
{
    const std::string token(100000, 'x');
    const std::string whole = "Unknown token \"" + token + "\" in trace options.";
    const std::string reason = errorOf(token);
    EXPECT_GE(reason.size(), 100U);
    EXPECT_TRUE(whole.starts_with(reason)) << reason;
}

TEST_F(TraceTest, TokensBeforeAnUnknownOneHold)
{
    const std::string name = newName();
    EXPECT_NE(errorOf("line,fnwidth=5,show=" + name + ",nonsense,noline,hide=" + name),
              "nothing raised");
    EXPECT_EQ(logOf(_trace), "trace (   5) | ");
    EXPECT_TRUE(isOn(name));
}

TEST_F(TraceTest, AnOptionTextMayBeOfAnyLength)
{
    std::string options;
    for (int i = 0; i < 20000; ++i) options += "line,noline,";
    set(options + "noindent");
    EXPECT_EQ(logOf(_marked), "[P]");
}

TEST_F(TraceTest, ShowAndHideSwitchALevel)
{
    const std::string name = newName();
    const std::string other = newName();
    set("show=" + name);
    EXPECT_TRUE(isOn(name));
    EXPECT_FALSE(isOn(other));
    EXPECT_TRUE(isOn("Main"));
    set("hide=Main");
    EXPECT_TRUE(isOn(name));
    EXPECT_FALSE(isOn("Main"));
    set("hide=" + name + ",show=" + other);
    EXPECT_FALSE(isOn(name));
    EXPECT_TRUE(isOn(other));
    set("hide=" + name + ",show=" + name);
    EXPECT_TRUE(isOn(name));
}

TEST_F(TraceTest, ALevelsNameMayHoldAnEqualsSign)
{
    const std::string name = newName() + "=b=c";
    set("show=" + name);
    EXPECT_TRUE(hasRow(rowOf(true, name, {})));
}

TEST_F(TraceTest, ShowAndHideMakeALevelKnown)
{
    const std::string shown = newName();
    const std::string hidden = newName();
    set("show=" + shown + ",hide=" + hidden);
    EXPECT_TRUE(hasRow(rowOf(true, shown, {})));
    EXPECT_TRUE(hasRow(rowOf(false, hidden, {})));
}

TEST_F(TraceTest, ShowAndHideWithoutAValueDoNothing)
{
    const std::string before = levelsText();
    set("show,hide");
    EXPECT_EQ(levelsText(), before);
    EXPECT_FALSE(newLevel().isOn());
    set("show=all");
    const std::string all = levelsText();
    set("hide");
    EXPECT_EQ(levelsText(), all);
    EXPECT_TRUE(newLevel().isOn());
}

TEST_F(TraceTest, ShowAllIsForKnownAndForNewLevels)
{
    const TraceLevel& known = newLevel();
    set("show=all");
    EXPECT_TRUE(known.isOn());
    EXPECT_TRUE(newLevel().isOn());
    const std::string name = newName();
    set("hide=" + name);
    EXPECT_FALSE(isOn(name));
    EXPECT_TRUE(newLevel().isOn());
}

TEST_F(TraceTest, HideAllIsForKnownAndForNewLevels)
{
    set("show=all");
    const TraceLevel& known = newLevel();
    set("hide=all");
    EXPECT_FALSE(known.isOn());
    EXPECT_FALSE(isOn("Main"));
    EXPECT_FALSE(isOn("Exceptions"));
    EXPECT_FALSE(newLevel().isOn());
    const std::string name = newName();
    set("show=" + name);
    EXPECT_TRUE(isOn(name));
    EXPECT_FALSE(newLevel().isOn());
}

TEST_F(TraceTest, OnlyTheExactWordMeansAllLevels)
{
    const TraceLevel& level = newLevel();
    for (const char* const name : {"ALL", "All", "al", "all ", " all", "all=all"})
    {
        set(std::string("show=") + name);
        EXPECT_TRUE(hasRow(rowOf(true, name, {}))) << name;
        EXPECT_FALSE(level.isOn()) << name;
        EXPECT_FALSE(newLevel().isOn()) << name;
    }
    set("show=all,hide=ALL");
    EXPECT_TRUE(hasRow(rowOf(false, "ALL", {})));
    EXPECT_TRUE(level.isOn());
}

TEST_F(TraceTest, OffSilencesAllLevelsWithoutChangingThem)
{
    const TraceLevel& on = newLevel();
    const TraceLevel& off = newLevel();
    set(std::string("show=") + on.getName());
    EXPECT_TRUE(Trace::isEnabled(on));
    EXPECT_FALSE(Trace::isEnabled(off));
    const std::string before = levelsText();
    set("off");
    EXPECT_FALSE(Trace::isEnabled(on));
    EXPECT_FALSE(Trace::isEnabled(off));
    EXPECT_FALSE(Trace::isEnabled(*Trace::MainTraceLevel));
    EXPECT_EQ(levelsText(), before);
    set("on");
    EXPECT_TRUE(Trace::isEnabled(on));
    EXPECT_FALSE(Trace::isEnabled(off));
    EXPECT_TRUE(Trace::isEnabled(*Trace::MainTraceLevel));
}

TEST_F(TraceTest, LevelsAreSwitchedWhileTracingIsOff)
{
    const TraceLevel& level = newLevel();
    set(std::string("off,show=") + level.getName());
    EXPECT_FALSE(Trace::isEnabled(level));
    set("on");
    EXPECT_TRUE(Trace::isEnabled(level));
}

TEST_F(TraceTest, ResetLeavesMainAndExceptionsAloneSwitchedOn)
{
    for (const char* const options : {"show=all", "hide=all", "hide=Main,hide=Exceptions", "off"})
    {
        const std::string name = newName();
        set("show=" + name + "," + options + ",reset");
        EXPECT_TRUE(Trace::isEnabled(*Trace::MainTraceLevel)) << options;
        EXPECT_TRUE(isOn("Main")) << options;
        EXPECT_TRUE(isOn("Exceptions")) << options;
        EXPECT_FALSE(isOn(name)) << options;
        EXPECT_FALSE(newLevel().isOn()) << options;
        EXPECT_TRUE(hasRow(rowOf(false, name, {}))) << options;
    }
}

TEST_F(TraceTest, AnyThreadSeesThatALevelIsSwitchedOn)
{
    const TraceLevel& level = newLevel();
    set("off");
    std::thread watching(
        [&]
        {
            while (!Trace::isEnabled(level)) std::this_thread::yield();
        });
    set(std::string("show=") + level.getName());
    set("on");
    watching.join();
    EXPECT_TRUE(Trace::isEnabled(level));
}

TEST_F(TraceTest, PrintLevelsHasATitleAndAnEmptyLineAtItsEnd)
{
    const std::string text = levelsText();
    EXPECT_TRUE(text.starts_with("\nRegistered trace levels:\n\n")) << text;
    EXPECT_EQ(text.find("\n\n", 2), text.find("\n\n"));
    EXPECT_EQ(text.rfind("\n\n"), text.size() - 2);
}

TEST_F(TraceTest, PrintLevelsHasTheFilesInTheOrderOfTheirRegistration)
{
    const std::string name = newName();
    for (const char* const file : {"z/first.cpp", "a/second.cpp", "z/first.cpp", "third.cpp"})
        Trace::registerLevel(name.c_str(), file);
    Trace::registerLevel(name.c_str(), nullptr);
    EXPECT_TRUE(hasRow(rowOf(false, name, {"first.cpp", "second.cpp", "first.cpp", "third.cpp"})));
    set("fndirs=1,show=" + name);
    EXPECT_TRUE(
        hasRow(rowOf(true, name, {"z/first.cpp", "a/second.cpp", "z/first.cpp", "third.cpp"})));
}

TEST_F(TraceTest, PrintLevelsShowsALevelWithoutFilesAndLongNames)
{
    const std::string without = newName();
    Trace::registerLevel(without.c_str(), nullptr);
    EXPECT_TRUE(hasRow(rowOf(false, without, {})));
    for (const std::size_t length : {29U, 30U, 31U, 100U})
    {
        std::string name = newName();
        name.resize(length, 'n');
        Trace::registerLevel(name.c_str(), "file.cpp");
        EXPECT_TRUE(hasRow("  " + padded(name, 30) + " file.cpp\n")) << length;
    }
}

TEST_F(TraceTest, PrintLevelsDoesNotCutFilesToTheirWidth)
{
    const std::string name = newName();
    Trace::registerLevel(name.c_str(), "dir/abcdefghijklmnopqrstuvwxyz.cpp");
    set("fnwidth=5");
    EXPECT_TRUE(hasRow(rowOf(false, name, {"abcdefghijklmnopqrstuvwxyz.cpp"})));
}

TEST_F(TraceTest, PrintLevelsIsInTheOrderOfTheNamesBytes)
{
    const std::string name = newName();
    const std::string ordered[] = {name + "!", name + "B", name + "a", name + "aB", name + "\xe4"};
    for (const int i : {3, 1, 4, 0, 2}) Trace::registerLevel(ordered[i].c_str(), nullptr);
    std::string rows;
    for (const std::string& each : ordered) rows += rowOf(false, each, {});
    EXPECT_TRUE(hasRow(rows)) << levelsText();
}

TEST_F(TraceTest, PrintLevelsIsThereWhileTracingIsOff)
{
    const std::string before = levelsText();
    set("off");
    EXPECT_EQ(levelsText(), before);
}

TEST_F(TraceTest, TheLevelsAreNotPrintedBeforeLaterLines)
{
    set("printlevels");
    EXPECT_EQ(logOf(_trace), "| ");
    EXPECT_EQ(prefixOf(_trace), "");
}

TEST_F(TraceTest, PrintFormatsBehindTheLinesStart)
{
    std::ostringstream stream;
    _marked.print(stream, FILE_NAME, 5, "%d %s 100%%", 7, "seven");
    EXPECT_EQ(stream.str(), "[P]| 7 seven 100%");
    stream.str("");
    set("line,noindent,fnwidth=5,off");
    _marked.print(stream, FILE_NAME, 5, "text");
    EXPECT_EQ(stream.str(), "[P]trace (   5) text");
}

TEST_F(TraceTest, PrintCutsTheTextTo1023Characters)
{
    for (const std::size_t length : {0U, 1022U, 1023U, 1024U, 1025U, 100000U})
    {
        std::string text;
        while (text.size() < length) text += static_cast<char>('a' + text.size() % 23);
        std::ostringstream stream;
        _trace.print(stream, FILE_NAME, 5, "%s", text.c_str());
        EXPECT_EQ(stream.str(), "| " + text.substr(0, 1023)) << length;
    }
}

TEST_F(TraceTest, AnEntryTellsTheEntryAndTheExit)
{
    std::string inside;
    const std::string out = coutOf(
        [&]
        {
            const auto entry = enter(_marked, "name");
            inside = logOf(_marked);
        });
    EXPECT_EQ(out, "[P]+ name\n[P]  /\n");
    EXPECT_EQ(inside, "[P]  | ");
    EXPECT_EQ(logOf(_marked), "[P]| ");
}

TEST_F(TraceTest, AnEntryIsPrintedAtOnce)
{
    coutOf(
        [&]
        {
            const auto entry = enter(_trace, "outer");
            EXPECT_EQ(coutOf([&] { enter(_trace, "inner"); }), "  + inner\n  | /\n");
        });
}

TEST_F(TraceTest, ThereIsABarForEachScopeButTheOutermost)
{
    coutOf(
        [&]
        {
            const auto one = enter(_trace);
            EXPECT_EQ(prefixOf(_trace), "  ");
            const auto two = enter(_trace);
            EXPECT_EQ(prefixOf(_trace), "  | ");
            const auto three = enter(_trace);
            EXPECT_EQ(prefixOf(_trace), "  | | ");
            const auto four = enter(_trace);
            EXPECT_EQ(prefixOf(_trace), "  | | | ");
            EXPECT_EQ(logOf(_trace), "  | | | | ");
        });
    EXPECT_EQ(prefixOf(_trace), "");
}

TEST_F(TraceTest, EachTraceHasItsOwnDepth)
{
    Trace other;
    coutOf(
        [&]
        {
            const auto entry = enter(_trace);
            EXPECT_EQ(logOf(_trace), "  | ");
            EXPECT_EQ(logOf(other), "| ");
        });
}

TEST_F(TraceTest, BothLinesOfAnEntryHaveItsPlace)
{
    set("line");
    EXPECT_EQ(coutOf([&] { enter(_trace); }), "trace.cpp            (   5) + scope\n"
                                              "trace.cpp            (   5)   /\n");
}

TEST_F(TraceTest, WithoutIndentationArrowsTellEntryAndExit)
{
    set("noindent");
    std::string inside;
    const std::string out = coutOf(
        [&]
        {
            const auto outer = enter(_marked, "outer");
            const auto inner = enter(_marked, "inner");
            inside = logOf(_marked);
        });
    EXPECT_EQ(out, "[P]>>> outer\n[P]>>> inner\n[P]<<< inner\n[P]<<< outer\n");
    EXPECT_EQ(inside, "[P]");
}

TEST_F(TraceTest, WithoutIndentationTheDepthDoesNotChange)
{
    coutOf(
        [&]
        {
            const auto outer = enter(_trace);
            set("noindent");
            {
                const auto inner = enter(_trace);
                set("indent");
                EXPECT_EQ(logOf(_trace), "  | ");
                set("noindent");
            }
            set("indent");
            EXPECT_EQ(logOf(_trace), "  | ");
        });
    EXPECT_EQ(logOf(_trace), "| ");
}

TEST_F(TraceTest, IndentationThatIsSwitchedWithinAScopeLeavesTheDepthUnbalanced)
{
    coutOf(
        [&]
        {
            const auto entry = enter(_trace);
            set("noindent");
        });
    set("indent");
    EXPECT_EQ(logOf(_trace), "  | ");

    // A depth below 0 looks like 0, and counts.
    Trace other;
    set("noindent");
    coutOf(
        [&]
        {
            const auto entry = enter(other);
            set("indent");
        });
    EXPECT_EQ(logOf(other), "| ");
    coutOf(
        [&]
        {
            const auto entry = enter(other);
            EXPECT_EQ(logOf(other), "| ");
        });
}

TEST_F(TraceTest, AnEntryOfALevelThatIsOffTellsNothing)
{
    const TraceLevel& level = newLevel();
    EXPECT_EQ(coutOf(
                  [&]
                  {
                      const Trace::Entry entry(_trace, level, "scope", FILE_NAME, 5);
                      EXPECT_EQ(logOf(_trace), "| ");
                      set(std::string("show=") + level.getName());
                  }),
              "");
    EXPECT_EQ(logOf(_trace), "| ");
    set("off");
    EXPECT_EQ(coutOf(
                  [&]
                  {
                      const auto entry = enter(_trace);
                      set("on");
                  }),
              "");
    EXPECT_EQ(logOf(_trace), "| ");
}

TEST_F(TraceTest, AnEntryThatWasToldIsFollowedByItsExit)
{
    for (const char* const options : {"hide=Main", "hide=all", "off"})
    {
        Trace::setOptions("reset");
        EXPECT_EQ(coutOf(
                      [&]
                      {
                          const auto entry = enter(_trace);
                          Trace::setOptions(options);
                      }),
                  "+ scope\n  /\n")
            << options;
        EXPECT_EQ(logOf(_trace), "| ") << options;
    }
}

TEST_F(TraceTest, AnExceptionIsReported)
{
    EXPECT_EQ(reportOf(_marked), "[P]| " + REPORT);
    EXPECT_EQ(reportOf(_marked), "[P]| " + REPORT);
}

TEST_F(TraceTest, AnExceptionIsReportedAtThePlaceThatIsGiven)
{
    set("line,noindent,fnwidth=5");
    EXPECT_EQ(reportOf(_marked), "[P]trace (   5) " + REPORT);
}

TEST_F(TraceTest, AnExceptionIsReportedWithinItsScope)
{
    coutOf(
        [&]
        {
            const auto outer = enter(_trace);
            const auto inner = enter(_trace);
            EXPECT_EQ(reportOf(_trace), "  | | " + REPORT);
        });
}

TEST_F(TraceTest, AnExceptionIsNotReportedWhileItsLevelIsOff)
{
    set("hide=Exceptions");
    EXPECT_EQ(reportOf(_trace), "");
    set("show=Exceptions,off");
    EXPECT_EQ(reportOf(_trace), "");
    set("on,hide=Main");
    EXPECT_EQ(reportOf(_trace), "| " + REPORT);
}

void bar()
{
    ZU_TRACE_SCOPE(Main, "bar");
}

void foo()
{
    ZU_TRACE_SCOPE(Main, "foo");
    ZU_TRACE(Main, "hello");
    bar();
}

TEST_F(TraceTest, ScopesAndStatementsFormATree)
{
    EXPECT_EQ(coutOf(foo), "+ foo\n"
                           "  | hello\n"
                           "  + bar\n"
                           "  | /\n"
                           "  /\n");
    set("noindent");
    EXPECT_EQ(coutOf(foo), ">>> foo\nhello\n>>> bar\n<<< bar\n<<< foo\n");
}

TEST_F(TraceTest, AStatementPrintsItsOperandsInALine)
{
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "text " << 7 << ' ' << 1.5 << std::hex << ' ' << 255); }),
              "| text 7 1.5 ff\n");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, 255); }), "| 255\n");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, std::pair<int, int>(3, 4).second); }), "| 4\n");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, ""); }), "| \n");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "100%s %n\nmore"); }), "| 100%s %n\nmore\n");
    const std::string longText(100000, 'x');
    EXPECT_EQ(coutOf([&] { ZU_TRACE(Main, longText); }), "| " + longText + "\n");
}

TEST_F(TraceTest, AStatementsTextEndsAtATerminator)
{
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "one" << std::ends << "two"); }), "| one\n");
}

TEST_F(TraceTest, AnEmptyLineIsNotPrinted)
{
    set("noindent");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, ""); }), "");
}

TEST_F(TraceTest, TheOptionsDoNotChangeHowOperandsAreFormatted)
{
    set("pid,line,fnwidth=0,nopid");
    const std::string out = coutOf([] { ZU_TRACE(Main, std::setw(4) << 7 << '.'); });
    EXPECT_EQ(out.substr(out.find('|')), "|    7.\n");
}

TEST_F(TraceTest, AStatementSaysWhereItStands)
{
    set("line");
    const int first = __LINE__ + 3;
    const auto act = []
    {
        ZU_TRACE_SCOPE(Main, "scope");
        ZU_TRACE(Main, "text");
    };
    const auto place = [](int line)
    {
        std::ostringstream stream;
        stream << "traceTest.cpp        (" << std::setw(4) << line << ") ";
        return stream.str();
    };
    EXPECT_EQ(coutOf(act), place(first) + "+ scope\n" + place(first + 1) + "  | text\n" +
                               place(first) + "  /\n");
}

TEST_F(TraceTest, ALevelIsKnownByTheSourceThatDeclaresIt)
{
    EXPECT_TRUE(hasRow(rowOf(false, "TraceTestQuiet", {"traceTest.cpp"})));
    EXPECT_EQ(TraceLevels::Main, Trace::MainTraceLevel);
}

TEST_F(TraceTest, NothingIsEvaluatedForALevelThatIsOff)
{
    int made = 0;
    const auto text = [&]
    {
        ++made;
        return "text";
    };
    EXPECT_EQ(coutOf([&] { ZU_TRACE(TraceTestQuiet, text()); }), "");
    set("show=TraceTestQuiet,off");
    EXPECT_EQ(coutOf([&] { ZU_TRACE(TraceTestQuiet, text()); }), "");
    EXPECT_EQ(made, 0);
    set("on");
    EXPECT_EQ(coutOf([&] { ZU_TRACE(TraceTestQuiet, text()); }), "| text\n");
    EXPECT_EQ(made, 1);
}

TEST_F(TraceTest, AScopesNameIsNotEvaluatedForALevelThatIsOff)
{
    int made = 0;
    const auto name = [&]
    {
        ++made;
        return "name";
    };
    const auto enter = [&] { ZU_TRACE_SCOPE(TraceTestQuiet, name()); };
    EXPECT_EQ(coutOf(enter), "");
    set("show=TraceTestQuiet,off");
    EXPECT_EQ(coutOf(enter), "");
    EXPECT_EQ(made, 0);
    set("on");
    EXPECT_EQ(coutOf(enter), "+ name\n  /\n");
    EXPECT_EQ(made, 1);
}

TEST_F(TraceTest, AScopeOfALevelThatIsOffDoesNotIndent)
{
    EXPECT_EQ(coutOf(
                  []
                  {
                      ZU_TRACE_SCOPE(TraceTestQuiet, "quiet");
                      ZU_TRACE(TraceTestQuiet, "quiet");
                      ZU_TRACE(Main, "text");
                  }),
              "| text\n");
}

TEST_F(TraceTest, AStatementIsOneStatement)
{
    for (const bool which : {true, false})
    {
        const std::string out = coutOf(
            [&]
            {
                if (which)
                    ZU_TRACE(Main, "if");
                else
                    ZU_TRACE(Main, "else");
            });
        EXPECT_EQ(out, which ? "| if\n" : "| else\n");
    }
    set("hide=Main");
    bool reached = false;
    if (!reached)
        ZU_TRACE(Main, "if");
    else
        reached = true;
    EXPECT_FALSE(reached);
    set("show=Main");
    EXPECT_EQ(coutOf(
                  []
                  {
                      for (int i = 0; i < 3; ++i) ZU_TRACE(Main, i);
                  }),
              "| 0\n| 1\n| 2\n");
}

TEST_F(TraceTest, AnOperandMayTraceItself)
{
    const auto text = []
    {
        ZU_TRACE_SCOPE(Main, "text");
        ZU_TRACE(Main, "inner");
        return "outer";
    };
    EXPECT_EQ(coutOf([&] { ZU_TRACE(Main, text()); }), "+ text\n  | inner\n  /\n| outer\n");
}

TEST_F(TraceTest, OneScopeMayHaveSeveralNames)
{
    EXPECT_EQ(coutOf(
                  []
                  {
                      ZU_TRACE_SCOPE(Main, "one");
                      ZU_TRACE_SCOPE(Main, "two");
                      ZU_TRACE(Main, "text");
                  }),
              "+ one\n  + two\n  | | text\n  | /\n  /\n");
}

TEST_F(TraceTest, AScopeThatAnExceptionLeavesIsTold)
{
    EXPECT_EQ(coutOf(
                  []
                  {
                      try
                      {
                          ZU_TRACE_SCOPE(Main, "one");
                          ZU_TRACE_SCOPE(Main, "two");
                          throw std::runtime_error("why");
                      }
                      catch (const std::runtime_error&)
                      {
                          ZU_TRACE(Main, "caught");
                      }
                  }),
              "+ one\n  + two\n  | /\n  /\n| caught\n");
}

TEST_F(TraceTest, ADeepRecursionIsTracedInBalance)
{
    const auto recurse = [](const auto& self, int depth) -> void
    {
        ZU_TRACE_SCOPE(Main, "deep");
        if (depth > 1) self(self, depth - 1);
    };
    std::string expected;
    const auto barsOf = [](int depth)
    {
        std::string bars = depth > 0 ? "  " : "";
        for (int i = 1; i < depth; ++i) bars += "| ";
        return bars;
    };
    for (int i = 0; i < 100; ++i) expected += barsOf(i) + "+ deep\n";
    for (int i = 100; i > 0; --i) expected += barsOf(i) + "/\n";
    EXPECT_EQ(coutOf([&] { recurse(recurse, 100); }), expected);
}

// Rows that the library and traceProgram register before main().
std::string earlyRows(bool early, const std::vector<std::string>& exceptions = {},
                      const std::string& between = "")
{
    return rowOf(early, "Early", {"traceProgram.cpp"}) + rowOf(true, "Exceptions", exceptions) +
           between + rowOf(true, "Main", {"trace.cpp", "traceProgram.cpp"}) +
           rowOf(false, "TestPerformer", {"testPerformer.cpp"});
}

std::string levelsOf(const std::string& rows)
{
    return "\nRegistered trace levels:\n\n" + rows + "\n";
}

TEST(Trace, AFreshProcessShowsMainAndExceptions)
{
    EXPECT_EQ(traceOutputOf({"levels", "trace", "text", "early", "no", "exception", "why"}),
              "main\n" + levelsOf(earlyRows(false)) +
                  "| text\n"
                  "| Throwing exception [Exception Type = Zu::ExInternalError, File = "
                  "dir/thrown.cpp, Line=7]\nwhy\n"
                  "end of main\n");
}

TEST(Trace, TheScopesOfAProcessFormATree)
{
    EXPECT_EQ(traceOutputOf({"scopes", "text"}), "main\n"
                                                 "+ outer\n"
                                                 "  + inner\n"
                                                 "  | | text\n"
                                                 "  | /\n"
                                                 "  /\n"
                                                 "end of main\n");
}

TEST(Trace, TheFirstExceptionRegistersTheReporter)
{
    const std::string report = "| Throwing exception [Exception Type = Zu::ExInternalError, File = "
                               "dir/thrown.cpp, Line=7]\nwhy\n";
    EXPECT_EQ(traceOutputOf({"exception", "why", "levels", "exception", "why", "levels"}),
              "main\n" + report + levelsOf(earlyRows(false, {"trace.cpp"})) + report +
                  levelsOf(earlyRows(false, {"trace.cpp"})) + "end of main\n");
    // It does so also when nothing is shown.
    EXPECT_EQ(traceOutputOf({"exception", "why", "levels"}, "off"),
              "main\n" + levelsOf(earlyRows(false, {"trace.cpp"})) + "end of main\n");
}

TEST(Trace, TheVariableHoldsBeforeMainAndAfterIt)
{
    EXPECT_EQ(traceOutputOf({"early", "text"}, "show=Early"), "| before main\n"
                                                              "main\n"
                                                              "| text\n"
                                                              "end of main\n"
                                                              "| after main\n");
    EXPECT_EQ(traceOutputOf({"early", "text"}, "show=all,noindent"), "before main\n"
                                                                     "main\n"
                                                                     "text\n"
                                                                     "end of main\n"
                                                                     "after main\n");
    EXPECT_EQ(traceOutputOf({"early", "text", "trace", "text"}, "show=Early,off"),
              "main\nend of main\n");
}

TEST(Trace, AnEmptyVariableIsAsNone)
{
    EXPECT_EQ(traceOutputOf({"levels", "trace", "text"}, ""),
              "main\n" + levelsOf(earlyRows(false)) + "| text\nend of main\n");
}

TEST(Trace, ALevelOfTheVariableIsOnBeforeASourceRegistersIt)
{
    const std::vector<std::string> words = {"levels", "state", "Late", "levels", "state", "Later"};
    EXPECT_EQ(traceOutputOf(words, "show=Late"),
              "main\n" + levelsOf(earlyRows(false, {}, rowOf(true, "Late", {}))) + "Late on\n" +
                  levelsOf(earlyRows(false, {}, rowOf(true, "Late", {"late.cpp"}))) +
                  "Later off\nend of main\n");
    EXPECT_EQ(traceOutputOf({"state", "Late"}), "main\nLate off\nend of main\n");
    EXPECT_EQ(traceOutputOf({"state", "Late", "state", "Main"}, "hide=all"),
              "main\nLate off\nMain off\nend of main\n");
}

TEST(Trace, DefaultsVariableAndApplicationTakeEffectInThisOrder)
{
    const std::vector<std::string> words = {"state",   "Main",      "state", "Late",
                                            "options", "show=Main", "state", "Main",
                                            "options", "hide=Late", "state", "Late"};
    EXPECT_EQ(traceOutputOf(words, "hide=Main,show=Late"), "main\n"
                                                           "Main off\n"
                                                           "Late on\n"
                                                           "Main on\n"
                                                           "Late off\n"
                                                           "end of main\n");
}

TEST(Trace, ResetByTheApplicationIsToTheDefaultsAndNotToTheVariable)
{
    EXPECT_EQ(traceOutputOf({"options", "reset", "state", "Main", "state", "Late", "trace", "text"},
                            "hide=all,show=Late,noindent"),
              "main\nMain on\nLate off\n| text\nend of main\n");
}

TEST(Trace, AWriteProtectedVariableIsNotChangedByTheApplication)
{
    const std::vector<std::string> words = {"options", "off",
                                            "options", "line,pid,noindent",
                                            "options", "hide=Main",
                                            "options", "show=Late",
                                            "options", "show=all",
                                            "options", "fnwidth=0",
                                            "options", "noprefix,reset",
                                            "options", "on,prefix",
                                            "state",   "Main",
                                            "state",   "Late",
                                            "state",   "Mine",
                                            "trace",   "text"};
    EXPECT_EQ(traceOutputOf(words, "show=Mine,writeprotect"), "main\n"
                                                              "Main on\n"
                                                              "Late off\n"
                                                              "Mine on\n"
                                                              "| text\n"
                                                              "end of main\n");
    EXPECT_EQ(traceOutputOf({"options", "on", "options", "reset", "trace", "text", "state", "Main"},
                            "off,writeprotect"),
              "main\nMain off\nend of main\n");
}

TEST(Trace, WriteProtectionHoldsForTheTokensBehindIt)
{
    EXPECT_EQ(traceOutputOf({"state", "Late"}, "writeprotect,show=Late"),
              "main\nLate off\nend of main\n");
    EXPECT_EQ(traceOutputOf({"state", "Late"}, "show=Late,writeprotect"),
              "main\nLate on\nend of main\n");
    EXPECT_EQ(traceOutputOf({"options", "show=A,writeprotect,show=B", "options", "show=C,reset",
                             "options", "writeprotect,show=D", "state", "A", "state", "B", "state",
                             "C", "state", "D"}),
              "main\nA on\nB off\nC off\nD off\nend of main\n");
}

TEST(Trace, TheLevelsArePrintedBeforeTheFirstLine)
{
    EXPECT_EQ(traceOutputOf({"trace", "one", "trace", "two"}, "printlevels"),
              "main\n" + levelsOf(earlyRows(false)) + "| one\n| two\nend of main\n");
    EXPECT_EQ(traceOutputOf({"early", "one"}, "printlevels,show=Early"),
              levelsOf(earlyRows(true)) +
                  "| before main\nmain\n| one\nend of main\n| after main\n");
    EXPECT_EQ(traceOutputOf({"options", "printlevels", "trace", "one"}),
              "main\n" + levelsOf(earlyRows(false)) + "| one\nend of main\n");
}

TEST(Trace, TheLevelsArePrintedBeforeTheFirstLineOrNever)
{
    EXPECT_EQ(traceOutputOf({"trace", "one", "options", "printlevels", "trace", "two"}),
              "main\n| one\n| two\nend of main\n");
    EXPECT_EQ(traceOutputOf({"early", "no", "options", "reset", "trace", "one"}, "printlevels"),
              "main\n| one\nend of main\n");
    EXPECT_EQ(traceOutputOf({"trace", "one"}, "printlevels,off"), "main\nend of main\n");
}

TEST(Trace, TheLevelsCanBeAskedForDespiteWriteProtection)
{
    EXPECT_EQ(traceOutputOf({"options", "printlevels", "trace", "one"}, "writeprotect"),
              "main\n" + levelsOf(earlyRows(false)) + "| one\nend of main\n");
}

TEST(Trace, TheProcessIsThatOfTheLine)
{
    const std::vector<std::string> lines =
        support::linesOf(traceOutputOf({"pid", "trace", "text"}, "pid"));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[2], padded(lines[1].substr(0, 9), 10) + "| text");
}

TEST(Trace, AnErrorOfTheApplicationsOptionsCanBeCaught)
{
    EXPECT_EQ(traceOutputOf({"options", "noindent,nonsense,indent", "trace", "text"}),
              "main\nUnknown token \"nonsense\" in trace options.\ntext\nend of main\n");
}

TEST(Trace, AnErrorInTheVariableEndsTheProcessBeforeMain)
{
    for (const char* const options : {"nonsense", "show=Early,nonsense=5,noindent"})
    {
        const support::ProgramResult result =
            runProgram("traceProgram", {"trace", "text"}, {{"ZU_TRACE_OPTIONS", options}});
        EXPECT_TRUE(result.aborted) << options;
        EXPECT_EQ(result.out, "") << options;
        EXPECT_NE(result.err.find("Unknown token \"nonsense\" in trace options."),
                  std::string::npos)
            << result.err;
    }
}

// The output of a program whose static objects trace before the levels of its sources are
// constructed, with these levels on and off.
std::string earlyOutput(bool here, bool there)
{
    const std::string hereText = "+ here\n  | text\n  /\n";
    const auto thereText = [](const std::string& text)
    { return "+ there\n  | " + text + "\n  /\n"; };
    return (here ? hereText : "") + (there ? thereText("early") + thereText("main") : "") +
           levelsOf(rowOf(true, "Exceptions", {}) + rowOf(here, "Here", {"earlyTraceProgram.cpp"}) +
                    rowOf(true, "Main", {"trace.cpp"}) +
                    rowOf(false, "TestPerformer", {"testPerformer.cpp"}) +
                    rowOf(there, "There", {"earlyTraceOther.cpp"}));
}

TEST(Trace, StatementsWorkBeforeTheLevelsOfTheirSourcesAreReached)
{
    for (const char* const program : {"earlyTraceProgram", "earlyTraceStaticProgram"})
        for (const bool here : {true, false})
            for (const bool there : {true, false})
            {
                const std::string options = std::string(here ? "show" : "hide") + "=Here," +
                                            (there ? "show" : "hide") + "=There";
                const support::ProgramResult result =
                    runProgram(program, {}, {{"ZU_TRACE_OPTIONS", options}});
                EXPECT_EQ(result.exitCode, 0) << program << " " << options;
                EXPECT_EQ(result.err, "") << program << " " << options;
                EXPECT_EQ(result.out, earlyOutput(here, there)) << program << " " << options;
            }
}

} // namespace
