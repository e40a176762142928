/// @file
/// A loaded library, and how it lies in memory.

#ifndef ZU_BASE_LMLIBRARY_H
#define ZU_BASE_LMLIBRARY_H

#include "arrayPtr.h"
#include "baseApi.h"

#include <cstdint>
#include <vector>

namespace Zu
{

/// A piece of a library, with one protection.
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
        /// What is written stays in this process.
        Copy = 32
    };

    /// Bits of Flags.
    std::uint32_t _flags;
    /// Where the piece begins.
    void* _address;
    /// The same address again.
    void* _mappedAddress;
    /// In bytes.
    std::uint64_t _size;
};

/// A loaded library, or the program itself. A copy has a path of its own.
class ZU_BASE_API LmLibrary
{
public:
    /// Its path is "Unknown".
    LmLibrary();

    /// Begins at `base`, without blocks. The path is copied; null gives the empty text.
    LmLibrary(void* base, const char* path);

    /// @{
    /// A copy has a path of its own; what is moved from keeps its addresses, without path and
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
    /// The file's name as the system tells it: on Windows cut to 149 characters, on Linux with
    /// " (deleted)" behind that of a file that is gone.
    ArrayPtr<char> _path;
    /// By their addresses.
    std::vector<LmBlock> _blocks;
};

} // namespace Zu

#endif
