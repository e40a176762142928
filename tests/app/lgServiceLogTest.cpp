#include "app/lgServiceLog.h"

#include "app/lgServicePlatform.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "stress/hardEnd.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using support::StreamCapture;
using support::TempDir;
using Zu::LgServiceLog;
using Lines = std::vector<LgServiceLog::Line>;

// The clock of the tests.
LgServiceLog::Clock::time_point present;

class LgServiceLogTest : public testing::Test
{
protected:
    LgServiceLogTest()
    {
        present = LgServiceLog::Clock::time_point(std::chrono::hours(1));
        LgServiceLog::_now = [] { return present; };
        _origin._ticksPerSecond = 1000;
        _origin._host = "host";
        _dates = Zu::LgLog::getBanner() + Zu::lgOriginLine(_origin);
    }

    ~LgServiceLogTest() override
    {
        LgServiceLog::setSettings({});
        LgServiceLog::_now = &LgServiceLog::Clock::now;
    }

    void open()
    {
        _log = std::make_unique<LgServiceLog>(_path);
        _log->setOrigin(&_origin);
    }

    // As the service's thread does.
    void log(const std::string& text, bool isEvent = true)
    {
        const Lines lines{{static_cast<std::uint32_t>(text.size()), isEvent}};
        if (_log->prepare(text.size()))
            _log->write(text, lines);
        else
            _log->wait(text, lines);
    }

