/// @file
/// The names that a loaded library defines, as the ELF format tables them. Internal to the library;
/// nothing here asks the system.

#ifndef ZU_BASE_OSSYMBOLTABLE_H
#define ZU_BASE_OSSYMBOLTABLE_H

#include <cstdint>

namespace Zu
{

/// An entry of the table, as it stands in memory.
struct OsElfSymbol
{
    /// Where the name begins in the text of all names.
    std::uint32_t _name;
    std::uint8_t _info;
    std::uint8_t _other;
    /// 0 for what the library needs and another one defines.
    std::uint16_t _section;
    std::uint64_t _value;
    std::uint64_t _size;
};

/// The tables of one library. Of the two hash tables one may be missing, and is null then.
struct OsSymbolTable
{
    const char* _names = nullptr;
    const OsElfSymbol* _symbols = nullptr;
    /// As the System V interface has it.
    const std::uint32_t* _hash = nullptr;
    /// As the GNU linker has it.
    const std::uint32_t* _gnuHash = nullptr;
};

/// Whether the library itself defines something of this name.
bool osDefines(const OsSymbolTable& table, const char* name);

} // namespace Zu

#endif
