/// @file
/// Writes what processes have left when they ended. Internal to the application kit.

#ifndef ZU_APP_LGSERVICERECOVERY_H
#define ZU_APP_LGSERVICERECOVERY_H

#include "../base/lgInterProcessLock.h"
#include "../base/lgTypes.h"
#include "lgLeftMap.h"
#include "lgMapFile.h"
#include "lgServiceLine.h"
#include "lgServiceLog.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// Writes what a process has left in a map into log files, those of this process unless others are
/// given, between two lines that name that process: first the lines that waited for files that
/// failed, then the events in order of time. What it is about to write, and what it has written, it
/// stores in the map as that process did, so it may itself be ended at any step: each event is
/// written once.
///
/// Thread-safety: one thread at a time, before events of this process are written.
class LgServiceRecovery
{
public:
    enum class Outcome
    {
        /// Nothing is left; the file is removed.
        Complete,
        /// A log could not be written; the next service goes on.
        Unfinished,
        /// The file is not a map of this version, or it is damaged; it stays.
        Refused
    };

    /// Where events go.
    struct Logs
    {
        /// The log of each level; null for a level without one, whose events go nowhere.
        std::array<LgServiceLog*, LgTypes::NUM_LEVELS> _ofLevels = {};
        /// Whether a level has none although it was meant to: then nothing is written.
        std::array<bool, LgTypes::NUM_LEVELS> _isMissing = {};
        /// Held while a map is recovered; null for none.
        LgInterProcessLock* _lock = nullptr;

        /// Those of this process's logger.
        static Logs ofLogger();
    };

    /// The steps at which a test may end the process.
    static void (*_atStep)();

    /// The logs must outlive the object.
    LgServiceRecovery(LgLeftFile& file, LgLineForm form, bool isRaw,
                      const Logs& logs = Logs::ofLogger());

    /// Reads the map; false, with a reason, if it is refused. For those who only look: run() does
    /// it, too.
    bool load();

    /// What was read.
    const LgLeftMap& getMap() const
    {
        return _map;
    }

    /// Which of its events are in the logs already, or among the lines that wait. Without logs, of
    /// a batch that was being written only those are that go nowhere or wait.
    std::vector<char> findWritten();

    Outcome run();

    /// The same under the lock. A process that died with the lock is reported once on standard
    /// error, to the next one that takes it.
    Outcome runUnderLock();

    /// How many events were written.
    std::uint64_t getCount() const
    {
        return _count;
    }

    /// Why the file was refused, or what of it was.
    const std::string& getReason() const
    {
        return _reason;
    }

    /// Recovers all maps for a log directory, and discards old ones beyond the bounds. Refusals and
    /// discarded files are reported on standard error, one line each. `own` is the path of this
    /// process's map, which is left alone. Returns how many events were written.
    static std::uint64_t recoverAll(const std::string& mapDirectory,
                                    const std::string& logDirectory, const std::string& own,
                                    LgLineForm form, bool isRaw, int keptMaps, int keptDays);

    /// The names of the maps in a directory, which ends with a separator, the oldest first.
    static std::vector<std::string> mapsIn(const std::string& directory);

    /// When a map was made, by its name: UTC, in nanoseconds since 1970; 0 if that does not say so.
    static std::int64_t timeOf(const std::string& name);

    /// @{
    /// What is written: the lines before and behind a process's events, and those between.
    static LgLineOrigin originOf(const LgMap::Header& header);
    static std::string beginLines(const LgLineOrigin& origin);
    static std::string endLine(const LgLineOrigin& origin);
    static void appendEvent(std::string& out, LgLineWriter& writer, const LgLeftMap::Event& event);
    /// @}

private:
    struct Output
    {
        LgServiceLog* _log;
        std::string _text;
        std::vector<LgServiceLog::Line> _lines;
        bool _hasBegun = false;
        bool _isUsed = false;
        // Whose lines that waited are written with this chunk; LgMap::NONE for none.
        std::uint32_t _waiting = LgMap::NONE;
    };

    // Where the next line of a batch is looked for; no log if there is none more.
    struct Place
    {
        LgServiceLog* _log;
        std::uint64_t _offset;
    };

    // What is left to write of the lines that waited for a log.
    struct Waiting
    {
        std::size_t _from = 0;
        std::uint64_t _dropped = 0;
        bool _isDone = true;
    };

    bool storeFound();
    void findLogs();
    Output* outputOf(LgTypes::Level level);
    Output& outputOfWaiting(std::uint32_t log);
    Output* outputOf(const LgLeftMap::Event& event);
    LgServiceLog* logOf(const LgMap::BatchFile& file) const;
    void findWaiting();
    void findInFile(const LgMap::BatchFile& file, std::uint32_t log);
    bool isWaitingLeft() const;
    bool chooseWaiting();
    void addWaiting(Output& output, LgMap::BatchFile& file);
    bool storeWaitingDone(std::uint64_t number);
    bool storeNothing(std::uint32_t log, std::uint64_t batch);
    std::vector<std::vector<char>> findWrittenLines();
    static bool isAt(Place& place, const LgMap::BatchLine& line);
    void beginBatch();
    bool beginOutput(Output& output);
    std::vector<std::size_t> addEvents(std::size_t begin, std::size_t end,
                                       const std::vector<char>& isWritten);
    bool writeOutputs(bool isLast);
    bool writeChunk(std::size_t begin, std::size_t end, const std::vector<char>& isWritten);
    void addService(Output& output, const std::string& text);
    std::string droppedLine(std::uint32_t log) const;
    void enter(std::uint32_t number);
    void addEvent(const LgLeftMap::Event& event, std::uint32_t inBatch, Output* output);
    bool moveQueue(const LgLeftMap::Queue& queue, const LgLeftMap::Event& last);
    bool hasAllLogs() const;
    bool isMissing(LgTypes::Level level) const
    {
        return _logs._isMissing[static_cast<std::size_t>(level)];
    }
    static void discardOld(const std::string& directory, const std::vector<std::string>& names,
                           int keptMaps, int keptDays);
    bool store(std::uint64_t number, LgMap::State state);

    LgLeftFile& _file;
    const Logs _logs;
    LgLeftMap _map;
    LgLineWriter _lineWriter;
    LgLineOrigin _origin;
    std::vector<Output> _outputs;
    std::array<Waiting, LgMap::MOST_FILES> _waiting;
    LgMap::Batch _batch{};
    std::uint64_t _nextNumber = 0;
    // Of all queues: where the next chunk begins.
    std::vector<LgMap::BatchQueue> _positions;
    std::uint64_t _count = 0;
    std::string _reason;
};

} // namespace Zu

#endif
