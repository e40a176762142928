/// @file
/// How a running process with a log service is asked, and answers. This header stands alone.

#ifndef ZU_APP_LGCONTROLLAYOUT_H
#define ZU_APP_LGCONTROLLAYOUT_H

#include <cstddef>
#include <cstdint>

/// A process with a log service has a file of its own, the control file, as long as the service
/// lives. Another process of the same user writes a request there, and the service answers at its
/// next look: after a quarter of a second at most, unless it waits for a disk.
///
/// All numbers are little-endian and aligned. The file consists of the header, in a page of its
/// own, the text of the request, and the text of the answer. It has holes, which read as zeros.
///
/// Its process holds a lock on the byte at LOCK_OF_SERVICE; where that is free, the file is a
/// remnant. Who asks holds the one behind it, so that one asks at a time. Then the asker writes
///
/// 1. the text of the request, and its length and hash,
/// 2. the number of the request: the last one and 1, as it stands in the file,
///
/// and waits until the number of the answer is the same. Neither side trusts the other: any number
/// may be anything, and a text whose hash is wrong counts as not there.
///
/// Requests are lines that end in line feeds. The first one is a word:
///
/// - "status": the answer is what the service is doing, as described at LgServiceControl.
/// - "set": each further line is a group and the threshold that it gets, as in "Database=Tracing".
///   All take effect, or none.
/// - "reset": the groups get the levels back that they had before the first "set".
///
/// Behind either of the latter two, the line "by 4711" names the process that asks. Answers are
/// JSON objects; one to a request that failed has the member "error".
namespace Zu::LgControl
{

/// The first bytes of a control file.
inline constexpr char MAGIC[8] = {'Z', 'U', 'L', 'O', 'G', 'C', 'T', 'L'};

/// Changes with every change of what is described here.
inline constexpr std::uint32_t VERSION = 1;

/// @{
/// Where the parts are, and the size of the file.
inline constexpr std::uint32_t REQUEST_AT = 4096;
inline constexpr std::uint32_t ANSWER_AT = 16384;
inline constexpr std::uint32_t SIZE = 262144;
/// @}

/// @{
/// How long the texts are at most.
inline constexpr std::uint32_t MOST_REQUEST = ANSWER_AT - REQUEST_AT;
inline constexpr std::uint32_t MOST_ANSWER = SIZE - ANSWER_AT;
/// @}

/// @{
/// The bytes that are locked. They are beyond the file, where a lock hinders nobody who reads.
inline constexpr std::uint64_t LOCK_OF_SERVICE = 0x40000000;
inline constexpr std::uint64_t LOCK_OF_ASKER = LOCK_OF_SERVICE + 1;
/// @}

inline constexpr std::size_t TEXT_SIZE = 1024;

/// One of the two texts.
struct Text
{
    std::uint32_t _length;
    std::uint32_t _reserved;
    /// See hashOf().
    std::uint64_t _hash;
};

/// The beginning of the file. Further members may follow in the same version.
struct Header
{
    char _magic[8];
    std::uint32_t _version;
    std::uint32_t _process;
    /// When the process and its service started: UTC, in nanoseconds since 1970.
    std::int64_t _processStart;
    std::int64_t _serviceStart;
    /// The number of the last request, and of the last answer.
    std::uint64_t _requestNumber;
    std::uint64_t _answerNumber;
    Text _request;
    Text _answer;
    /// The file of the program, and the directory of the logs; ended by NUL characters.
    char _program[TEXT_SIZE];
    char _directory[TEXT_SIZE];
};
static_assert(sizeof(Header) <= REQUEST_AT);

/// The hash of a text: FNV-1a, begun with the number of the request that it belongs to.
inline std::uint64_t hashOf(const char* text, std::size_t length, std::uint64_t number)
{
    std::uint64_t hash = 0xCBF29CE484222325 ^ number;
    for (std::size_t i = 0; i < length; ++i)
        hash = (hash ^ static_cast<unsigned char>(text[i])) * 0x100000001B3;
    return hash;
}

} // namespace Zu::LgControl

#endif
