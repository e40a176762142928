#include "base/osSymbolTable.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Words = std::vector<std::uint32_t>;
using Zu::OsElfSymbol;
using Zu::OsSymbolTable;

// A library as a linker would table it.
class Library
{
public:
    // Returns the index of the symbol.
    std::uint32_t add(const std::string& name, std::uint16_t section)
    {
        OsElfSymbol symbol = {};
        symbol._name = static_cast<std::uint32_t>(_names.size());
        symbol._section = section;
        _names += name + '\0';
        _symbols.push_back(symbol);
        return static_cast<std::uint32_t>(_symbols.size() - 1);
    }

    OsSymbolTable withHash(const Words& words) const
    {
        return {_names.c_str(), _symbols.data(), words.data(), nullptr};
    }

    OsSymbolTable withGnuHash(const Words& words) const
    {
        return {_names.c_str(), _symbols.data(), nullptr, words.data()};
    }

private:
    // The empty name and the null symbol come first.
    std::string _names = std::string(1, '\0');
    std::vector<OsElfSymbol> _symbols = std::vector<OsElfSymbol>(1);
};

constexpr std::uint16_t TEXT = 12;
constexpr std::uint16_t UNDEFINED = 0;

// The published hashes of these names: by the System V interface, and by the GNU linker.
constexpr std::uint32_t PRINTF = 0x077905a6;
constexpr std::uint32_t EXIT = 0x0006cf04;
constexpr std::uint32_t SYSCALL = 0x0b09985c;
constexpr std::uint32_t GNU_PRINTF = 0x156b2bb8;
constexpr std::uint32_t GNU_EXIT = 0x7c967e3f;
constexpr std::uint32_t GNU_SYSCALL = 0xbac212a0;

TEST(OsSymbolTable, TheOlderTableTellsWhatIsDefined)
{
    Library library;
    const std::uint32_t printfIndex = library.add("printf", TEXT);
    const std::uint32_t exitIndex = library.add("exit", UNDEFINED);
    const std::uint32_t syscallIndex = library.add("syscall", TEXT);
    // All in one bucket, one after the other; then each in a bucket of its own among a million.
    const Words one = {1, 4, printfIndex, 0, exitIndex, syscallIndex, 0};
    EXPECT_TRUE(osDefines(library.withHash(one), "printf"));
    EXPECT_TRUE(osDefines(library.withHash(one), "syscall"));
    EXPECT_FALSE(osDefines(library.withHash(one), "exit"));
    for (const char* const name : {"", "print", "printff", "nothing"})
        EXPECT_FALSE(osDefines(library.withHash(one), name)) << name;
    const std::uint32_t buckets = 1000003;
    Words many = {buckets, 4};
    many.resize(2 + buckets + 4);
    many[2 + PRINTF % buckets] = printfIndex;
    many[2 + EXIT % buckets] = exitIndex;
    many[2 + SYSCALL % buckets] = syscallIndex;
    EXPECT_TRUE(osDefines(library.withHash(many), "printf"));
    EXPECT_TRUE(osDefines(library.withHash(many), "syscall"));
    EXPECT_FALSE(osDefines(library.withHash(many), "exit"));
}

TEST(OsSymbolTable, TheTableOfTheGnuLinkerTellsWhatIsDefined)
{
    Library library;
    const std::uint32_t undefined = library.add("exit", UNDEFINED);
    const std::uint32_t printfIndex = library.add("printf", TEXT);
    library.add("syscall", TEXT);
    library.add("exit", UNDEFINED);
    EXPECT_EQ(undefined, 1U);
    // A bucket, the first index, two words of 64 bits that are ignored, their shift. The lowest bit
    // of a hash marks the end.
    const Words one = {1,
                       printfIndex,
                       2,
                       6,
                       0,
                       0,
                       0,
                       0,
                       printfIndex,
                       GNU_PRINTF & ~1u,
                       GNU_SYSCALL & ~1u,
                       GNU_EXIT | 1};
    EXPECT_TRUE(osDefines(library.withGnuHash(one), "printf"));
    EXPECT_TRUE(osDefines(library.withGnuHash(one), "syscall"));
    EXPECT_FALSE(osDefines(library.withGnuHash(one), "exit"));
    for (const char* const name : {"", "print", "printff", "nothing"})
        EXPECT_FALSE(osDefines(library.withGnuHash(one), name)) << name;
    const std::uint32_t buckets = 1000003;
    Words many = {buckets, printfIndex, 1, 6, 0, 0};
    many.resize(6 + buckets);
    many[6 + GNU_PRINTF % buckets] = printfIndex;
    many[6 + GNU_SYSCALL % buckets] = printfIndex + 1;
    many[6 + GNU_EXIT % buckets] = printfIndex + 2;
    for (const std::uint32_t hash : {GNU_PRINTF, GNU_SYSCALL, GNU_EXIT}) many.push_back(hash | 1);
    EXPECT_TRUE(osDefines(library.withGnuHash(many), "printf"));
    EXPECT_TRUE(osDefines(library.withGnuHash(many), "syscall"));
    EXPECT_FALSE(osDefines(library.withGnuHash(many), "exit"));
}

TEST(OsSymbolTable, WithoutTablesNothingIsDefined)
{
    Library library;
    library.add("printf", TEXT);
    EXPECT_FALSE(osDefines(OsSymbolTable(), "printf"));
    EXPECT_FALSE(osDefines(library.withHash({0, 0}), "printf"));
    EXPECT_FALSE(osDefines(library.withGnuHash({0, 1, 1, 6, 0, 0}), "printf"));
    OsSymbolTable table = library.withHash({0, 0});
    table._hash = nullptr;
    EXPECT_FALSE(osDefines(table, "printf"));
}

} // namespace
