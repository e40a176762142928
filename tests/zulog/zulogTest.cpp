// The program zulog as a whole.

#include "logTexts.h"
#include "support/childProcess.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::OTHER_ORIGIN;
using logTexts::tickLine;
using logTexts::writeFile;
using support::ProgramResult;
using support::runProgram;

class Zulog : public ::testing::Test
{
protected:
    Zulog()
    {
        writeFile(_first, BANNER + ORIGIN + tickLine(1, "Error: Orders one") +
                              tickLine(3, "Warning: Orders three") + logTexts::STOPPED);
        writeFile(_second, BANNER + OTHER_ORIGIN + tickLine(302, "Warning: Stock two"));
    }

    support::TempDir _directory;
    const std::string _first = _directory.file("a.log");
    const std::string _second = _directory.file("b.log");
};

TEST_F(Zulog, MergesLogsByTime)
{
    const ProgramResult result = runProgram("zulog", {"show", "--utc", _first, _second});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "2026-11-22 09:59:59.999700Z      12 -          -              "
                          "===== Message Logger Startup =====\n"
                          "2026-11-22 10:00:00.000000Z    4711 -          -              "
                          "===== Message Logger Startup =====\n"
                          "2026-11-22 10:00:00.000001Z    4711 0x00000abc Error          "
                          "Orders one\n"
                          "2026-11-22 10:00:00.000002Z      12 0x00000abc Warning        "
                          "Stock two\n"
                          "2026-11-22 10:00:00.000003Z    4711 0x00000abc Warning        "
                          "Orders three\n"
                          "-                              4711 -          -              "
                          "===== Message Logger Stopped =====\n");
    EXPECT_EQ(runProgram("zulog", {"show", "--utc", _directory.path()}).out, result.out);
}

TEST_F(Zulog, ShowsTheNeighboursOfWhatIsSelected)
{
    std::string log = ORIGIN;
    for (std::uint32_t tick = 1; tick <= 9; ++tick)
        log += tickLine(tick, "Error: A " + std::to_string(tick));
    writeFile(_first, log);
    const ProgramResult result =
        runProgram("zulog", {"show", "--relative", "--context", "1", "--match", "[27]", _first});
    std::string texts;
    for (const std::string& line : support::linesOf(result.out)) texts += line.back();
    EXPECT_EQ(texts, "123-678");
}

TEST_F(Zulog, ReportsAMissingFileAndShowsTheOthers)
{
    const ProgramResult result =
        runProgram("zulog", {"show", "--level", "Error", _directory.file("c.log"), _first});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.out.find("Orders one\n"), std::string::npos);
    EXPECT_EQ(result.out.find("Orders three"), std::string::npos);
    EXPECT_EQ(result.err.substr(0, 8), "zulog: \"");
    EXPECT_NE(result.err.find("c.log\" can't be opened: "), std::string::npos);
}

TEST_F(Zulog, RefusesWrongWords)
{
    const ProgramResult result = runProgram("zulog", {"show", "--level", "Loud", _first});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, 46), "zulog: --level: \"Loud\" can't be used: expected");
    EXPECT_EQ(runProgram("zulog", {"show", "--match", "(", _first}).exitCode, 1);
}

TEST_F(Zulog, ReportsRecordsThatHaveNoTime)
{
    const ProgramResult result =
        runProgram("zulog", {"show", "--since", "2026-11-22 10:00:00.000002Z", _first});
    EXPECT_EQ(support::linesOf(result.out).size(), 1U);
    EXPECT_EQ(result.err, "zulog: 1 record without a known time was left out\n");
    EXPECT_EQ(result.exitCode, 0);
}

} // namespace