    static std::string read(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string read() const
    {
        return read(_path);
    }

    void put(const std::string& text) const
    {
        std::ofstream(_path, std::ios::binary) << text;
    }

    // A directory in the place of the file: it can't be opened.
    void block() const
    {
        fs::create_directory(_path);
    }

    void unblock() const
    {
        fs::remove(_path);
    }

    // As at the end of a service. Returns whether nothing is left.
    bool writeWaiting()
    {
        _log->tryNow();
        if (_log->prepare(0)) _log->write({}, {});
        return _log->getPending() == 0;
    }

    static void setLimit(std::uint64_t limit)
    {
        LgServiceLog::Settings settings;
        settings._pendingLimit = limit;
        LgServiceLog::setSettings(settings);
    }

    static void pass(int milliseconds)
    {
        present += std::chrono::milliseconds(milliseconds);
    }

    support::RunningLogger _logger;
    TempDir _dir;
    const std::string _path = _dir.file("events.log");
    Zu::LgLineOrigin _origin;
    std::string _dates;
    std::unique_ptr<LgServiceLog> _log;
};

TEST_F(LgServiceLogTest, DatesComeWithTheFirstLineAndNotBefore)
{
    open();
    *_log << Zu::LgLog::getBanner() << std::flush;
    EXPECT_FALSE(fs::exists(_path));
    log("one\n");
    EXPECT_EQ(read(), _dates + "one\n");
    log("two\n");
    *_log << "three\n" << 4 << '\n';
    EXPECT_EQ(read(), _dates + "one\ntwo\nthree\n4\n");
}

TEST_F(LgServiceLogTest, WithoutAnOriginTheBannerAloneDatesIt)
{
    open();
    _log->setOrigin(nullptr);
    log("one\n");
    EXPECT_EQ(read(), Zu::LgLog::getBanner() + "one\n");
}

TEST_F(LgServiceLogTest, ANewOriginComesWithTheNextLine)
{
    open();
    log("one\n");
    Zu::LgLineOrigin other = _origin;
    other._wall = 5;
    _log->setOrigin(&other);
    EXPECT_EQ(read(), _dates + "one\n");
    log("two\n");
    _log->dateAgain();
    log("three\n");
    const std::string line = Zu::lgOriginLine(other);
    EXPECT_EQ(read(), _dates + "one\n" + line + "two\n" + line + "three\n");
}

TEST_F(LgServiceLogTest, LinesWithTicksAreDatedAgainBehindThoseOfOthers)
{
    for (const bool isDatedAgain : {true, false})
    {
        LgServiceLog::Settings settings;
        settings._isDatedAgain = isDatedAgain;
        LgServiceLog::setSettings(settings);
        fs::remove(_path);
        open();
        log("one\n");
        log("two\n");
        std::ofstream(_path, std::ios::binary | std::ios::app) << "of another process\n";
        log("three\n");
        log("four\n");
        const std::string line = isDatedAgain ? Zu::lgOriginLine(_origin) : "";
        EXPECT_EQ(read(), _dates + "one\ntwo\nof another process\n" + line + "three\nfour\n");
    }
}

TEST_F(LgServiceLogTest, HalfALineOfAnotherProcessIsEndedBefore)
{
    open();
    log("one\n");
    std::ofstream(_path, std::ios::binary | std::ios::app) << "half a l";
    log("two\n");
    log("three\n");
    EXPECT_EQ(read(), _dates + "one\nhalf a l\ntwo\nthree\n");
}

TEST_F(LgServiceLogTest, AFileThatExistsIsAppendedTo)
{
    put("earlier\n");
    open();
    log("one\n");
    EXPECT_EQ(read(), "earlier\n" + _dates + "one\n");
}

TEST_F(LgServiceLogTest, HalfALineAtTheEndOfAFileIsEndedBefore)
{
    put("earlier\nhalf a l");
    open();
    log("one\n");
    EXPECT_EQ(read(), "earlier\nhalf a l\n" + _dates + "one\n");
    log("two\n");
    EXPECT_EQ(read(), "earlier\nhalf a l\n" + _dates + "one\ntwo\n");
}

TEST_F(LgServiceLogTest, ThePlaceOfTheNextWriteIsKnownBefore)
{
    put("earlier\n");
    open();
    EXPECT_FALSE(_log->getPart());
    ASSERT_TRUE(_log->prepare(4));
    EXPECT_EQ(_log->getPrefix(), _dates);
    ASSERT_TRUE(_log->getPart());
    EXPECT_EQ(_log->getPart()->_offset, 8U);
    EXPECT_EQ(_log->getPart()->_identity, _log->file().getIdentity());
    _log->write("one\n", {{4, true}});
    EXPECT_EQ(_log->getPart()->_offset, 8 + _dates.size() + 4);
    ASSERT_TRUE(_log->prepare(4));
    EXPECT_EQ(_log->getPrefix(), "");
}

TEST_F(LgServiceLogTest, LinesWaitWhileTheFileFails)
{
    block();
    open();
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    std::string errors;
    {
        const StreamCapture capture(std::cerr);
        log("one\n");
        EXPECT_TRUE(_log->isFailing());
        log("two\n");
        pass(100);
        log("three\n");
        unblock();
        errors = capture.text();
        log("four\n");
        EXPECT_TRUE(_log->isFailing());
        EXPECT_EQ(capture.text(), errors);
        // The second pause is twice as long.
        pass(200);
        EXPECT_TRUE(_log->isTryDue());
        log("five\n");
        EXPECT_FALSE(_log->isFailing());
        EXPECT_EQ(capture.text(), errors + "The log file \"" + _path + "\" is written again.\n");
        log("six\n");
        EXPECT_EQ(capture.text(), errors + "The log file \"" + _path + "\" is written again.\n");
    }
    const std::string begin =
        "The log file \"" + _path + "\" can't be written, and is tried again: ";
    EXPECT_EQ(errors.compare(0, begin.size(), begin), 0) << errors;
    EXPECT_EQ(errors.find('\n'), errors.size() - 1) << errors;
    EXPECT_GT(errors.size(), begin.size() + 1);
    EXPECT_EQ(read(), _dates + "one\ntwo\nthree\nfour\nfive\nsix\n");
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before);
}

TEST_F(LgServiceLogTest, PausesGrowUpToTenSeconds)
{
    block();
    open();
    const StreamCapture errors(std::cerr);
    log("one\n");
    for (const int pause : {100, 200, 400, 800, 1600, 3200, 6400, 10000, 10000, 10000})
    {
        pass(pause - 1);
        EXPECT_FALSE(_log->isTryDue()) << pause;
        EXPECT_FALSE(_log->prepare(0)) << pause;
        pass(1);
        EXPECT_TRUE(_log->isTryDue()) << pause;
        EXPECT_FALSE(_log->prepare(0)) << pause;
    }
    // The next failure begins anew.
    unblock();
    pass(10000);
    log("two\n");
    EXPECT_FALSE(_log->isFailing());
    _log->reopen();
    fs::remove(_path);
    block();
    log("three\n");
    EXPECT_FALSE(_log->isTryDue());
    pass(100);
    EXPECT_TRUE(_log->isTryDue());
    _log->takeWaiting();
}

