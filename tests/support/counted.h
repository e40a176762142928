// Objects that count how many of them live.

#ifndef ZU_TESTS_COUNTED_H
#define ZU_TESTS_COUNTED_H

#include <gtest/gtest.h>

namespace support
{

struct Counted
{
    explicit Counted(int value = 0) : _value(value)
    {
        ++_living;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted()
    {
        --_living;
        ++_ended;
    }

    int _value;

    static inline int _living = 0;
    // How many were destroyed since the last clear().
    static inline int _ended = 0;

    static void clear()
    {
        _living = 0;
        _ended = 0;
    }
};

// For tests that count: each begins at zero and leaves no object behind.
class CountedTest : public testing::Test
{
protected:
    CountedTest()
    {
        Counted::clear();
    }
    ~CountedTest() override
    {
        EXPECT_EQ(Counted::_living, 0);
    }
};

} // namespace support

#endif
