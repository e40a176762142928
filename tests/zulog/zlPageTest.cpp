#include "zulog/zlPage.h"

#include "zulog/zlPageParts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::ZlPage;
using Zu::ZlRecord;
using Kind = ZlRecord::Kind;

// 2026-11-22 22:10:51.123456 UTC
constexpr std::int64_t TIME = 1795385451123456789;

// Records of this file and host, with everything known.
class Sample
{
public:
    ZlRecord record(std::string_view text) const
    {
        ZlRecord made;
        made._kind = Kind::Event;
        made._wall = TIME;
        made._process = 4711;
        made._thread = 0xabc;
        made._level = Zu::LgTypes::Warning;
        made._group = "Orders";
        made._text = text;
        made._owner = &_owner;
        made._file = &_file;
        made._line = 17;
        return made;
    }

    ZlRecord mark(Kind kind, std::string_view text) const
    {
        ZlRecord made = record(text);
        made._kind = kind;
        made._thread.reset();
        made._level.reset();
        made._group = {};
        return made;
    }

    std::string _file = "events.log";
    Zu::ZlOwner _owner = {"alpha", "", {}, {}, 0};
};

std::string pageOf(const std::vector<ZlRecord>& records, std::string_view title = "title")
{
    ZlPage page(title);
    std::string out;
    page.begin(out);
    for (const ZlRecord& record : records) page.append(out, record);
    page.end(out);
    return out;
}

std::size_t countOf(std::string_view text, std::string_view part)
{
    std::size_t count = 0;
    for (std::size_t place = text.find(part); place != std::string_view::npos;
         place = text.find(part, place + part.size()))
        ++count;
    return count;
}

// What is between two texts; from the given place on, which is then behind it.
std::string_view between(std::string_view text, std::string_view begin, std::string_view end,
                         std::size_t& place)
{
    const std::size_t first = text.find(begin, place);
    if (first == std::string_view::npos) return {};
    const std::size_t last = text.find(end, first + begin.size());
    if (last == std::string_view::npos) return {};
    place = last + end.size();
    return text.substr(first + begin.size(), last - first - begin.size());
}

std::string_view between(std::string_view text, std::string_view begin, std::string_view end)
{
    std::size_t place = 0;
    return between(text, begin, end, place);
}

std::string_view logOf(std::string_view page)
{
    return between(page, "<div id=\"log\">\n", "</div>\n");
}

std::vector<std::string_view> blocksOf(std::string_view log)
{
    std::vector<std::string_view> blocks;
    std::size_t place = 0;
    while (log.find("<pre>", place) != std::string_view::npos)
        blocks.push_back(between(log, "<pre>\n", "</pre>\n", place));
    return blocks;
}

// The lines of the only block, as they stand in the page.
std::string linesOf(const std::vector<ZlRecord>& records)
{
    const std::string page = pageOf(records);
    const auto blocks = blocksOf(logOf(page));
    return blocks.size() == 1 ? std::string(blocks[0]) : "not one block";
}

std::string replaced(std::string text, std::string_view from, std::string_view to)
{
    for (std::size_t place = text.find(from); place != std::string::npos;
         place = text.find(from, place + to.size()))
        text.replace(place, from.size(), to);
    return text;
}

constexpr std::string_view HEAD =
    "2026-11-22 22:10:51.123456Z\t1:17\t4711\t0x00000abc\tWarning\tOrders\t";

// SHA-256, after FIPS 180-4, in base64 after RFC 4648.
class Sha256
{
public:
    static std::string inBase64(std::string text)
    {
        const std::uint64_t bits = text.size() * 8;
        text += '\x80';
        while (text.size() % 64 != 56) text += '\0';
        for (int shift = 56; shift >= 0; shift -= 8) text += static_cast<char>(bits >> shift);
        Sha256 hash;
        for (std::size_t place = 0; place < text.size(); place += 64) hash.add(&text[place]);
        return hash.base64();
    }

private:
    // The first 32 bits of the fractional part of a root of a prime.
    template <class Root> static std::uint32_t fraction(std::uint32_t prime, Root power)
    {
        // The root, in units of 2^-32, by bisection of its power.
        std::uint64_t low = 0;
        std::uint64_t high = std::uint64_t{32} << 32;
        while (high - low > 1)
        {
            const std::uint64_t middle = low + (high - low) / 2;
            (power(middle, prime) ? high : low) = middle;
        }
        return static_cast<std::uint32_t>(low);
    }

