// Properties of every class of every exception family; the families' own tests provide the tables.

#include "support/exceptionChecks.h"

#include <gtest/gtest.h>

namespace support
{

TEST_P(ExceptionFamilies, TheObjectSaysWhereAndWhyItWasRaised)
{
    expectTexts(GetParam());
}

TEST_P(ExceptionFamilies, HandlersForTheStandardClassTheFamilyAndTheRootReadTheReason)
{
    expectHandlers(GetParam());
}

TEST_P(ExceptionFamilies, TheStandardPartHasNoTextOfItsOwn)
{
    EXPECT_EQ(GetParam()._standardText(), "");
}

TEST_P(ExceptionFamilies, ACloneIsOfTheSameClassAndSaysTheSame)
{
    expectClone(GetParam());
}

TEST_P(ExceptionFamilies, TheBasesStandInTheFamilysOrder)
{
    EXPECT_TRUE(GetParam()._observedFirstBase() == GetParam()._firstBase);
}

} // namespace support
