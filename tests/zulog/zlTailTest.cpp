#include "zulog/zlTail.h"

#include "logTexts.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <zlib.h>

namespace
{

using logTexts::ORIGIN;
using logTexts::tickLine;
using support::writeFile;
using Zu::ZlPlace;
using Zu::ZlTail;
namespace fs = std::filesystem;

constexpr const char* MISSING = "lines may be missing";

class ZlTailTest : public testing::Test
{
protected:
    static std::string line(std::uint32_t number)
    {
        return tickLine(number, "Error: A " + std::to_string(number));
    }

    void append(const std::string& text) const
    {
        std::ofstream(_log, std::ios::binary | std::ios::app) << text;
    }

    static void compress(const std::string& name, const std::string& text)
    {
        gzFile file = gzopen((name + ".gz").c_str(), "wb");
        if (!text.empty()) gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
        gzclose(file);
        fs::remove(name);
    }

    void start(std::optional<ZlPlace> place = {}, bool areRotatedAdded = false)
    {
        ZlTail::Start from;
        from._place = place;
        from._areRotatedAdded = areRotatedAdded;
        _tail = std::make_unique<ZlTail>(_log, from, _reports, Zu::ZlReader::Options());
    }

    // As large a head as is compared, and lines behind it.
    static std::string headAnd(std::uint32_t number, std::uint32_t lines)
    {
        std::string text = ORIGIN;
        while (text.size() < ZlPlace::LARGEST_HEAD) text += line(0);
        for (std::uint32_t i = 0; i < lines; ++i) text += line(number);
        return text;
    }

    // The texts of all that is there now, with blanks between them.
    std::string look()
    {
        std::string texts;
        _tail->look();
        for (int i = 0; i < 2; ++i)
        {
            while (_tail->next())
            {
                texts.append(texts.empty() ? "" : " ").append(_tail->getRecord()._text);
                _place = _tail->getPlace();
                _tail->complete(*_place);
                _tail->take();
            }
            _tail->release(false);
        }
        return texts;
    }

    std::size_t countMissing() const
    {
        std::size_t count = 0;
        const std::string reports = _reported.str();
        for (std::size_t i = 0; (i = reports.find(MISSING, i)) != std::string::npos; ++i) ++count;
        return count;
    }

