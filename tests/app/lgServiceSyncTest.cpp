#include "app/lgServiceSync.h"

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "base/lgLog.h"
#include "base/osFilePath.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

ZU_DEFINE_LOG_GROUP(Disk);

namespace
{

using Zu::LgService;
using Zu::LgServiceFile;
using Zu::LgServiceSync;
using Paths = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr std::chrono::minutes LONG{10};

// What was stored, and what the next calls do.
std::mutex theMutex;
Paths stored;
std::atomic<int> failures{0};
std::promise<void>* entered = nullptr;
std::shared_future<void> gate;

bool store(LgServiceFile& file)
{
    {
        const std::lock_guard guard(theMutex);
        stored.push_back(file.getPath());
    }
    if (entered)
    {
        std::exchange(entered, nullptr)->set_value();
        gate.wait();
    }
    if (failures > 0)
    {
        --failures;
        return false;
    }
    return file.sync();
}

// What was stored since the last call.
Paths takeStored()
{
    const std::lock_guard guard(theMutex);
    return std::exchange(stored, {});
}

class LgServiceSyncTest : public testing::Test
{
protected:
    LgServiceSyncTest()
    {
        LgServiceSync::_store = &store;
        _options._directory = _dir.path();
        _options._sync = true;
        ZU_START_LOG_GROUP("Disk", Disk);
    }

    ~LgServiceSyncTest() override
    {
        ZU_STOP_LOG_GROUP(Disk);
        LgServiceSync::_store = _former;
        failures = 0;
        takeStored();
        Zu::LgServiceLog::setSettings({});
    }

    std::string events() const
    {
        return (Zu::OsFilePath(_dir.path().c_str()) + "events.log").getChars();
    }

    static std::size_t countOf(const std::string& text, const std::string& part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1))
            ++count;
        return count;
    }

    support::TempDir _dir;
    support::RunningLogger _logger;
    Zu::LgServiceOptions _options;
    bool (*const _former)(LgServiceFile&) = LgServiceSync::_store;
};

TEST_F(LgServiceSyncTest, WithoutTheOptionNothingIsForcedToTheDisk)
{
    const LgService service;
    ZU_LOG_WARNING(Disk, "text");
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths());
}

TEST_F(LgServiceSyncTest, AFlushStoresWhatWasWrittenSinceTheLastOne)
{
    const LgService service(_options);
    ZU_LOG_WARNING(Disk, "text");
    EXPECT_TRUE(service.flush(LONG));
    // The banners of the other file are stored, too.
    EXPECT_EQ(takeStored().size(), 2U);
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths());
    ZU_LOG_WARNING(Disk, "another");
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths{events()});
    ZU_LOG_WARNING(Disk, "a third");
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths{events()});
}

TEST_F(LgServiceSyncTest, ADiskThatFailsMakesTheFlushFailAndIsReportedOnce)
{
    const LgService service(_options);
    EXPECT_TRUE(service.flush(LONG));
    takeStored();
    ZU_LOG_WARNING(Disk, "text");
    const support::StreamCapture errors(std::cerr);
    const std::string report = "The log file \"" + events() + "\" can't be forced to the disk: ";
    for (int i = 0; i < 2; ++i)
    {
        // The events file comes first.
        failures = 1;
        EXPECT_FALSE(service.flush(LONG));
        const Paths tried = takeStored();
        ASSERT_FALSE(tried.empty());
        EXPECT_EQ(tried.front(), events());
    }
    EXPECT_EQ(countOf(errors.text(), report), 1U) << errors.text();
    // All files again, though nothing was written.
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored().size(), 2U);
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths());
    ZU_LOG_WARNING(Disk, "another");
    failures = 1;
    EXPECT_FALSE(service.flush(LONG));
    EXPECT_EQ(countOf(errors.text(), report), 2U) << errors.text();
}

TEST_F(LgServiceSyncTest, AFlushFailsWhileAFileCanNotBeWritten)
{
    fs::create_directory(events());
    const support::StreamCapture errors(std::cerr);
    const LgService service(_options);
    ZU_LOG_WARNING(Disk, "text");
    EXPECT_FALSE(service.flush(LONG));
    fs::remove(events());
    // Tries come with pauses; each flush looks whether one has succeeded.
    while (!service.flush(LONG)) std::this_thread::yield();
    const Paths last = takeStored();
    EXPECT_NE(std::find(last.begin(), last.end(), events()), last.end());
}

TEST_F(LgServiceSyncTest, TheWritingThreadGoesOnWhileTheDiskIsWaitedFor)
{
    const LgService service(_options);
    ZU_LOG_WARNING(Disk, "text");
    std::promise<void> isEntered;
    std::promise<void> goOn;
    gate = goOn.get_future().share();
    entered = &isEntered;
    auto flushed = std::async(std::launch::async, [&service] { return service.flush(LONG); });
    isEntered.get_future().wait();
    ZU_LOG_WARNING(Disk, "meanwhile");
    const auto isThere = [this]
    {
        std::ifstream file(events(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        return text.find("Disk meanwhile") != std::string::npos;
    };
    while (!isThere()) std::this_thread::yield();
    // Another one must not find that all is stored.
    EXPECT_FALSE(service.flush(std::chrono::milliseconds(1)));
    goOn.set_value();
    EXPECT_TRUE(flushed.get());
    takeStored();
    EXPECT_TRUE(service.flush(LONG));
    EXPECT_EQ(takeStored(), Paths{events()});
}

TEST_F(LgServiceSyncTest, WhoeverWaitedWhileAnothersStoringFailedHasFailed)
{
    std::mutex reading;
    LgServiceSync sync(reading);
    const auto end = LgServiceSync::Clock::now() + LONG;
    EXPECT_TRUE(sync.store(sync.getFailures(), end));
    const std::uint64_t before = sync.getFailures();
    auto* const log =
        dynamic_cast<Zu::LgServiceLog*>(Zu::LgLog::getLevelOutput(Zu::LgTypes::Error));
    ASSERT_NE(log, nullptr);
    const support::StreamCapture errors(std::cerr);
    *log << "text\n";
    failures = 1;
    EXPECT_FALSE(sync.store(before, end));
    EXPECT_EQ(sync.getFailures(), before + 1);
    EXPECT_FALSE(sync.store(before, end));
    EXPECT_TRUE(sync.store(before + 1, end));
}

} // namespace
