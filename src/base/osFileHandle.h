/// @file
/// The checks of the file classes, and the operations of readers and writers on their handles.
/// Internal to the library.

#ifndef ZU_BASE_OSFILEHANDLE_H
#define ZU_BASE_OSFILEHANDLE_H

#include "osFilePath.h"
#include "osFileTypes.h"

#include <cstdint>
#include <string_view>

/// Each function raises ExSysErrorANSI, with EBADF, for a closed handle, and ExSysErrorWindows if
/// the system fails.
namespace Zu::OsFileHandle
{

void check(std::int64_t handle);

/// Raises OsFileEx::ExNullFilePath for the empty path.
void checkNotEmpty(const OsFilePath& path);

/// Moves the position and returns it, counted from the beginning.
std::int64_t seek(std::int64_t handle, std::int64_t offset, OsFileTypes::SeekMode mode);

/// The same for a position that must fit in 32 bits: if it doesn't, it is left unchanged.
std::int32_t seek32(std::int64_t handle, std::int32_t offset, OsFileTypes::SeekMode mode);

/// Reads up to `size` bytes and returns how many. They are fewer at the end of the file, and if
/// something other than a file has no more yet. A failure after some bytes ends the read; the next
/// read reports it.
std::uint32_t read(std::int64_t handle, void* buffer, std::uint32_t size);

/// Writes all bytes; a full disk raises, too. `written` receives the number of bytes written, even
/// when it raises.
void writeAll(std::int64_t handle, std::string_view content, std::uint64_t& written);

/// Copies the rest of one file to another.
void copyAll(std::int64_t from, std::int64_t to);

/// Where a copy of the file goes: to the target, or into it under the base name if it is a
/// directory. Raises what OsFile::copyTo() raises before it opens anything.
OsFilePath destinationOfCopy(const OsFilePath& source, const OsFilePath& target);

/// Closes the handle and sets it to -1, unless it is still open afterwards.
void close(std::int64_t& handle);

/// For destructors: closes the handle unless it is closed already. A failure while another
/// exception is under way is not reported.
void closeAtEnd(std::int64_t handle);

} // namespace Zu::OsFileHandle

#endif