    support::TempDir _directory;
    const std::string _log = _directory.file("a.log");
    std::ostringstream _reported;
    Zu::ZlReports _reports{_reported};
    std::unique_ptr<ZlTail> _tail;
    std::optional<ZlPlace> _place;
};

TEST_F(ZlTailTest, PlacesHaveTheHeadUpToThem)
{
    const std::string text = ORIGIN + line(1) + line(2);
    append(text);
    start();
    ASSERT_TRUE(_tail->next());
    const ZlPlace first = _tail->getPlace();
    _tail->take();
    const std::size_t size = text.size() - line(2).size();
    EXPECT_EQ(first._offset, size);
    EXPECT_EQ(first._headSize, size);
    EXPECT_EQ(first._head, Zu::zlHashOf(text.substr(0, size)));
    look();
    EXPECT_EQ(_place->_offset, text.size());
    EXPECT_EQ(_place->_head, Zu::zlHashOf(text));
}

TEST_F(ZlTailTest, HeadsEndAtTheirLargestSize)
{
    std::string text = ORIGIN;
    for (std::uint32_t i = 0; i < 1000; ++i) text += line(i);
    append(text);
    start();
    look();
    EXPECT_EQ(_place->_offset, text.size());
    EXPECT_EQ(_place->_headSize, ZlPlace::LARGEST_HEAD);
    EXPECT_EQ(_place->_head, Zu::zlHashOf(text.substr(0, ZlPlace::LARGEST_HEAD)));
}

TEST_F(ZlTailTest, GoesOnInAFileThatWasCompressed)
{
    const std::string text = ORIGIN + line(1);
    append(text);
    start();
    EXPECT_EQ(look(), "1");
    // On Windows the name of an open file is not free again when that was removed.
    _tail.reset();
    compress(_log, text + line(2));
    fs::rename(_log + ".gz", _log + ".1.gz");
    append(ORIGIN + line(3));
    start(_place);
    EXPECT_EQ(look(), "2 3");
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlTailTest, AFileThatWasEmptiedIsReportedOnce)
{
    append(ORIGIN + line(1) + line(2));
    start();
    EXPECT_EQ(look(), "1 2");
    writeFile(_log, ORIGIN + line(3));
    EXPECT_EQ(look(), "3");
    EXPECT_EQ(countMissing(), 1U) << _reported.str();
}

// Nothing would be read up to the old place otherwise.
TEST_F(ZlTailTest, AFileThatWasEmptiedAndHasGrownBeyondItsOldEndIsReadFromItsBeginning)
{
    append(ORIGIN + line(1) + line(2));
    start();
    EXPECT_EQ(look(), "1 2");
    append(line(3));
    EXPECT_EQ(look(), "3");
    EXPECT_EQ(countMissing(), 0U) << _reported.str();
    writeFile(_log, ORIGIN + line(4) + line(5) + line(6) + line(7) + line(8));
    EXPECT_EQ(look(), "4 5 6 7 8");
    EXPECT_EQ(countMissing(), 1U) << _reported.str();
    append(line(9));
    EXPECT_EQ(look(), "9");
    EXPECT_EQ(countMissing(), 1U) << _reported.str();
}

// Many times as long as what is compared, in steps of all lengths.
TEST_F(ZlTailTest, AFileThatGrowsIsNotTakenForAnother)
{
    append(ORIGIN);
    start();
    for (std::uint32_t count = 1; count < 200; ++count)
    {
        std::string expected;
        std::string more;
        for (std::uint32_t i = 0; i < count; ++i)
        {
            more += line(count);
            expected += (i > 0 ? " " : "") + std::to_string(count);
        }
        append(more);
        ASSERT_EQ(look(), expected);
    }
    EXPECT_EQ(countMissing(), 0U) << _reported.str();
}

TEST_F(ZlTailTest, AFileThatIsShorterThanThePlaceIsReadFromItsBeginning)
{
    std::string text = ORIGIN;
    for (std::uint32_t i = 0; text.size() < 2 * ZlPlace::LARGEST_HEAD; ++i) text += line(0);
    append(text);
    start();
    look();
    const std::string shorter =
        text.substr(0, text.find('\n', ZlPlace::LARGEST_HEAD) + 1) + line(7);
    writeFile(_log, shorter);
    start(_place);
    const std::string texts = look();
    EXPECT_EQ(texts.substr(0, 1), "0");
    EXPECT_EQ(texts.back(), '7');
    EXPECT_EQ(countMissing(), 1U) << _reported.str();
}

// The hash is that of the last bytes in front of the place, of all if there are fewer.
TEST_F(ZlTailTest, PlacesAreCompletedByWhatIsInFrontOfThem)
{
    std::string text = ORIGIN;
    append(text + line(0));
    start();
    look();
    EXPECT_EQ(_place->_last, Zu::zlHashOf(text + line(0)));
    for (std::uint32_t i = 0; i < 1000; ++i) text += line(i);
    writeFile(_log, text);
    start();
    look();
    const std::size_t begin = text.size() - ZlPlace::LARGEST_LAST;
    EXPECT_EQ(_place->_last, Zu::zlHashOf(std::string_view(text).substr(begin)));
}

TEST_F(ZlTailTest, OnlyPlacesSinceTheLastLookAreCompleted)
{
    std::string text = ORIGIN;
    for (std::uint32_t i = 0; i < 1000; ++i) text += line(i);
    append(text);
    start();
    ASSERT_TRUE(_tail->next());
    ZlPlace first = _tail->getPlace();
    _tail->take();
    look();
    _tail->complete(first);
    EXPECT_EQ(first._last, Zu::zlHashOf(std::string_view(text).substr(0, first._offset)));
    append(line(7));
    EXPECT_EQ(look(), "7");
    ZlPlace second = first;
    _tail->complete(second);
    EXPECT_EQ(second._last, std::nullopt);
}

TEST_F(ZlTailTest, TheEndOfAFileThatWasLeftIsCompleted)
{
    const std::string text = ORIGIN + line(1);
    append(text);
    start();
    EXPECT_EQ(look(), "1");
    ZlPlace left = *_place;
    fs::rename(_log, _log + ".1");
    append("");
    EXPECT_EQ(look(), "");
    left._last.reset();
    _tail->complete(left);
    EXPECT_EQ(left._last, Zu::zlHashOf(text));
    --left._offset;
    left._last.reset();
    _tail->complete(left);
    EXPECT_EQ(left._last, std::nullopt);
}

struct Replacement
{
    const char* _name;
    // What is behind the same head now, in front of line 7. There were 100 lines of number 0.
    std::uint32_t _number;
    std::uint32_t _lines;
    bool _isHashKnown;
    bool _isCompressed;
    bool _isNoticed;
};

constexpr Replacement REPLACEMENTS[] = {
    {"the same bytes", 0, 100, true, false, false},
    {"other bytes, of the same size", 9, 100, true, false, true},
    {"other bytes, and more", 9, 150, true, false, true},
    {"the same bytes, compressed", 0, 100, true, true, false},
    {"other bytes, compressed", 9, 150, true, true, true},
    {"fewer bytes", 0, 98, true, false, true},
    {"fewer bytes, with no hash", 0, 98, false, false, true},
    // A place of version 1 has no hash.
    {"other bytes, with no hash", 9, 100, false, false, false},
};

TEST_F(ZlTailTest, AFileThatWasWrittenAnewBeyondThePlaceIsReadFromItsBeginning)
{
    for (const Replacement& row : REPLACEMENTS)
    {
        SCOPED_TRACE(row._name);
        _reported.str("");
        _tail.reset();
        fs::remove(_log + ".1.gz");
        writeFile(_log, headAnd(0, 100));
        start();
        look();
        if (!row._isHashKnown) _place->_last.reset();
        _tail.reset();
        const std::string text = headAnd(row._number, row._lines) + line(7);
        writeFile(_log, text);
        if (row._isCompressed)
        {
            compress(_log, text);
            fs::rename(_log + ".gz", _log + ".1.gz");
        }
        start(_place);
        const std::string texts = look();
        EXPECT_EQ(texts.empty() ? '-' : texts.back(), '7');
        EXPECT_EQ(texts.size() > 1, row._isNoticed) << texts;
        EXPECT_EQ(countMissing(), row._isNoticed ? 1U : 0U) << _reported.str();
    }
}

TEST_F(ZlTailTest, AnEmptyFileHasNothingThatWouldComeAgain)
{
    append("");
    const std::string old = ORIGIN + line(1);
    writeFile(_log + ".1", old);
    start();
    EXPECT_EQ(look(), "");
    fs::rename(_log + ".1", _log + ".3");
    fs::rename(_log, _log + ".2");
    compress(_log + ".2", "");
    append(ORIGIN + line(2));
    EXPECT_EQ(look(), "2");
}

TEST_F(ZlTailTest, BeginsWithTheRotatedFilesWhereThatIsAsked)
{
    writeFile(_log + ".2", ORIGIN + line(1));
    writeFile(_log + ".1", ORIGIN + line(2));
    append(ORIGIN + line(3));
    start({}, true);
    EXPECT_EQ(look(), "1 2 3");
    start();
    EXPECT_EQ(look(), "3");
}

} // namespace
