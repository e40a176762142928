/// @file
/// The layout of the file in which the events of a process wait. This header stands alone.

#ifndef ZU_APP_LGMAPLAYOUT_H
#define ZU_APP_LGMAPLAYOUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

/// A process with a log service keeps its queues in a file that is mapped into its memory: the map.
/// What is in them when the process ends, however it ends, stays there and is written to the log by
/// the next service.
///
/// All numbers are little-endian and aligned. Offsets count from the beginning of the file. A file
/// consists of
///
/// 1. the header, in a page of its own,
/// 2. two batches, used in turn: what the writing thread is about to write,
/// 3. the table of queues,
/// 4. blocks, each with one queue: its positions, its entries, its characters. Among them are
///    buffers with the lines that wait for log files that fail.
///
/// The file may be shorter than its tables say, and it may have holes, which read as zeros: room is
/// taken from the system only when it is needed.
///
/// Who reads a map that it has not made trusts nothing in it: any number may be anything.
namespace Zu::LgMap
{

/// The first bytes of a map.
inline constexpr char MAGIC[8] = {'Z', 'U', 'L', 'O', 'G', 'M', 'A', 'P'};

/// Changes with every change of the layout.
inline constexpr std::uint32_t VERSION = 2;

inline constexpr std::uint64_t PAGE = 4096;
inline constexpr std::size_t NAME_SIZE = 64;
inline constexpr std::size_t DIRECTORY_SIZE = 1024;

/// How many log files a process can have: one per level.
inline constexpr std::uint32_t MOST_FILES = 8;

/// How many queues a map can hold at a time, and how many of them and of lines a batch.
inline constexpr std::uint32_t MOST_QUEUES = 16384;
inline constexpr std::uint32_t MOST_LINES = 1024;
/// Lines of the service take part in a batch, too: some for each file.
inline constexpr std::uint32_t MOST_EVENTS = MOST_LINES - 4 * MOST_FILES;

/// The sizes of rings, all powers of two.
inline constexpr std::uint32_t LEAST_ENTRIES = 64;
inline constexpr std::uint32_t MOST_ENTRIES = 1U << 20;
inline constexpr std::uint32_t LEAST_CHARACTERS = 32768;
inline constexpr std::uint32_t MOST_CHARACTERS = 1U << 26;

/// How far the writing thread is with a batch. The states follow each other in this order.
enum State : std::uint32_t
{
    /// No batch: the positions of the queues say what is written.
    Idle,
    /// The batch is complete, and its lines are being written. How many are in the file can be seen
    /// there.
    Writing,
    /// All its lines are written, or will never be. The positions of the queues are being moved.
    Written
};

/// The word that commits a batch: its number, and its state in the two lowest bits.
inline constexpr std::uint32_t STATE_BITS = 2;

/// The longest text that is kept for a log file that fails.
inline constexpr std::uint64_t MOST_WAITING = 32ULL << 20;

/// What waits for a log file that fails: lines as they will be in the file, and the number of
/// events that are not among them because there were too many.
struct Waiting
{
    /// Where the lines are, and how many bytes they have.
    std::uint64_t _place;
    std::uint64_t _size;
    /// See hashBytes().
    std::uint64_t _hash;
    /// The number of the batch after whose attempt they waited: its lines are in the file or here.
    std::uint64_t _batch;
    std::uint64_t _dropped;
    /// When the file began to fail: UTC, in nanoseconds since 1970.
    std::int64_t _failingSince;
};

/// The two of them that are used in turn for a log file. What is stored in the one that counts is
/// only ever continued behind its end; anything else is stored in the other one.
struct WaitingLog
{
    Waiting _waiting[2];
    /// Which one counts, 0 or 1. Stored last.
    std::uint32_t _current;
    std::uint32_t _reserved;
};

/// Who made the map, and how times can be read.
struct Header
{
    char _magic[8];
    std::uint32_t _version;
    /// Size of this header, of a batch, and of an entry of the table of queues, in bytes.
    std::uint32_t _headerSize;
    std::uint32_t _batchSize;
    std::uint32_t _queueSize;
    std::uint32_t _process;
    std::uint32_t _reserved;
    /// When the process started: UTC, in nanoseconds since 1970.
    std::int64_t _processStart;
    /// The counter when the logger started; lines count from there.
    std::uint64_t _start;
    /// A reading of the counter, and UTC at that moment in nanoseconds since 1970.
    std::uint64_t _originTick;
    std::int64_t _originWall;
    std::uint64_t _ticksPerSecond;
    /// The batch that counts, see STATE_BITS.
    std::uint64_t _state;
    std::uint64_t _batches;
    std::uint64_t _queues;
    /// How many entries of the table of queues were ever used.
    std::uint32_t _queueCount;
    std::uint32_t _reserved2;
    /// Reserved for a table of texts and for a ring of records of a timeline; zero.
    std::uint64_t _texts;
    std::uint64_t _textsSize;
    std::uint64_t _records;
    std::uint64_t _recordsSize;
    /// Ended by NUL characters.
    char _host[NAME_SIZE];
    char _boot[NAME_SIZE];
    char _directory[DIRECTORY_SIZE];
    /// By the first level whose events go to the log file.
    WaitingLog _waiting[MOST_FILES];
};
static_assert(sizeof(Header) <= PAGE && offsetof(Header, _state) % 8 == 0);

/// A file that a batch is written to: which one it is for the system, and where its part begins.
struct BatchFile
{
    std::uint64_t _volume;
    std::uint64_t _number;
    std::uint64_t _offset;
    std::uint64_t _length;
    /// Whose WaitingLog belongs to it: an index, or NONE.
    std::uint32_t _log;
    /// 0 if the file fails: then nothing is written to it, and the lines are about to wait.
    std::uint32_t _isOpen;
    /// Where the lines that waited begin in the part, and which bytes of them are left out because
    /// they were there before.
    std::uint64_t _waitingAt;
    std::uint64_t _waitingFrom;
};

/// A queue that a batch takes events from, and its positions before.
struct BatchQueue
{
    std::uint32_t _queue;
    std::uint32_t _entry;
    std::uint32_t _text;
    /// How many of its lines, the last ones, stand for losses that are in no entry: 0 or 1.
    std::uint32_t _restLines;
    /// How many of its lost events were reported before.
    std::uint64_t _reported;
};

/// In place of a file or a queue: there is none.
inline constexpr std::uint16_t NONE = 0xFFFF;

/// One line of a batch, in the order in which they are written. Lines without a queue are those of
/// the service. A line without a file goes nowhere, and counts as written.
struct BatchLine
{
    /// In bytes, with its line feed.
    std::uint32_t _length;
    std::uint32_t _hash;
    /// The index of the queue in the batch.
    std::uint16_t _queue;
    std::uint16_t _file;
    /// For an entry that stands for lost events: how many it reported.
    std::uint32_t _lost;
};

/// What is about to be written.
struct Batch
{
    std::uint32_t _fileCount;
    std::uint32_t _queueCount;
    std::uint32_t _lineCount;
    std::uint32_t _reserved;
    BatchFile _files[MOST_FILES];
    BatchQueue _queues[MOST_LINES];
    BatchLine _lines[MOST_LINES];
};

/// One queue. It is in use if its block is not 0; that is stored last.
struct Queue
{
    /// Where its block begins.
    std::uint64_t _block;
    std::uint32_t _thread;
    /// How many entries and characters its rings have.
    std::uint32_t _entries;
    std::uint32_t _characters;
    /// How many of them, from the beginning, are in the file. What lies beyond them was in memory
    /// that the process alone had.
    std::uint32_t _usableEntries;
    std::uint32_t _usableCharacters;
    std::uint32_t _reserved;
    /// Where the rings begin, from the beginning of the block.
    std::uint64_t _entriesAt;
    std::uint64_t _charactersAt;
    /// Where its positions are, from the beginning of the block. The number of lost events has 64
    /// bits, the others 32.
    std::uint32_t _entriesBegin;
    std::uint32_t _entriesEnd;
    std::uint32_t _textBegin;
    std::uint32_t _textEnd;
    std::uint32_t _lost;
    std::uint32_t _reserved2;
    /// How many of the lost events were reported in the log.
    std::uint64_t _reported;
};

/// An element of the ring of entries.
struct Entry
{
    /// Not 0 if it stands for lost events.
    std::uint8_t _isOverflow;
    std::uint8_t _reserved[3];
    /// The level of the event, or how many events were lost.
    std::int32_t _value;
    /// When it was logged, as the counter stood.
    std::uint64_t _time;
};
static_assert(sizeof(Entry) == 16);

/// @{
/// Where the parts are in a map of this version.
inline constexpr std::uint64_t BATCHES_AT = PAGE;
inline constexpr std::uint64_t BATCH_SPACE = (sizeof(Batch) + PAGE - 1) / PAGE * PAGE;
inline constexpr std::uint64_t QUEUES_AT = BATCHES_AT + 2 * BATCH_SPACE;
inline constexpr std::uint64_t BLOCKS_AT =
    (QUEUES_AT + MOST_QUEUES * sizeof(Queue) + 0xFFFF) / 0x10000 * 0x10000;
/// @}

/// The hash of bytes, continued from that of the bytes before them: FNV-1a.
inline std::uint64_t hashBytes(const char* text, std::size_t length,
                               std::uint64_t hash = 0xCBF29CE484222325)
{
    for (std::size_t i = 0; i < length; ++i)
        hash = (hash ^ static_cast<unsigned char>(text[i])) * 0x100000001B3;
    return hash;
}

/// The hash of a line in a batch.
inline std::uint32_t hashOf(const char* text, std::size_t length)
{
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15;
    const auto mix = [](std::uint64_t hash, std::uint64_t word)
    {
        hash = (hash ^ word) * FACTOR;
        return hash ^ (hash >> 29);
    };
    std::uint64_t hash = length * FACTOR;
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text + i, 8);
        hash = mix(hash, word);
    }
    std::uint64_t rest = 0;
    std::memcpy(&rest, text + i, length - i);
    hash = mix(hash, rest);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

} // namespace Zu::LgMap

#endif
