#include "base/testPerformer.h"

#include "base/exInternalError.h"
#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "base/osFilePath.h"
#include "base/testGroup.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/groupTest.h"
#include "support/platform.h"
#include "support/privateMember.h"
#include "support/tempDir.h"
#include "support/traceTest.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using support::coutOf;
using support::TempDir;
using Zu::OsFilePath;
using Zu::TestPerformer;

using Texts = std::vector<std::string>;

const std::string TITLE = "\n\nGroup Name              nbCycles   average time    options\n"
                          "----------              --------   ------------    -------\n\n\n";

std::string repeated(const std::string& text, std::size_t times)
{
    std::string whole;
    for (std::size_t i = 0; i < times; ++i) whole += text;
    return whole;
}

// Records how it is called.
class Journal : public Zu::TestGroup
{
public:
    explicit Journal(const std::string& name) : TestGroup(name.c_str()) {}

    void prepare(int argc, char** const argv) override
    {
        note("prepare", argc, argv);
    }

    void run(int argc, char** const argv) override
    {
        note("run", argc, argv);
        if (_fails) throw std::runtime_error("failed");
    }

    void terminate() override
    {
        _notes.push_back("terminate");
    }

    void dump(std::ostream& os) override
    {
        _notes.push_back("dump");
        os << "dump%s";
    }

    bool _fails = false;
    Texts _notes;

private:
    void note(const std::string& operation, int argc, char** const argv)
    {
        std::string text = operation;
        for (int i = 0; i < argc; ++i) text += " <" + std::string(argv[i]) + ">";
        _notes.push_back(text + (argv[argc] ? " no null" : ""));
    }
};

// What a cycle with these words records.
Texts cycleNotes(const std::string& words)
{
    return {"prepare" + words, "run" + words, "terminate", "dump"};
}

Texts operator*(std::size_t times, const Texts& texts)
{
    Texts all;
    for (std::size_t i = 0; i < times; ++i) all.insert(all.end(), texts.begin(), texts.end());
    return all;
}

Texts operator+(Texts texts, const Texts& more)
{
    texts.insert(texts.end(), more.begin(), more.end());
    return texts;
}

class TestPerformerTest : public support::TracingTest
{
protected:
    TestPerformerTest()
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        for (Journal* const group : {&journal(), &other(), &longest(), &tooLong()})
        {
            group->_notes.clear();
            group->_fails = false;
        }
    }

    // Groups live to the end of the process.
    static Journal& journal()
    {
        static Journal group("perf");
        return group;
    }
    static Journal& other()
    {
        static Journal group("perf.other");
        return group;
    }
    static Journal& longest()
    {
        static Journal group(std::string(47, 'p'));
        return group;
    }
    static Journal& tooLong()
    {
        static Journal group(std::string(48, 'p'));
        return group;
    }

    static void executeFile(const std::string& file)
    {
        TestPerformer::getInstance().execute(OsFilePath(file.c_str()));
    }

    void execute(const std::string& content) const
    {
        support::writeFile(_dir.file("list"), content);
        executeFile(_dir.file("list"));
    }

    // What a list prints.
    std::string outputOf(const std::string& content) const
    {
        return coutOf([&] { execute(content); });
    }

    // The reason of the error that a file raises; the text before and after the raise is that of
    // the loading.
    static std::string errorOfFile(const std::string& file)
    {
        std::string reason = "nothing raised";
        std::string expected;
        const std::string out = coutOf(
            [&]
            {
                try
                {
                    executeFile(file);
                }
                catch (const Zu::ExInternalError& exception)
                {
                    reason = exception.getReason();
                    EXPECT_TRUE(
                        std::string(exception.getFileName()).ends_with("testPerformer.cpp"));
                    expected = "| " + support::reportOf(exception, "Zu::ExInternalError") + "\n";
                }
            });
        if (!expected.empty())
        {
            EXPECT_EQ(out, expected);
        }
        return reason;
    }

    std::string errorOf(const std::string& content) const
    {
        support::writeFile(_dir.file("list"), content);
        return errorOfFile(_dir.file("list"));
    }

    static std::string report()
    {
        std::ostringstream stream;
        stream << TestPerformer::getInstance();
        return stream.str();
    }

    // The rows of the report.
    static Texts rows()
    {
        const std::string text = report();
        EXPECT_EQ(text.substr(0, TITLE.size()), TITLE);
        return support::linesOf(text.substr(TITLE.size()));
    }

    // The rows with "<average>" for their figures.
    static Texts rowsWithoutFigures()
    {
        const std::regex form("^(.{24,}? [ 0-9-]{7} )( *[0-9]+\\.[0-9]{6})    (.*)$");
        Texts texts;
        Texts all = rows();
        EXPECT_FALSE(all.empty());
        if (all.empty()) return texts;
        EXPECT_EQ(all.back(), "");
        all.pop_back();
        for (const std::string& each : all)
        {
            std::smatch match;
            EXPECT_TRUE(std::regex_match(each, match, form)) << each;
            EXPECT_EQ(match.length(2), 14) << each;
            texts.push_back(match.str(1) + "<average>    " + match.str(3));
        }
        return texts;
    }

    // A row with "<average>" for its figure.
    static std::string row(const std::string& name, int cycles, const std::string& words)
    {
        const std::string number = std::to_string(cycles);
        const std::string padding(name.size() < 24 ? 24 - name.size() : 0, ' ');
        return name + padding + " " + std::string(7 - number.size(), ' ') + number +
               " <average>    " + words;
    }

    const TempDir _dir;
};