TEST_F(LgServiceLogTest, WhatWaitsIsBoundedAndWhatIsDroppedIsCounted)
{
    setLimit(10);
    block();
    open();
    const StreamCapture errors(std::cerr);
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    log("1234\n");
    log("line\n", false);
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before);
    for (int i = 1; i <= 5; ++i)
    {
        log("lost\n");
        EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + static_cast<std::uint64_t>(i));
    }
    // A line that does not count.
    log("none\n", false);
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 5);
    unblock();
    pass(100);
    log("later\n");
    const std::string text = read();
    const std::string note = _dates + "===== Not Written: 5 events since ";
    ASSERT_EQ(text.compare(0, note.size(), note), 0) << text;
    const std::string rest = text.substr(note.size());
    // A time of UTC with six decimals.
    EXPECT_EQ(rest.substr(4, 1), "-");
    EXPECT_EQ(rest.find("Z =====\n"), std::string("2026-11-22T22:10:51.123456").size()) << rest;
    EXPECT_EQ(rest.substr(rest.find('\n') + 1), "1234\nline\nlater\n");
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 5);
    // It is said once.
    log("more\n");
    EXPECT_EQ(read(), text + "more\n");
}

TEST_F(LgServiceLogTest, TheEndDoesNotWaitForThePause)
{
    block();
    open();
    const StreamCapture errors(std::cerr);
    log("one\n");
    EXPECT_FALSE(writeWaiting());
    unblock();
    EXPECT_TRUE(writeWaiting());
    EXPECT_EQ(read(), _dates + "one\n");
    EXPECT_TRUE(writeWaiting());
    EXPECT_EQ(read(), _dates + "one\n");
}

TEST_F(LgServiceLogTest, WhatIsGivenUpIsCountedAndWhatIsTakenIsNot)
{
    block();
    const StreamCapture errors(std::cerr);
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    open();
    log("one\n");
    log("two\n");
    log("three\n", false);
    _log->takeWaiting();
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before);
    log("four\n");
    log("five\n", false);
    _log->giveUp();
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 1);
    log("six\n");
    _log.reset();
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 2);
}

TEST_F(LgServiceLogTest, WhatIsTakenCanBeGivenBack)
{
    setLimit(10);
    block();
    open();
    const StreamCapture errors(std::cerr);
    log("one\n");
    log("two\n");
    log("dropped\n");
    const std::int64_t since = _log->getFailingSince();
    const LgServiceLog::Waiting taken = _log->takeWaiting();
    EXPECT_EQ(taken._text, "one\ntwo\n");
    ASSERT_EQ(taken._lines.size(), 2U);
    EXPECT_EQ(taken._dropped, 1U);
    EXPECT_EQ(taken._since, since);
    EXPECT_EQ(_log->getPending(), 0U);
    EXPECT_EQ(_log->getDropped(), 0U);
    unblock();
    open();
    _log->setWaiting(taken);
    EXPECT_EQ(_log->getFailingSince(), since);
    EXPECT_TRUE(_log->isTryDue());
    log("three\n");
    EXPECT_EQ(read(), _dates + LgServiceLog::notWrittenLine(1, since) + "one\ntwo\nthree\n");
}

// Whoever has copied what waits needs to copy only what is new, as long as this stays the same.
TEST_F(LgServiceLogTest, ChangesAreThoseThatAreNotAtTheEnd)
{
    setLimit(10);
    block();
    open();
    const StreamCapture errors(std::cerr);
    const std::uint64_t first = _log->getChanges();
    log("one\n");
    log("two\n");
    log("dropped\n");
    EXPECT_EQ(_log->getWaiting(), "one\ntwo\n");
    EXPECT_EQ(_log->getChanges(), first);
    setLimit(5);
    log("dropped\n");
    EXPECT_EQ(_log->getWaiting(), "one\n");
    EXPECT_NE(_log->getChanges(), first);
    const std::uint64_t second = _log->getChanges();
    unblock();
    EXPECT_TRUE(writeWaiting());
    EXPECT_NE(_log->getChanges(), second);
    const std::uint64_t third = _log->getChanges();
    log("written\n");
    EXPECT_EQ(_log->getChanges(), third);
}

