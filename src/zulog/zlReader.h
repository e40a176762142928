/// @file
/// Turns the bytes of log files into records.

#ifndef ZU_ZULOG_ZLREADER_H
#define ZU_ZULOG_ZLREADER_H

#include "../app/lgServiceLine.h"
#include "zlLine.h"
#include "zlRecord.h"
#include "zlReports.h"
#include "zlSource.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Reads the files of one log, one after the other: its rotated files from the oldest on, then the
/// present one. A log is a row of segments, cut at banners and at marks of recovery; each has an
/// origin of its own, by which its ticks become times.
///
/// Memory: one buffer of the given size, which grows for a longer event up to LONGEST. Not
/// thread-safe.
class ZlReader
{
public:
    /// Longer lines are taken in parts, which are reported and unreadable.
    static constexpr std::size_t LONGEST = std::size_t{1} << 20;

    struct Options
    {
        std::size_t _bufferSize = std::size_t{256} * 1024;
        /// The levels that are wanted: bit 1 << level. An event of another level is skipped with
        /// its continuations, and what may be wrong behind its level is not reported. What has no
        /// level where events have it is delivered, whatever is wanted: marks, events without a
        /// level, unreadable lines.
        std::uint32_t _levels = ~0U;
        /// Whether that is skipped, too, without a look at it and so without reports. Only lines
        /// that begin as marks do are read, for what marks say of processes and times. Nearly all
        /// records are then events of wanted levels, but whoever takes them has to look: a line
        /// that is no event may have a level by accident.
        bool _areMarksSkipped = false;
        /// Null if all files may be open.
        std::shared_ptr<ZlOpenFiles> _openFiles;
    };

    /// Opens nothing yet. The reports must outlive the reader.
    ZlReader(std::vector<std::string> files, ZlReports& reports, const Options& options);
    /// Reads what a source of the caller's own delivers, under this name.
    ZlReader(std::string name, std::unique_ptr<ZlSource> source, ZlReports& reports,
             const Options& options);
    ~ZlReader();

    /// Makes the next record. False at the end of the last file. A file that can't be opened or
    /// read is reported, and the next one follows.
    bool next();

    /// The record; valid until the next call of next().
    const ZlRecord& getRecord() const
    {
        return _record;
    }

    /// For a file that grows: at the present end next() returns false, and keeps a line without
    /// its end, and an event that may be continued, for the next call.
    void setLive()
    {
        _isLive = true;
    }

    /// What was kept comes with the next call of next(): of a file that grows no more for the
    /// moment (an event that may be continued), or never again (`isAll`: a line without its end).
    void release(bool isAll);

    /// Begins a further file behind what was read, as after a rotation. What was kept of the last
    /// one comes first.
    void append(std::unique_ptr<ZlSource> source);

    /// All lines so far, skipped and unreadable ones among them.
    std::uint64_t getLineCount() const
    {
        return _allLines;
    }

    /// How many bytes of the present file the records so far took, with what was skipped between
    /// them: the offset behind the record that next() made. Of a compressed file, uncompressed.
    std::uint64_t getOffset() const
    {
        return _offset;
    }

private:
    struct Block
    {
        // A line and its continuations, with their line ends.
        std::size_t _size = 0;
        // Line ends, and that of the file.
        std::uint64_t _lines = 1;
        // The first line, and all of them, without the last line end.
        std::string_view _first;
        std::string_view _all;
        // What is wrong with it, or null.
        const char* _fault = nullptr;
        // Whether its last line goes on with the next block.
        bool _isCut = false;
    };

    enum class Step
    {
        Record,
        Nothing,
        End
    };

    Step takeStep();
    Step takeStepOfStart(const Block* block);
    bool openNext();
    void beginFile(std::unique_ptr<ZlSource> source);
    bool isOver() const;
    bool fill();
    std::size_t findLineFeed(std::size_t from);
    bool takeBlock(Block& block);
    bool addContinuations(Block& block);
    Block blockOf(std::size_t size, std::size_t firstEnd, std::uint64_t lines, const char* fault);
    void consume(const Block& block);
    bool isSkipped(const Block& block) const;
    bool read(const Block& block);
    bool readMark(std::string_view line);
    bool addToStart(std::string_view line);
    void finishStart();
    void beginRecord(ZlRecord::Kind kind, const Block& block);
    void readEvent(const ZlHead& head, std::string_view text);
    void readText(std::string_view text);
    void readUnreadable(const Block& block, const char* reason);
    void report(const char* reason);
    void setOrigin(const LgLineOrigin& origin);
    void forgetOrigin();
    const ZlOwner& ownerOf(std::uint32_t process) const;

    std::vector<std::string> _files;
    std::size_t _nextFile = 0;
    std::unique_ptr<ZlSource> _source;
    // What follows it.
    std::deque<std::unique_ptr<ZlSource>> _sources;
    std::string _name;
    ZlReports& _reports;
    const Options _options;
    const bool _isAnySkipped;
    bool _isLive = false;
    bool _isReleased = false;
    bool _isAllReleased = false;
    bool _isAtEnd = false;

    std::vector<char> _buffer;
    std::size_t _begin = 0;
    std::size_t _end = 0;
    // So many bytes from the beginning on have no line feed.
    std::size_t _searched = 0;
    // Of the present file, up to the beginning of the buffer.
    std::uint64_t _line = 0;
    std::uint64_t _offset = 0;
    std::uint64_t _allLines = 0;
    // Whether the beginning of the present line was a part of its own.
    bool _isInLine = false;

    ZlRecord _record;
    // Whose lines these are, and for lines of which that is not known.
    ZlOwner _owner;
    const ZlOwner _nobody;
    // What the latest origin of each process says.
    std::map<std::uint32_t, ZlOwner> _owners;
    std::optional<LgLineOrigin> _origin;
    // Whether that ends with the present record.
    bool _isOwnerOver = false;
    // A banner whose further lines may still come, with its first line.
    bool _hasStart = false;
    bool _isEmptyLineDue = false;
    std::string _startLine;
    std::uint64_t _startNumber = 0;
    // Whether the lines of this segment have times, as far as it is known.
    std::optional<bool> _areStamped;
};

} // namespace Zu

#endif
