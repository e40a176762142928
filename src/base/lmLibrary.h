/// @file
/// A loaded library, and how it lies in memory.

#ifndef ZU_BASE_LMLIBRARY_H
#define ZU_BASE_LMLIBRARY_H

#include "base/arrayPtr.h"
#include "base/baseApi.h"

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
        Read = 4,
        Write = 8,
        Execute = 16,
        /// What is written stays in this process.
        Copy = 32
    };

    std::uint32_t _flags;
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
    LmLibrary(void* base, const char* path);
    LmLibrary(const LmLibrary& other);
    LmLibrary(LmLibrary&& other) noexcept;
    LmLibrary& operator=(const LmLibrary& other);
    LmLibrary& operator=(LmLibrary&& other) noexcept;
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
