#include "app/apFileFormat.h"

#include <gtest/gtest.h>

namespace
{

TEST(ApFileFormat, ErrorsSayWhereAndWhy)
{
    try
    {
        throw Zu::ApFileError(7, "it is wrong");
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "it is wrong");
        EXPECT_EQ(dynamic_cast<const Zu::ApFileError&>(error).getLine(), 7);
    }
}

} // namespace
