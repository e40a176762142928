/// @file
/// The names that a loaded library defines, from the tables of the ELF format. Internal to the
/// library; nothing here asks the system.

#ifndef ZU_BASE_OSSYMBOLTABLE_H
#define ZU_BASE_OSSYMBOLTABLE_H

#include <cstdint>

namespace Zu
{

/// An entry of the symbol table, in its layout in memory.
struct OsElfSymbol
{
    /// The offset of the name in the string table.
    std::uint32_t _name;
    std::uint8_t _info;
    std::uint8_t _other;
    /// 0 for a symbol that the library needs and another one defines.
    std::uint16_t _section;
    std::uint64_t _value;
    std::uint64_t _size;
};

/// The tables of one library. One of the two hash tables may be missing, and is then null.
struct OsSymbolTable
{
    const char* _names = nullptr;
    const OsElfSymbol* _symbols = nullptr;
    /// In the form of the System V interface.
    const std::uint32_t* _hash = nullptr;
    /// In the form of the GNU linker.
    const std::uint32_t* _gnuHash = nullptr;
};

/// Whether the library itself defines something of this name.
bool osDefines(const OsSymbolTable& table, const char* name);

} // namespace Zu

#endif
