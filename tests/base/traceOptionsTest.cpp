#include "base/traceOptions.h"

#include "base/trace.h"
#include "base/traceLevel.h"

#include "support/platform.h"
#include "support/traceTest.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::Trace;
using Zu::TraceOptions;

class TraceOptionsTest : public support::TracingTest
{
protected:
    TraceOptions& _options = TraceOptions::getInstance();
};

TEST_F(TraceOptionsTest, ThereIsOneStore)
{
    EXPECT_EQ(&TraceOptions::getInstance(), &_options);
    Trace::setOptions("line");
    EXPECT_TRUE(_options._line);
    const std::string name = newName();
    EXPECT_EQ(&_options.registerLevel(name.c_str(), nullptr),
              Trace::registerLevel(name.c_str(), nullptr));
    EXPECT_EQ(&_options.registerLevel("Main", nullptr), Trace::MainTraceLevel);
}

TEST_F(TraceOptionsTest, ResetGivesTheDefaults)
{
    _options.apply("noprefix,line,pid,noindent,fndirs=3,fnwidth=7,printlevels");
    EXPECT_FALSE(_options._prefix);
    EXPECT_TRUE(_options._line);
    EXPECT_TRUE(_options._pid);
    EXPECT_FALSE(_options._indent);
    EXPECT_EQ(_options._fnWidth, 7);
    EXPECT_STREQ(_options.tailOf("a/b/c/d/e"), "b/c/d/e");
    EXPECT_TRUE(_options.isPrinting());

    _options.apply("reset");
    EXPECT_TRUE(_options._prefix);
    EXPECT_FALSE(_options._line);
    EXPECT_FALSE(_options._pid);
    EXPECT_TRUE(_options._indent);
    EXPECT_EQ(_options._fnWidth, 20);
    EXPECT_STREQ(_options.tailOf("a/b/c/d/e"), "e");
    EXPECT_FALSE(_options.isPrinting());
}

TEST_F(TraceOptionsTest, TheTextOfTheProcessHasAtMostNineDigits)
{
    EXPECT_EQ(_options._pidText, std::to_string(support::processId()).substr(0, 9));
}

TEST_F(TraceOptionsTest, AFileIsCutToItsLastComponents)
{
    const struct
    {
        const char* _file;
        // Indexed by the number of requested directories, from 0.
        const char* _tails[4];
    } cases[] = {
        {"a/b/c.cpp", {"c.cpp", "b/c.cpp", "a/b/c.cpp", "a/b/c.cpp"}},
        {"/a/b/c.cpp", {"c.cpp", "b/c.cpp", "a/b/c.cpp", "/a/b/c.cpp"}},
        {"c.cpp", {"c.cpp", "c.cpp", "c.cpp", "c.cpp"}},
        {"/c.cpp", {"c.cpp", "/c.cpp", "/c.cpp", "/c.cpp"}},
        {"a//c.cpp", {"c.cpp", "/c.cpp", "a//c.cpp", "a//c.cpp"}},
        {"../../c.cpp", {"c.cpp", "../c.cpp", "../../c.cpp", "../../c.cpp"}},
        {"a/b/", {"", "b/", "a/b/", "a/b/"}},
        {"/", {"", "/", "/", "/"}},
        {"", {"", "", "", ""}},
        {"a\\b\\c.cpp", {"a\\b\\c.cpp", "a\\b\\c.cpp", "a\\b\\c.cpp", "a\\b\\c.cpp"}},
        {"d:\\a/b\\c.cpp", {"b\\c.cpp", "d:\\a/b\\c.cpp", "d:\\a/b\\c.cpp", "d:\\a/b\\c.cpp"}},
    };
    for (const auto& row : cases)
    {
        for (int dirs = 0; dirs < 4; ++dirs)
        {
            _options.apply(("fndirs=" + std::to_string(dirs)).c_str());
            EXPECT_STREQ(_options.tailOf(row._file), row._tails[dirs]) << row._file << ' ' << dirs;
        }
    }
}

TEST_F(TraceOptionsTest, ATailIsPartOfTheFilesName)
{
    const char* const file = "a/b/c.cpp";
    EXPECT_EQ(_options.tailOf(file), file + 4);
    _options.apply("fndirs=9");
    EXPECT_EQ(_options.tailOf(file), file);
}

TEST_F(TraceOptionsTest, TheGreatestNumberOfDirectoriesGivesTheWholeName)
{
    _options.apply("fndirs=2147483647");
    EXPECT_STREQ(_options.tailOf("/a/b/c.cpp"), "/a/b/c.cpp");
}

} // namespace