TEST_F(TestPerformerTest, ThereIsOneObject)
{
    EXPECT_EQ(&TestPerformer::getInstance(), &TestPerformer::getInstance());
}

TEST_F(TestPerformerTest, AnEmptyFileRunsNothing)
{
    execute("perf -1\n");
    for (const char* const content : {"", "\n", "\n\n\n", " ", "   \n  ", " \n"})
    {
        EXPECT_EQ(outputOf(content), "") << content;
        EXPECT_EQ(report(), TITLE + "\n") << content;
    }
}

TEST_F(TestPerformerTest, ALineIsAGroupItsCyclesAndItsWords)
{
    const struct
    {
        const char* _content;
        int _cycles;
        const char* _words;
        const char* _rowWords;
    } cases[] = {
        {"perf 1\n", 1, "", ""},
        {"perf 1", 1, "", ""},
        {"perf 2 -size 4096\n", 2, " <-size> <4096>", "-size 4096 "},
        {"perf 2 -size 4096", 2, " <-size> <4096>", "-size 4096 "},
        {"perf   2  a    b", 2, " <a> <b>", "a b "},
        {"  perf 2 a", 2, " <a>", "a "},
        {"perf 2 a  \n", 2, " <a>", "a "},
        {"\n\nperf 2 a\n\n   \n", 2, " <a>", "a "},
        // The number ends with its digits.
        {"perf 3x4 a", 3, " <a>", "a "},
        {"perf 1.9", 1, "", ""},
        {"perf +2", 2, "", ""},
        {"perf 002", 2, "", ""},
        // A blank is the only separator.
        {"perf 2 a\tb \t", 2, " <a\tb> <\t>", "a\tb \t "},
        {"perf 2\ta", 2, "", ""},
        {"perf 2 %s%n \"a b\" # x", 2, " <%s%n> <\"a> <b\"> <#> <x>", "%s%n \"a b\" # x "},
    };
    for (const auto& each : cases)
    {
        journal()._notes.clear();
        outputOf(each._content);
        EXPECT_EQ(journal()._notes,
                  static_cast<std::size_t>(each._cycles) * cycleNotes(each._words))
            << each._content;
        EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf", each._cycles, each._rowWords)})
            << each._content;
    }
}

