/// @file
/// Files as zulog reads them, while others write, rename and remove them.

#ifndef ZU_ZULOG_ZLFILE_H
#define ZU_ZULOG_ZLFILE_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Zu
{

/// What went wrong, in a sentence without the name of the program and without a full stop.
class ZlError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An open file. Others may write to it, rename and remove it meanwhile, on Windows, too. Names are
/// in UTF-8. Not thread-safe.
class ZlFile
{
public:
    /// What a file is known by, whatever its name.
    struct Identity
    {
        std::uint64_t _volume = 0;
        std::uint64_t _number = 0;
        bool operator==(const Identity& other) const = default;
    };

    /// What changes when a file is written.
    struct Facts
    {
        Identity _identity;
        std::uint64_t _size = 0;
        /// When it was written last: nanoseconds since an origin of the system's own.
        std::int64_t _written = 0;
        bool operator==(const Facts& other) const = default;
    };

    /// Opens a file for reading; "-" is standard input. Raises ZlError, as in
    /// `"events.log" can't be opened: No such file or directory`; for a directory, too.
    explicit ZlFile(const std::string& name);
    ~ZlFile();
    ZlFile(const ZlFile&) = delete;
    ZlFile& operator=(const ZlFile&) = delete;

    const std::string& getName() const
    {
        return _name;
    }

    /// Reads on from where the last call ended. 0 at the present end of the file. Raises ZlError.
    std::size_t read(char* place, std::size_t size);

    /// Goes to this offset, for the next read. Only for plain files.
    void seek(std::uint64_t offset);

    /// The offset at which the next read begins.
    std::uint64_t getOffset() const
    {
        return _offset;
    }

    /// Whether it is a file that can be read anywhere, and is there under a name.
    bool isPlain() const
    {
        return _isPlain;
    }

    /// Of the open file. 0 for what is no plain file.
    std::uint64_t getSize() const;

    Identity getIdentity() const
    {
        return getFacts()._identity;
    }

    /// Of the open file.
    Facts getFacts() const;

    /// What a name leads to; false if there is nothing, or a directory.
    static bool find(const std::string& name, Facts& facts);
    static bool find(const std::string& name, Identity& identity)
    {
        Facts facts;
        const bool isThere = find(name, facts);
        identity = facts._identity;
        return isThere;
    }

private:
    std::string _name;
    std::intptr_t _handle = -1;
    std::uint64_t _offset = 0;
    bool _isPlain = false;
};

} // namespace Zu

#endif
