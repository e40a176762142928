// The queue of a thread and its text ring, explored exhaustively with small rings.

#include "queueScenarios.h"
#include "scenario.h"

#include <gtest/gtest.h>

namespace
{

TEST(LgQueueModel, EventsArriveInOrderWholeAndOnceAndLossesAreCounted)
{
    queueScenarios::prepareLibrary();
    exploreAll(queueScenarios::all());
}

TEST(LgQueueModel, TheSameInALongRun)
{
    if (!isLongRun()) GTEST_SKIP() << "takes minutes; the variable ZU_MODEL_LONG asks for it";
    queueScenarios::prepareLibrary();
    exploreAll(queueScenarios::forLongRun());
}

} // namespace
