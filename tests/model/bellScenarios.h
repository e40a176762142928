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
    // Whether a listener looks once more between its announcement and its sleep.
    bool _looksAgain = true;
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
                    const auto look = [&] { return c._looksAgain && isAll(); };
                    while (!isAll()) bell.listen(look, NEVER);
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

// For the long run.
inline const Case LONG_CASES[] = {
    {"barrier, three listeners", &model::heavyBarrier, 1, 3, 1},
    {"barrier, three rings", &model::heavyBarrier, 1, 1, 3},
    {"no barrier, three rings", nullptr, 1, 1, 3},
};

inline std::vector<Scenario> forLongRun()
{
    std::vector<Scenario> scenarios;
    for (const Case& c : LONG_CASES) scenarios.push_back({c._name, ringing(c)});
    return scenarios;
}

inline std::vector<Scenario> all()
{
    std::vector<Scenario> scenarios;
    for (const Case& c : CASES) scenarios.push_back({c._name, ringing(c)});
    return scenarios;
}

// Those that take little time.
inline std::vector<Scenario> small()
{
    std::vector<Scenario> scenarios;
    for (const Case& c : CASES)
        if (c._barrier || c._ringers == 1) scenarios.push_back({c._name, ringing(c)});
    return scenarios;
}

} // namespace bellScenarios

#endif
