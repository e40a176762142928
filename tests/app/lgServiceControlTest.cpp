#include "app/lgServiceControl.h"

#include "base/lgLog.h"
#include "base/lgMajorGroup.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"

#include "app/controlled.h"
#include "support/fileTest.h"
#include "support/runningLogger.h"
#include "support/tempDir.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Zu::LgMajorGroup;
namespace LgControl = Zu::LgControl;
namespace LgTypes = Zu::LgTypes;

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

std::uint32_t levelsOf(const char* group)
{
    return LgMajorGroup::getInstanceForName(group).getLogLevels();
}

// A control with groups of its own, in a program with a logger but without a service.
class LgServiceControl : public testing::Test
{
protected:
    LgServiceControl() : control(settings())
    {
        _registry = Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new Zu::LgSimpleRegistry));
        Zu::LgLog::getRegistry()->registerQueue(&queue());
        Zu::LgLog::setQueueFunction([] { return &queue(); });
        LgMajorGroup::parse("Database=Warning,UI=Error");
    }

    ~LgServiceControl() override
    {
        Zu::LgReader().flushAll();
        Zu::LgLog::getRegistry()->deregisterQueue(&queue());
        Zu::LgLog::setQueueFunction(nullptr);
        Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(_registry));
    }

    static Zu::LgQueue& queue()
    {
        static Zu::LgQueue theQueue;
        return theQueue;
    }

    Zu::LgServiceControl::Settings settings()
    {
        Zu::LgServiceControl::Settings settings;
        settings._fileDirectory = dir.path() + "/";
        settings._logDirectory = "/var/log/shop";
        settings._health = [this] { return health; };
        settings._outputOf = [](LgTypes::Level level)
        { return level == LgTypes::Tracing ? "stdout" : "events.log"; };
        return settings;
    }

    // What was noted in the log.
    std::vector<std::string> notes()
    {
        Zu::LgReader().flushAll();
        return logger.textsOf("events.log");
    }

    support::TempDir dir;
    support::RunningLogger logger;
    Zu::LgServiceHealth health;
    Zu::LgServiceControl control;

private:
    Zu::ObjPtrRet<Zu::LgRegistry> _registry;
};

TEST_F(LgServiceControl, StatusHasOutputsGroupsAndHealth)
{
    health._queues = {{4711, 64, 0, 1, 2}};
    health._lost = 3;
    const std::string text = control.answerTo("status\n");
    EXPECT_TRUE(contains(text, R"("directory":"/var/log/shop","threads":1,)")) << text;
    EXPECT_TRUE(contains(text, R"("Informational":"events.log","Tracing":"stdout")")) << text;
    EXPECT_TRUE(
        contains(text, R"({"name":"UI","levels":["Internal Error","Fatal Error","Error"]})"))
        << text;
    EXPECT_TRUE(contains(text, R"("changed":[],"health":)" + health.toJson() + "}")) << text;
}

TEST_F(LgServiceControl, QueuesAreLeftOutWhereTheyAreTooMany)
{
    health._queues.resize(10000);
    const std::string text = control.answerTo("status\n");
    EXPECT_LE(text.size(), LgControl::MOST_ANSWER);
    EXPECT_TRUE(contains(text, R"("threads":10000)"));
    EXPECT_TRUE(contains(text, R"("queues":[])"));
}

TEST_F(LgServiceControl, SetsThresholdsAndNotesThat)
{
    const std::string text = control.answerTo("set\nby 4711\nDatabase=Tracing\nUI=Profiling\n");
    EXPECT_EQ(levelsOf("Database"), 0xFCU);
    EXPECT_EQ(levelsOf("UI"), 0xE2U);
    EXPECT_TRUE(contains(text, R"("changed":[{"name":"Database",)")) << text;
    EXPECT_EQ(notes(), std::vector<std::string>{
                           "LogLevels set by process 4711: Database=Tracing, UI=Profiling"});
}

TEST_F(LgServiceControl, ARequestWithoutItsAskerIsNotedWithoutIt)
{
    control.answerTo("set\nDatabase=Error\n");
    EXPECT_EQ(notes(),
              std::vector<std::string>{"LogLevels set by another process: Database=Error"});
}

TEST_F(LgServiceControl, ResetGivesBackWhatWasThereBeforeTheFirstChange)
{
    control.answerTo("set\nDatabase=Tracing\n");
    control.answerTo("set\nDatabase=Error\nUI=Warning\n");
    const std::string text = control.answerTo("reset\nby 9\n");
    EXPECT_EQ(levelsOf("Database"), 0xF0U);
    EXPECT_EQ(levelsOf("UI"), 0xE0U);
    EXPECT_TRUE(contains(text, R"("changed":[])")) << text;
    EXPECT_EQ(notes().back(), "LogLevels reset by process 9: Database, UI");
}

TEST_F(LgServiceControl, AResetWithoutChangesIsNotNoted)
{
    control.answerTo("reset\n");
    EXPECT_TRUE(notes().empty());
}

TEST_F(LgServiceControl, ResetLeavesWhatTheProgramHasSetItself)
{
    control.answerTo("set\nDatabase=Tracing\nUI=Tracing\n");
    LgMajorGroup::parse("Database=Error");
    control.answerTo("reset\n");
    EXPECT_EQ(levelsOf("Database"), 0xE0U);
    EXPECT_EQ(levelsOf("UI"), 0xE0U);
}

TEST_F(LgServiceControl, WhatTheProgramSetBetweenTwoChangesComesBack)
{
    control.answerTo("set\nDatabase=Tracing\n");
    LgMajorGroup::parse("Database=Fatal Error");
    control.answerTo("set\nDatabase=Informational\n");
    control.answerTo("reset\n");
    EXPECT_EQ(levelsOf("Database"), 0xC0U);
}