TEST_F(TestPerformerTest, GroupsRunInTheOrderOfTheFile)
{
    static Texts order;
    order.clear();
    const std::string out = outputOf("perf.other 1 x\nperf 2\nperf.other 1 y\n");
    const std::regex line("Executing [^\n]*\n");
    for (std::sregex_iterator at(out.begin(), out.end(), line), end; at != end; ++at)
        order.push_back(at->str());
    EXPECT_EQ(order, (Texts{"Executing perf.other cycle 0 x \n", "Executing perf cycle 0 \n",
                            "Executing perf cycle 1 \n", "Executing perf.other cycle 0 y \n"}));
    EXPECT_EQ(other()._notes, (Texts{"prepare <x>", "run <x>", "terminate", "dump", "prepare <y>",
                                     "run <y>", "terminate", "dump"}));
    EXPECT_EQ(rowsWithoutFigures(),
              (Texts{row("perf.other", 1, "x "), row("perf", 2, ""), row("perf.other", 1, "y ")}));
}

TEST_F(TestPerformerTest, ACycleIsPrintedInParts)
{
    const support::CollectingManager manager;
    execute("perf 1 a b\nperf.other 1");
    ASSERT_EQ(manager._texts.size(), 6U);
    EXPECT_EQ(manager._texts[0], "Executing perf cycle 0 a b ");
    EXPECT_TRUE(manager._texts[1].starts_with("End of cycle.  Call terminate.\n_todProfiler\n"
                                              "Profiler anonymous:\n"
                                              "        Nb of cycles:   1\n"))
        << manager._texts[1];
    EXPECT_NE(manager._texts[1].find("\n\n\n_hwProfiler\n"
                                     "Profiler anonymous:\n"
                                     "        Nb of cycles:   1\n"),
              std::string::npos)
        << manager._texts[1];
    EXPECT_EQ(manager._texts[2], "dump%s");
    EXPECT_EQ(manager._texts[3], "Executing perf.other cycle 0 ");
    EXPECT_EQ(manager._texts[5], "dump%s");
}

TEST_F(TestPerformerTest, ACycleIsPrintedWhileTracingIsOff)
{
    set("off");
    EXPECT_TRUE(outputOf("perf 1").starts_with("Executing perf cycle 0 \nEnd of cycle.  Call "));
}

TEST_F(TestPerformerTest, TheProfilersCountTheCyclesOfEachGroupAnew)
{
    const std::string out = outputOf("perf 3\nperf.other 2\n");
    const std::regex line("_(tod|hw)Profiler\nProfiler anonymous:\n        Nb of cycles:   "
                          "([0-9]+)\n");
    std::string counts;
    for (std::sregex_iterator at(out.begin(), out.end(), line), end; at != end; ++at)
        counts += at->str(1) + at->str(2) + " ";
    EXPECT_EQ(counts, "tod1 hw1 tod2 hw2 tod3 hw3 tod1 hw1 tod2 hw2 ");
}

TEST_F(TestPerformerTest, ANegativeNumberOfCyclesRunsNothing)
{
    EXPECT_EQ(outputOf("perf -1 a\nperf.other -2147483648\n"), "");
    EXPECT_EQ(journal()._notes, Texts());
    EXPECT_EQ(report(), TITLE + "perf                          -1       0.000000    a \n"
                                "perf.other               -2147483648       0.000000    \n"
                                "\n");
}

TEST_F(TestPerformerTest, AfterACycleTheAverageOfANegativeNumberIsZero)
{
    outputOf("perf 1\nperf.other -1\n");
    ASSERT_EQ(rows().size(), 3U);
    EXPECT_EQ(rows()[1], "perf.other                    -1       0.000000    ");
}

TEST_F(TestPerformerTest, TheRecordsOfAFileTakeThePlaceOfTheFormerOnes)
{
    outputOf("perf 1 a\nperf.other 1 b\nperf 1 c\n");
    outputOf("perf.other 2\n");
    EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf.other", 2, "")});
    EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf.other", 2, "")});
}

TEST_F(TestPerformerTest, ANameHasUpTo47Characters)
{
    const std::string name(47, 'p');
    outputOf(name + " 1 a");
    EXPECT_EQ(longest()._notes, cycleNotes(" <a>"));
    EXPECT_EQ(rowsWithoutFigures(), Texts{row(name, 1, "a ")});
    // A group of this name exists.
    EXPECT_EQ(errorOf(name + "p 1 a"), "Test group name is too long: <" + name + "p>.");
    EXPECT_EQ(tooLong()._notes, Texts());
}

