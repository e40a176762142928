#include "base/lmRegion.h"

#include "base/textTokens.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <utility>

namespace Zu::LmRegion
{

namespace
{

// The guard, no-cache and write-combine bits.
constexpr std::uint32_t MODIFIERS = 0x700;

constexpr std::uint32_t COMMITTED = 0x1000;
constexpr std::uint32_t RESERVED = 0x2000;
constexpr std::uint32_t FREE = 0x10000;

void* pointerTo(Address address)
{
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

// A region, with the size and the number of regions of the allocation that contains it.
struct Allocation
{
    Region _first;
    std::uint64_t _size;
    std::size_t _blocks;
};

bool queryAllocation(const Questions& questions, Address address, Allocation& allocation)
{
    Region& first = allocation._first;
    if (!questions._query(address, first)) return false;
    const Kind kind = kindOf(first._state);
    if (kind == Kind::Unknown) questions._onFault();
    if (kind != Kind::Allocation)
    {
        first._allocationBase = first._base;
        allocation._size = first._size;
        allocation._blocks = 1;
        return true;
    }
    allocation._size = 0;
    allocation._blocks = 0;
    Region region;
    while (questions._query(first._allocationBase + allocation._size, region) &&
           kindOf(region._state) == Kind::Allocation &&
           region._allocationBase == first._allocationBase && region._size > 0)
    {
        allocation._size += region._size;
        ++allocation._blocks;
    }
    return true;
}

void appendBlocks(const Questions& questions, const Allocation& allocation, LmLibrary& library)
{
    library._blocks.reserve(allocation._blocks);
    Region region = allocation._first;
    Address address = region._allocationBase;
    for (std::size_t block = 0; block < allocation._blocks; ++block)
    {
        if (block > 0 && !questions._query(address, region)) return;
        library._blocks.push_back({flagsOfProtection(protectionOf(region)), pointerTo(address),
                                   pointerTo(address), region._size});
        address += region._size;
    }
}

// Takes a number and the character after it off the front of the text.
bool takeNumber(std::string_view& text, char end, Address& number)
{
    const char* const last = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), last, number, 16);
    if (error != std::errc() || next == last || *next != end) return false;
    text.remove_prefix(static_cast<std::size_t>(next - text.data()) + 1);
    return true;
}

// Parses permissions such as "r-xp".
bool parseFlags(std::string_view text, std::uint32_t& flags)
{
    if (text.size() != 4) return false;
    flags = (text[0] == 'r' ? LmBlock::Read : 0U) | (text[1] == 'w' ? LmBlock::Write : 0U) |
            (text[2] == 'x' ? LmBlock::Execute : 0U);
    if (flags & LmBlock::Write && text[3] == 'p') flags |= LmBlock::Copy;
    return true;
}

// A run of consecutive mappings of one file.
struct Mappings
{
    std::string_view _file;
    LmLibrary _library;
    bool _isExecutable = false;
};

bool isOfFile(const MapLine& line)
{
    return !line._path.empty() && line._path.front() == '/';
}

void finish(Mappings& mappings, std::vector<LmLibrary>& libraries)
{
    if (mappings._isExecutable) libraries.push_back(std::move(mappings._library));
    mappings = Mappings();
}

void add(const MapLine& line, Mappings& mappings)
{
    if (mappings._file.empty())
    {
        mappings._file = line._file;
        mappings._library = LmLibrary(pointerTo(line._begin), std::string(line._path).c_str());
    }
    mappings._isExecutable = mappings._isExecutable || line._flags & LmBlock::Execute;
    mappings._library._blocks.push_back(
        {line._flags, pointerTo(line._begin), pointerTo(line._begin), line._end - line._begin});
}

} // namespace

std::uint32_t flagsOfProtection(std::uint32_t protection)
{
    switch (protection & ~MODIFIERS)
    {
    case 2:
        return LmBlock::Read;
    case 4:
        return LmBlock::Read | LmBlock::Write;
    case 8:
        return LmBlock::Read | LmBlock::Write | LmBlock::Copy;
    case 16:
        return LmBlock::Execute;
    case 32:
        return LmBlock::Read | LmBlock::Execute;
    case 64:
        return LmBlock::Read | LmBlock::Write | LmBlock::Execute;
    case 128:
        return LmBlock::Read | LmBlock::Write | LmBlock::Execute | LmBlock::Copy;
    default:
        return 0;
    }
}

Kind kindOf(std::uint32_t state)
{
    if (state == COMMITTED || state == RESERVED) return Kind::Allocation;
    return state == FREE ? Kind::Free : Kind::Unknown;
}

std::uint32_t protectionOf(const Region& region)
{
    return region._state == COMMITTED ? region._protection : region._allocationProtection;
}

void walk(const Questions& questions, std::vector<LmLibrary>& libraries)
{
    Allocation allocation;
    Address address = 0;
    while (queryAllocation(questions, address, allocation))
    {
        const Address base = allocation._first._allocationBase;
        std::string name;
        if (base != 0 && allocation._blocks > 0 && questions._nameOf(base, name))
        {
            LmLibrary library(pointerTo(base), name.c_str());
            appendBlocks(questions, allocation, library);
            libraries.push_back(std::move(library));
        }
        // An allocation may disappear while it is examined; then skip the region that was seen.
        Address next = base + allocation._size;
        if (next <= address) next = allocation._first._base + allocation._first._size;
        // The walk ends at the highest address.
        if (next <= address) return;
        address = next;
    }
}

bool parseMapLine(std::string_view text, MapLine& line)
{
    if (!takeNumber(text, '-', line._begin) || !takeNumber(text, ' ', line._end) ||
        line._end < line._begin)
        return false;
    if (!parseFlags(takeField(text, ' '), line._flags)) return false;
    const std::string_view offset = takeField(text, ' ');
    const char* const file = text.data();
    const std::string_view device = takeField(text, ' ');
    const std::string_view inode = takeField(text, ' ');
    if (offset.empty() || device.empty() || inode.empty()) return false;
    const char* const fileEnd = inode.data() + inode.size();
    line._file = std::string_view(file, static_cast<std::size_t>(fileEnd - file));
    line._path = text;
    return true;
}

void librariesOfMap(std::string_view map, std::vector<LmLibrary>& libraries)
{
    Mappings mappings;
    Address end = 0;
    while (!map.empty())
    {
        const std::string_view text = map.substr(0, map.find('\n'));
        map.remove_prefix(std::min(text.size() + 1, map.size()));
        MapLine line;
        if (!parseMapLine(text, line) || line._begin < end) continue;
        end = line._end;
        // Memory without a file is skipped; a library may have some between its mappings.
        if (!isOfFile(line)) continue;
        if (line._file != mappings._file) finish(mappings, libraries);
        add(line, mappings);
    }
    finish(mappings, libraries);
}

} // namespace Zu::LmRegion
