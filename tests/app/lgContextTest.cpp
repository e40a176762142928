#include "app/lgContext.h"

#include "app/lgLimit.h"
#include "app/lgService.h"
#include "base/lgEvent.h"
#include "base/lgMajorGroup.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "threadName.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Contexts);

namespace
{

using Zu::LgContext;
using Texts = std::vector<std::string>;

class LgContextTest : public testing::Test
{
protected:
    LgContextTest()
    {
        ZU_START_LOG_GROUP("ContextMajor", Contexts);
    }

    ~LgContextTest() override
    {
        ZU_STOP_LOG_GROUP(Contexts);
    }

    // The texts of the events, as far as they are those of the group.
    Texts texts() const
    {
        Texts texts;
        for (const std::string& line : _logger.linesOf("events.log"))
            if (const std::size_t at = line.find("Contexts "); at != std::string::npos)
                texts.push_back(line.substr(at + 9));
        return texts;
    }

    support::RunningLogger _logger;
};

// Raises when it is inserted.
struct Bad
{
};

Zu::LgStream& operator<<(Zu::LgStream&, const Bad&)
{
    throw std::runtime_error("it can't be inserted");
}

TEST_F(LgContextTest, StandsInEachLineOfItsThread)
{
    {
        const Zu::LgService service;
        ZU_LOG_WARNING(Contexts, "before");
        {
            const LgContext request("request", 4711);
            ZU_LOG_WARNING(Contexts, "outer");
            {
                const LgContext user("user", "Ann Lee");
                const LgContext flag("retry", true);
                const LgContext large("bytes", UINT64_MAX);
                const LgContext least("offset", std::int64_t{-5});
                ZU_LOG_WARNING(Contexts, "inner " << 7);
                std::thread([] { ZU_LOG_WARNING(Contexts, "other thread"); }).join();
            }
            EXPECT_THROW(ZU_LOG_WARNING(Contexts, "lost " << Bad()), std::runtime_error);
            ZU_LOG_EVERY(Contexts, ::Zu::LgTypes::Warning, 1, "limited");
        }
        ZU_LOG_WARNING(Contexts, "after");
    }
    EXPECT_EQ(texts(), (Texts{"before", "outer {request=4711}",
                              "inner 7 {request=4711, user=\"Ann Lee\", retry=true, "
                              "bytes=18446744073709551615, offset=-5}",
                              "other thread", "limited {request=4711}", "after"}));
}

TEST_F(LgContextTest, ThreadsHaveNames)
{
    {
        const Zu::LgService service;
        std::thread(
            []
            {
                LgContext::nameThread("worker");
                ZU_LOG_WARNING(Contexts, "named");
                const LgContext job("job", 7);
                ZU_LOG_WARNING(Contexts, "at work");
                LgContext::nameThread("");
                ZU_LOG_WARNING(Contexts, "nameless");
            })
            .join();
    }
    EXPECT_EQ(texts(), (Texts{"named {thread=worker}", "at work {thread=worker, job=7}",
                              "nameless {job=7}"}));
}

TEST_F(LgContextTest, NamesOfThreadsAreThoseOfTheSystem)
{
    std::string name;
    std::string longName;
    std::string last;
    std::thread(
        [&]
        {
            LgContext::nameThread("w\xc3\xb6rker 3");
            name = systemNameOfThread();
            LgContext::nameThread("a rather long n\xc3\xa4me");
            longName = systemNameOfThread();
            LgContext::nameThread("");
            last = systemNameOfThread();
        })
        .join();
    EXPECT_EQ(name, "w\xc3\xb6rker 3");
    EXPECT_EQ(longName, support::onWindows ? "a rather long n\xc3\xa4me" : "a rather long n");
    EXPECT_EQ(last, longName);
}

TEST_F(LgContextTest, AnOptionShowsWhereStatementsAre)
{
    Zu::LgServiceOptions options;
    options._sourceLocation = true;
    int line = 0;
    {
        const Zu::LgService service(options);
        const LgContext request("request", 1);
        line = __LINE__ + 1;
        ZU_LOG_WARNING(Contexts, "here");
        ZU_LOG_AT_MOST(Contexts, ::Zu::LgTypes::Warning, 9, "there");
    }
    const auto placeOf = [](int at)
    { return " [lgContextTest.cpp:" + std::to_string(at) + "] {request=1}"; };
    EXPECT_EQ(texts(), (Texts{"here" + placeOf(line), "there" + placeOf(line + 1)}));
    {
        const Zu::LgService service;
        ZU_LOG_WARNING(Contexts, "without");
    }
    EXPECT_EQ(texts().back(), "without");
}

TEST_F(LgContextTest, WithoutAServiceItStandsInStandardOutput)
{
    const support::StreamCapture out(std::cout);
    const LgContext request("request", 1);
    ZU_LOG_WARNING(Contexts, "direct");
    EXPECT_EQ(out.text(), "Contexts direct {request=1}\n");
}

} // namespace
