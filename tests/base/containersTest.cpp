#include "base/containers.h"

#include "support/counted.h"
#include "support/platform.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Zu::List;
using Zu::Vector;

constexpr std::size_t HUGE_COUNT = std::numeric_limits<std::size_t>::max();

// The message of the std::length_error that `act` raises.
std::string lengthErrorOf(const std::function<void()>& act)
{
    try
    {
        act();
    }
    catch (const std::length_error& error)
    {
        return error.what();
    }
    return "(no length error)";
}

// Counts upwards: a range that is longer than any array can be.
class Counting
{
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = int;
    using difference_type = std::ptrdiff_t;
    using pointer = const int*;
    using reference = const int&;

    explicit Counting(std::ptrdiff_t position) : _position(position) {}

    reference operator*() const
    {
        return _value;
    }
    Counting& operator++()
    {
        ++_position;
        return *this;
    }
    Counting operator++(int)
    {
        const Counting old(*this);
        ++_position;
        return old;
    }
    Counting& operator--()
    {
        --_position;
        return *this;
    }
    Counting& operator+=(std::ptrdiff_t count)
    {
        _position += count;
        return *this;
    }
    [[maybe_unused]] friend Counting operator+(Counting iterator, std::ptrdiff_t count)
    {
        return iterator += count;
    }
    friend std::ptrdiff_t operator-(const Counting& left, const Counting& right)
    {
        return left._position - right._position;
    }
    friend bool operator==(const Counting& left, const Counting& right)
    {
        return left._position == right._position;
    }

private:
    static inline int _value = 7;
    std::ptrdiff_t _position;
};

TEST(Vector, GrowsAtItsEndAndStaysContiguous)
{
    Vector<int> vector;
    EXPECT_TRUE(vector.empty());
    for (int i = 0; i < 1000; ++i) vector.push_back(i);
    ASSERT_EQ(vector.size(), 1000U);
    EXPECT_EQ(std::accumulate(vector.begin(), vector.end(), 0), 999 * 1000 / 2);
    EXPECT_EQ(&vector[999], &vector[0] + 999);
    EXPECT_EQ(vector.back(), 999);
}

TEST(Vector, ErasesAndClears)
{
    Vector<int> vector{1, 2, 3, 4};
    vector.erase(vector.begin() + 1);
    EXPECT_EQ(vector, (Vector<int>{1, 3, 4}));
    vector.erase(vector.begin(), vector.begin() + 2);
    EXPECT_EQ(vector, (Vector<int>{4}));
    vector.clear();
    EXPECT_EQ(vector.size(), 0U);
}

TEST(Vector, OwnsItsElementsAsValues)
{
    Vector<std::string> original{"one", "two"};
    const Vector<std::string> copy(original);
    original[0] = "changed";
    EXPECT_EQ(copy[0], "one");
}

TEST(Vector, DoesNotOwnWhatItsPointersPointTo)
{
    support::Counted::clear();
    support::Counted object;
    {
        const Vector<support::Counted*> pointers{&object};
    }
    EXPECT_EQ(support::Counted::_ended, 0);
}

TEST(Vector, ComesFromAndServesAsAStandardVector)
{
    const std::vector<int> standard{1, 2, 3};
    const Vector<int> vector(standard);
    const std::vector<int>& base = vector;
    EXPECT_EQ(base, standard);
}

TEST(Vector, TakesCountsAndRanges)
{
    EXPECT_EQ(Vector<int>(3), (Vector<int>{0, 0, 0}));
    EXPECT_EQ(Vector<int>(2, 5), (Vector<int>{5, 5}));
    const int values[] = {1, 2, 3};
    Vector<int> vector(values, values + 3);
    EXPECT_EQ(vector, (Vector<int>{1, 2, 3}));
    vector.insert(vector.begin() + 1, 2, 9);
    EXPECT_EQ(vector, (Vector<int>{1, 9, 9, 2, 3}));
    vector.insert(vector.end(), values, values + 1);
    EXPECT_EQ(vector, (Vector<int>{1, 9, 9, 2, 3, 1}));
    vector.resize(2);
    EXPECT_EQ(vector, (Vector<int>{1, 9}));
    vector.resize(3, 4);
    EXPECT_EQ(vector, (Vector<int>{1, 9, 4}));
    vector.assign(1, 8);
    EXPECT_EQ(vector, (Vector<int>{8}));
}

TEST(Vector, ACountBeyondTheGreatestLengthSaysThatTheVectorIsTooLong)
{
    const std::size_t justTooLong = Vector<int>().max_size() + 1;
    for (const std::size_t count : {justTooLong, HUGE_COUNT})
    {
        Vector<int> vector{1, 2, 3};
        EXPECT_EQ(lengthErrorOf([&] { Vector<int> other(count); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { Vector<int> other(count, 1); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { vector.reserve(count); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { vector.resize(count); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { vector.resize(count, 1); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { vector.assign(count, 1); }), "vector<T> too long");
        EXPECT_EQ(lengthErrorOf([&] { vector.insert(vector.begin(), count, 1); }),
                  "vector<T> too long");
        EXPECT_EQ(vector, (Vector<int>{1, 2, 3}));
    }
}

TEST(Vector, AnInsertionThatIsTooLongOnlyTogetherWithTheElementsSaysSoToo)
{
    Vector<int> vector{1, 2, 3};
    EXPECT_EQ(lengthErrorOf([&] { vector.insert(vector.end(), vector.max_size() - 2, 1); }),
              "vector<T> too long");
    EXPECT_EQ(vector, (Vector<int>{1, 2, 3}));
}

TEST(Vector, ARangeBeyondTheGreatestLengthSaysThatTheVectorIsTooLong)
{
    const Counting begin(0);
    const Counting end(std::numeric_limits<std::ptrdiff_t>::max());
    Vector<int> vector{1, 2, 3};
    EXPECT_EQ(lengthErrorOf([&] { Vector<int> other(begin, end); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { vector.assign(begin, end); }), "vector<T> too long");
    EXPECT_EQ(lengthErrorOf([&] { vector.insert(vector.begin(), begin, end); }),
              "vector<T> too long");
    EXPECT_EQ(vector, (Vector<int>{1, 2, 3}));
}

TEST(Vector, ARangeOfTheGreatestLengthIsNotTooLongButThereIsNoMemoryForIt)
{
    if (support::underSanitizer) GTEST_SKIP() << "A sanitizer ends a process that asks for it.";
    Vector<int> vector{1, 2, 3};
    const Counting begin(0);
    const Counting end(static_cast<std::ptrdiff_t>(vector.max_size()));
    EXPECT_THROW(vector.assign(begin, end), std::bad_alloc);
    EXPECT_EQ(vector, (Vector<int>{1, 2, 3}));
}

TEST(List, KeepsItsElementsInPlace)
{
    List<std::string> list;
    list.push_back("two");
    list.push_front("one");
    list.push_back("three");
    const std::string* const two = &*std::next(list.begin());
    list.erase(list.begin());
    list.insert(list.end(), "four");
    EXPECT_EQ(&list.front(), two);
    EXPECT_EQ(list, (List<std::string>{"two", "three", "four"}));
    EXPECT_EQ(*list.rbegin(), "four");
    list.clear();
    EXPECT_TRUE(list.empty());
}

} // namespace
