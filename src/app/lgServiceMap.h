/// @file
/// The memory in which events wait, which outlives the process. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEMAP_H
#define ZU_APP_LGSERVICEMAP_H

#include "../base/lgQueue.h"
#include "lgMapFile.h"
#include "lgMapLayout.h"

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Zu
{

/// The queues of the threads of this process, in a file that is mapped into its memory;
/// lgMapLayout.h describes it. The writing thread stores there what it is about to write.
///
/// An object lives as long as the process, since threads may log until its very end.
///
/// Thread-safety: any thread may make and end queues. The header and the batches belong to the
/// thread that writes.
class LgServiceMap
{
public:
    struct Settings
    {
        /// Where the file is made; empty: where the platform has memory that processes share.
        std::string _mapDirectory;
        /// Whose next service writes what is left.
        std::string _logDirectory;
        /// The sizes of the rings of a queue, powers of two.
        std::uint32_t _entries = 4096;
        std::uint32_t _characters = 262144;
        /// In bytes. Beyond it, queues have 1,024 entries and 32,768 characters.
        std::uint64_t _limit = 256ULL << 20;
    };

    /// A part of the file that is mapped.
    struct Room
    {
        char* _place = nullptr;
        std::uint64_t _offset = 0;
        std::uint64_t _size = 0;
    };

    LgServiceMap() = default;
    LgServiceMap(const LgServiceMap&) = delete;
    LgServiceMap& operator=(const LgServiceMap&) = delete;

    /// Makes the file or, if there is one already, names it anew for the log directory. If the
    /// system refuses, that is reported on standard error, and queues are on the heap.
    void begin(const Settings& settings);

    /// Whether there is a file.
    bool isOpen() const
    {
        return _header != nullptr;
    }

    /// A queue for a thread: in the file or, if there is no room, on the heap, which is reported
    /// once on standard error. `observer` is what it will own; it is kept where those find it who
    /// look for memory that nobody refers to.
    LgQueue* makeQueue(std::uint32_t threadId, const LgQueue::Observer* observer = nullptr);

    /// The index of a queue in the table of queues; LgMap::NONE if it is not in this file.
    std::uint32_t indexOf(const LgQueue& queue) const;

    /// How many lost events of a queue that makeQueue() has put on the heap were reported; nothing
    /// for any other queue.
    std::optional<std::uint64_t> getReportedOnHeap(const LgQueue& queue);

    /// Adds to that number; does nothing for any other queue.
    void addReportedOnHeap(const LgQueue& queue, std::uint64_t count);

    /// For a queue that is about to end.
    void forgetOnHeap(const LgQueue& queue);

    LgMap::Header& header()
    {
        return *_header;
    }

    /// The table's entry of a queue.
    LgMap::Queue& queueAt(std::uint32_t index)
    {
        return _queues[index];
    }

    /// The place of the batch with this number.
    LgMap::Batch& batch(std::uint64_t number)
    {
        return *_batches[number & 1];
    }

    /// A part of the file for what is not a queue, at least this long; one without a place if the
    /// system refuses. It is not taken from the system yet.
    Room makeRoom(std::uint64_t size);

    /// Takes a part of it from the system: whole pages, from the beginning of the room. False if
    /// that is refused.
    bool reserve(const Room& room, std::uint64_t from, std::uint64_t to);

    /// Gives it back, empty. One without a place is none.
    void giveBack(const Room& room);

    /// Reports on standard error why some events will not outlive the process; the first such
    /// report is the only one. Without a reason, it is what the system has said.
    void reportNotKept(const std::string& reason = {});

    /// Commits a batch by one store: all stores before it count from here on.
    void commit(std::uint64_t number, LgMap::State state);

    /// Removes the file if no events wait in it. For the end of the process; queues stay usable.
    void removeFileIfEmpty();

    const std::string& getPath() const
    {
        return _file->getPath();
    }

    /// The mutex of all operations; a fork locks it first, so that the child finds it usable.
    std::mutex& mutex()
    {
        return _mutex;
    }

    /// For a thread that is about to fork, with the mutex locked: keeps copies of the queues for
    /// leaveInChild(). The parent goes on in the queues themselves, and ends some, as soon as the
    /// fork has happened. `own` is copied with its events; null for none.
    void keepForChild(const LgQueue* own);

    /// Forgets the copies.
    void forgetKept();

    /// For the child of a fork, with the mutex locked: the queues get memory of the child's own, so
    /// that nothing of the parent's is touched. Only the queue that was kept with its events keeps
    /// its texts. From here on there is no file.
    void leaveInChild();

    /// What the names of the maps for a log directory begin with.
    static std::string prefixFor(const std::string& logDirectory);

private:
    class Ring;
    class Block;

    // The beginning of a queue's memory: the queue itself and, if it is kept with its events, all
    // up to the last entry, and the texts.
    struct Copy
    {
        const char* _place = nullptr;
        bool _hasEvents = false;
        std::string _head;
        std::string _text;
    };

    bool open(const Settings& settings);
    bool makeHeader(LgMapFile& file);
    static std::string newPath(const Settings& settings);
    bool findSpace(std::uint64_t size, std::list<Room>& found);
    LgQueue* makeInFile(std::uint32_t threadId, const LgQueue::Observer* observer);
    LgQueue* makeInSpace(std::uint32_t threadId, std::list<Room>& spaces, std::uint32_t index,
                         std::uint32_t entries, std::uint32_t characters);
    bool reserveFirst(const Room& space, std::uint32_t entries, std::uint32_t characters);
    bool hasTableRoom(std::uint32_t index);
    void enter(const Block& block, const LgQueue& queue, std::uint32_t entries,
               std::uint32_t characters);
    std::optional<std::uint32_t> findIndex();
    void giveBack(Block& block) noexcept;
    void clear(const Block& block);
    static void replace(const Block& block, const Copy& copy);
    void reportOnce(const char* what, const std::string& reason);

    std::mutex _mutex;
    Settings _settings;
    // Null until there is one, and in the child of a fork.
    std::unique_ptr<LgMapFile> _file;
    LgMap::Header* _header = nullptr;
    LgMap::Batch* _batches[2] = {};
    LgMap::Queue* _queues = nullptr;
    // Where the next block begins, and how much memory the blocks have.
    std::uint64_t _end = LgMap::BLOCKS_AT;
    std::uint64_t _used = 0;
    // What was given back is used again for the same size.
    std::list<Room> _free;
    // Those that are no queues.
    std::list<Room> _rooms;
    std::list<Block*> _blocks;
    std::vector<std::uint32_t> _freeIndices;
    std::vector<Copy> _kept;
    // The queues on the heap, and how many of their lost events were reported.
    std::map<const LgQueue*, std::uint64_t> _onHeap;
    // How many entries of the table of queues have room.
    std::uint32_t _tableRoom = 0;
    bool _hasReported = false;
};

} // namespace Zu

#endif
