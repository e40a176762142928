// Logs for the tests of zulog, and records that outlive their reader.

#ifndef ZU_TESTS_ZULOG_LOGTEXTS_H
#define ZU_TESTS_ZULOG_LOGTEXTS_H

#include "zulog/zlReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace logTexts
{

// The origin of process 4711: tick 0 is 2026-11-22T10:00:00Z, and a tick is a microsecond.
inline const std::string ORIGIN =
    "===== Clock Origin: 0000000000 0000000000 is 2026-11-22T10:00:00.000000000Z, 1000000 ticks "
    "per second, process 4711 started 2026-11-22T09:59:59.000000000Z, host alpha, boot 3f2b "
    "=====\n";
inline const std::string OTHER_ORIGIN =
    "===== Clock Origin: 0000000000 0000000500 is 2026-11-22T10:00:00.000200000Z, 1000000 ticks "
    "per second, process 12 started 2026-11-22T09:59:59.000000000Z, host beta, boot - =====\n";
inline const std::string BANNER =
    "===== Message Logger Startup =====\n===== Started on Sun Nov 22 11:00:00 2026\n\n"
    "===== Clock Frequency: 0.000001000\n";
inline const std::string PLAIN_BANNER = "===== Message Logger Startup =====\n";
inline const std::string STOPPED = "===== Message Logger Stopped =====\n";

// 2026-11-22T10:00:00Z, from GNU date.
constexpr std::int64_t TEN = 1795341600000000000;
constexpr std::int64_t MICROSECOND = 1000;

inline std::string tickLine(std::uint32_t tick, const std::string& rest)
{
    std::string digits = std::to_string(tick);
    digits.insert(0, 10 - digits.size(), '0');
    return "0000000000 " + digits + " (0x00000abc) " + rest + "\n";
}

// Delivers text in pieces of a given size, and what is added later.
class TextSource : public Zu::ZlSource
{
public:
    explicit TextSource(std::string text, std::size_t piece = std::string::npos)
        : _text(std::move(text)), _piece(piece)
    {
    }

    std::size_t read(char* place, std::size_t size) override
    {
        const std::size_t count = std::min({size, _piece, _text.size()});
        _text.copy(place, count);
        _text.erase(0, count);
        return count;
    }

    void add(const std::string& text)
    {
        _text += text;
    }

private:
    std::string _text;
    const std::size_t _piece;
};

// What a record says, without views.
struct Copy
{
    Zu::ZlRecord::Kind _kind;
    std::optional<std::int64_t> _wall;
    std::optional<std::uint64_t> _ticks;
    std::optional<std::uint32_t> _process;
    std::optional<std::uint32_t> _thread;
    std::optional<Zu::LgTypes::Level> _level;
    std::string _group;
    std::string _text;
    std::string _raw;
    std::string _host;
    std::uint64_t _count;
    std::uint64_t _line;
};

inline Copy copyOf(const Zu::ZlRecord& record)
{
    return {record._kind,
            record._wall,
            record._ticks,
            record._process,
            record._thread,
            record._level,
            std::string(record._group),
            std::string(record._text),
            std::string(record._raw),
            record._owner->_host,
            record._count,
            record._line};
}

// Kind and text of a record, as in "event: a text".
inline std::string shown(const Zu::ZlRecord& record)
{
    return std::string(Zu::zlKindName(record._kind)) + ": " + std::string(record._text);
}

struct Result
{
    std::vector<Copy> _records;
    std::string _reports;
    std::uint64_t _lines = 0;
};

// All records of a text, delivered in pieces.
inline Result readAll(const std::string& text, std::size_t piece = std::string::npos,
                      const Zu::ZlReader::Options& options = {})
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    Zu::ZlReader reader("a.log", std::make_unique<TextSource>(text, piece), reports, options);
    Result result;
    while (reader.next()) result._records.push_back(copyOf(reader.getRecord()));
    result._reports = reported.str();
    result._lines = reader.getLineCount();
    return result;
}

inline std::vector<std::string> textsOf(const Result& result)
{
    std::vector<std::string> texts;
    for (const Copy& record : result._records)
        texts.push_back(std::string(Zu::zlKindName(record._kind)) + ": " + record._text);
    return texts;
}

inline void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace logTexts

#endif
