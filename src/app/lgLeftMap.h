/// @file
/// Reads what a process has left in its map. Internal to the application kit.

#ifndef ZU_APP_LGLEFTMAP_H
#define ZU_APP_LGLEFTMAP_H

#include "lgMapLayout.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Zu
{

/// The events that wait in a map. Nothing that the map says is believed: whatever it contains, the
/// result is within bounds, and what makes no sense is left out and counted.
class LgLeftMap
{
public:
    /// Reads a part of the file; false if that is not there.
    using Read = std::function<bool(std::uint64_t offset, void* to, std::size_t size)>;

    /// One event, or a number of lost ones.
    struct Event
    {
        /// As the counter of its process stood.
        std::uint64_t _time;
        std::uint32_t _thread;
        /// Which of getQueues() it is from.
        std::uint32_t _queue;
        bool _isOverflow;
        /// Whether it stands for losses that are in no entry.
        bool _isRest;
        /// The level, or how many events were lost.
        std::int32_t _value;
        std::string _text;
        /// The positions of its queue behind it.
        std::uint32_t _nextEntry;
        std::uint32_t _nextText;
    };

    struct Queue
    {
        /// The index in the table of queues.
        std::uint32_t _index;
        LgMap::Queue _facts;
        /// Where the oldest event begins.
        std::uint32_t _entry;
        std::uint32_t _text;
        std::uint64_t _lost;
        std::uint64_t _reported;
        /// How many of its first events the last batch consists of.
        std::uint32_t _inBatch;
        /// Whether its positions were being moved: that of the entries is not where it belongs yet.
        bool _isMoving;
        /// Whether another line of that batch stands for losses that are in no entry.
        bool _hasRest;
    };

    /// What waits for a log file that fails.
    struct Waiting
    {
        /// See LgMap::Waiting; no number of a batch, 0, if nothing was ever stored.
        std::string _text;
        std::uint64_t _batch = 0;
        std::uint64_t _dropped = 0;
        std::int64_t _failingSince = 0;
    };

    /// The most memory that events may take, in bytes, unless load() is given another bound.
    static constexpr std::uint64_t MOST_TEXT = 1ULL << 30;

    /// Reads it; false, with a reason, if it is not a map of this version. Queues that would need
    /// more memory for their events than allowed are left out.
    bool load(const Read& read, std::uint64_t most = MOST_TEXT);

    const std::string& getReason() const
    {
        return _reason;
    }

    const LgMap::Header& getHeader() const
    {
        return _header;
    }

    /// The batch that counts, and its number and state.
    const LgMap::Batch& getBatch() const
    {
        return _batch;
    }

    std::uint64_t getNumber() const
    {
        return _header._state >> LgMap::STATE_BITS;
    }

    LgMap::State getState() const
    {
        return _state;
    }

    const std::vector<Queue>& getQueues() const
    {
        return _queues;
    }

    /// The events of the last batch, if it is not Idle, in its order; then all others in the order
    /// of time. Those of a queue are in their order.
    const std::vector<Event>& getEvents() const
    {
        return _events;
    }

    /// How many of them are of the batch.
    std::size_t getBatchEvents() const
    {
        return _batchEvents;
    }

    /// By the first level whose events go to the log file.
    const std::vector<Waiting>& getWaiting() const
    {
        return _waiting;
    }

    /// Whether there is neither an event nor anything else to write.
    bool isEmpty() const;

    /// How many entries, and texts that wait for log files, had to be left out.
    std::uint64_t getDamaged() const
    {
        return _damaged;
    }

private:
    bool loadHeader(const Read& read);
    void loadBatch(const Read& read);
    void loadWaiting(const Read& read);
    void loadQueue(const Read& read, std::uint32_t index);
    void goBack(Queue& queue, std::uint32_t inBatch, std::uint32_t end) const;
    void loadEvents(const Read& read, const Queue& queue, std::uint32_t end, std::uint32_t textEnd);
    void addRestOfBatch(Queue& queue, std::size_t first);
    void takeLossesOfBatch(const Queue& queue, std::size_t first);
    void addRestOfLosses(const Queue& queue, std::size_t first);
    void order();

    LgMap::Header _header{};
    LgMap::Batch _batch{};
    LgMap::State _state = LgMap::Idle;
    // How many entries of each of its queues the batch consists of.
    std::uint32_t _batchLines[LgMap::MOST_LINES] = {};
    std::vector<Waiting> _waiting = std::vector<Waiting>(LgMap::MOST_FILES);
    std::vector<Queue> _queues;
    std::vector<Event> _events;
    std::size_t _batchEvents = 0;
    std::uint64_t _damaged = 0;
    std::uint64_t _size = 0;
    std::uint64_t _most = MOST_TEXT;
    std::string _reason;
};

} // namespace Zu

#endif
