/// @file
/// A loaded library and its layout in memory.

#ifndef ZU_BASE_LMLIBRARY_H
#define ZU_BASE_LMLIBRARY_H

#include "arrayPtr.h"
#include "baseApi.h"

#include <cstdint>
#include <vector>

namespace Zu
{

/// A piece of a library with uniform protection.
struct LmBlock
{
    /// Bits of `_flags`.
    enum Flags : std::uint32_t
    {
        /// It can be read.
        Read = 4,
        /// It can be written.
        Write = 8,
        /// Its content can be executed.
        Execute = 16,
        /// Copy-on-write: changes stay in this process.
        Copy = 32
    };

    /// Bits of Flags.
    std::uint32_t _flags;
    /// Where the piece begins.
    void* _address;
    /// The same address again.
    void* _mappedAddress;
    /// The size in bytes.
    std::uint64_t _size;
};

/// A loaded library, or the program itself. A copy has a path of its own.
class ZU_BASE_API LmLibrary
{
public:
    /// A library with the path "Unknown".
    LmLibrary();

    /// A library at `base`, without blocks. The path is copied; null gives the empty text.
    LmLibrary(void* base, const char* path);

    /// @{
    /// A copy has a path of its own. A moved-from library keeps its addresses but has no path or
    /// blocks.
    LmLibrary(const LmLibrary& other);
    LmLibrary(LmLibrary&& other) noexcept;
    LmLibrary& operator=(const LmLibrary& other);
    LmLibrary& operator=(LmLibrary&& other) noexcept;
    /// @}

    ~LmLibrary();

    /// Where it begins.
    void* _base = nullptr;
    /// The same address again.
    void* _address = nullptr;
    /// The file's name as the system reports it: on Windows truncated to 149 characters, on Linux
    /// followed by " (deleted)" if the file has been deleted.
    ArrayPtr<char> _path;
    /// In the order of their addresses.
    std::vector<LmBlock> _blocks;
};

} // namespace Zu

#endif
