#include "base/osSymbolTable.h"

#include <cstring>

namespace Zu
{

namespace
{

std::uint32_t hashOf(const char* name)
{
    std::uint32_t hash = 0;
    for (; *name != '\0'; ++name)
    {
        hash = (hash << 4) + static_cast<unsigned char>(*name);
        const std::uint32_t high = hash & 0xf0000000;
        hash = (hash ^ high >> 24) & ~high;
    }
    return hash;
}

std::uint32_t gnuHashOf(const char* name)
{
    std::uint32_t hash = 5381;
    for (; *name != '\0'; ++name) hash = hash * 33 + static_cast<unsigned char>(*name);
    return hash;
}

bool isDefinition(const OsSymbolTable& table, std::uint32_t index, const char* name)
{
    const OsElfSymbol& symbol = table._symbols[index];
    return symbol._section != 0 && std::strcmp(table._names + symbol._name, name) == 0;
}

// The table consists of the number of buckets, the number of entries, the first entry of each
// bucket, and the entry after each; 0 is none.
bool isInHash(const OsSymbolTable& table, const char* name)
{
    const std::uint32_t buckets = table._hash[0];
    if (buckets == 0) return false;
    const std::uint32_t* const first = table._hash + 2;
    const std::uint32_t* const next = first + buckets;
    for (std::uint32_t index = first[hashOf(name) % buckets]; index != 0; index = next[index])
        if (isDefinition(table, index, name)) return true;
    return false;
}

// The table consists of the number of buckets, the first entry in the table, the number of 64-bit
// words of a filter that only saves time, and a parameter of the filter. Then follow the filter,
// the first entry of each bucket, and the hash of each entry, whose lowest bit marks the last one
// of a bucket.
bool isInGnuHash(const OsSymbolTable& table, const char* name)
{
    const std::uint32_t buckets = table._gnuHash[0];
    const std::uint32_t firstIndex = table._gnuHash[1];
    const std::uint32_t filterWords = table._gnuHash[2];
    if (buckets == 0) return false;
    const std::uint32_t* const first = table._gnuHash + 4 + std::size_t{2} * filterWords;
    const std::uint32_t* const hashes = first + buckets;
    const std::uint32_t hash = gnuHashOf(name);
    std::uint32_t index = first[hash % buckets];
    if (index < firstIndex) return false;
    for (;; ++index)
    {
        const std::uint32_t found = hashes[index - firstIndex];
        if ((found | 1) == (hash | 1) && isDefinition(table, index, name)) return true;
        if ((found & 1) != 0) return false;
    }
}

} // namespace

bool osDefines(const OsSymbolTable& table, const char* name)
{
    if (!table._names || !table._symbols) return false;
    if (table._gnuHash) return isInGnuHash(table, name);
    return table._hash && isInHash(table, name);
}

} // namespace Zu
