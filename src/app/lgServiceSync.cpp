#include "app/lgServiceSync.h"

#include "base/lgLog.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace Zu
{

bool (*LgServiceSync::_store)(LgServiceFile& file) = [](LgServiceFile& file)
{ return file.sync(); };

std::uint64_t LgServiceSync::getFailures()
{
    const std::lock_guard guard(_mutex);
    return _failures;
}

bool LgServiceSync::store(std::uint64_t failures, Clock::time_point end)
{
    if (!begin(failures, end)) return false;
    bool isStored = false;
    try
    {
        std::vector<Part> parts;
        const bool isComplete = collect(parts);
        isStored = storeParts(parts) && isComplete;
    }
    catch (...)
    {
        this->end(false);
        throw;
    }
    this->end(isStored);
    return isStored;
}

// One thread at a time: whoever finds nothing to store must know that it is stored.
bool LgServiceSync::begin(std::uint64_t failures, Clock::time_point end)
{
    std::unique_lock lock(_mutex);
    if (!_isFree.wait_until(lock, end, [this] { return !_isStoring; })) return false;
    if (_failures != failures) return false;
    _isStoring = true;
    return true;
}

void LgServiceSync::end(bool isStored)
{
    {
        const std::lock_guard guard(_mutex);
        _isStoring = false;
        _isAllDue = !isStored;
        if (!isStored) ++_failures;
    }
    _isFree.notify_all();
}

// False if a log has lines that are not in its file, or had a file that was closed unstored.
bool LgServiceSync::collect(std::vector<Part>& parts)
{
    const std::lock_guard guard(_reading);
    std::vector<LgServiceLog*> logs;
    bool isComplete = true;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        std::ostream* const stream = LgLog::getLevelOutput(static_cast<LgTypes::Level>(level));
        auto* const log = dynamic_cast<LgServiceLog*>(stream);
        if (!log || std::find(logs.begin(), logs.end(), log) != logs.end()) continue;
        logs.push_back(log);
        if (log->takeStoringLost() || log->isFailing()) isComplete = false;
        if (!_isAllDue && !log->file().isUnstored()) continue;
        Part part{log, nullptr, false, 0};
        part._error = log->file().copyToStore(part._file);
        if (part._file || part._error != 0) parts.push_back(std::move(part));
    }
    return isComplete;
}

bool LgServiceSync::storeParts(std::vector<Part>& parts)
{
    for (Part& part : parts)
    {
        if (!part._file) continue;
        part._isStored = _store(*part._file);
        part._error = LgServiceFilePlatform::lastError();
    }
    const std::lock_guard guard(_reading);
    for (const Part& part : parts) part._log->noteStoring(part._isStored, part._error);
    return std::all_of(parts.begin(), parts.end(), [](const Part& part) { return part._isStored; });
}

} // namespace Zu
