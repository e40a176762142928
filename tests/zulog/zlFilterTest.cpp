#include "zulog/zlFilter.h"

#include "logTexts.h"
#include "zulog/zlFile.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::BANNER;
using logTexts::MICROSECOND;
using logTexts::ORIGIN;
using logTexts::TEN;
using logTexts::tickLine;
using Zu::ZlSelection;
namespace LgTypes = Zu::LgTypes;
using Texts = std::vector<std::string>;

const std::string LOG = BANNER + ORIGIN + tickLine(1, "Error: Orders one") +
                        tickLine(2, "Warning: Stock two") + "torn\n" +
                        "2026-11-22T10:00:00.000003Z 12 (0x00000007) Tracing: Orders three\n" +
                        "2026-11-22T10:00:00.000004Z 12 (0x00000007) Informational: "
                        "Event overflow [5]\n" +
                        logTexts::STOPPED;

struct Chosen
{
    Texts _texts;
    std::uint64_t _undated;
    std::string _notes;
};

Chosen chosen(const ZlSelection& selection, const std::string& log = LOG)
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    Zu::ZlReader reader("a.log", std::make_unique<logTexts::TextSource>(log), reports, {});
    Zu::ZlFilter filter(selection, reports);
    Chosen result;
    while (reader.next())
        if (filter.accepts(reader.getRecord()))
            result._texts.push_back(std::string(reader.getRecord()._text));
    result._undated = filter.getUndatedCount();
    reported.str("");
    filter.report();
    result._notes = reported.str();
    return result;
}

TEST(ZlFilter, AcceptsAllUnlessSomethingIsAskedFor)
{
    EXPECT_EQ(chosen({})._texts,
              Texts({"===== Message Logger Startup =====", "one", "two", "torn", "three",
                     "Event overflow [5]", "===== Message Logger Stopped ====="}));
    ZlSelection selection;
    selection._areMarksHidden = true;
    EXPECT_EQ(chosen(selection)._texts, Texts({"one", "two", "three", "Event overflow [5]"}));
}

TEST(ZlFilter, SelectsByEachField)
{
    const auto with = [](auto set)
    {
        ZlSelection selection;
        set(selection);
        return chosen(selection)._texts;
    };
    EXPECT_EQ(with([](ZlSelection& s) { s._levels = 1U << LgTypes::Error; }), Texts({"one"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._groups = {"Ord*"}; }), Texts({"one", "three"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._groups = {"St?ck", "x"}; }), Texts({"two"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._threads = {7}; }),
              Texts({"three", "Event overflow [5]"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._processes = {12}; }),
              Texts({"three", "Event overflow [5]"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._processes = {4711}; }),
              Texts({"===== Message Logger Startup =====", "one", "two",
                     "===== Message Logger Stopped ====="}));
    EXPECT_EQ(with([](ZlSelection& s) { s._matches = {"Orders t"}; }), Texts({"three"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._matches = {"^Stock", "on.$"}; }), Texts({"one", "two"}));
    EXPECT_EQ(with([](ZlSelection& s) { s._exclusions = {"Orders", "overflow"}; }), Texts({"two"}));
    EXPECT_EQ(with(
                  [](ZlSelection& s)
                  {
                      s._groups = {"Orders"};
                      s._levels = 1U << LgTypes::Tracing;
                  }),
              Texts({"three"}));
}

TEST(ZlFilter, SelectsByTimeAndCountsWhatHasNone)
{
    ZlSelection selection;
    selection._since = TEN + MICROSECOND;
    selection._until = TEN + 3 * MICROSECOND;
    const Chosen result = chosen(selection);
    EXPECT_EQ(result._texts, Texts({"one", "two"}));
    // The torn line and the last banner.
    EXPECT_EQ(result._undated, 2U);
}

TEST(ZlFilter, NotesGroupsThatNoEventIsOf)
{
    ZlSelection selection;
    selection._groups = {"Ord*", "Orders"};
    EXPECT_EQ(chosen(selection)._notes, "");
    selection._groups = {"orders", "St*", "No?e"};
    const std::string none = "zulog: none of the events that were looked at is of the group ";
    EXPECT_EQ(chosen(selection)._notes,
              none + "\"orders\"; there are Orders\n" + none + "\"No?e\"; there are Orders\n");
    selection._groups = {"x"};
    EXPECT_EQ(chosen(selection)._notes, none + "\"x\"; there are Orders, Stock\n");
    EXPECT_EQ(chosen(selection, BANNER + ORIGIN)._notes.find("there are"), std::string::npos);
}

