/// @file
/// What the thread of the log service does: writes events in batches. Internal to the application
/// kit.

#ifndef ZU_APP_LGSERVICEWRITER_H
#define ZU_APP_LGSERVICEWRITER_H

#include "../base/lgQueue.h"
#include "../base/lgTypes.h"
#include "lgServiceHealth.h"
#include "lgServiceLine.h"
#include "lgServiceLog.h"
#include "lgServiceMap.h"
#include "lgServiceWaiting.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Zu
{

/// Merges the events of all queues by time, and writes each to the log of its level. Before a batch
/// is written, the map has where it goes and what it consists of; the places of its events are
/// given back afterwards. So whenever the process ends, the next service can see what is written.
///
/// Thread-safety: one thread at a time, which holds LgServiceThreads::reading().
class LgServiceWriter
{
public:
    /// The steps of a batch, at which a test may end the process.
    enum class Step
    {
        Collected,
        Prepared,
        Committed,
        /// For each log for which lines wait, or waited.
        Tried,
        Wrote,
        CommittedAgain,
        MovedOne,
        Done
    };
    static void (*_atStep)(Step step);

    /// The map, and what keeps lines in it, must outlive the writer.
    LgServiceWriter(LgServiceMap& map, LgServiceWaiting& waiting,
                    LgLineForm form = LgLineForm::Ticks, bool isRaw = false);

    /// What is left at the end of a service.
    enum class Rest
    {
        None,
        /// Lines for files that fail, which the next service writes.
        Kept,
        /// Lines that are counted as not written.
        Lost
    };

    /// Opens the logs of all levels, which reports those that can't be, and takes back what the
    /// last service of this process has left for them.
    void openLogs();

    /// Writes what is waiting, at most one batch, and what waited for a file that failed. False if
    /// there was nothing. Raises what a lock between processes raises; the events stay.
    ///
    /// Beside many threads it takes as long to look at all queues as to write a batch, and so what
    /// one look has found may be written in several batches.
    bool writeBatch();

    /// The time of the earliest event that a batch has left for the next one; the largest number if
    /// none is known.
    std::uint64_t getEarliestLeft() const;

    /// Whether a file fails.
    bool isFailing() const;

    /// Whether a file that failed is to be tried again.
    bool isTryDue() const;

    /// Fills in what is known here: events, unwritten ones, the largest fills of queues, files.
    /// Unlike the other operations for any thread, at any time; never waits for a file.
    void addHealth(LgServiceHealth& health, const std::vector<const LgQueue*>& queues) const;

    /// Tries files that fail once more. What waits for them is kept for the next service of this
    /// process or of another one, or given up if the map has no room for it. Reports the lost
    /// events that no line has reported yet. Called when writeBatch() has found nothing.
    Rest finish();

    /// Closes all files; the next lines open them by their names.
    void reopen();

    /// What dates the lines.
    const LgLineOrigin& getOrigin() const
    {
        return _origin;
    }

private:
    // A registered queue: what a look at one without events needs besides the cache line of its
    // producer.
    struct Known
    {
        LgQueue* _queue;
        std::uint32_t _thread;
        // Its index in the map.
        std::uint32_t _inMap;
        // The entry that was next when this was written down. Only the reader moves on.
        std::uint32_t _next;
    };

    // A queue with events, and where the batch stands in it.
    struct Cursor
    {
        LgQueue* _queue;
        LgQueue::ReadPosition _position;
        // The entries before this one are there for certain.
        std::uint32_t _end;
        std::uint64_t _time;
        // The queue's index among the known ones, in the map, and from its first event on in the
        // batch.
        std::uint32_t _known;
        std::uint32_t _inMap;
        std::uint16_t _inBatch;
        // How many losses the batch reports.
        std::uint64_t _lost;
    };

    // What a batch has for a stream of the logger.
    struct Output
    {
        std::ostream* _stream;
        // Null if the stream is of another kind.
        LgServiceLog* _log;
        std::string _text;
        std::vector<LgServiceLog::Line> _lines;
        // The first level that it is of.
        std::uint32_t _level = LgMap::NONE;
        bool _hasWaited = false;
        bool _isReady = false;
        std::uint16_t _file = LgMap::NONE;
    };

    // What others may ask for at any time, while the writer is busy with a file.
    struct Status
    {
        mutable std::mutex _mutex;
        LgServiceHealth _health;
        // The largest fill of each queue, and the time of the earliest event that waits; 0 for
        // none.
        std::unordered_map<const LgQueue*, std::uint32_t> _fills;
        std::uint64_t _earliest = 0;
    };

    void noteFills();
    void noteBatch();
    void noteFiles();
    void lookAtRegistry();
    bool hasWork();
    bool isLookGood() const;
    bool findQueues();
    bool hasEvents(Known& known) const;
    void beginBatch();
    void collect();
    void collectEvents();
    static bool hasNext(Cursor& cursor);
    void addEvent(Cursor& cursor);
    std::optional<std::uint64_t> reportedOf(const LgQueue& queue, std::uint32_t inMap);
    std::uint32_t lossesOf(const Cursor& cursor, const LgQueue::Entry& entry);
    void addRestOfLosses(std::uint32_t known);
    void writeLast();
    void addLine(std::uint16_t inBatch, const LgLineEvent& event, std::uint32_t lost);
    std::uint16_t enter(const LgQueue& queue, std::uint32_t inMap);
    Output* outputOf(LgTypes::Level level);
    void writeCollected();
    void prepare();
    void fillBatch();
    void write();
    static void writeToStream(const Output& output);
    void move();
    void move(Cursor& cursor);
    void lookAtClock();
    void lookAtForm();
    void endQueues();

    LgServiceMap& _map;
    LgServiceWaiting& _waiting;
    // The form while time stamps are enabled, and what writes in the present form.
    LgLineForm _form;
    bool _isRaw;
    LgLineForm _present = LgLineForm::Plain;
    std::optional<LgLineWriter> _lineWriter;
    LgLineOrigin _origin;
    // The registered queues, and which state of the registry they are of.
    std::vector<Known> _known;
    std::uint64_t _generation = 0;
    // When the queues were looked through last, how many lines were written since, and whether all
    // went well since.
    std::uint64_t _until = 0;
    std::size_t _sinceLook = 0;
    bool _canGoOn = false;
    // A heap, the earliest event first; and the queues whose turn is over in this batch.
    std::vector<Cursor> _cursors;
    std::vector<Cursor> _finished;
    // Queues of ended threads, by their index among the known ones.
    std::vector<std::uint32_t> _ended;
    std::vector<Output> _outputs;
    std::size_t _outputCount = 0;
    std::string _echo;
    // For a text that wraps.
    std::vector<char> _scratch;
    std::vector<LgMap::BatchLine> _lines;
    std::vector<LgMap::BatchQueue> _queues;
    std::size_t _size = 0;
    std::uint64_t _number = 0;
    std::int64_t _dated = 0;
    // Of the events of this batch.
    std::array<std::uint64_t, LgTypes::NUM_LEVELS> _counts{};
    const std::uint64_t _unwrittenBefore;
    Status _status;
};

} // namespace Zu

#endif
