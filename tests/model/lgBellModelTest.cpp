// The bell that wakes threads, explored exhaustively.

#include "bellScenarios.h"
#include "scenario.h"

#include <gtest/gtest.h>

namespace
{

TEST(LgBellModel, NoWakeUpIsLost)
{
    exploreAll(bellScenarios::all());
}

TEST(LgBellModel, TheSameInALongRun)
{
    if (!isLongRun()) GTEST_SKIP() << "takes minutes; the variable ZU_MODEL_LONG asks for it";
    exploreAll(bellScenarios::forLongRun());
}

} // namespace
