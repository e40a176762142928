#include "app/lgServiceCompressor.h"

#include "app/brackets.h"
#include "app/lgService.h"
#include "base/lgEvent.h"
#include "support/fileTest.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <thread>

ZU_DEFINE_LOG_GROUP(Pack);

namespace
{

namespace fs = std::filesystem;
using support::Brackets;
using Zu::LgService;
using Zu::LgServiceCompressor;

class LgServiceCompressorTest : public testing::Test
{
protected:
    LgServiceCompressorTest()
    {
        ZU_START_LOG_GROUP("Pack", Pack);
        _options._directory = _dir.path();
        _options._compress = true;
        // Each file has one event.
        _options._rotateSize = 2000;
        _options._keptFiles = 3;
    }

    ~LgServiceCompressorTest() override
    {
        LgServiceCompressor::setFactory(nullptr);
        ZU_STOP_LOG_GROUP(Pack);
    }

    // The names of the rotated files of the events.
    std::set<std::string> rotated() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(_dir.path()))
        {
            const std::string name = entry.path().filename().string();
            if (name.rfind("events.log.", 0) == 0) names.insert(name);
        }
        return names;
    }

    // A temporary file may be among the names, and a file and its original.
    std::set<std::string> rotatedNumbers() const
    {
        std::set<std::string> numbers;
        for (const std::string& name : rotated())
            if (name.find("compressing") == std::string::npos)
                numbers.insert(name.substr(0, std::string("events.log.1").size()));
        return numbers;
    }

    static void logOne(const LgService& service, int number)
    {
        ZU_LOG_WARNING(Pack, "number " << number << ' ' << std::string(900, 'x') << " end");
        service.flush(std::chrono::minutes(10));
    }

    support::TempDir _dir;
    support::RunningLogger _logger;
    Zu::LgServiceOptions _options;
};

TEST_F(LgServiceCompressorTest, WithoutOneAServiceSaysSoAndRotatedFilesStayAsTheyAre)
{
    const support::StreamCapture errors(std::cerr);
    const LgService service(_options);
    EXPECT_EQ(errors.text(),
              "compress: \"true\" can't be used, and rotated files stay as they are: expected a "
              "program that includes \"appZlib/lgServiceGzip.h\" or has a compressor\n");
    for (int i = 0; i < 3; ++i) logOne(service, i);
    EXPECT_EQ(rotated(), (std::set<std::string>{"events.log.1", "events.log.2"}));
    const std::string shown = support::coutOf([&] { service.displaySetup(); });
    EXPECT_NE(shown.find("compress: false"), std::string::npos);
}

TEST_F(LgServiceCompressorTest, WithoutTheOptionNothingIsCompressed)
{
    LgServiceCompressor::setFactory(&Brackets::make);
    _options._compress = false;
    {
        const support::StreamCapture errors(std::cerr);
        const LgService service(_options);
        for (int i = 0; i < 3; ++i) logOne(service, i);
        EXPECT_EQ(errors.text(), "");
    }
    EXPECT_EQ(rotated(), (std::set<std::string>{"events.log.1", "events.log.2"}));
}

TEST_F(LgServiceCompressorTest, CompressesEachRotatedFileAndThoseOfEarlierRuns)
{
    _options._compress = false;
    {
        const LgService service(_options);
        logOne(service, 0);
        logOne(service, 1);
    }
    LgServiceCompressor::setFactory(&Brackets::make);
    _options._compress = true;
    {
        const LgService service(_options);
        while (rotated() != std::set<std::string>{"events.log.1.gz"}) std::this_thread::yield();
        logOne(service, 2);
        while (rotated() != std::set<std::string>{"events.log.1.gz", "events.log.2.gz"})
            std::this_thread::yield();
    }
    for (int i = 0; i < 2; ++i)
    {
        const std::string text =
            support::readFile(_dir.file("events.log." + std::to_string(2 - i) + ".gz"));
        EXPECT_EQ(text.front(), '[');
        EXPECT_EQ(text.back(), ']');
        EXPECT_NE(text.find("Pack number " + std::to_string(i) + ' '), std::string::npos);
    }
    // Switched off again, they are counted as before.
    _options._compress = false;
    const LgService service(_options);
    for (int i = 3; i < 5; ++i) logOne(service, i);
    EXPECT_EQ(rotated(),
              (std::set<std::string>{"events.log.1", "events.log.2", "events.log.3.gz"}));
}

TEST_F(LgServiceCompressorTest, NoMoreFilesAreKeptThanTheOptionSays)
{
    LgServiceCompressor::setFactory(&Brackets::make);
    const LgService service(_options);
    for (int i = 0; i < 12; ++i)
    {
        logOne(service, i);
#ifdef _WIN32
        // The name of a file that was removed stays until the compressor closes the file.
        while (rotatedNumbers().size() > 3) std::this_thread::yield();
#else
        EXPECT_LE(rotatedNumbers().size(), 3U);
#endif
    }
    const std::set<std::string> all{"events.log.1.gz", "events.log.2.gz", "events.log.3.gz"};
    while (rotated() != all) std::this_thread::yield();
}

} // namespace
