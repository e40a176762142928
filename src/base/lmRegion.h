/// @file
/// The walk through the regions of a process's memory, and the interpretation of what the system
/// reports. Internal to the library.

#ifndef ZU_BASE_LMREGION_H
#define ZU_BASE_LMREGION_H

#include "lmLibrary.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Addresses are plain numbers here, so that every walk can be tested on every platform.
namespace Zu::LmRegion
{

using Address = std::uint64_t;

/// The LmBlock flags for a Windows protection constant.
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

/// The meaning of a Windows state constant.
enum class Kind
{
    Allocation,
    Free,
    Unknown
};

Kind kindOf(std::uint32_t state);

/// The protection in force for a region: its own if it is committed, that of its allocation if it
/// is reserved.
std::uint32_t protectionOf(const Region& region);

/// The queries that the walk makes to the system.
struct Questions
{
    /// Describes the region of an address; false where there is none.
    std::function<bool(Address, Region&)> _query;
    /// Returns the name of the module at an address; false where there is none.
    std::function<bool(Address, std::string&)> _nameOf;
    /// Is notified of a region in an unexpected state.
    std::function<void()> _onFault;
};

/// Appends the libraries in the memory that the questions describe.
void walk(const Questions& questions, std::vector<LmLibrary>& libraries);

/// A line of the memory map of a process on Linux.
struct MapLine
{
    Address _begin;
    Address _end;
    /// Flags of LmBlock.
    std::uint32_t _flags;
    /// Device and inode as the line has them.
    std::string_view _file;
    /// Empty where there is none.
    std::string_view _path;
};

/// Parses a line; false if it is malformed.
bool parseMapLine(std::string_view text, MapLine& line);

/// Appends the libraries of a memory map: the files with an executable mapping. Skips malformed
/// lines, and lines whose address is below that of an earlier line, which occur if the map changes
/// while it is read.
void librariesOfMap(std::string_view map, std::vector<LmLibrary>& libraries);

} // namespace Zu::LmRegion

#endif