TEST_F(TestPerformerTest, WhatIsWrongWithALineIsAnError)
{
    const std::string tooLongName = "Test group name is too long: <";
    const std::string cycles = "Invalid number of cycles: <";
    const std::string tooMany = "Too many args to test group.";
    const struct
    {
        std::string _line;
        std::string _reason;
    } cases[] = {
        {"nobody 1", "Invalid test group name: <nobody>."},
        {"Perf 1", "Invalid test group name: <Perf>."},
        {"perf\t1", "Invalid test group name: <perf\t1>."},
        {"\t", "Invalid test group name: <\t>."},
        {"# perf 1", "Invalid test group name: <#>."},
        {"%s%n 1", "Invalid test group name: <%s%n>."},
        {"<untitled> 1", "Invalid test group name: <<untitled>>."},
        {std::string(47, 'x') + " 1", "Invalid test group name: <" + std::string(47, 'x') + ">."},
        {std::string(48, 'x') + " 1", tooLongName + std::string(48, 'x') + ">."},
        {std::string(127, 'x') + " 1", tooLongName + std::string(127, 'x') + ">."},
        {std::string(128, 'x') + " 1", tooLongName},
        {std::string(255, 'x'), tooLongName},
        {std::string(400, 'x'), tooLongName},
        {"perf 0", cycles + "0>."},
        {"perf -0", cycles + "-0>."},
        {"perf 000", cycles + "000>."},
        {"perf 0x10", cycles + "0x10>."},
        {"perf 0.9", cycles + "0.9>."},
        {"perf abc", cycles + "abc>."},
        {"perf - 1", cycles + "->."},
        {"perf %s%n", cycles + "%s%n>."},
        {"perf perf 1", cycles + "perf>."},
        {"perf abc 1 2", cycles + "abc>."},
        {"perf " + std::string(127, 'x'), cycles + std::string(127, 'x') + ">."},
        {"perf " + std::string(128, 'x'), cycles},
        {"perf " + std::string(250, 'x'), cycles},
        {"perf", cycles + ">."},
        {"perf ", cycles + ">."},
        {" perf  ", cycles + ">."},
        {"perf 1" + repeated(" a", 17), tooMany},
        {"perf 1" + repeated(" a", 100), tooMany},
    };
    for (const auto& each : cases)
        for (const char* const rest : {"", "\n", "\nperf 1\n", "\nnobody else 1\n"})
            EXPECT_EQ(errorOf(each._line + rest), each._reason) << each._line << rest;
    EXPECT_EQ(journal()._notes, Texts());
}

TEST_F(TestPerformerTest, NothingIsRunWhenALaterLineIsWrong)
{
    EXPECT_EQ(errorOf("perf 5 a b\nnobody 1\n"), "Invalid test group name: <nobody>.");
    EXPECT_EQ(journal()._notes, Texts());
    // The records before it stay.
    const Texts lines = rows();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("perf                           5 ")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with("    a b ")) << lines[0];
}

TEST_F(TestPerformerTest, AnErrorLeavesAFreshStartToTheNextFile)
{
    EXPECT_EQ(errorOf("perf 5\nperf abc\n"), "Invalid number of cycles: <abc>.");
    outputOf("perf.other 1 x\n");
    EXPECT_EQ(other()._notes, cycleNotes(" <x>"));
    EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf.other", 1, "x ")});
}

TEST_F(TestPerformerTest, AFileThatCannotBeOpenedIsAnError)
{
    const std::string opening = "Invalid file name : <";
    EXPECT_EQ(errorOfFile(_dir.file("missing")), opening + _dir.file("missing") + ">.");
    EXPECT_EQ(errorOfFile("%s%n"), opening + "%s%n>.");
    EXPECT_EQ(errorOfFile(""), opening + ">.");
    std::string path = _dir.file("m");
    ASSERT_LT(path.size(), 127U);
    path.resize(127, 'm');
    EXPECT_EQ(errorOfFile(path), opening + path + ">.");
    EXPECT_EQ(errorOfFile(path + "m"), opening);
    EXPECT_EQ(errorOfFile(std::string(10000, 'm')), opening);
}

