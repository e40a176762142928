// The memory map of a process.

#include "base/lmLibrary.h"
#include "base/lmRegion.h"

#include "fuzzTarget.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

namespace LmRegion = Zu::LmRegion;
using Zu::LmBlock;

struct Line
{
    std::uint64_t _begin;
    std::uint64_t _end;
    std::uint32_t _flags;
    std::string _file;
    std::string _path;
};

// Takes a hexadecimal number and the character behind it from the front of a text.
std::optional<std::uint64_t> takeNumber(std::string& text, char end)
{
    const std::size_t length = text.find(end);
    if (length == std::string::npos || length == 0) return std::nullopt;
    std::uint64_t number = 0;
    for (const char character : text.substr(0, length))
    {
        const std::string digits = "0123456789abcdef0123456789ABCDEF";
        const std::size_t digit = digits.find(character);
        if (digit == std::string::npos || number >> 60 != 0) return std::nullopt;
        number = number << 4 | digit % 16;
    }
    text.erase(0, length + 1);
    return number;
}

// Words are separated by blanks; the path is everything behind them.
std::string takeWord(std::string& text)
{
    const std::string word = text.substr(0, text.find(' '));
    text.erase(0, word.size());
    const std::size_t next = text.find_first_not_of(' ');
    text.erase(0, next);
    return word;
}

std::optional<Line> parse(std::string text)
{
    const std::string whole = text;
    const std::optional<std::uint64_t> begin = takeNumber(text, '-');
    if (!begin) return std::nullopt;
    const std::optional<std::uint64_t> end = takeNumber(text, ' ');
    if (!end || *end < *begin) return std::nullopt;
    const std::string rights = takeWord(text);
    if (rights.size() != 4) return std::nullopt;
    Line line{*begin, *end, 0, "", ""};
    if (rights[0] == 'r') line._flags |= LmBlock::Read;
    if (rights[1] == 'w') line._flags |= LmBlock::Write;
    if (rights[2] == 'x') line._flags |= LmBlock::Execute;
    if (rights[1] == 'w' && rights[3] == 'p') line._flags |= LmBlock::Copy;
    const std::string offset = takeWord(text);
    const std::size_t fileBegin = whole.size() - text.size();
    const std::string device = takeWord(text);
    const std::size_t inodeBegin = whole.size() - text.size();
    const std::string inode = takeWord(text);
    if (offset.empty() || device.empty() || inode.empty()) return std::nullopt;
    line._file = whole.substr(fileBegin, inodeBegin + inode.size() - fileBegin);
    line._path = text;
    return line;
}

bool isWithin(std::string_view part, std::string_view text)
{
    return part.empty() ||
           (part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size());
}

void checkLine(const std::string& text)
{
    const std::vector<char> copy(text.begin(), text.end());
    const std::string_view view(copy.data(), copy.size());
    const std::optional<Line> expected = parse(text);
    LmRegion::MapLine line{};
    FUZZ_REQUIRE(LmRegion::parseMapLine(view, line) == expected.has_value());
    if (!expected) return;
    FUZZ_REQUIRE(line._begin == expected->_begin);
    FUZZ_REQUIRE(line._end == expected->_end);
    FUZZ_REQUIRE(line._flags == expected->_flags);
    FUZZ_REQUIRE(line._file == expected->_file && isWithin(line._file, view));
    FUZZ_REQUIRE(line._path == expected->_path && isWithin(line._path, view));
}

// Consecutive mappings of the same file, of files with at least one executable mapping.
std::vector<std::vector<Line>> librariesOf(const std::vector<std::string>& texts)
{
    std::vector<std::vector<Line>> files;
    std::uint64_t end = 0;
    for (const std::string& text : texts)
    {
        const std::optional<Line> line = parse(text);
        if (!line || line->_begin < end) continue;
        end = line->_end;
        if (line->_path.empty() || line->_path[0] != '/') continue;
        if (files.empty() || files.back().front()._file != line->_file) files.emplace_back();
        files.back().push_back(*line);
    }
    std::erase_if(files,
                  [](const std::vector<Line>& lines)
                  {
                      for (const Line& line : lines)
                          if ((line._flags & LmBlock::Execute) != 0) return false;
                      return true;
                  });
    return files;
}

std::uint64_t numberOf(const void* address)
{
    return reinterpret_cast<std::uintptr_t>(address);
}

void run(fuzz::Input input)
{
    const std::string map = input.takeText();
    const std::vector<std::string> texts = fuzz::split(map, '\n');
    for (const std::string& text : texts) checkLine(text);

    const std::vector<char> copy(map.begin(), map.end());
    std::vector<Zu::LmLibrary> libraries;
    LmRegion::librariesOfMap(std::string_view(copy.data(), copy.size()), libraries);
    const std::vector<std::vector<Line>> expected = librariesOf(texts);
    FUZZ_REQUIRE(libraries.size() == expected.size());
    for (std::size_t i = 0; i < libraries.size(); ++i)
    {
        const Zu::LmLibrary& library = libraries[i];
        FUZZ_REQUIRE(library._path.get() == expected[i].front()._path);
        FUZZ_REQUIRE(numberOf(library._base) == expected[i].front()._begin);
        FUZZ_REQUIRE(library._address == library._base);
        FUZZ_REQUIRE(library._blocks.size() == expected[i].size());
        for (std::size_t k = 0; k < library._blocks.size(); ++k)
        {
            const LmBlock& block = library._blocks[k];
            const Line& line = expected[i][k];
            FUZZ_REQUIRE(numberOf(block._address) == line._begin);
            FUZZ_REQUIRE(block._mappedAddress == block._address);
            FUZZ_REQUIRE(block._size == line._end - line._begin);
            FUZZ_REQUIRE(block._flags == line._flags);
        }
    }
}

} // namespace

FUZZ_TARGET(mapLines, run);
