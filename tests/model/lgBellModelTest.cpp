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

} // namespace
