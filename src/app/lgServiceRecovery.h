/// @file
/// Writes what processes have left when they ended. Internal to the application kit.

#ifndef ZU_APP_LGSERVICERECOVERY_H
#define ZU_APP_LGSERVICERECOVERY_H

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

/// Writes what a process has left in a map into the logs of this process, between two lines that
/// name that process: first the lines that waited for files that failed, then the events in order
/// of time. What it is about to write, and what it has written, it stores in the map as that
/// process did, so it may itself be ended at any step: each event is written once.
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

    /// The steps at which a test may end the process.
    static void (*_atStep)();

    LgServiceRecovery(LgLeftFile& file, LgLineForm form, bool isRaw);

    Outcome run();

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
    std::vector<char> findWritten();
    std::vector<std::vector<char>> findWrittenLines();
    static bool isAt(Place& place, const LgMap::BatchLine& line);
    void beginBatch();
    bool beginOutput(Output& output);
    std::vector<std::size_t> addEvents(std::size_t begin, std::size_t end,
                                       const std::vector<char>& isWritten);
    bool writeOutputs(bool isLast);
    bool writeChunk(std::size_t begin, std::size_t end, const std::vector<char>& isWritten);
    void addService(Output& output, const std::string& text);
    std::string beginLines() const;
    std::string droppedLine(std::uint32_t log) const;
    std::string endLine() const;
    void enter(std::uint32_t number);
    void addEvent(const LgLeftMap::Event& event, std::uint32_t inBatch, Output* output);
    bool moveQueue(const LgLeftMap::Queue& queue, const LgLeftMap::Event& last);
    Outcome runUnderLock();
    bool hasAllLogs() const;
    static void discardOld(const std::string& directory, const std::vector<std::string>& names,
                           int keptMaps, int keptDays);
    bool store(std::uint64_t number, LgMap::State state);

    LgLeftFile& _file;
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
