// The log's reader beside threads that come and end, explored exhaustively. What it writes goes
// nowhere, as the logger has no outputs before it is initialised.

#include "readerScenarios.h"
#include "scenario.h"

#include <gtest/gtest.h>

namespace
{

TEST(LgReaderModel, WritesEachEventOnceAndDeletesTheQueuesOfEndedThreads)
{
    readerScenarios::prepareLogger();
    exploreAll(readerScenarios::all());
}

} // namespace