// The disk is full, and not even the dates fit.
TEST_F(LgServiceLogTest, AFullDeviceFailsAtOnce)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no device that is always full.";
    _log = std::make_unique<LgServiceLog>("/dev/full");
    _log->setOrigin(&_origin);
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    {
        const StreamCapture errors(std::cerr);
        ASSERT_TRUE(_log->prepare(0));
        _log->write({}, {});
        EXPECT_TRUE(_log->isFailing());
        log("one\n");
        pass(100);
        log("two\n");
        EXPECT_EQ(errors.text(), "The log file \"/dev/full\" can't be written, and is tried again: "
                                 "No space left on device\n");
        EXPECT_FALSE(writeWaiting());
    }
    _log->giveUp();
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 2);
}

// If all that waited was dropped without being counted, a try has nothing to write.
TEST_F(LgServiceLogTest, ATryWithNothingToWriteEndsTheFailure)
{
    if (support::onWindows) GTEST_SKIP() << "Windows does not limit the size of files.";
    open();
    log("one\n");
    setLimit(0);
    const StreamCapture errors(std::cerr);
    const auto tryInVain = [this]
    {
        const stress::ResourceLimit limit(stress::Resource::FILE_SIZE, fs::file_size(_path));
        log("dropped\n", false);
    };
    {
        // The signal of a file that is too large ends with the thread.
        const Zu::LgServicePlatform::SignalBlock block;
        std::thread(tryInVain).join();
    }
    ASSERT_TRUE(_log->isFailing());
    pass(100);
    ASSERT_TRUE(_log->isTryDue());
    ASSERT_TRUE(_log->prepare(0));
    EXPECT_EQ(_log->getPrefix(), "");
    _log->write({}, {});
    EXPECT_FALSE(_log->isFailing());
    EXPECT_FALSE(_log->isTryDue());
    EXPECT_EQ(read(), _dates + "one\n");
}

TEST_F(LgServiceLogTest, AFileThatWasRenamedIsFollowedByANewOne)
{
    open();
    log("one\n");
    std::error_code error;
    fs::rename(_path, _dir.file("put away"), error);
    if (error) GTEST_SKIP() << "An open file can't be renamed here: " << error.message();
    log("two\n");
    EXPECT_EQ(read(_dir.file("put away")), _dates + "one\n");
    EXPECT_EQ(read(), _dates + "two\n");
    // And if somebody has made one already.
    fs::rename(_path, _dir.file("put away too"));
    put("");
    log("three\n");
    EXPECT_EQ(read(_dir.file("put away too")), _dates + "two\n");
    EXPECT_EQ(read(), _dates + "three\n");
}

TEST_F(LgServiceLogTest, AFileThatWasEmptiedIsDatedAgain)
{
    open();
    log("one\n");
    fs::resize_file(_path, 0);
    log("two\n");
    EXPECT_EQ(read(), _dates + "two\n");
}

TEST_F(LgServiceLogTest, ReopensByItsName)
{
    open();
    log("one\n");
    _log->reopen();
    fs::rename(_path, _dir.file("put away"));
    log("two\n");
    EXPECT_EQ(read(), _dates + "two\n");
}

TEST_F(LgServiceLogTest, RotatesBySize)
{
    const std::string line(50, 'x');
    LgServiceLog::Settings settings;
    settings._rotation._size = _dates.size() + 102;
    settings._rotation._kept = 2;
    LgServiceLog::setSettings(settings);
    open();
    for (int i = 0; i < 8; ++i) log(line.substr(1) + std::to_string(i) + "\n");
    const auto fileOf = [&](int first)
    {
        return _dates + line.substr(1) + std::to_string(first) + "\n" + line.substr(1) +
               std::to_string(first + 1) + "\n";
    };
    EXPECT_EQ(read(), fileOf(6));
    EXPECT_EQ(read(_path + ".1"), fileOf(4));
    EXPECT_EQ(read(_path + ".2"), fileOf(2));
    EXPECT_FALSE(fs::exists(_path + ".3"));
}

TEST_F(LgServiceLogTest, GoesToAnotherFile)
{
    open();
    log("one\n");
    _log->setPath(_dir.file("other"));
    EXPECT_EQ(_log->getPath(), _dir.file("other"));
    log("two\n");
    EXPECT_EQ(read(), _dates + "one\n");
    EXPECT_EQ(read(_dir.file("other")), _dates + "two\n");
}

} // namespace
