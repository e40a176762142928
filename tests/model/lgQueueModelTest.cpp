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

} // namespace
