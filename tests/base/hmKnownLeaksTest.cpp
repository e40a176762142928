#include "base/hmKnownLeaks.h"

#include "base/duplicateString.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{

using Frames = std::vector<std::string>;

// Names are separate arrays, so that a sanitizer detects each character read too far. Every stack
// ends with a null name.
bool isUnknown(const Frames& frames, const std::string& knownLeaks)
{
    std::vector<Zu::ArrayPtr<char>> stack(frames.size() + 1);
    for (std::size_t i = 0; i < frames.size(); ++i)
        stack[i] = Zu::duplicateString(frames[i].c_str());
    const std::vector<char> text(knownLeaks.c_str(), knownLeaks.c_str() + knownLeaks.size() + 1);
    return Zu::hmIsUnknownLeak(stack.data(), text.data());
}

struct Row
{
    const char* _what;
    Frames _frames;
    const char* _knownLeaks;
    bool _unknown;
};

TEST(HmKnownLeaks, AStackIsKnownWhenAnEntryMatchesIt)
{
    const Row rows[] = {
        {"no entries", {"foo"}, "", true},
        {"a text without entries", {"foo"}, "foo bar ENDL", true},
        {"the whole stack", {"foo", "bar"}, "KNOWNLEAK foo bar ENDL", false},
        {"another second frame", {"foo", "baz"}, "KNOWNLEAK foo bar ENDL", true},
        {"another first frame", {"baz", "bar"}, "KNOWNLEAK foo bar ENDL", true},
        {"another order", {"bar", "foo"}, "KNOWNLEAK foo bar ENDL", true},
        {"one pattern", {"foo"}, "KNOWNLEAK foo ENDL", false},
        {"case matters", {"Foo"}, "KNOWNLEAK foo ENDL", true},
        {"a stack with more frames", {"foo", "bar", "baz"}, "KNOWNLEAK foo bar ENDL", false},
        {"a stack with fewer frames", {"foo"}, "KNOWNLEAK foo bar ENDL", true},
        {"a stack without frames", {}, "KNOWNLEAK foo ENDL", true},
        {"no pattern", {"foo", "bar"}, "KNOWNLEAK ENDL", false},
        {"no pattern and no frames", {}, "KNOWNLEAK ENDL", false},
        {"text before the entry", {"foo"}, "these are known: KNOWNLEAK foo ENDL", false},
        {"text behind the entry", {"foo"}, "KNOWNLEAK foo ENDL and no more", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isUnknown(row._frames, row._knownLeaks), row._unknown) << row._what;
}

TEST(HmKnownLeaks, APatternMayGoOnBehindTheNameOfTheFrameAndNotTheOtherWayRound)
{
    const Row rows[] = {
        {"a longer pattern", {"foo"}, "KNOWNLEAK foobar ENDL", false},
        {"a longer frame", {"foobar"}, "KNOWNLEAK foo ENDL", true},
        {"a longer second pattern", {"foo", "b"}, "KNOWNLEAK foo bar ENDL", false},
        {"a longer second frame", {"foo", "bars"}, "KNOWNLEAK foo bar ENDL", true},
        {"the middle of a pattern", {"bar"}, "KNOWNLEAK foobar ENDL", true},
        {"a frame without a name", {""}, "KNOWNLEAK foo ENDL", false},
        // The name is held against the text, blanks and all.
        {"a frame with a blank", {"new foo", "foo"}, "KNOWNLEAK new foo ENDL", false},
        {"a frame with a blank, then another", {"new foo", "x"}, "KNOWNLEAK new foo ENDL", true},
        {"a frame that outlasts the text", {"foo ENDL bar"}, "KNOWNLEAK foo ENDL", true},
        {"the end begins a word", {"foo"}, "KNOWNLEAK ENDLESS foo ENDL", false},
        {"the end ends a word", {"foo"}, "KNOWNLEAK BLENDL ENDL", true},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isUnknown(row._frames, row._knownLeaks), row._unknown) << row._what;
}

TEST(HmKnownLeaks, AnyEntryOfTheListMayMatch)
{
    const Row rows[] = {
        {"the first", {"foo"}, "KNOWNLEAK foo ENDL KNOWNLEAK bar ENDL", false},
        {"the second", {"bar"}, "KNOWNLEAK foo ENDL KNOWNLEAK bar ENDL", false},
        {"none", {"baz"}, "KNOWNLEAK foo ENDL KNOWNLEAK bar ENDL", true},
        {"the second on a line of its own",
         {"bar"},
         "KNOWNLEAK foo ENDL\nKNOWNLEAK bar ENDL\n",
         false},
        {"each has the first frame again",
         {"foo", "baz"},
         "KNOWNLEAK foo bar ENDL KNOWNLEAK foo baz ENDL",
         false},
        {"halves of two", {"foo", "baz"}, "KNOWNLEAK foo bar ENDL KNOWNLEAK bar baz ENDL", true},
        {"the third", {"c"}, "KNOWNLEAK a ENDL KNOWNLEAK b ENDL KNOWNLEAK c ENDL", false},
        {"too many patterns, then one that fits",
         {"foo"},
         "KNOWNLEAK foo bar ENDL KNOWNLEAK foo ENDL",
         false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isUnknown(row._frames, row._knownLeaks), row._unknown) << row._what;
}

TEST(HmKnownLeaks, AnEntryWithoutItsEndDoesNotMatch)
{
    const Row rows[] = {
        {"a pattern alone", {"foo"}, "KNOWNLEAK foo", true},
        {"a blank at the end", {"foo"}, "KNOWNLEAK foo ", true},
        {"the word alone", {"foo"}, "KNOWNLEAK", true},
        {"the word and a blank", {"foo"}, "KNOWNLEAK ", true},
        {"a part of the end", {"foo"}, "KNOWNLEAK foo END", true},
        // A frame without a name does not begin a match either.
        {"the word, a blank and no name", {""}, "KNOWNLEAK ", true},
        {"a pattern, a blank and no name", {"foo", ""}, "KNOWNLEAK foo ", true},
        {"the next entry matches", {"bar"}, "KNOWNLEAK foo KNOWNLEAK bar ENDL", false},
        {"the next entry does not", {"foo", "bar"}, "KNOWNLEAK foo KNOWNLEAK bar ENDL", true},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isUnknown(row._frames, row._knownLeaks), row._unknown) << row._what;
}

// A stack that has frames enough needs no null name at its end.
TEST(HmKnownLeaks, ReadsNoFrameThatNoPatternStandsFor)
{
    Zu::ArrayPtr<char> stack[2] = {Zu::ArrayPtr<char>(Zu::duplicateString("foo")),
                                   Zu::ArrayPtr<char>(Zu::duplicateString("bar"))};
    EXPECT_FALSE(Zu::hmIsUnknownLeak(stack, "KNOWNLEAK foo bar ENDL"));
    EXPECT_TRUE(Zu::hmIsUnknownLeak(stack, "KNOWNLEAK foo baz ENDL"));
}

// Patterns and frames as lists, in place of the search through a text.
bool matches(const Frames& frames, const Frames& patterns)
{
    if (patterns.size() > frames.size()) return false;
    for (std::size_t i = 0; i < patterns.size(); ++i)
        if (!patterns[i].starts_with(frames[i])) return false;
    return true;
}

TEST(HmKnownLeaks, AgreesWithAComparisonOfLists)
{
    std::mt19937 engine(20120508);
    // Few letters and short words, so that many of them match.
    const auto words = [&engine](std::size_t most)
    {
        Frames list(engine() % (most + 1));
        for (std::string& word : list)
            for (std::size_t i = engine() % 2 + 1; i > 0; --i) word += "ab"[engine() % 2];
        return list;
    };
    int known = 0;
    for (int round = 0; round < 5000; ++round)
    {
        const Frames frames = words(4);
        std::string text;
        bool unknown = true;
        for (std::size_t entries = engine() % 4; entries > 0; --entries)
        {
            Frames patterns = words(4);
            if (patterns.empty()) patterns = {"b"};
            text += "KNOWNLEAK ";
            for (const std::string& pattern : patterns) text += pattern + " ";
            text += "ENDL ";
            if (matches(frames, patterns)) unknown = false;
        }
        if (!unknown) ++known;
        ASSERT_EQ(isUnknown(frames, text), unknown)
            << text << " for " << testing::PrintToString(frames);
    }
    // Both answers are well represented.
    EXPECT_GT(known, 500);
    EXPECT_LT(known, 4500);
}

} // namespace
