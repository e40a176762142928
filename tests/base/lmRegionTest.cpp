#include "base/lmRegion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::LmBlock;
using Zu::LmLibrary;
using Zu::LmRegion::Address;
using Zu::LmRegion::Kind;
using Zu::LmRegion::MapLine;
using Zu::LmRegion::Questions;
using Zu::LmRegion::Region;

constexpr std::uint32_t READ = LmBlock::Read;
constexpr std::uint32_t WRITE = LmBlock::Write;
constexpr std::uint32_t EXECUTE = LmBlock::Execute;
constexpr std::uint32_t COPY = LmBlock::Copy;

constexpr std::uint32_t COMMITTED = 0x1000;
constexpr std::uint32_t RESERVED = 0x2000;
constexpr std::uint32_t FREE = 0x10000;

TEST(LmRegion, AProtectionIsToldByItsNumber)
{
    const std::map<std::uint32_t, std::uint32_t> flags = {
        {2, READ},
        {4, READ | WRITE},
        {8, READ | WRITE | COPY},
        {16, EXECUTE},
        {32, READ | EXECUTE},
        {64, READ | WRITE | EXECUTE},
        {128, READ | WRITE | EXECUTE | COPY},
    };
    // Guard, no cache and write combine don't count; all other bits do.
    for (std::uint32_t low = 0; low < 256; ++low)
    {
        const auto row = flags.find(low);
        const std::uint32_t expected = row == flags.end() ? 0 : row->second;
        for (std::uint32_t masked = 0; masked <= 0x700; masked += 0x100)
        {
            EXPECT_EQ(Zu::LmRegion::flagsOfProtection(low | masked), expected) << low;
            for (const std::uint32_t high : {0x800U, 0x1000U, 0x40000000U, 0x80000000U})
                EXPECT_EQ(Zu::LmRegion::flagsOfProtection(low | masked | high), 0U) << low;
        }
    }
}

TEST(LmRegion, AStateIsOneOfThree)
{
    EXPECT_EQ(Zu::LmRegion::kindOf(COMMITTED), Kind::Allocation);
    EXPECT_EQ(Zu::LmRegion::kindOf(RESERVED), Kind::Allocation);
    EXPECT_EQ(Zu::LmRegion::kindOf(FREE), Kind::Free);
    for (const std::uint32_t state : {0U, 1U, 0x3000U, 0x4000U, 0x8000U, 0x11000U, 0x20000U, ~0U})
        EXPECT_EQ(Zu::LmRegion::kindOf(state), Kind::Unknown) << state;
}

TEST(LmRegion, AReservedRegionIsProtectedAsItsAllocation)
{
    EXPECT_EQ(Zu::LmRegion::protectionOf({0x1000, 0x1000, 128, 0x1000, COMMITTED, 2}), 2U);
    EXPECT_EQ(Zu::LmRegion::protectionOf({0x1000, 0x1000, 128, 0x1000, RESERVED, 2}), 128U);
    EXPECT_EQ(Zu::LmRegion::protectionOf({0x1000, 0x1000, 4, 0x1000, COMMITTED, 0}), 0U);
    EXPECT_EQ(Zu::LmRegion::protectionOf({0x1000, 0x1000, 4, 0x1000, RESERVED, 0}), 4U);
}

// A process's memory as tables. An address between the regions belongs to none.
struct Memory
{
    Questions questions()
    {
        Questions questions;
        questions._query = [this](Address address, Region& region)
        { return ++_queries <= _mostQueries && find(address, region); };
        questions._nameOf = [this](Address address, std::string& name)
        {
            _named.push_back(address);
            const auto found = _names.find(address);
            if (found == _names.end()) return false;
            name = found->second;
            return true;
        };
        questions._onFault = [this] { ++_faults; };
        return questions;
    }

    bool find(Address address, Region& region) const
    {
        for (const Region& one : _regions)
        {
            if (address < one._base || address - one._base >= one._size) continue;
            region = one;
            return true;
        }
        return false;
    }

    std::vector<LmLibrary> libraries()
    {
        std::vector<LmLibrary> found;
        Zu::LmRegion::walk(questions(), found);
        return found;
    }

