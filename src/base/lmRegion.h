/// @file
/// The walk through the regions of a process's memory, and what the answers of the system mean.
/// Internal to the library.

#ifndef ZU_BASE_LMREGION_H
#define ZU_BASE_LMREGION_H

#include "lmLibrary.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Addresses are numbers here, so that every walk can be tested on every platform.
namespace Zu::LmRegion
{

using Address = std::uint64_t;

/// The bits of LmBlock for a protection by the number that Windows gives it.
std::uint32_t flagsOfProtection(std::uint32_t protection);

/// A region as Windows describes it.
struct Region
{
    Address _base;
    Address _allocationBase;
    std::uint32_t _allocationProtection;
    std::uint64_t _size;
    std::uint32_t _state;
    std::uint32_t _protection;
};

/// What stands behind a state by its number on Windows.
enum class Kind
{
    Allocation,
    Free,
    Unknown
};

Kind kindOf(std::uint32_t state);

/// What holds for a region: its own protection if it is committed, that of its allocation if it is
/// reserved.
std::uint32_t protectionOf(const Region& region);

/// What the walk asks the system.
struct Questions
{
    /// Describes the region of an address; false where there is none.
    std::function<bool(Address, Region&)> _query;
    /// Gives the name of the module at an address; false where there is none.
    std::function<bool(Address, std::string&)> _nameOf;
    /// Is told of a region in a state that there should not be.
    std::function<void()> _onFault;
};

/// Appends the libraries in the memory that the questions are about.
void walk(const Questions& questions, std::vector<LmLibrary>& libraries);

/// A line of the memory map of a process on Linux.
struct MapLine
{
    Address _begin;
    Address _end;
    /// Of LmBlock.
    std::uint32_t _flags;
    /// Device and inode as the line has them.
    std::string_view _file;
    /// Empty where there is none.
    std::string_view _path;
};

/// Takes a line apart; false if it is none.
bool parseMapLine(std::string_view text, MapLine& line);

/// Appends the libraries of a memory map: the files with a mapping that can be executed. What lies
/// before a line above it, as where the map has changed while it was read, and what is no line, is
/// left out.
void librariesOfMap(std::string_view map, std::vector<LmLibrary>& libraries);

} // namespace Zu::LmRegion

#endif
