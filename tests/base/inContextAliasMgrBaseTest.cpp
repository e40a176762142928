#include "base/inContextAliasMgrBase.h"

#include <gtest/gtest.h>

namespace
{

TEST(InContextAliasMgrBase, HasNoWordsBeforeStartUp)
{
    EXPECT_TRUE(Zu::InContextAliasMgrBase::getUnboundArgs().empty());
}

} // namespace