TEST_F(TestPerformerTest, AGroupHasUpTo16Words)
{
    outputOf("perf 1 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16");
    const std::string words = " <1> <2> <3> <4> <5> <6> <7> <8> <9> <10> <11> <12> <13> <14> <15> "
                              "<16>";
    EXPECT_EQ(journal()._notes, cycleNotes(words));
    EXPECT_EQ(rowsWithoutFigures(),
              Texts{row("perf", 1, "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 ")});
    EXPECT_EQ(errorOf("perf 1 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17"),
              "Too many args to test group.");
}

TEST_F(TestPerformerTest, AFileHasUpTo128Groups)
{
    const std::string line = "perf -1\n";
    const std::string last = "perf -1";
    for (const std::string& content :
         {repeated(line, 128), repeated(line, 127) + last, repeated(line + "\n", 127) + last,
          repeated("\n", 500) + repeated(line, 128)})
    {
        EXPECT_EQ(errorOf(content), "nothing raised");
        EXPECT_EQ(rowsWithoutFigures(), Texts(128, row("perf", -1, "")));
    }
    for (const std::string rest : {"perf -1", "perf -1\n", "\n", " ", "nobody", "\n\n"})
    {
        EXPECT_EQ(errorOf(repeated(line, 128) + rest), "Too many test groups in file.") << rest;
        EXPECT_EQ(rowsWithoutFigures().size(), 128U);
    }
}

TEST_F(TestPerformerTest, TheLastOf128GroupsIsRun)
{
    outputOf(repeated("perf.other 1 a\n", 127) + "perf 2 b\n");
    EXPECT_EQ(other()._notes, 127 * cycleNotes(" <a>"));
    EXPECT_EQ(journal()._notes, 2 * cycleNotes(" <b>"));
}

TEST_F(TestPerformerTest, ALineOf255CharactersIsTaken)
{
    const std::string word(248, 'w');
    outputOf("perf 1 " + word + "\nperf.other 1 b\n");
    EXPECT_EQ(journal()._notes, cycleNotes(" <" + word + ">"));
    EXPECT_EQ(other()._notes, cycleNotes(" <b>"));
    outputOf("perf.other 1 " + word.substr(6));
    EXPECT_EQ(other()._notes.size(), 8U);
    EXPECT_EQ(other()._notes.back(), "dump");
    EXPECT_EQ(other()._notes[4], "prepare <" + word.substr(6) + ">");
}

TEST_F(TestPerformerTest, ALongerLineIsCutAndTheLastOne)
{
    for (const std::size_t length : {256U, 257U, 600U})
    {
        journal()._notes.clear();
        other()._notes.clear();
        const std::string line = "perf 1 " + std::string(length - 7, 'w');
        outputOf(line + "\nperf.other 1 b\n");
        EXPECT_EQ(journal()._notes, cycleNotes(" <" + std::string(248, 'w') + ">")) << length;
        EXPECT_EQ(other()._notes, Texts()) << length;
    }
    // What follows the truncation is ignored.
    journal()._notes.clear();
    outputOf("perf 1 a" + std::string(247, ' ') + repeated(" b", 20) + "\nnobody 1\n");
    EXPECT_EQ(journal()._notes, cycleNotes(" <a>"));
    // A line of blanks makes no record, and also ends the reading.
    outputOf(std::string(256, ' ') + "\nperf.other 1\n");
    EXPECT_EQ(other()._notes, Texts());
    EXPECT_EQ(report(), TITLE + "\n");
}

TEST_F(TestPerformerTest, ARowOfManyWordsIsWrittenAsItStands)
{
    const std::string words = repeated("0123456789abc ", 14);
    EXPECT_EQ(errorOf("perf -1 " + words), "nothing raised");
    EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf", -1, words)});
}

