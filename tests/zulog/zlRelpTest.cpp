#include "zulog/zlRelp.h"

#include <gtest/gtest.h>

namespace
{

using Zu::ZlRelpAnswers;

TEST(ZlRelpAnswers, CountWhatWasTakenUpToTheFirstThatWasNot)
{
    ZlRelpAnswers answers;
    answers.begin(3);
    EXPECT_FALSE(answers.isOpened());
    answers.take(1, 200);
    EXPECT_TRUE(answers.isOpened());
    EXPECT_EQ(answers.countTaken(), 0U);
    answers.take(3, 200);
    EXPECT_EQ(answers.countTaken(), 0U);
    answers.take(2, 200);
    EXPECT_EQ(answers.countTaken(), 2U);
    answers.take(4, 200);
    EXPECT_EQ(answers.countTaken(), 3U);
    // The end of the session.
    answers.take(5, 200);
    EXPECT_EQ(answers.countTaken(), 3U);
    EXPECT_EQ(answers.getRefusal(), 0);
}

TEST(ZlRelpAnswers, ARefusalIsNotTakenAndIsKept)
{
    ZlRelpAnswers answers;
    answers.begin(3);
    answers.take(0, 200);
    EXPECT_FALSE(answers.isOpened());
    answers.take(1, 200);
    answers.take(2, 200);
    answers.take(3, 500);
    answers.take(4, 501);
    EXPECT_EQ(answers.countTaken(), 1U);
    EXPECT_EQ(answers.getRefusal(), 500);
    answers.begin(1);
    EXPECT_EQ(answers.getRefusal(), 0);
    EXPECT_EQ(answers.countTaken(), 0U);
}

TEST(ZlRelpAnswers, TheNoteOfAnAnswerIsKnownByItsForm)
{
    EXPECT_TRUE(Zu::zlIsAnswerForm("in rsp command handler, txnr %d, code %d, text '%s'\n"));
    EXPECT_FALSE(Zu::zlIsAnswerForm("in rsp command handler, txnr %ld, code %d, text '%s'\n"));
    EXPECT_FALSE(Zu::zlIsAnswerForm(""));
}

} // namespace
