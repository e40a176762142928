/// @file
/// What the file classes check, and what readers and writers do with their handles. Internal to the
/// library.

#ifndef ZU_BASE_OSFILEHANDLE_H
#define ZU_BASE_OSFILEHANDLE_H

#include "osFilePath.h"
#include "osFileTypes.h"

#include <cstdint>
#include <string_view>

/// Each raises ExSysErrorANSI, with EBADF, for a closed handle, and ExSysErrorWindows where the
/// system fails.
namespace Zu::OsFileHandle
{

void check(std::int64_t handle);

/// Raises OsFileEx::ExNullFilePath for the empty path.
void checkNotEmpty(const OsFilePath& path);

/// The new position, from the beginning.
std::int64_t seek(std::int64_t handle, std::int64_t offset, OsFileTypes::SeekMode mode);

/// The same where the position must fit 32 bits: if it doesn't, it stays as it was.
std::int32_t seek32(std::int64_t handle, std::int32_t offset, OsFileTypes::SeekMode mode);

/// Reads up to `size` bytes, and says how many: less where the file ends, or where what is no file
/// has no more yet. A failure behind a part ends that part, and the next read tells it.
std::uint32_t read(std::int64_t handle, void* buffer, std::uint32_t size);

/// Writes all bytes; a full disk raises, too. `written` says how many were written, also then.
void writeAll(std::int64_t handle, std::string_view content, std::uint64_t& written);

/// Copies what is left of one file to another.
void copyAll(std::int64_t from, std::int64_t to);

/// Where a copy of the file goes: to the target, or into it under the base name if it is a
/// directory. Raises what OsFile::copyTo() does before it opens anything.
OsFilePath destinationOfCopy(const OsFilePath& source, const OsFilePath& target);

/// Closes it, and makes it -1 unless it is as it was.
void close(std::int64_t& handle);

/// For the end of an object that may hold one: closes what is not closed yet. While another
/// exception is under way a failure is not told.
void closeAtEnd(std::int64_t handle);

} // namespace Zu::OsFileHandle

#endif