TEST_F(TestPerformerTest, ARowOfAnyLengthIsWrittenInItsPlace)
{
    // 301 characters altogether.
    const std::string word(247, 'w');
    EXPECT_EQ(errorOf("perf -1 " + word + "\nperf.other -1 b\n"), "nothing raised");
    const std::string text = report();
    const std::string begin =
        TITLE + "perf                          -1       0.000000    " + std::string(200, 'w');
    EXPECT_EQ(text.substr(0, begin.size()), begin);
    EXPECT_NE(text.find("perf.other                    -1       0.000000    b \n\n"),
              std::string::npos)
        << text;
}

TEST_F(TestPerformerTest, WhatAGroupRaisesEndsTheRun)
{
    journal()._fails = true;
    support::writeFile(_dir.file("list"), "perf.other 1\nperf 2 a\nperf.other 1\n");
    const std::string out =
        coutOf([&] { EXPECT_THROW(executeFile(_dir.file("list")), std::runtime_error); });
    EXPECT_TRUE(out.ends_with("Executing perf cycle 0 a \n")) << out;
    EXPECT_EQ(journal()._notes, (Texts{"prepare <a>", "run <a>"}));
    EXPECT_EQ(other()._notes, cycleNotes(""));
    EXPECT_EQ(rows().size(), 4U);

    // The next run is not affected by it.
    journal()._fails = false;
    EXPECT_NE(outputOf("perf 1\n")
                  .find("_todProfiler\nProfiler anonymous:\n"
                        "        Nb of cycles:   1\n"),
              std::string::npos);
}

TEST_F(TestPerformerTest, LoadingIsTracedOnALevelOfItsOwn)
{
    set("show=TestPerformer");
    EXPECT_EQ(outputOf("perf -1\n"), "+ TestPerformer::loadFile()\n  /\n");
    set("hide=Exceptions");
    EXPECT_EQ(coutOf([&] { EXPECT_THROW(execute("nobody 1"), Zu::ExInternalError); }),
              "+ TestPerformer::loadFile()\n  /\n");
    set("reset,show=TestPerformer");
    const std::string out = coutOf([&] { EXPECT_THROW(execute("nobody 1"), Zu::ExInternalError); });
    EXPECT_EQ(support::withoutPlaces(out, "testPerformer"),
              "+ TestPerformer::loadFile()\n"
              "  | Throwing exception [Exception Type = Zu::ExInternalError, <place>]\n"
              "Invalid test group name: <nobody>.\n"
              "  /\n");
}

TEST_F(TestPerformerTest, TheReportLeavesItsStreamAsItWas)
{
    execute("perf -1\n");
    std::ostringstream stream;
    stream << std::hex << TestPerformer::getInstance() << 255 << TestPerformer::getInstance();
    EXPECT_EQ(stream.str(), report() + "ff" + report());
}

TEST_F(TestPerformerTest, ACopyHasTheRecords)
{
    execute("perf -1 a b\nperf.other -2 c\n");
    const std::string whole = report();
    {
        const TestPerformer copy(TestPerformer::getInstance());
        execute("perf -3 d\n");
        std::ostringstream stream;
        stream << copy;
        EXPECT_EQ(stream.str(), whole);
    }
    EXPECT_EQ(rowsWithoutFigures(), Texts{row("perf", -3, "d ")});
}

// The output of a successful run of a file, with this environment.
std::string outputOfFile(const std::string& content, const support::Environment& environment = {})
{
    const TempDir dir;
    support::writeFile(dir.file("list"), content);
    return support::outputOfGroups({"-perf", dir.file("list")}, environment);
}

// The text with "<time>" for each figure of a profiler and of the table.
std::string withoutTimes(const std::string& text)
{
    const std::regex figure("((Total time|Average time|Minimum time|Maximum time|Standard dev): +)"
                            "[-+0-9.einfa]+");
    const std::regex average("( {3}) *[0-9]+\\.[0-9]{6}( {4})");
    return std::regex_replace(std::regex_replace(text, figure, "$1<time>"), average, "$1<time>$2");
}

const std::string FIGURES = "        Total time:     <time>\n"
                            "        Average time:   <time>\n"
                            "        Minimum time:   <time>\n"
                            "        Maximum time:   <time>\n"
                            "        Standard dev:   <time>\n"
                            "\n";

