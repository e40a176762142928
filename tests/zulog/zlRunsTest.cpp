#include "zulog/zlRuns.h"

#include <cstdint>
#include <deque>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

namespace
{

using Zu::ZlRecord;
using Zu::ZlRuns;

class ZlRunsTest : public testing::Test
{
protected:
    // Returns whether it is the first mark of a start.
    bool add(ZlRecord::Kind kind, std::optional<std::uint32_t> process, const std::string& file)
    {
        ZlRecord record;
        record._kind = kind;
        record._file = &_files.emplace_back(file);
        Zu::ZlOwner& owner = _owners.emplace_back();
        owner._process = process;
        owner._host = "web1";
        record._owner = &owner;
        return runs.add(record);
    }

    ZlRuns runs;

private:
    std::deque<std::string> _files;
    std::deque<Zu::ZlOwner> _owners;
};

// A row is a list of marks: "+" starts, "-" stops, "!" is a recovery; then the process, 0 for an
// unknown one, and the file.
TEST_F(ZlRunsTest, StartsAndStopsArePaired)
{
    struct Row
    {
        const char* _marks;
        std::uint64_t _started;
        std::uint64_t _stopped;
        std::uint64_t _unordered;
        std::uint64_t _open;
    };
    const Row rows[] = {{"+1a", 1, 0, 0, 1},
                        {"+1a -1a", 1, 1, 0, 0},
                        {"+1a -1a +2a -2a", 2, 2, 0, 0},
                        {"+1a +2a -2a", 2, 1, 1, 0},
                        {"+1a +2a +3a", 3, 0, 2, 1},
                        // In another log, nothing follows from a start.
                        {"+1a +2b", 2, 0, 0, 2},
                        // Two processes that share a log.
                        {"+1a +2a -1a -2a", 2, 2, 0, 0},
                        // One process has two files, and a rotated one.
                        {"+1a +1b -1a -1b", 1, 1, 0, 0},
                        {"+1a +1a +1a -1a", 1, 1, 0, 0},
                        {"+1a +2a +1a -1a -2a", 2, 2, 0, 0},
                        // Cut at the beginning.
                        {"-1a", 0, 1, 0, 0},
                        {"-1a +2a", 1, 1, 0, 1},
                        // A recovery says how the process ended.
                        {"+1a !1a", 1, 0, 1, 0},
                        {"+1a +2a !1a -2a", 2, 1, 1, 0},
                        {"!1a", 0, 0, 0, 0},
                        {"+1a !1b +2b", 2, 0, 1, 1},
                        // A stop that does not say whose it is: the second one in a log of two
                        // files each, and one of two that are open.
                        {"+1a +1b +2a +2b -1a -2b -0b -2a", 2, 2, 0, 0},
                        {"+1a +2a -1a -0a", 2, 2, 0, 0},
                        {"+1a +1b +2b -1a -0b", 2, 2, 0, 0},
                        {"+1a +2a -0a", 2, 1, 1, 0},
                        {"+1a -0a -0a", 1, 2, 0, 0},
                        // Who does not say which process it is has the log to itself.
                        {"+0a", 1, 0, 0, 1},
                        {"+0a -0a +0a -0a", 2, 2, 0, 0},
                        {"+0a +0a -0a", 2, 1, 1, 0},
                        {"+0a +0b -0b", 2, 1, 0, 1},
                        {"-0a", 0, 1, 0, 0},
                        {"+0a +1a -1a", 2, 1, 1, 0},
                        {"+1a +0a -0a", 2, 1, 1, 0}};
    for (const Row& row : rows)
    {
        runs = {};
        std::istringstream marks(row._marks);
        for (std::string mark; marks >> mark;)
        {
            const auto process = static_cast<std::uint32_t>(mark[1] - '0');
            const ZlRecord::Kind kind = mark[0] == '+'   ? ZlRecord::Kind::Start
                                        : mark[0] == '-' ? ZlRecord::Kind::Stop
                                                         : ZlRecord::Kind::RecoveryBegin;
            add(kind, process == 0 ? std::nullopt : std::optional(process), mark.substr(2));
        }
        EXPECT_EQ(runs.getStarted(), row._started) << row._marks;
        EXPECT_EQ(runs.getStopped(), row._stopped) << row._marks;
        EXPECT_EQ(runs.getUnordered(), row._unordered) << row._marks;
        EXPECT_EQ(runs.getOpen(), row._open) << row._marks;
    }
}

TEST_F(ZlRunsTest, TheFirstMarkOfAStartIsTheStart)
{
    EXPECT_TRUE(add(ZlRecord::Kind::Start, 1, "a"));
    EXPECT_FALSE(add(ZlRecord::Kind::Start, 1, "b"));
    EXPECT_FALSE(add(ZlRecord::Kind::Stop, 1, "a"));
    EXPECT_FALSE(add(ZlRecord::Kind::Event, 1, "a"));
    EXPECT_TRUE(add(ZlRecord::Kind::Start, 2, "a"));
    EXPECT_TRUE(add(ZlRecord::Kind::Start, std::nullopt, "a"));
}

TEST_F(ZlRunsTest, ARotatedFileIsOfItsLog)
{
    for (const char* const rotated : {"a.log.1", "a.log.17", "a.log.3.gz"})
    {
        runs = {};
        add(ZlRecord::Kind::Start, 1, rotated);
        add(ZlRecord::Kind::Start, 2, "a.log");
        EXPECT_EQ(runs.getUnordered(), 1U) << rotated;
    }
    for (const char* const other : {"b.log.1", "a.log.x1", "a.log.", "1", ".1", "a.log1"})
    {
        runs = {};
        add(ZlRecord::Kind::Start, 1, other);
        add(ZlRecord::Kind::Start, 2, "a.log");
        EXPECT_EQ(runs.getUnordered(), 0U) << other;
    }
}

} // namespace