    __extension__ using Wide = unsigned __int128;

    static bool isSquareLarger(std::uint64_t root, std::uint32_t prime)
    {
        return Wide(root) * root > Wide(prime) << 64;
    }

    // Roots are below 8, so their cubes have 105 bits.
    static bool isCubeLarger(std::uint64_t root, std::uint32_t prime)
    {
        return root >= std::uint64_t{8} << 32 || Wide(root) * root * root > Wide(prime) << 96;
    }

    static std::array<std::uint32_t, 64> primes()
    {
        std::array<std::uint32_t, 64> found{};
        std::size_t count = 0;
        for (std::uint32_t number = 2; count < found.size(); ++number)
        {
            const auto divides = [number](std::uint32_t prime) { return number % prime == 0; };
            if (std::none_of(found.begin(), found.begin() + count, divides))
                found[count++] = number;
        }
        return found;
    }

    Sha256()
    {
        const auto numbers = primes();
        for (std::size_t i = 0; i < 8; ++i) _state[i] = fraction(numbers[i], isSquareLarger);
        for (std::size_t i = 0; i < 64; ++i) _constants[i] = fraction(numbers[i], isCubeLarger);
    }

    void add(const char* block)
    {
        std::array<std::uint32_t, 64> w{};
        for (std::size_t i = 0; i < 64; ++i)
            w[i / 4 % 16] = w[i / 4 % 16] << 8 | static_cast<unsigned char>(block[i]);
        for (std::size_t i = 16; i < 64; ++i)
        {
            const std::uint32_t a = w[i - 15];
            const std::uint32_t b = w[i - 2];
            w[i] = w[i - 16] + w[i - 7] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3) +
                   (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10);
        }
        auto s = _state;
        for (std::size_t i = 0; i < 64; ++i)
        {
            const std::uint32_t e = s[4];
            const std::uint32_t a = s[0];
            const std::uint32_t one = s[7] +
                                      (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                      ((e & s[5]) ^ (~e & s[6])) + _constants[i] + w[i];
            const std::uint32_t two = (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) +
                                      ((a & s[1]) ^ (a & s[2]) ^ (s[1] & s[2]));
            s = {one + two, a, s[1], s[2], s[3] + one, e, s[5], s[6]};
        }
        for (std::size_t i = 0; i < 8; ++i) _state[i] += s[i];
    }

    std::string base64() const
    {
        constexpr std::string_view DIGITS =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string bits;
        for (const std::uint32_t word : _state)
            for (int bit = 31; bit >= 0; --bit) bits += (word >> bit & 1) == 0 ? '0' : '1';
        bits += "00";
        std::string text;
        for (std::size_t place = 0; place < bits.size(); place += 6)
            text += DIGITS[std::stoul(bits.substr(place, 6), nullptr, 2)];
        return text + "=";
    }

    std::array<std::uint32_t, 8> _state{};
    std::array<std::uint32_t, 64> _constants{};
};

