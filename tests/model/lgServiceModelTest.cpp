// The log service, explored exhaustively: its own thread, and threads that wait for it.

#include "planting.h"
#include "scenario.h"
#include "serviceScenarios.h"

#include <gtest/gtest.h>

namespace
{

using serviceScenarios::State;

TEST(LgServiceModel, WhoWaitsGoesOnWhenWhatItWaitsForIsThere)
{
    State::instance();
    exploreAll(serviceScenarios::all());
}

TEST(LgServiceModel, TheSameInALongRun)
{
    if (!isLongRun()) GTEST_SKIP() << "takes very long; the variable ZU_MODEL_LONG asks for it";
    State::instance();
    exploreAll(serviceScenarios::forLongRun());
}

const planting::Unneeded OF_SERVICE[] = {
    {"isIdle = !_stop && !isWorkWaiting()", model::WithoutAcquire,
     "only ends a sleep; the next turn of the loop acquires it"},
    {"lgServiceRegistry getGeneration", model::WithoutAcquire,
     "what it says has changed is read with the mutex locked"},
    {"lgServiceRegistry registerQueue", model::WithoutRelease,
     "what it says has changed is read with the mutex locked"},
    {"endWaitsUntilWritten: if (!_hasWaits.load", model::WithoutAcquire,
     "who waits is looked up with the mutex locked"},
    {"isWorkWaiting: if (_hasWaits.load", model::WithoutAcquire,
     "only ends a sleep; who waits is looked up with the mutex locked"},
    {"lgServiceThreads noteWaits: _hasWaits.store", model::WithoutRelease,
     "who waits is looked up with the mutex locked"},
    {"endWaitsUntilWritten: if (wait->_time < earliest)", model::WithoutRelease,
     "who has waited locks the mutex that was held"},
    {"const auto isOver = [&wait]", model::WithoutAcquire,
     "who has waited locks the mutex that was held"},
    {"lgServiceThreads isRunning", model::WithoutAcquire,
     "nothing is read that was written before the end"},
    {"lgServiceThreads stop", model::WithoutRelease,
     "nothing is read that was written before the end"},
};

TEST(PlantedErrors, WeakenedOrdersOfTheServiceAreNoticed)
{
    if (!isLongRun()) GTEST_SKIP() << "takes 20 s; the variable ZU_MODEL_LONG asks for it";
    State::instance();
    planting::plant(serviceScenarios::all(), OF_SERVICE, "lgService");
}

} // namespace
