// The hand-over from a process that is killed to the next one, explored exhaustively.

#include "exploreHandOver.h"
#include "recoveryScenarios.h"

#include <gtest/gtest.h>

namespace
{

using recoveryScenarios::Prepared;

TEST(LgServiceRecoveryModel, EachAcceptedEventIsThereOnceWhereverAProcessIsKilled)
{
    Prepared::instance();
    exploreHandOver(recoveryScenarios::all(), {0, false});
}

TEST(LgServiceRecoveryModel, TheSameWhereverItsRecoveryIsKilled)
{
    Prepared::instance();
    exploreHandOver(recoveryScenarios::simple(), {1, true});
}

TEST(LgServiceRecoveryModel, TheSameWithLossesAndSeveralQueuesAndFilesThatFail)
{
    Prepared::instance();
    exploreHandOver(recoveryScenarios::all(), {1, false});
}

TEST(LgServiceRecoveryModel, ThreadsThatLogWhileAServiceEnds)
{
    Prepared::instance();
    exploreHandOver(recoveryScenarios::besideTheEnd(), {1, false});
}

TEST(LgServiceRecoveryModel, LongerScenarios)
{
    if (!isLongRun()) GTEST_SKIP() << "takes 8 s; the variable ZU_MODEL_LONG asks for it";
    Prepared::instance();
    exploreHandOver(recoveryScenarios::forLongRun(), {1, false});
}

} // namespace
