// Ends a process that hangs.

#ifndef ZU_TESTS_STRESS_WATCHDOG_H
#define ZU_TESTS_STRESS_WATCHDOG_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace stress
{

// How long a scenario is repeated; each is carried out at least once. The variable
// ZU_STRESS_SECONDS overrides the number of seconds.
std::chrono::seconds timeOfScenario();

// Aborts the process with a message if it lives for minutes longer than a scenario should.
class Watchdog
{
public:
    explicit Watchdog(const std::string& what);
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();

private:
    void watch();

    std::string _what;
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isOver = false;
    std::thread _thread;
};

} // namespace stress

#endif
