#include "app/apCheckRecord.h"

#include "app/apTestInform.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

namespace Zu
{

namespace
{

// Nobody is left who could return another exit value.
void endWithFailure()
{
    constexpr int FAILED = 2;
    if (!ApCheckRecord::ofProcess().hasOutside()) return;
    std::cout.flush();
    std::fflush(nullptr);
    std::_Exit(FAILED);
}

// It runs next if the process is ending already.
void failAtExit()
{
    std::atexit(endWithFailure);
}

} // namespace

ApCheckRecord& ApCheckRecord::ofProcess()
{
    static ApCheckRecord* const theRecord = new ApCheckRecord(failAtExit);
    return *theRecord;
}

void ApCheckRecord::begin(const std::string& group)
{
    const std::lock_guard guard(_mutex);
    _group = group;
    _inside = {};
    _checks.store(0, std::memory_order_relaxed);
    // Pairs with count().
    _isRunning.store(true, std::memory_order_release);
}

ApCheckRecord::Result ApCheckRecord::end()
{
    const std::lock_guard guard(_mutex);
    // Pairs with count().
    _isRunning.store(false, std::memory_order_release);
    _inside._checks = _checks.load(std::memory_order_relaxed);
    return std::exchange(_inside, {});
}

void ApCheckRecord::add(Result& result, const std::string& text)
{
    ++result._failed;
    if (result._failures.size() < MOST_TEXTS) result._failures.push_back(text);
}

void ApCheckRecord::fail(const std::string& text)
{
    std::string message;
    {
        const std::lock_guard guard(_mutex);
        add(_inside, text);
        message = "Check failed: " + _group + ": " + text;
    }
    apTestInform(message);
}

void ApCheckRecord::addOutside(const std::string& text)
{
    bool isFirst = false;
    {
        const std::lock_guard guard(_mutex);
        isFirst = _outside._failed == 0;
        ++_outside._checks;
        add(_outside, text);
    }
    if (isFirst && _atFirstOutside) _atFirstOutside();
    apTestInform("Check outside of a group: " + text);
}

ApCheckRecord::Result ApCheckRecord::takeOutside()
{
    const std::lock_guard guard(_mutex);
    return std::exchange(_outside, {});
}

bool ApCheckRecord::hasOutside() const
{
    const std::lock_guard guard(_mutex);
    return _outside._failed != 0;
}

} // namespace Zu
