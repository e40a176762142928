#include "zulog/zlCommands.h"

#include "logTexts.h"
#include "support/fileTest.h"
#include "support/tempDir.h"
#include "zulog/zlFile.h"
#include "zulog/zlOutput.h"
#include "zulog/zlReports.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::tickLine;
using logTexts::writeFile;
using Zu::ZlCommand;

class ZlCommands : public testing::Test
{
protected:
    ZlCommands()
    {
        writeFile(_log, BANNER + ORIGIN + tickLine(1, "Error: Orders one") +
                            tickLine(2, "Warning: Orders two") + logTexts::STOPPED);
        _command._show._words = {_log};
    }

    std::string count()
    {
        const std::string path = _directory.file("out");
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        {
            Zu::ZlOutput output(file);
            Zu::zlCount(_command, output, _reports);
            output.write();
        }
        std::fclose(file);
        return support::readFile(path);
    }

    support::TempDir _directory;
    const std::string _log = _directory.file("a.log");
    const std::string _page = _directory.file("page.html");
    std::ostringstream _reported;
    Zu::ZlReports _reports{_reported};
    ZlCommand _command;
};

TEST_F(ZlCommands, ATextWithAFailureGoesToStandardError)
{
    _command._text = "zulog: that can't be used\n";
    _command._exit = 2;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int value = Zu::zlRunCommand(_command);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "zulog: that can't be used\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(value, 2);
}

TEST_F(ZlCommands, NotesComeFirstAndAreNoFailures)
{
    _command._name = ZlCommand::Name::Stats;
    _command._notes = {"a note"};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int value = Zu::zlRunCommand(_command);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "zulog: a note\n");
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(value, 0);
}

TEST_F(ZlCommands, ATextWithoutOneGoesToStandardOutput)
{
    _command._text = "zulog 1.0\n";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int value = Zu::zlRunCommand(_command);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "zulog 1.0\n");
    EXPECT_EQ(value, 0);
}

TEST_F(ZlCommands, CountsAsText)
{
    EXPECT_EQ(count().substr(0, 42), "Lines       8\nUnreadable  0\nEvents      2\n");
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlCommands, CountsWhatIsSelectedAsJson)
{
    _command._isStatsJson = true;
    _command._show._selection._levels = 1U << static_cast<unsigned>(Zu::LgTypes::Error);
    const auto object = nlohmann::json::parse(count());
    EXPECT_EQ(object.at("lines"), 8);
    EXPECT_EQ(object.at("events"), 1);
}

TEST_F(ZlCommands, APageOfNothingIsNoted)
{
    _command._pageFile = _page;
    _command._show._selection._groups = {"NoSuchGroup"};
    Zu::zlMakePage(_command, _reports);
    EXPECT_NE(_reported.str().find("zulog: nothing is selected, and the page is empty\n"),
              std::string::npos)
        << _reported.str();
    EXPECT_FALSE(_reports.hasFailed());
}

TEST_F(ZlCommands, APageReplacesTheOneBefore)
{
    writeFile(_page, "the page of yesterday");
    _command._pageFile = _page;
    _command._pageTitle = "Orders of today";
    Zu::zlMakePage(_command, _reports);
    const std::string page = support::readFile(_page);
    EXPECT_NE(page.find("<title>Orders of today</title>"), std::string::npos);
    EXPECT_NE(page.find("\ttwo\n"), std::string::npos);
    EXPECT_EQ(page.find("yesterday"), std::string::npos);
}

TEST_F(ZlCommands, APageThatWouldReplaceALogIsRefused)
{
    const std::string before = support::readFile(_log);
    _command._pageFile = _directory.file("./a.log");
    try
    {
        Zu::zlMakePage(_command, _reports);
        FAIL() << "it was written";
    }
    catch (const Zu::ZlError& error)
    {
        EXPECT_EQ(std::string(error.what()),
                  "\"" + _command._pageFile + "\" is one of the logs, and stays");
    }
    EXPECT_TRUE(support::readFile(_log) == before);
}

TEST_F(ZlCommands, ThePageBeforeStaysIfNothingCouldBeRead)
{
    writeFile(_page, "the page of yesterday");
    _command._pageFile = _page;
    _command._show._words = {_directory.file("missing")};
    Zu::zlMakePage(_command, _reports);
    EXPECT_TRUE(_reports.hasFailed());
    EXPECT_EQ(support::readFile(_page), "the page of yesterday");
}

} // namespace