// What is printed after the run of a cycle.
std::string endOfCycle(int cycle)
{
    const std::string profiler =
        "Profiler anonymous:\n        Nb of cycles:   " + std::to_string(cycle + 1) + "\n" +
        FIGURES;
    return "End of cycle.  Call terminate.\n_todProfiler\n" + profiler + "\n_hwProfiler\n" +
           profiler + "\n";
}

TEST(TestPerformer, ARunOfAProgramGoesThroughItsCyclesAndPrintsTheTable)
{
    EXPECT_EQ(withoutTimes(outputOfFile("counting 2 -size 4096\n\nbare 1\n")),
              "prepare 1 2 '-size' '4096' null\n"
              "Executing counting cycle 0 -size 4096 \n"
              "run 1 2 '-size' '4096' null\n" +
                  endOfCycle(0) +
                  "terminate 1\n"
                  "dump of 1, 1, 1\n"
                  "prepare 2 2 '-size' '4096' null\n"
                  "Executing counting cycle 1 -size 4096 \n"
                  "run 2 2 '-size' '4096' null\n" +
                  endOfCycle(1) +
                  "terminate 2\n"
                  "dump of 2, 2, 2\n"
                  "Executing bare cycle 0 \n" +
                  endOfCycle(0) + TITLE +
                  "counting                       2   <time>    -size 4096 \n"
                  "bare                           1   <time>    \n"
                  "\n\n");
}

TEST(TestPerformer, ARunOfAnEmptyFilePrintsTheTableAlone)
{
    EXPECT_EQ(outputOfFile(""), TITLE + "\n\n");
    EXPECT_EQ(outputOfFile("", {{"ZU_TRACE_OPTIONS", "off"}}), TITLE + "\n\n");
}

// The figures of this kind in the reports of this profiler.
std::vector<double> figuresOf(const std::string& out, const std::string& profiler,
                              const std::string& figure)
{
    std::vector<double> figures;
    for (std::size_t at = out.find(profiler); at != std::string::npos;
         at = out.find(profiler, at + 1))
        figures.push_back(std::stod(out.substr(out.find(figure, at) + figure.size())));
    return figures;
}

TEST(TestPerformer, TheAverageIsThatOfTheHardwareCounter)
{
    const std::string out = outputOfFile("spinning 3\n");
    const std::vector<double> averages = figuresOf(out, "_hwProfiler", "Average time:");
    ASSERT_EQ(averages.size(), 3U);
    // The clocks of the machine agree well enough for that.
    for (const double average : averages) EXPECT_GE(average, 0.015);
    const std::string name = "spinning                       3 ";
    const std::size_t at = out.find(name);
    ASSERT_NE(at, std::string::npos) << out;
    // Both are rounded.
    EXPECT_NEAR(std::stod(out.substr(at + name.size())), averages.back(), 1.1e-6);
}

TEST(TestPerformer, NoTimeIsNegative)
{
    const std::string out = outputOfFile("bare 20\nspinning 2\n");
    for (const char* const profiler : {"_todProfiler", "_hwProfiler"})
        for (const char* const figure : {"Total time:", "Average time:", "Minimum time:"})
        {
            const std::vector<double> figures = figuresOf(out, profiler, figure);
            EXPECT_EQ(figures.size(), 22U);
            for (const double each : figures) EXPECT_GE(each, 0) << profiler << " " << figure;
        }
}

TEST(TestPerformer, AFileThatIsWrongEndsTheProgramWithItsReason)
{
    const TempDir dir;
    support::writeFile(dir.file("list"), "counting 1\nnobody 1\n");
    const struct
    {
        std::string _file;
        std::string _reason;
    } cases[] = {
        {dir.file("list"), "Invalid test group name: <nobody>."},
        {dir.file("missing"), "Invalid file name : <" + dir.file("missing") + ">."},
    };
    for (const auto& each : cases)
    {
        const support::ProgramResult result = support::runGroups({"-perf", each._file});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(support::withoutPlaces(result.out, "testPerformer"),
                  "| Throwing exception [Exception Type = Zu::ExInternalError, <place>]\n" +
                      each._reason +
                      "\nException encountered: [Exception Type = Zu::ExInternalError, <place>]\n" +
                      each._reason + "\n");
    }
}