TEST(ZlFilter, OfManyGroupsSomeAreNoted)
{
    std::string log = BANNER + ORIGIN;
    for (int i = 10; i < 90; ++i) log += tickLine(1, "Error: G" + std::to_string(i) + " text");
    ZlSelection selection;
    selection._groups = {"x"};
    EXPECT_NE(chosen(selection, log)
                  ._notes.find("there are G10, G11, G12, G13, G14, G15, G16, "
                               "G17, G18, G19\n"),
              std::string::npos)
        << chosen(selection, log)._notes;
}

TEST(ZlFilter, RefusesAnExpressionThatIsNone)
{
    ZlSelection selection;
    selection._matches = {"a(b"};
    try
    {
        chosen(selection);
        FAIL() << "nothing was raised";
    }
    catch (const Zu::ZlError& error)
    {
        const std::string text = error.what();
        EXPECT_EQ(text.substr(0, 46), "\"a(b\" is no regular expression, see character ");
    }
}

TEST(ZlFilter, SearchesLongLines)
{
    ZlSelection selection;
    selection._matches = {"(x|y)*z"};
    const std::string log =
        tickLine(1, "Error: A " + std::string(32000, 'x')) + tickLine(2, "Error: A xyz");
    const Texts found = chosen(selection, log)._texts;
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.back(), "xyz");
}

// A search that would take ages.
const std::string COSTLY = tickLine(1, "Error: A " + std::string(40, 'a') + "b");

TEST(ZlFilter, AcceptsWhatCantBeSearched)
{
    ZlSelection selection;
    selection._exclusions = {"(a|aa)+$"};
    EXPECT_EQ(chosen(selection, COSTLY)._texts.size(), 1U);
    std::swap(selection._matches, selection._exclusions);
    EXPECT_EQ(chosen(selection, COSTLY)._texts.size(), 1U);
}

TEST(ZlFilter, EndsWhenTooMuchCantBeSearched)
{
    ZlSelection selection;
    selection._matches = {"(a|aa)+$"};
    std::string log;
    for (std::uint64_t i = 0; i < Zu::ZlFilter::MOST_GIVEN_UP; ++i) log += COSTLY;
    EXPECT_EQ(chosen(selection, log)._texts.size(), Zu::ZlFilter::MOST_GIVEN_UP);
    EXPECT_THROW(chosen(selection, log + COSTLY), Zu::ZlError);
}

TEST(ZlFilter, MatchesGlobs)
{
    const struct
    {
        const char* _glob;
        const char* _name;
        bool _isMatch;
    } rows[] = {
        {"", "", true},           {"", "a", false},
        {"*", "", true},          {"*", "abc", true},
        {"a*c", "abbc", true},    {"a*c", "abcb", false},
        {"a*b*c", "aXbYc", true}, {"?", "", false},
        {"?b", "ab", true},       {"A", "a", false},
        {"**", "x", true},        {"a*", "ba", false},
        {"*aab", "aaaab", true},  {"Orders", "Orders2", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Zu::zlMatchesGlob(row._glob, row._name), row._isMatch)
            << row._glob << " " << row._name;
}

TEST(ZlFilter, ReadsLevels)
{
    const struct
    {
        const char* _text;
        std::optional<std::uint32_t> _levels;
    } rows[] = {
        {"Internal Error", 1},
        {"Error", 7},
        {"warning", 15},
        {"PROFILING", 127},
        {"=Error", 4},
        {"Error,Tracing", 4 + 32},
        {"=Warning,Error", 12},
        {"", {}},
        {"Errors", {}},
        {"Warn", 15},
        {"t", 63},
        {"=prof", 64},
        {"in", {}},
        {"inf", 31},
        {"=e,w", 12},
        {"internal", 1},
        {"f", 3},
        {"e,", {}},
        {"Error,", {}},
        {"=", {}},
        {"Error, Tracing", {}},
    };
    for (const auto& row : rows) EXPECT_EQ(Zu::zlParseLevels(row._text), row._levels) << row._text;
}

} // namespace