struct Refused
{
    const char* _name;
    const char* _request;
    const char* _answer;
};

constexpr Refused REFUSED[] = {
    {"AnUnknownGroup", "set\nby 1\nUI=Tracing\nNobody=Tracing\n",
     R"({"error":"there is no group \"Nobody\""})"},
    {"AnUnknownLevel", "set\nUI=Tracing\nUI=tracing\n",
     R"({"error":"\"tracing\" is not a level"})"},
    {"NoLevel", "set\nUI=Tracing\nUI\n", R"({"error":"\"UI\" names no level"})"},
    {"AnEmptyLine", "set\nUI=Tracing\n\n", R"({"error":"\"\" names no level"})"},
    {"AnUnknownWord", "dance\n", R"({"error":"this service has no answer to \"dance\""})"},
    {"Nothing", "", R"({"error":"this service has no answer to \"\""})"},
};

TEST_F(LgServiceControl, WhatIsRefusedChangesNothing)
{
    for (const Refused& row : REFUSED)
    {
        SCOPED_TRACE(row._name);
        EXPECT_EQ(control.answerTo(row._request), row._answer);
        EXPECT_EQ(levelsOf("UI"), 0xE0U);
    }
    EXPECT_TRUE(notes().empty());
}

TEST_F(LgServiceControl, AGroupMayHaveAnEqualsSignInItsName)
{
    LgMajorGroup::getInstanceForName("by a=b");
    control.answerTo("set\nby a=b=Tracing\n");
    EXPECT_EQ(levelsOf("by a=b"), 0xFCU);
}

TEST(LgServiceControlFile, AFileThatCannotBeMadeIsReported)
{
    const support::TempDir dir;
    Zu::LgServiceControl::Settings settings;
    settings._fileDirectory = dir.file("missing") + "/";
    testing::internal::CaptureStderr();
    Zu::LgServiceControl control(settings);
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text.rfind("The log service can't be asked by other processes: ", 0), 0U) << text;
    control.answerIfAsked();
}

// Writes a request with this number and hash; a right one counts on.
class Forger
{
public:
    explicit Forger(const std::string& path)
    {
        if (_peer.open(path) != Zu::LgControlPeer::Outcome::Opened)
            throw std::runtime_error("the control file can't be opened");
    }

    void write(const std::string& text, std::uint32_t length, std::uint64_t hash,
               std::uint64_t number)
    {
        const LgControl::Text facts = {length, 0, hash};
        _peer.write(LgControl::REQUEST_AT, text.data(), text.size());
        _peer.write(offsetof(LgControl::Header, _request), &facts, sizeof facts);
        _peer.write(offsetof(LgControl::Header, _requestNumber), &number, sizeof number);
    }

    // The answer to a proper request of this number.
    std::string ask(const std::string& text, std::uint64_t number)
    {
        write(text, static_cast<std::uint32_t>(text.size()),
              LgControl::hashOf(text.data(), text.size(), number), number);
        LgControl::Header header{};
        do
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            _peer.read(0, &header, sizeof header);
        } while (header._answerNumber != number && _peer.isAlive());
        std::string answer(std::min(header._answer._length, LgControl::MOST_ANSWER), '\0');
        _peer.read(LgControl::ANSWER_AT, answer.data(), answer.size());
        return answer;
    }

private:
    Zu::LgControlPeer _peer;
};

TEST(LgServiceControlFile, ARunningServiceAnswersAndLogsByItsNewLevels)
{
    app::Controlled process;
    {
        Forger asker(process.waitForFile());
        EXPECT_TRUE(contains(asker.ask("status\n", 1), R"("name":"Database")"));
        EXPECT_TRUE(
            contains(asker.ask("set\nby 7\nDatabase=Informational\n", 2), R"("changed":[{)"));
        const std::string log = process.waitForText("Informational: Table row ");
        EXPECT_TRUE(contains(log, "LogLevels set by process 7: Database=Informational"));
    }
    EXPECT_EQ(process.end("stop").exitCode, 0);
    // Windows removes it when nobody has it open any more.
    EXPECT_TRUE(process.controlFiles().empty());
}

TEST(LgServiceControlFile, ForgedRequestsAreIgnored)
{
    app::Controlled process;
    Forger asker(process.waitForFile());
    asker.write("status\n", 7, 1, 9);
    asker.write("status\n", 0xFFFFFFFF, 1, 10);
    asker.write(std::string(LgControl::SIZE - LgControl::REQUEST_AT, 'x'), 0x7FFFFFFF, 0,
                ~std::uint64_t{0});
    EXPECT_TRUE(contains(asker.ask("status\n", 12), R"("process":)"));
    EXPECT_EQ(process.end("stop").exitCode, 0);
}

TEST(LgServiceControlFile, TheOptionTurnsItOff)
{
    app::Controlled process(support::Environment{{"ZU_LOG_SERVICE_CONTROL", "off"}});
    EXPECT_EQ(process.end("stop").exitCode, 0);
    EXPECT_TRUE(process.controlFiles().empty());
}

TEST(LgServiceControlFile, TheNextServiceRemovesWhatAKilledOneLeft)
{
    app::Controlled process;
    const std::string path = process.waitForFile();
    process.end("kill");
    Zu::LgServiceControl::Settings settings;
    settings._fileDirectory = process.directory();
    const Zu::LgServiceControl control(settings);
    const std::vector<std::string> files = process.controlFiles();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_NE(process.directory() + files.front(), path);
}

} // namespace
