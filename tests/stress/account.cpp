#include "stress/account.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>

namespace stress
{

namespace
{

constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view PREFIX = "dddddddddd dddddddddd (0xhhhhhhhh) ";
constexpr std::string_view EVENT = "Warning: Stress ";
constexpr std::string_view OVERFLOW_EVENT = "Informational: Event overflow [";
constexpr std::array<std::string_view, 4> START_BANNER = {
    "===== Message Logger Startup =====", "===== Started on ", "", "===== Clock Frequency: "};
constexpr std::string_view STOP_BANNER = "===== Message Logger Stopped =====";

struct Event
{
    std::uint64_t _time;
    unsigned _producer;
    unsigned _number;
};

bool fits(char character, char pattern)
{
    const bool isDigit = character >= '0' && character <= '9';
    if (pattern == 'd') return isDigit;
    if (pattern == 'h') return isDigit || (character >= 'a' && character <= 'f');
    return character == pattern;
}

bool beginsLikePrefix(std::string_view line)
{
    const std::size_t length = std::min(line.size(), PREFIX.size());
    return std::equal(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(length),
                      PREFIX.begin(), fits);
}

// Takes a number from the beginning.
template <class Number> std::optional<Number> takeNumber(std::string_view& text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

std::string eventText(unsigned producer, unsigned number)
{
    return std::to_string(producer) + ' ' + std::to_string(number) + ' ' +
           fillerOf(producer, number) + ' ' + std::to_string(number);
}

std::uint64_t timeOf(std::string_view line)
{
    std::string_view high = line;
    std::string_view low = line.substr(11);
    return *takeNumber<std::uint64_t>(high) << 32 | *takeNumber<std::uint64_t>(low);
}

struct Origin
{
    unsigned _producer;
    unsigned _number;
};

// The origin of an event, from a text that contains both numbers in full.
std::optional<Origin> originOf(std::string_view text)
{
    const auto producer = takeNumber<unsigned>(text);
    if (!producer || text.empty() || text[0] != ' ') return std::nullopt;
    text.remove_prefix(1);
    const auto number = takeNumber<unsigned>(text);
    if (!number || text.empty() || text[0] != ' ') return std::nullopt;
    return Origin{*producer, *number};
}

std::optional<Event> eventOf(std::string_view line)
{
    if (line.size() < PREFIX.size() + EVENT.size() || !beginsLikePrefix(line)) return std::nullopt;
    std::string_view text = line.substr(PREFIX.size());
    if (text.rfind(EVENT, 0) != 0) return std::nullopt;
    text.remove_prefix(EVENT.size());
    const auto origin = originOf(text);
    if (!origin || text != eventText(origin->_producer, origin->_number)) return std::nullopt;
    return Event{timeOf(line), origin->_producer, origin->_number};
}

bool isOverflow(std::string_view line)
{
    if (line.size() < PREFIX.size() || !beginsLikePrefix(line)) return false;
    std::string_view text = line.substr(PREFIX.size());
    if (text.rfind(OVERFLOW_EVENT, 0) != 0) return false;
    text.remove_prefix(OVERFLOW_EVENT.size());
    return takeNumber<std::uint32_t>(text).value_or(0) > 0 && text == "]";
}

// Whether this can be the line of an event with parts missing, replaced by "#" or not. The
// remaining parts must be in the order of a whole line.
bool isShortened(std::string_view line)
{
    constexpr std::string_view LEVEL = "Warning: ";
    if (line.size() < PREFIX.size() || !beginsLikePrefix(line)) return false;
    std::string_view text = line.substr(PREFIX.size());
    if (text.rfind(LEVEL, 0) != 0) return false;
    text.remove_prefix(LEVEL.size());
    constexpr std::string_view DIGITS = "0123456789";
    bool isFirst = true;
    for (const std::string_view part :
         {std::string_view("Stress"), DIGITS, DIGITS, LETTERS, DIGITS})
    {
        if (!isFirst && !text.empty() && text[0] == ' ') text.remove_prefix(1);
        if (!text.empty() && text[0] == '#')
            text.remove_prefix(1);
        else if (!isFirst)
            text.remove_prefix(std::min(text.find_first_not_of(part), text.size()));
        else if (text.rfind(part, 0) == 0)
            text.remove_prefix(part.size());
        isFirst = false;
    }
    return text.empty();
}

// Whether it is by a producer of long texts, which may be shortened.
bool isWordy(std::string_view line)
{
    if (line.size() < PREFIX.size() + EVENT.size()) return false;
    const auto producer = [&line]
    {
        std::string_view number = line.substr(PREFIX.size() + EVENT.size());
        return takeNumber<unsigned>(number);
    }();
    return producer && *producer >= WORDY;
}

bool isBeginningOf(std::string_view text, std::string_view whole)
{
    return text.size() <= whole.size() && whole.rfind(text, 0) == 0;
}

// Whether a line may have begun like this, as far as that can be determined.
bool isFragment(std::string_view text)
{
    if (text.empty() || !beginsLikePrefix(text)) return false;
    if (text.size() <= PREFIX.size()) return true;
    text.remove_prefix(PREFIX.size());
    if (isBeginningOf(text, EVENT) || isBeginningOf(text, OVERFLOW_EVENT)) return true;
    if (text.rfind(OVERFLOW_EVENT, 0) == 0) return true;
    if (text.rfind(EVENT, 0) != 0) return false;
    text.remove_prefix(EVENT.size());
    const auto origin = originOf(text);
    if (origin) return isBeginningOf(text, eventText(origin->_producer, origin->_number));
    return text.find_first_not_of("0123456789 ") == std::string_view::npos;
}

class FileReader
{
public:
    FileAccount read(std::istream& file)
    {
        for (std::string line; std::getline(file, line);)
        {
            // The last line has no end: at best it is torn.
            if (file.eof())
                takeFragment(line);
            else
                takeLine(line);
        }
        if (_bannerLine != 0) fail("a banner that is not complete");
        return _account;
    }

private:
    void fail(const std::string& text)
    {
        constexpr std::size_t ENOUGH = 10;
        if (_account._errors.size() < ENOUGH) _account._errors.push_back(text);
    }

    void takeLine(std::string_view line)
    {
        if (takeBanner(line) || takeServiceLine(line) || takeWhole(line)) return;
        if (_bannerLine == 0 && isShortened(line) && (isWordy(line) || !isFragment(line)))
        {
            ++_account._written;
            ++_account._shortened;
            return;
        }
        // The beginning of one line, followed by a whole line of another process.
        for (std::size_t at = 1; at < line.size(); ++at)
        {
            if (!isFragment(line.substr(0, at)) || !takeWhole(line.substr(at))) continue;
            ++_account._torn;
            return;
        }
        // The end of a line that the next process has ended.
        if (isFragment(line))
            ++_account._torn;
        else
            fail(std::string(line));
    }

    // What the service says of the file itself. Such a line may be torn, too.
    bool takeServiceLine(std::string_view line)
    {
        const auto begins = [line](std::string_view text) { return line.rfind(text, 0) == 0; };
        if (!begins("===== Clock Origin: ") && !begins("===== Recovered: ")) return false;
        constexpr std::string_view END = " =====";
        const bool isWhole =
            line.size() > END.size() && line.substr(line.size() - END.size()) == END;
        if (!isWhole) ++_account._torn;
        return true;
    }

    void takeFragment(std::string_view line)
    {
        if (isFragment(line))
            ++_account._torn;
        else
            fail("at the end: " + std::string(line));
    }

    // A start banner has to be complete, without foreign lines in between.
    bool takeBanner(std::string_view line)
    {
        if (line == STOP_BANNER && _bannerLine == 0)
        {
            ++_account._stopBanners;
            return true;
        }
        const bool isNext = START_BANNER[_bannerLine].empty()
                                ? line.empty()
                                : line.rfind(START_BANNER[_bannerLine], 0) == 0;
        if (!isNext) return false;
        if (_bannerLine == 0) ++_account._startBanners;
        _bannerLine = (_bannerLine + 1) % START_BANNER.size();
        return true;
    }

    bool takeWhole(std::string_view line)
    {
        if (_bannerLine != 0) return false;
        if (isOverflow(line))
        {
            ++_account._overflowLines;
            return true;
        }
        const auto event = eventOf(line);
        if (!event) return false;
        const auto [last, isFirst] = _last.try_emplace(event->_producer, *event);
        if (!isFirst)
        {
            if (event->_number <= last->second._number) fail("out of order: " + std::string(line));
            if (event->_time < last->second._time) fail("time goes back: " + std::string(line));
            last->second = *event;
        }
        ++_account._written;
        ++_account._writtenOf[event->_producer];
        return true;
    }

    FileAccount _account;
    std::map<unsigned, Event> _last;
    std::size_t _bannerLine = 0;
};

} // namespace

const char* fillerOf(unsigned producer, unsigned number)
{
    constexpr unsigned SHORT = 5;
    const auto longest = static_cast<unsigned>(LETTERS.size());
    const unsigned length = 1 + (producer * 7 + number) % (producer < WORDY ? SHORT : longest);
    return LETTERS.data() + (longest - length);
}

std::uint64_t FileAccount::writtenFrom(unsigned firstProducer, unsigned producers) const
{
    std::uint64_t sum = 0;
    for (const auto& [producer, written] : _writtenOf)
        if (producer >= firstProducer && producer < firstProducer + producers) sum += written;
    return sum;
}

FileAccount read(std::istream& file)
{
    return FileReader().read(file);
}

FileAccount read(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return read(file);
}

} // namespace stress