TEST(TestPerformer, WhatAGroupRaisesEndsTheProgram)
{
    const TempDir dir;
    support::writeFile(dir.file("list"), "bare 1\nfailing 2 run family\nbare 1\n");
    const support::ProgramResult result = support::runGroups({"-perf", dir.file("list")});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(withoutTimes(result.out),
              "Executing bare cycle 0 \n" + endOfCycle(0) +
                  "prepare\n"
                  "Executing failing cycle 0 run family \n"
                  "run\n"
                  "Exception encountered: [Exception Type = Zu::ExInternalError, File = "
                  "dir/thrown.cpp, Line=7]\nwhy 100%s\n");
}

TEST_F(TestPerformerTest, ADirectoryIsNoFile)
{
    execute("perf -1 a\n");
    const std::string before = report();
    EXPECT_EQ(errorOfFile(_dir.path()), "Invalid file name : <" + _dir.path() + ">.");
    EXPECT_EQ(report(), before);
    const support::ProgramResult result = support::runGroups({"-perf", _dir.path()});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.out.find("Invalid file name : <" + _dir.path() + ">.\n"), std::string::npos)
        << result.out;
    EXPECT_EQ(result.out.find("Group Name"), std::string::npos) << result.out;
}

// The text with a carriage return before each line feed.
std::string withReturns(const std::string& text)
{
    return std::regex_replace(text, std::regex("\n"), "\r\n");
}

TEST_F(TestPerformerTest, CarriageReturnsBeforeLineFeedsAreNoPartOfALine)
{
    // With its name and the number of cycles the line has 255 characters, and one more.
    const std::string longest = "perf -1 " + std::string(255 - 8, 'w');
    for (const std::string& content :
         {std::string("perf -1 a b\nperf.other -2\n"), std::string("perf -1 a\n\nperf.other -2 c"),
          std::string("\n \nperf -3 \n"), longest + "\nperf -2\n", longest + "x\nperf -2\n",
          longest + "xx\nperf -2\n", repeated("perf -1\n", 128)})
    {
        execute(content);
        const Texts expected = rowsWithoutFigures();
        execute("");
        execute(withReturns(content));
        EXPECT_EQ(rowsWithoutFigures(), expected) << content;
    }
    EXPECT_EQ(errorOf(withReturns(repeated("perf -1\n", 128) + "\n")),
              "Too many test groups in file.");
    EXPECT_EQ(errorOf("perf x\r\n"), "Invalid number of cycles: <x>.");
    EXPECT_EQ(errorOf("nobody\r\n"), "Invalid test group name: <nobody>.");
}

TEST_F(TestPerformerTest, OtherCarriageReturnsArePartOfAWord)
{
    outputOf("perf 1 \r\r\nperf 1 \rx\nperf 1 y\r\nperf 1 z\r");
    EXPECT_EQ(journal()._notes, cycleNotes(" <\r>") + cycleNotes(" <\rx>") + cycleNotes(" <y>") +
                                    cycleNotes(" <z\r>"));
}

} // namespace

namespace support
{

struct AverageOf
{
    using Member = double (*)(double, double);
    friend Member memberOf(AverageOf);
};

template struct PrivateMember<AverageOf, &Zu::TestPerformer::averageOf>;

} // namespace support

namespace
{

TEST(TestPerformer, AnAverageAboveThirtySecondsIsThatOfTheTimeOfDay)
{
    const auto averageOf = memberOf(support::AverageOf());
    EXPECT_EQ(averageOf(0.0, 1.5), 1.5);
    EXPECT_EQ(averageOf(29.999, 1.5), 1.5);
    EXPECT_EQ(averageOf(30.0, 1.5), 1.5);
    EXPECT_EQ(averageOf(30.001, 1.5), 30.001);
    EXPECT_EQ(averageOf(3600.0, 31.0), 3600.0);
    EXPECT_EQ(averageOf(2.0, 31.0), 31.0);
    EXPECT_EQ(averageOf(std::numeric_limits<double>::quiet_NaN(), 1.5), 1.5);
}

} // namespace