TEST(ZlPage, HashOfThisTestIsTheStandards)
{
    // Of "abc", from the examples of FIPS 180-4.
    EXPECT_EQ(Sha256::inBase64("abc"), "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
}

TEST(ZlPage, PolicyAllowsTheScriptAndTheStyleOfThePageAlone)
{
    const std::string page = pageOf({});
    const std::string style(between(page, "<style>", "</style>"));
    const std::string script(between(page, "<script>", "</script>"));
    EXPECT_GT(style.size(), 1000U);
    EXPECT_GT(script.size(), 10000U);
    EXPECT_EQ(between(page, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">"),
              "default-src 'none'; style-src 'sha256-" + Sha256::inBase64(style) +
                  "'; script-src 'sha256-" + Sha256::inBase64(script) +
                  "'; base-uri 'none'; form-action 'none'");
    EXPECT_LT(page.find("Content-Security-Policy"), page.find("<style>"));
}

TEST(ZlPage, RefersToNothingOutside)
{
    const std::string page = pageOf({});
    for (const char* part :
         {"http:", "https:", "src=", "href", "url(", "@import", "<link", "<base", "<iframe",
          "import(", "fetch(", "XMLHttpRequest", "WebSocket", "sendBeacon", "innerHTML", "eval("})
        EXPECT_EQ(page.find(part), std::string::npos) << part;
}

TEST(ZlPage, PartsEndWhereTheirElementsEnd)
{
    EXPECT_EQ(Zu::zlPageScript().find("</"), std::string_view::npos);
    EXPECT_EQ(Zu::zlPageScript().find("<!--"), std::string_view::npos);
    EXPECT_EQ(Zu::zlPageStyle().find('<'), std::string_view::npos);
    EXPECT_EQ(Zu::zlPageViewer().find("<script"), std::string_view::npos);
    for (const std::string_view part : {Zu::zlPageScript(), Zu::zlPageStyle(), Zu::zlPageViewer()})
    {
        EXPECT_EQ(part.back(), '\n');
        EXPECT_TRUE(std::all_of(part.begin(), part.end(),
                                [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
    }
}

TEST(ZlPage, TextsStayTexts)
{
    using namespace std::string_view_literals;
    const struct
    {
        std::string_view _text;
        std::string_view _wanted;
    } rows[] = {
        {"", ""},
        {"plain", "plain"},
        {"===== Logger =====", "===== Logger ====="},
        {"<b>&amp;</b>", "&lt;b&gt;&amp;amp;&lt;/b&gt;"},
        {"</script><script>x()</script>", "&lt;/script&gt;&lt;script&gt;x()&lt;/script&gt;"},
        {"</pre></div>", "&lt;/pre&gt;&lt;/div&gt;"},
        {"<!-- ]]> -->", "&lt;!-- ]]&gt; --&gt;"},
        {"\"'`", "\"'`"},
        {"C:\\temp\\x", "C:\\temp\\x"},
        {"a\tb", "a\tb"},
        {"\tb", "\tb"},
        {"a\0b"sv, "a\\x00b"},
        {"\x1b[31m", "\\x1b[31m"},
        {"a\rb", "a\\x0db"},
        {"\x7f", "\\x7f"},
        {"\xff", "\\xff"},
        {"\xe2\x82", "\\xe2\\x82"},
        {"\xc0\xaf", "\\xc0\\xaf"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
        {"\xc2\x85", "\\u0085"},
        {"\xe2\x80\xa8", "\\u2028"},
        {"\xe2\x80\xae", "\\u202e"},
        {"\xc3\xa9 \xf0\x9f\x98\x80", "\xc3\xa9 \xf0\x9f\x98\x80"},
    };
    const Sample sample;
    for (const auto& row : rows)
        EXPECT_EQ(linesOf({sample.record(row._text)}),
                  std::string(HEAD).append(row._wanted).append("\n"));
}

TEST(ZlPage, FurtherLinesBeginWithOneTab)
{
    const Sample sample;
    const struct
    {
        std::string_view _text;
        std::string_view _wanted;
    } rows[] = {
        {"first\n\tsecond\n\tthird", "first\n\tsecond\n\tthird"},
        {"first\n\t\tsecond", "first\n\t\tsecond"},
        {"first\nsecond", "first\n\tsecond"},
        {"\n\t\n\t", "\n\t\n\t"},
        {"\n", "\n\t"},
        {"a\n\t<i>", "a\n\t&lt;i&gt;"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(linesOf({sample.record(row._text)}),
                  std::string(HEAD).append(row._wanted).append("\n"));
}

TEST(ZlPage, ShowsWhatIsNotKnownAsADash)
{
    const Sample sample;
    const struct
    {
        void (*_forget)(ZlRecord& record);
        std::string_view _field;
        std::string_view _wanted;
    } rows[] = {
        {[](ZlRecord& record) { record._wall.reset(); }, "2026-11-22 22:10:51.123456Z\t", "-\t"},
        {[](ZlRecord& record) { record._process.reset(); }, "\t4711\t", "\t-\t"},
        {[](ZlRecord& record) { record._thread.reset(); }, "\t0x00000abc\t", "\t-\t"},
        {[](ZlRecord& record) { record._level.reset(); }, "\tWarning\t", "\t-\t"},
        {[](ZlRecord& record) { record._group = {}; }, "\tOrders\t", "\t-\t"},
    };
    for (const auto& row : rows)
    {
        ZlRecord record = sample.record("text");
        row._forget(record);
        EXPECT_EQ(linesOf({record}),
                  replaced(std::string(HEAD) + "text\n", row._field, row._wanted));
    }
}

TEST(ZlPage, ShowsTicksWhereTheTimeIsNotKnown)
{
    const Sample sample;
    ZlRecord record = sample.record("text");
    record._ticks = 4294967297;
    EXPECT_EQ(linesOf({record}), std::string(HEAD) + "text\n");
    record._wall.reset();
    EXPECT_EQ(linesOf({record}).substr(0, 11), "4294967297\t");
}

TEST(ZlPage, NamesLevelsAndKinds)
{
    const Sample sample;
    const struct
    {
        Kind _kind;
        std::string_view _wanted;
    } rows[] = {
        {Kind::Event, "\t-\t"},
        {Kind::Overflow, "\t- overflow 17\t"},
        {Kind::Start, "\t- start\t"},
        {Kind::Stop, "\t- stop\t"},
        {Kind::RecoveryBegin, "\t- recovery-begin\t"},
        {Kind::RecoveryEnd, "\t- recovery-end\t"},
        {Kind::NotWritten, "\t- not-written 17\t"},
        {Kind::Unreadable, "\t- unreadable\t"},
    };
    for (const auto& row : rows)
    {
        ZlRecord record = sample.mark(row._kind, "text");
        record._count = 17;
        EXPECT_EQ(linesOf({record}), "2026-11-22 22:10:51.123456Z\t1:17\t4711\t-" +
                                         std::string(row._wanted) + "-\ttext\n");
    }
    const std::string_view levels[] = {"Internal Error", "Fatal Error", "Error",    "Warning",
                                       "Informational",  "Tracing",     "Profiling"};
    for (std::int32_t level = 0; level < Zu::LgTypes::NUM_LEVELS; ++level)
    {
        ZlRecord record = sample.record("text");
        record._level = static_cast<Zu::LgTypes::Level>(level);
        const std::string wanted = '\t' + std::string(levels[level]) + '\t';
        EXPECT_EQ(linesOf({record}), replaced(std::string(HEAD) + "text\n", "\tWarning\t", wanted));
        record._kind = Kind::Overflow;
        record._count = 3;
        EXPECT_EQ(countOf(linesOf({record}), std::string(levels[level]) + " overflow 3\t"), 1U);
    }
}

TEST(ZlPage, HasEachLineOnceInBlocksThatBrowsersKeepWhole)
{
    constexpr std::size_t COUNT = 5000;
    constexpr std::size_t LONGEST_TEXT = 65536;
    const Sample sample;
    ZlPage page("title");
    std::string whole;
    page.begin(whole);
    for (std::size_t number = 0; number < COUNT; ++number)
    {
        const std::string text = "unique" + std::to_string(number) + ".";
        std::string piece;
        page.append(piece, sample.record(text));
        whole += piece;
    }
    page.end(whole);
    std::string lines;
    const auto blocks = blocksOf(logOf(whole));
    for (const std::string_view block : blocks)
    {
        EXPECT_LT(block.size(), LONGEST_TEXT);
        lines += block;
    }
    EXPECT_GT(blocks.size(), 5U);
    std::string wanted;
    for (std::size_t number = 0; number < COUNT; ++number)
        wanted.append(HEAD).append("unique").append(std::to_string(number)).append(".\n");
    EXPECT_EQ(lines, wanted);
    EXPECT_EQ(countOf(whole, "unique"), COUNT);
}

TEST(ZlPage, NamesFileAndHostInFrontOfTheirFirstRecord)
{
    Sample first;
    Sample second;
    second._file = "a<b>\n&\x1b.log";
    second._owner._host = "";
    Sample third;
    third._owner._host = "gamma";
    const std::string page = pageOf({first.record("1"), first.record("2"), second.record("3"),
                                     first.record("4"), third.record("5")});
    const std::string head(HEAD.substr(0, HEAD.find("\t1:") + 1));
    const std::string tail(HEAD.substr(HEAD.find(":17\t")));
    const auto line = [&](const char* source, const char* text)
    { return head + source + tail + text + "\n"; };
    EXPECT_EQ(logOf(page),
              "<p>Source <b>1</b>: file <b>events.log</b>, host <b>alpha</b></p>\n<pre>\n" +
                  line("1", "1") + line("1", "2") +
                  "</pre>\n<p>Source <b>2</b>: file <b>a&lt;b&gt;\\x0a&amp;\\x1b.log</b>, host "
                  "<b>-</b></p>\n<pre>\n" +
                  line("2", "3") + line("1", "4") +
                  "</pre>\n<p>Source <b>3</b>: file <b>events.log</b>, host <b>gamma</b></p>\n"
                  "<pre>\n" +
                  line("3", "5") + "</pre>\n");
}

TEST(ZlPage, TitleIsText)
{
    const std::string page = pageOf({}, "</title><script>\xff&");
    EXPECT_EQ(countOf(page, "&lt;/title&gt;&lt;script&gt;\\xff&amp;"), 2U);
    EXPECT_EQ(countOf(page, "</title>"), 1U);
    EXPECT_EQ(between(page, "<title>", "<"), between(page, "<h1>", "<"));
}

std::string totalsOf(const std::vector<ZlRecord>& records)
{
    const std::string page = pageOf(records);
    std::string text(between(page, "<caption>Totals</caption>\n", "</table>"));
    text = replaced(text, "<tr><th scope=\"row\">", "");
    return replaced(replaced(text, "</th><td>", " "), "</td></tr>\n", ",");
}

TEST(ZlPage, EndsWithTheTotals)
{
    const Sample sample;
    EXPECT_EQ(totalsOf({}), "records 0,");
    ZlRecord unknown = sample.record("");
    unknown._level.reset();
    ZlRecord overflow = sample.record("");
    overflow._kind = Kind::Overflow;
    overflow._count = 17;
    ZlRecord notWritten = sample.mark(Kind::NotWritten, "");
    notWritten._count = 4;
    EXPECT_EQ(totalsOf({sample.record(""), sample.record(""), unknown, overflow, notWritten,
                        sample.mark(Kind::Start, "")}),
              "records 6,Warning 2,unknown level 1,overflow 1,start 1,not-written 1,"
              "lost events 21,processes that started 1,");
    notWritten._count = ~std::uint64_t{0};
    EXPECT_EQ(totalsOf({overflow, notWritten}),
              "records 2,overflow 1,not-written 1,lost events 18446744073709551615,");
}

// A process has a mark in each of its files.
TEST(ZlPage, CountsAProcessOnce)
{
    const Sample sample;
    Zu::ZlOwner owner;
    owner._process = 4711;
    ZlRecord start = sample.mark(Kind::Start, "");
    start._owner = &owner;
    ZlRecord stop = sample.mark(Kind::Stop, "");
    stop._owner = &owner;
    EXPECT_EQ(totalsOf({start, start, stop, stop}),
              "records 4,start 2,stop 2,processes that started 1,processes that stopped 1,");
}

} // namespace
