/// @file
/// What the checks of a process have found. Internal to the kit.

#ifndef ZU_APP_APCHECKRECORD_H
#define ZU_APP_APCHECKRECORD_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Zu
{

/// Counts checks, and reports those that fail by apTestInform().
///
/// Thread-safety: any thread may make any call; begin() and end() belong to the thread that runs
/// the groups. What a thread has checked before it was joined is in the next result.
class ApCheckRecord
{
public:
    /// What has been found in some part of a run.
    struct Result
    {
        std::uint64_t _checks = 0;
        std::uint64_t _failed = 0;
        /// The texts of failures, at most MOST_TEXTS.
        std::vector<std::string> _failures = {};
    };

    /// A test that fails in a loop must not exhaust the memory.
    static constexpr std::size_t MOST_TEXTS = 100;

    /// Called when a check is made while no group runs, unless there is one already that
    /// takeOutside() has not returned.
    using Handler = void (*)();

    /// The record of the process, which lives to its end: the process does not end with 0 if there
    /// are checks outside of groups that takeOutside() has not returned.
    static ApCheckRecord& ofProcess();

    explicit ApCheckRecord(Handler atFirstOutside = nullptr) : _atFirstOutside(atFirstOutside) {}

    /// A group of this name runs.
    void begin(const std::string& group);

    /// No group runs any more. Returns what was found since begin().
    Result end();

    /// Counts a check if a group runs; otherwise returns false.
    bool count() noexcept
    {
        // Pairs with the exchanges in begin() and end(), for threads that were started earlier.
        if (!_isRunning.load(std::memory_order_acquire)) return false;
        _checks.fetch_add(1, std::memory_order_relaxed);
        return true;
    }

    /// Reports a check that has failed, and was counted.
    void fail(const std::string& text);

    /// Reports a check that was made while no group runs.
    void addOutside(const std::string& text);

    /// What was found outside of groups since the last call; all of it has failed.
    Result takeOutside();

    /// Whether takeOutside() would return anything.
    bool hasOutside() const;

private:
    static void add(Result& result, const std::string& text);

    const Handler _atFirstOutside;
    std::atomic<bool> _isRunning{false};
    std::atomic<std::uint64_t> _checks{0};
    mutable std::mutex _mutex;
    std::string _group;
    Result _inside;
    Result _outside;
};

} // namespace Zu

#endif
