// What was explored, for the reader of a test's output.

#ifndef ZU_TESTS_MODEL_MODELREPORT_H
#define ZU_TESTS_MODEL_MODELREPORT_H

#include "modelChecker.h"

#include <gtest/gtest.h>
#include <iostream>

// Expects that all was explored, and nothing is wrong.
inline void report(const char* name, const model::Result& result)
{
    EXPECT_EQ(result._violation, "");
    EXPECT_TRUE(result._isComplete);
    std::cout << "  " << name << ": " << result._executions << " executions, " << result._deadEnds
              << " dead ends, " << result._outcomes.size() << " outcomes\n";
}

#endif
