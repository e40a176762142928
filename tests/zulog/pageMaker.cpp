// Makes a page of many records, for the test in a browser and for measurements.
//
// usage: pageMaker FILE COUNT
//
// Two hosts, three processes, eight threads, a millisecond between events. All values follow from
// the number of the record:
//
// - record 0 is a start, record 1 an overflow of 17 events, record 2 a loss of 4; records 3 to 5
//   are a recovery with one event in it; the last one is a stop
// - record 6 is markup, record 7 has continuation lines, and record 8 is of unknown time, thread
//   and level
// - record 9 is not readable
// - each 1,000th record is an Error of the group Disk that says "needle"; of the others each 50th
//   is a Warning

#include "zulog/zlPage.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

namespace
{

using Kind = Zu::ZlRecord::Kind;

// 2026-11-22 22:10:51 UTC
constexpr std::int64_t BEGIN = 1795385451000000000;
constexpr std::int64_t MILLISECOND = 1000000;
constexpr std::uint32_t THREADS = 8;
constexpr std::uint32_t PROCESSES = 3;

// A record and what its views lead to.
class Maker
{
public:
    explicit Maker(std::uint64_t count) : _count(count)
    {
        _owners[0]._host = "alpha";
        _owners[1]._host = "beta";
    }

    const Zu::ZlRecord& make(std::uint64_t number)
    {
        const auto thread = static_cast<std::uint32_t>(number % THREADS);
        _record = {};
        _record._wall = BEGIN + static_cast<std::int64_t>(number) * MILLISECOND;
        _record._process = 100 + thread % PROCESSES;
        _record._thread = 0xa0 + thread;
        _record._owner = &_owners[thread % PROCESSES / 2];
        _record._file = &_files[thread % PROCESSES];
        _record._line = number + 1;
        makeEvent(number);
        if (number < 10) makeSpecial(number);
        if (number + 1 == _count) makeMark(Kind::Stop, "===== Logger Stop =====");
        return _record;
    }

private:
    void makeEvent(std::uint64_t number)
    {
        const bool isError = number % 1000 == 0;
        _record._kind = Kind::Event;
        _record._level = isError            ? Zu::LgTypes::Error
                         : number % 50 == 0 ? Zu::LgTypes::Warning
                                            : Zu::LgTypes::Informational;
        _record._group = isError ? "Disk" : number % 3 == 0 ? "Orders" : "Orders::Items";
        _text = isError ? "needle " : "order ";
        _text += std::to_string(number);
        _text += " was taken and is now on its way to the store";
        _record._text = _text;
    }

    void makeMark(Kind kind, const char* text, std::uint64_t count = 0)
    {
        _record._kind = kind;
        _record._thread.reset();
        _record._level.reset();
        _record._group = {};
        _record._text = text;
        _record._count = count;
    }

    void makeSpecial(std::uint64_t number)
    {
        switch (number)
        {
        case 0:
            makeMark(Kind::Start, "===== Logger Start =====");
            break;
        case 1:
            _record._kind = Kind::Overflow;
            _record._text = "Event overflow [17]";
            _record._group = {};
            _record._count = 17;
            break;
        case 2:
            makeMark(Kind::NotWritten, "===== Not Written: 4 events =====", 4);
            break;
        case 3:
            makeMark(Kind::RecoveryBegin, "===== Recovered: begin =====");
            break;
        case 5:
            makeMark(Kind::RecoveryEnd, "===== Recovered: end =====");
            break;
        case 6:
            _record._text = "<b id=\"bad\">&amp;</b></script><script>bad=1</script><!--";
            break;
        case 7:
            _record._text = "first\n\tsecond\n\tthird";
            break;
        case 8:
            _record._wall.reset();
            _record._thread.reset();
            _record._level.reset();
            break;
        case 9:
            makeMark(Kind::Unreadable, "torn \x1b[31m\xff");
            break;
        default:
            break;
        }
    }

    const std::uint64_t _count;
    Zu::ZlOwner _owners[2];
    const std::string _files[PROCESSES] = {"a.log", "b.log", "c.log"};
    Zu::ZlRecord _record;
    std::string _text;
};

void writePage(std::ostream& file, std::uint64_t count)
{
    constexpr std::size_t LARGE = std::size_t{64} * 1024;
    Zu::ZlPage page("Test <page> & more");
    Maker maker(count);
    std::string text;
    page.begin(text);
    for (std::uint64_t number = 0; number < count; ++number)
    {
        page.append(text, maker.make(number));
        if (text.size() < LARGE) continue;
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
    }
    page.end(text);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::cerr << "usage: pageMaker FILE COUNT\n";
        return 2;
    }
    const auto begin = std::chrono::steady_clock::now();
    std::ofstream file(argv[1], std::ios::binary);
    writePage(file, std::strtoull(argv[2], nullptr, 10));
    file.flush();
    const auto duration = std::chrono::steady_clock::now() - begin;
    std::cout << std::chrono::duration_cast<std::chrono::milliseconds>(duration).count() << " ms, "
              << file.tellp() << " bytes\n";
    return file ? 0 : 1;
}
