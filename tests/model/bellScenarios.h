// Scenarios of the bell that wakes threads. A wake-up that is lost is a deadlock, as waits don't
// expire.

#ifndef ZU_TESTS_MODEL_BELLSCENARIOS_H
#define ZU_TESTS_MODEL_BELLSCENARIOS_H

#include "app/lgBell.h"
#include "modelChecker.h"
#include "scenario.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

namespace bellScenarios
{

using Zu::LgBell;

constexpr std::chrono::milliseconds NEVER{600000};

// A barrier that does nothing.
inline bool pretend()
{
    return true;
}

struct Case
{
    const char* _name;
    LgBell::Barrier _barrier;
    int _ringers;
    int _listeners;
    // How often each ringer makes something happen; each listener waits for all of it.
    int _times;
};

// What has happened is a relaxed counter: nothing but the bell orders it.
inline std::function<void()> ringing(const Case& c)
{
    return [&c]
    {
        LgBell bell(c._barrier);
        std::atomic<int> happened{0};
        for (int i = 0; i < c._listeners; ++i)
            model::thread(
                [&]
                {
                    const int all = c._ringers * c._times;
                    const auto isAll = [&]
                    { return happened.load(std::memory_order_relaxed) == all; };
                    while (!isAll()) bell.listen(isAll, NEVER);
                });
        for (int i = 0; i < c._ringers; ++i)
            model::thread(
                [&]
                {
                    for (int j = 0; j < c._times; ++j)
                    {
                        happened.fetch_add(1, std::memory_order_relaxed);
                        bell.ring();
                    }
                });
        model::join();
    };
}

inline const Case CASES[] = {
    {"barrier, one to one", &model::heavyBarrier, 1, 1, 1},
    {"barrier, two rings", &model::heavyBarrier, 1, 1, 2},
    {"barrier, two ringers", &model::heavyBarrier, 2, 1, 1},
    {"barrier, two listeners", &model::heavyBarrier, 1, 2, 1},
    {"no barrier, one to one", nullptr, 1, 1, 1},
    {"no barrier, two rings", nullptr, 1, 1, 2},
    {"no barrier, two ringers", nullptr, 2, 1, 1},
    {"no barrier, two listeners", nullptr, 1, 2, 1},
};

inline std::vector<Scenario> all()
{
    std::vector<Scenario> scenarios;
    for (const Case& c : CASES) scenarios.push_back({c._name, ringing(c)});
    return scenarios;
}

} // namespace bellScenarios

#endif
