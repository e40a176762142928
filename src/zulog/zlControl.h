/// @file
/// The commands ps and level: what running processes are doing, and what they log.

#ifndef ZU_ZULOG_ZLCONTROL_H
#define ZU_ZULOG_ZLCONTROL_H

#include "../base/lgTypes.h"
#include "zlOutput.h"
#include "zlReports.h"
#include "zlTime.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Which processes are asked, and for what.
struct ZlControlOptions
{
    /// A group, or a glob of groups, and the threshold that they get.
    struct Change
    {
        std::string _group;
        LgTypes::Level _level;
    };

    /// Where the control files are; empty for the directory that a log service chooses by itself.
    std::string _directory;
    /// Ids of processes, or names of programs; empty for all.
    std::vector<std::string> _processes;
    std::vector<Change> _changes;
    /// Whether groups get back what they had before they were changed.
    bool _isReset = false;
    bool _isJson = false;
    /// How long an answer is waited for.
    std::chrono::milliseconds _patience{3000};
    ZlTimeWriter::Form _times = ZlTimeWriter::Form::Local;
};

/// Reads "Database=Tracing" into a change. The letter case of the level does not matter.
/// False for anything else.
bool zlParseChange(std::string_view text, ZlControlOptions::Change& change);

/// Writes a row for each process that has a log service; for processes that are named, all that
/// they answer; as JSON, one object with the answers of all. Removes what ended processes left. A
/// process that is named and not there, and one that does not answer, is reported as a failure.
void zlShowProcesses(const ZlControlOptions& options, ZlOutput& out, ZlReports& reports);

/// Changes the levels of the one process that is named, and writes its groups with their levels
/// then. If it refuses, or there is no such process or group, nothing has changed, and that is
/// reported as a failure.
void zlChangeLevels(const ZlControlOptions& options, ZlOutput& out, ZlReports& reports);

} // namespace Zu

#endif