    std::vector<Region> _regions;
    std::map<Address, std::string> _names;
    // Bounds a walk without an end.
    int _mostQueries = 1000;

    int _queries = 0;
    std::vector<Address> _named;
    int _faults = 0;
};

Address numberOf(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

// A library in one line of text for each block.
std::string textOf(const LmLibrary& library)
{
    std::string text = library._path.get();
    text += " at " + std::to_string(numberOf(library._base));
    if (library._address != library._base) text += " or elsewhere";
    for (const LmBlock& block : library._blocks)
    {
        text += "; " + std::to_string(numberOf(block._address)) + " " +
                std::to_string(block._size) + " " + std::to_string(block._flags);
        if (block._mappedAddress != block._address) text += " mapped elsewhere";
    }
    return text;
}

std::vector<std::string> textsOf(const std::vector<LmLibrary>& libraries)
{
    std::vector<std::string> texts;
    for (const LmLibrary& library : libraries) texts.push_back(textOf(library));
    return texts;
}

using Texts = std::vector<std::string>;

// Two modules, a heap and free memory between them, and a hole behind all.
Memory usualMemory()
{
    Memory memory;
    memory._regions = {
        {0, 0, 0, 1000, FREE, 1},
        // The first module.
        {1000, 1000, 128, 100, COMMITTED, 2},
        {1100, 1000, 128, 300, COMMITTED, 32},
        {1400, 1000, 128, 50, COMMITTED, 8},
        {1450, 1000, 128, 50, COMMITTED, 4},
        // The heap, which has no name.
        {1500, 1500, 4, 500, COMMITTED, 4},
        {2000, 1500, 4, 500, RESERVED, 0},
        {2500, 0, 0, 500, FREE, 1},
        // The second module, directly followed by the third one.
        {3000, 3000, 128, 100, COMMITTED, 2},
        {3100, 3000, 128, 200, RESERVED, 0},
        {3300, 3300, 128, 100, COMMITTED, 32 | 0x100},
        {3400, 0, 0, 600, FREE, 1},
    };
    memory._names = {{1000, "first.dll"}, {3000, "second.dll"}, {3300, "third.dll"}};
    return memory;
}

const Texts USUAL = {
    "first.dll at 1000; 1000 100 4; 1100 300 20; 1400 50 44; 1450 50 12",
    "second.dll at 3000; 3000 100 4; 3100 200 60",
    "third.dll at 3300; 3300 100 20",
};

TEST(LmRegion, TheAllocationsBehindWhichAModuleStandsAreTheLibraries)
{
    Memory memory = usualMemory();
    EXPECT_EQ(textsOf(memory.libraries()), USUAL);
    EXPECT_EQ(memory._faults, 0);
}

TEST(LmRegion, TheLibrariesAreAppended)
{
    std::vector<LmLibrary> libraries(1);
    Memory memory = usualMemory();
    Zu::LmRegion::walk(memory.questions(), libraries);
    ASSERT_EQ(libraries.size(), 4U);
    EXPECT_STREQ(libraries[0]._path.get(), "Unknown");
    EXPECT_STREQ(libraries[1]._path.get(), "first.dll");
}

TEST(LmRegion, MemoryWithoutRegionsHasNoLibraries)
{
    Memory memory;
    EXPECT_TRUE(memory.libraries().empty());
    EXPECT_EQ(memory._queries, 1);
    EXPECT_TRUE(memory._named.empty());
}

TEST(LmRegion, ANullAllocationBaseIsNotAskedForItsName)
{
    Memory memory = usualMemory();
    memory._names[0] = "none.dll";
    EXPECT_EQ(textsOf(memory.libraries()), USUAL);
    EXPECT_EQ(std::count(memory._named.begin(), memory._named.end(), 0), 0);
}

// The names of modules are queried by allocation and not by block.
TEST(LmRegion, ANameIsAskedForAtTheBaseOfAnAllocation)
{
    Memory memory = usualMemory();
    memory._names[1100] = "inner.dll";
    memory._names[2000] = "inner.dll";
    EXPECT_EQ(textsOf(memory.libraries()), USUAL);
    for (const Address base : {1000U, 1500U, 3000U, 3300U})
        EXPECT_EQ(std::count(memory._named.begin(), memory._named.end(), base), 1) << base;
}

TEST(LmRegion, BlocksOfOneProtectionBesideEachOtherStayApart)
{
    Memory memory;
    memory._regions = {
        {0, 0, 0, 16, FREE, 1}, {16, 16, 2, 16, COMMITTED, 2}, {32, 16, 2, 16, COMMITTED, 2}};
    memory._names = {{16, "one.dll"}};
    EXPECT_EQ(textsOf(memory.libraries()), Texts{"one.dll at 16; 16 16 4; 32 16 4"});
}

TEST(LmRegion, TheWalkEndsWhereAQueryFails)
{
    Memory memory = usualMemory();
    // What is between 2500 and 3000 is unknown.
    memory._regions.erase(memory._regions.begin() + 7);
    EXPECT_EQ(textsOf(memory.libraries()), Texts{USUAL[0]});
    EXPECT_EQ(memory._faults, 0);
}

// From some query on all fail, also in the middle of an allocation.
TEST(LmRegion, WhatWasFoundBeforeAFailureIsABeginningOfTheWhole)
{
    Memory whole = usualMemory();
    const std::vector<LmLibrary> all = whole.libraries();
    std::size_t most = 0;
    for (int queries = 0; queries <= whole._queries; ++queries)
    {
        Memory memory = usualMemory();
        memory._mostQueries = queries;
        const std::vector<LmLibrary> some = memory.libraries();
        ASSERT_LE(some.size(), all.size()) << queries;
        for (std::size_t i = 0; i < some.size(); ++i)
        {
            EXPECT_STREQ(some[i]._path.get(), all[i]._path.get()) << queries;
            const bool begins = textOf(all[i]).starts_with(textOf(some[i]));
            EXPECT_TRUE(begins) << queries << ": " << textOf(some[i]);
        }
        EXPECT_GE(some.size(), most) << queries;
        most = some.size();
    }
    EXPECT_EQ(most, all.size());
}

TEST(LmRegion, AStateThatThereShouldNotBeIsAFault)
{
    Memory memory = usualMemory();
    memory._regions[7]._state = 0x4000;
    const std::vector<LmLibrary> libraries = memory.libraries();
    EXPECT_EQ(memory._faults, 1);
    // What was found before is kept, and the walk ends.
    ASSERT_FALSE(libraries.empty());
    EXPECT_EQ(textOf(libraries[0]), USUAL[0]);
    EXPECT_LT(memory._queries, memory._mostQueries);
}

TEST(LmRegion, TheFirstRegionMayBeAFault)
{
    Memory memory = usualMemory();
    memory._regions[0]._state = 0;
    memory.libraries();
    EXPECT_EQ(memory._faults, 1);
    EXPECT_LT(memory._queries, memory._mostQueries);
}

// Behind the last address the walk would begin again.
TEST(LmRegion, TheWalkEndsAtTheTopOfTheAddressSpace)
{
    const Address top = std::numeric_limits<Address>::max();
    const Address last = top - 0xfff;
    Memory memory;
    memory._regions = {
        {0, 0, 0, 0x1000, FREE, 1},
        {0x1000, 0x1000, 2, 0x1000, COMMITTED, 2},
        {0x2000, 0, 0, last - 0x2000, FREE, 1},
        {last, last, 2, 0x1000, COMMITTED, 2},
    };
    memory._names = {{0x1000, "low.dll"}, {last, "high.dll"}};
    const Texts expected = {"low.dll at 4096; 4096 4096 4", "high.dll at " + std::to_string(last) +
                                                                "; " + std::to_string(last) +
                                                                " 4096 4"};
    EXPECT_EQ(textsOf(memory.libraries()), expected);
    EXPECT_LT(memory._queries, memory._mostQueries);

    // The same with free memory at the top.
    Memory free = memory;
    free._queries = 0;
    free._regions[3] = {last, 0, 0, 0x1000, FREE, 1};
    free._names.erase(last);
    EXPECT_EQ(textsOf(free.libraries()), Texts{expected[0]});
    EXPECT_LT(free._queries, free._mostQueries);
}

// Other threads free and allocate while the walk goes on.
TEST(LmRegion, AnAllocationThatEndsMeanwhileDoesNotEndTheWalk)
{
    Memory memory = usualMemory();
    Questions questions = memory.questions();
    int looks = 0;
    questions._query = [&memory, &looks, find = questions._query](Address address, Region& region)
    {
        if (!find(address, region)) return false;
        // The heap exists when the walk reaches it, after a query from the preceding module, and is
        // gone when its size is queried.
        if (address == 1500 && ++looks == 2) memory._regions[5] = {1500, 0, 0, 500, FREE, 1};
        return true;
    };
    std::vector<LmLibrary> found;
    Zu::LmRegion::walk(questions, found);
    EXPECT_EQ(textsOf(found), USUAL);
    EXPECT_EQ(memory._faults, 0);
}

TEST(LmRegion, AModuleThatEndsMeanwhileIsNoLibrary)
{
    Memory memory = usualMemory();
    Questions questions = memory.questions();
    questions._query = [&memory, find = questions._query](Address address, Region& region)
    {
        if (!find(address, region)) return false;
        if (address == 1000)
            for (std::size_t i = 1; i < 5; ++i)
                memory._regions[i] = {memory._regions[i]._base, 0,    0,
                                      memory._regions[i]._size, FREE, 1};
        return true;
    };
    std::vector<LmLibrary> found;
    Zu::LmRegion::walk(questions, found);
    EXPECT_EQ(textsOf(found), (Texts{USUAL[1], USUAL[2]}));
}

// A name of any length is accepted; only the system's result truncates it.
TEST(LmRegion, NamesAreTakenAsTheyAreGiven)
{
    for (const std::size_t length : {std::size_t{1}, std::size_t{148}, std::size_t{149}})
    {
        Memory memory = usualMemory();
        memory._names = {{1000, std::string(length - 1, 'n') + "!"}};
        const std::vector<LmLibrary> libraries = memory.libraries();
        ASSERT_EQ(libraries.size(), 1U) << length;
        EXPECT_EQ(libraries[0]._path.get(), memory._names[1000]);
    }
}

TEST(LmRegion, ANameOverThatOfABufferKeepsAtLeastWhatABufferHolds)
{
    for (const std::size_t length : {std::size_t{150}, std::size_t{151}, std::size_t{5000}})
    {
        Memory memory = usualMemory();
        const std::string name = std::string(140, 'a') + std::string(length - 140, 'b');
        memory._names = {{1000, name}};
        const std::vector<LmLibrary> libraries = memory.libraries();
        ASSERT_EQ(libraries.size(), 1U) << length;
        const std::string path = libraries[0]._path.get();
        EXPECT_GE(path.size(), 149U) << length;
        EXPECT_TRUE(name.starts_with(path)) << length;
    }
}

struct LineRow
{
    const char* _text;
    Address _begin;
    Address _end;
    std::uint32_t _flags;
    const char* _file;
    const char* _path;
};

const LineRow LINES[] = {
    {"00400000-00452000 r-xp 00000000 08:02 173521      /usr/bin/dbus-daemon", 0x400000, 0x452000,
     READ | EXECUTE, "08:02 173521", "/usr/bin/dbus-daemon"},
    {"1000-2000 r--p 00000000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000, READ, "fd:00 12",
     "/lib/libSample.so"},
    {"1000-2000 rw-p 00003000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000, READ | WRITE | COPY,
     "fd:00 12", "/lib/libSample.so"},
    {"1000-2000 rwxp 00003000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000,
     READ | WRITE | EXECUTE | COPY, "fd:00 12", "/lib/libSample.so"},
    {"1000-2000 rw-s 00003000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000, READ | WRITE, "fd:00 12",
     "/lib/libSample.so"},
    {"1000-2000 rwxs 00003000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000, READ | WRITE | EXECUTE,
     "fd:00 12", "/lib/libSample.so"},
    {"1000-2000 r-xs 00003000 fd:00 12 /lib/libSample.so", 0x1000, 0x2000, READ | EXECUTE,
     "fd:00 12", "/lib/libSample.so"},
    {"1000-2000 --xp 00000000 fd:00 12 /a", 0x1000, 0x2000, EXECUTE, "fd:00 12", "/a"},
    {"1000-2000 ---p 00000000 fd:00 12 /a", 0x1000, 0x2000, 0, "fd:00 12", "/a"},
    // Blanks in a name, some of them consecutive.
    {"1000-2000 r-xp 00000000 fd:00 12                 /two words/and  three.so", 0x1000, 0x2000,
     READ | EXECUTE, "fd:00 12", "/two words/and  three.so"},
    {"1000-2000 r-xp 00000000 fd:00 12    /lib/libSample.so (deleted)", 0x1000, 0x2000,
     READ | EXECUTE, "fd:00 12", "/lib/libSample.so (deleted)"},
    // No file.
    {"1000-2000 rw-p 00000000 00:00 0 ", 0x1000, 0x2000, READ | WRITE | COPY, "00:00 0", ""},
    {"1000-2000 rw-p 00000000 00:00 0", 0x1000, 0x2000, READ | WRITE | COPY, "00:00 0", ""},
    {"7ffd1000-7ffd3000 r-xp 00000000 00:00 0                  [vdso]", 0x7ffd1000, 0x7ffd3000,
     READ | EXECUTE, "00:00 0", "[vdso]"},
    // The top of the address space.
    {"ffffffffff600000-ffffffffff601000 --xp 00000000 00:00 0        [vsyscall]",
     0xffffffffff600000, 0xffffffffff601000, EXECUTE, "00:00 0", "[vsyscall]"},
    {"0-1 r--p 0 0:0 0", 0, 1, READ, "0:0 0", ""},
};

TEST(LmRegion, ALineOfTheMapIsTakenApart)
{
    for (const LineRow& row : LINES)
    {
        SCOPED_TRACE(row._text);
        MapLine line{};
        // No terminator behind the text.
        const std::vector<char> text(row._text, row._text + std::string_view(row._text).size());
        ASSERT_TRUE(Zu::LmRegion::parseMapLine(std::string_view(text.data(), text.size()), line));
        EXPECT_EQ(line._begin, row._begin);
        EXPECT_EQ(line._end, row._end);
        EXPECT_EQ(line._flags, row._flags);
        EXPECT_EQ(line._file, row._file);
        EXPECT_EQ(line._path, row._path);
    }
}

TEST(LmRegion, APathOfTheMapIsOfAnyLength)
{
    const std::string path = "/" + std::string(4000, 'p') + "/end";
    const std::string text = "1000-2000 r-xp 00000000 fd:00 12 " + path;
    MapLine line{};
    ASSERT_TRUE(Zu::LmRegion::parseMapLine(text, line));
    EXPECT_EQ(line._path, path);
}

const char* const NO_LINES[] = {
    "",
    " ",
    "no line of a map",
    "1000",
    "1000-",
    "1000-2000",
    "1000-2000 ",
    "1000-2000 r-xp",
    "1000-2000 r-xp 00000000",
    "1000-2000 r-xp 00000000 fd:00",
    "1000-2000 r-x",
    "1000-2000 r-x 00000000 fd:00 12 /a",
    "-2000 r-xp 00000000 fd:00 12 /a",
    "1000 2000 r-xp 00000000 fd:00 12 /a",
    "1000-2000r-xp 00000000 fd:00 12 /a",
    "xyz-2000 r-xp 00000000 fd:00 12 /a",
    "1000-xyz r-xp 00000000 fd:00 12 /a",
    "r-xp 00000000 fd:00 12 /a",
    "11112222333344445-2111122223333444455 r-xp 00000000 fd:00 12 /a",
};

TEST(LmRegion, WhatIsNoLineOfTheMapIsToldSo)
{
    for (const char* const text : NO_LINES)
    {
        MapLine line{};
        EXPECT_FALSE(Zu::LmRegion::parseMapLine(text, line)) << "'" << text << "'";
    }
}

TEST(LmRegion, AMappingMayBeEmptyButDoesNotEndBeforeItBegins)
{
    MapLine line{};
    ASSERT_TRUE(Zu::LmRegion::parseMapLine("1000-1000 r-xp 00000000 fd:00 12 /a", line));
    EXPECT_EQ(line._begin, 0x1000U);
    EXPECT_EQ(line._end, 0x1000U);
    EXPECT_FALSE(Zu::LmRegion::parseMapLine("1000-fff r-xp 00000000 fd:00 12 /a", line));
}

// Every prefix of a line is a line or not, and nothing behind it is read.
TEST(LmRegion, ALineMayEndAnywhere)
{
    const std::string whole = "1000-2000 r-xp 00000000 fd:00 12      /lib/libSample.so";
    for (std::size_t length = 0; length <= whole.size(); ++length)
    {
        const std::vector<char> text(whole.begin(),
                                     whole.begin() + static_cast<std::ptrdiff_t>(length));
        MapLine line{};
        const bool isLine =
            Zu::LmRegion::parseMapLine(std::string_view(text.data(), text.size()), line);
        // Up to the first digit of the inode there is something missing.
        if (length < whole.find(" 12") + 2)
        {
            EXPECT_FALSE(isLine) << length;
            continue;
        }
        ASSERT_TRUE(isLine) << length;
        EXPECT_EQ(line._begin, 0x1000U);
        const std::size_t start = whole.find('/');
        EXPECT_EQ(line._path, length > start ? whole.substr(start, length - start) : "") << length;
    }
}

Texts textsOfMap(std::string_view map)
{
    // No terminator behind the text.
    const std::vector<char> text(map.begin(), map.end());
    std::vector<LmLibrary> libraries;
    Zu::LmRegion::librariesOfMap(std::string_view(text.data(), text.size()), libraries);
    return textsOf(libraries);
}

// Addresses in hexadecimal digits, and in the expected texts in decimal ones: 0x1000 is 4096.
const char* const USUAL_MAP = "1000-2000 r--p 00000000 fd:00 11     /usr/bin/two words\n"
                              "2000-4000 r-xp 00001000 fd:00 11     /usr/bin/two words\n"
                              "4000-5000 rw-p 00003000 fd:00 11     /usr/bin/two words\n"
                              "5000-6000 rw-p 00000000 00:00 0      [heap]\n"
                              "6000-7000 r--s 00000000 fd:00 12     /usr/lib/locale/archive\n"
                              "7000-8000 r-xp 00000000 fd:00 13     /lib/libSample.so (deleted)\n"
                              "8000-9000 ---p 00001000 fd:00 13     /lib/libSample.so (deleted)\n"
                              "9000-a000 rw-p 00000000 00:00 0 \n"
                              "a000-b000 r-xp 00000000 00:00 0      [vdso]\n"
                              "b000-c000 r-xp 00000000 fd:00 14     /lib/last.so\n";

const Texts USUAL_LIBRARIES = {
    "/usr/bin/two words at 4096; 4096 4096 4; 8192 8192 20; 16384 4096 44",
    "/lib/libSample.so (deleted) at 28672; 28672 4096 20; 32768 4096 0",
    "/lib/last.so at 45056; 45056 4096 20",
};

TEST(LmRegion, TheFilesOfTheMapThatCanBeExecutedAreTheLibraries)
{
    EXPECT_EQ(textsOfMap(USUAL_MAP), USUAL_LIBRARIES);
}

TEST(LmRegion, TheLibrariesOfAMapAreAppended)
{
    std::vector<LmLibrary> libraries(1);
    Zu::LmRegion::librariesOfMap(USUAL_MAP, libraries);
    ASSERT_EQ(libraries.size(), 4U);
    EXPECT_STREQ(libraries[0]._path.get(), "Unknown");
    EXPECT_EQ(textOf(libraries[3]), USUAL_LIBRARIES[2]);
}

TEST(LmRegion, TheLastLineOfAMapNeedsNoEnd)
{
    std::string_view map = USUAL_MAP;
    map.remove_suffix(1);
    EXPECT_EQ(textsOfMap(map), USUAL_LIBRARIES);
}

TEST(LmRegion, AMapWithoutLinesHasNoLibraries)
{
    for (const char* const map : {"", "\n", "\n\n\n"})
        EXPECT_EQ(textsOfMap(map), Texts()) << "'" << map << "'";
}

TEST(LmRegion, WhatIsNoLineIsLeftOut)
{
    for (const char* const text : NO_LINES)
    {
        const std::string line = std::string(text) + "\n";
        const std::string inside =
            std::string(USUAL_MAP).insert(std::string_view(USUAL_MAP).find("2000-4000"), line);
        EXPECT_EQ(textsOfMap(line + USUAL_MAP), USUAL_LIBRARIES) << "'" << text << "'";
        EXPECT_EQ(textsOfMap(inside), USUAL_LIBRARIES) << "'" << text << "'";
        EXPECT_EQ(textsOfMap(USUAL_MAP + line), USUAL_LIBRARIES) << "'" << text << "'";
    }
}

// The loader leaves such gaps between the parts of a library.
TEST(LmRegion, WhatIsMappedWithoutAFileDoesNotPartALibrary)
{
    EXPECT_EQ(textsOfMap("1000-2000 r-xp 00000000 fd:00 11 /lib/a.so\n"
                         "2000-3000 ---p 00000000 00:00 0 \n"
                         "3000-4000 rw-p 00002000 fd:00 11 /lib/a.so\n"),
              Texts{"/lib/a.so at 4096; 4096 4096 20; 12288 4096 44"});
}

// Two files of one path, as when one took the place of the other, and one file by two paths.
TEST(LmRegion, LibrariesAreToldApartByTheirFiles)
{
    EXPECT_EQ(textsOfMap("1000-2000 r-xp 00000000 fd:00 11 /lib/a.so\n"
                         "2000-3000 r-xp 00000000 fd:00 12 /lib/a.so\n"
                         "3000-4000 r-xp 00000000 fd:01 12 /lib/a.so\n"),
              (Texts{"/lib/a.so at 4096; 4096 4096 20", "/lib/a.so at 8192; 8192 4096 20",
                     "/lib/a.so at 12288; 12288 4096 20"}));
}

TEST(LmRegion, AFileWithoutCodeIsNoLibrary)
{
    EXPECT_EQ(textsOfMap("1000-2000 r--p 00000000 fd:00 11 /lib/a.so\n"
                         "2000-3000 rw-p 00001000 fd:00 11 /lib/a.so\n"
                         "3000-4000 r-xp 00000000 00:00 0 \n"
                         "4000-5000 r-xp 00000000 00:00 0 [code]\n"),
              Texts());
    // The code may come last.
    EXPECT_EQ(textsOfMap("1000-2000 r--p 00000000 fd:00 11 /lib/a.so\n"
                         "2000-3000 rw-p 00001000 fd:00 11 /lib/a.so\n"
                         "3000-4000 --xp 00002000 fd:00 11 /lib/a.so\n"),
              Texts{"/lib/a.so at 4096; 4096 4096 4; 8192 4096 44; 12288 4096 16"});
}

// The map may change while it is read, and then repeats places.
TEST(LmRegion, WhatLiesBeforeALineAboveItIsLeftOut)
{
    const Texts expected = {"/lib/a.so at 4096; 4096 4096 20; 8192 4096 4",
                            "/lib/b.so at 20480; 20480 4096 20"};
    const char* const tooLate[] = {
        "1000-2000 r-xp 00000000 fd:00 11 /lib/a.so\n", // the same again
        "1000-3000 r-xp 00000000 fd:00 13 /lib/c.so\n", // over what was there
        "2800-3800 r-xp 00000000 fd:00 13 /lib/c.so\n", // into the end of it
        "0-1000 r-xp 00000000 fd:00 13 /lib/c.so\n",    // before all
        "0-8000 r-xp 00000000 fd:00 13 /lib/c.so\n",    // around all
    };
    for (const char* const line : tooLate)
        EXPECT_EQ(textsOfMap("1000-2000 r-xp 00000000 fd:00 11 /lib/a.so\n"
                             "2000-3000 r--p 00001000 fd:00 11 /lib/a.so\n" +
                             std::string(line) + "5000-6000 r-xp 00000000 fd:00 12 /lib/b.so\n"),
                  expected)
            << line;
}

TEST(LmRegion, PathsOfAMapAreOfAnyLength)
{
    for (const std::size_t length : {std::size_t{149}, std::size_t{150}, std::size_t{4000}})
    {
        const std::string path = "/" + std::string(length - 1, 'p');
        EXPECT_EQ(textsOfMap("1000-2000 r-xp 00000000 fd:00 11 " + path + "\n"),
                  Texts{path + " at 4096; 4096 4096 20"});
    }
}

} // namespace
