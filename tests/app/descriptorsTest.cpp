// Descriptors that the library keeps open never have the number of a standard stream, and are not
// inherited by children.

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using support::onWindows;
using support::readFile;
using Numbers = std::vector<int>;

class DescriptorsTest : public testing::Test
{
protected:
    DescriptorsTest()
    {
        _directory.set(_dir.path());
        _lock.set("Descriptors" + std::to_string(support::processId()));
        _logLock.set("Lines" + std::to_string(support::processId()));
    }

    std::string report() const
    {
        return _dir.file("report");
    }

    // The numbers in the line of the report that begins with a word.
    Numbers numbersOf(const std::string& word) const
    {
        Numbers numbers;
        std::istringstream lines(readFile(report()));
        for (std::string line; std::getline(lines, line);)
        {
            std::istringstream words(line);
            std::string first;
            words >> first;
            if (first != word) continue;
            for (int number; words >> number;) numbers.push_back(number);
        }
        return numbers;
    }

    // Checks the program's report, and that its stray text is not in the log.
    void expectAllAboveTheStandardOnes(const std::string& how) const
    {
        SCOPED_TRACE(how);
        const Numbers fresh = numbersOf("fresh");
        // Both log files, two files, a directory, a timer, two locks. On Windows all are handles.
        EXPECT_GE(fresh.size(), onWindows ? 0U : 8U) << readFile(report());
        for (const int number : fresh) EXPECT_GT(number, 2) << readFile(report());
        EXPECT_EQ(numbersOf("inherited"), Numbers()) << readFile(report());
        for (const char* const log : {"events.log", "prof.log"})
        {
            const std::string text = readFile(_dir.file(log));
            EXPECT_EQ(text.find("loose text"), std::string::npos) << text;
            EXPECT_EQ(text.rfind("===== Message Logger Startup =====", 0), 0U) << text;
        }
        EXPECT_NE(readFile(_dir.file("events.log")).find("Descriptors told"), std::string::npos);
    }

    support::TempDir _dir;
    support::VariableGuard _directory = support::VariableGuard("B7Q_TEST_DIR");
    support::VariableGuard _lock = support::VariableGuard("DESCRIPTOR_LOCK");
    support::VariableGuard _logLock = support::VariableGuard("ZU_INTERNAL_INTERPROCESS_LOG_LOCK");
};

TEST_F(DescriptorsTest, NoStandardNumberIsTakenByAProgramThatIsStartedWithoutThem)
{
    if (onWindows) GTEST_SKIP() << "The shell there starts no program without standard streams.";
    const std::string program = "'" + support::programPath("descriptorProgram") + "' ";
    for (const char* const closed : {"<&-", ">&-", "2>&-", ">&- 2>&-", "<&- >&-", "<&- >&- 2>&-"})
    {
        // Hides the output of streams that stay open.
        const std::string command = program + "'" + report() + "' </dev/null >/dev/null 2>&1 ";
        EXPECT_EQ(std::system((command + closed).c_str()), 0);
        const Numbers before = numbersOf("before");
        EXPECT_LT(
            std::count_if(before.begin(), before.end(), [](int number) { return number < 3; }), 3);
        expectAllAboveTheStandardOnes(closed);
    }
}

TEST_F(DescriptorsTest, NoStandardNumberIsTakenByAProgramThatClosesThem)
{
    const support::ProgramResult result = support::runProgram(
        "descriptorProgram", {report(), "close"}, {{"B7Q_TEST_DIR", _dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    expectAllAboveTheStandardOnes("closed within");
}

} // namespace
