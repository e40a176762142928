#include "base/arrayPtr.h"

#include "base/objPtr.h"
#include "support/counted.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace
{

using support::Counted;

// The first one of an array to be destroyed may fail.
struct Failing
{
    ~Failing() noexcept(false)
    {
        if (std::exchange(_fails, false)) throw std::runtime_error("the end failed");
    }

    static inline bool _fails = false;
};

} // namespace

template <> inline constexpr bool Zu::ownedMayThrow<Failing> = true;

namespace
{

Zu::ArrayPtrRet<char> makeText()
{
    return Zu::ArrayPtrRet<char>(new char[5]{'t', 'e', 'x', 't', 0});
}

void swallow(Zu::ArrayPtr<Counted> array)
{
    EXPECT_FALSE(array.isNull());
    EXPECT_EQ(Counted::_ended, 0);
}

class ArrayPtr : public support::CountedTest
{
};

TEST_F(ArrayPtr, IsNullWithoutAnArray)
{
    const Zu::ArrayPtr<char> pointer;
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(pointer.get(), nullptr);
    const Zu::ArrayPtr<char> fromNull(static_cast<char*>(nullptr));
    EXPECT_TRUE(fromNull.isNull());
}

TEST_F(ArrayPtr, EndsEveryElementOnceAtItsEnd)
{
    {
        const Zu::ArrayPtr<Counted> pointer(new Counted[6]);
        EXPECT_EQ(Counted::_living, 6);
    }
    EXPECT_EQ(Counted::_living, 0);
    EXPECT_EQ(Counted::_ended, 6);
}

TEST_F(ArrayPtr, GivesAccessToItsElements)
{
    auto* const array = new int[3]{1, 2, 3};
    const Zu::ArrayPtr<int> pointer(array);
    EXPECT_EQ(pointer.get(), array);
    EXPECT_EQ(pointer[0], 1);
    EXPECT_EQ(pointer[2], 3);
    pointer[1] = 20;
    EXPECT_EQ(array[1], 20);
    EXPECT_EQ(&pointer[1], array + 1);
}

TEST_F(ArrayPtr, ReleaseGivesTheArrayAwayUndeleted)
{
    auto* const array = new Counted[2];
    {
        Zu::ArrayPtr<Counted> pointer(array);
        EXPECT_EQ(pointer.release(), array);
        EXPECT_TRUE(pointer.isNull());
    }
    EXPECT_EQ(Counted::_ended, 0);
    delete[] array;
}

TEST_F(ArrayPtr, CopyingTransfersAndLeavesTheSourceNull)
{
    auto* const array = new Counted[2];
    Zu::ArrayPtr<Counted> source(array);
    const Zu::ArrayPtr<Counted> target(source);
    EXPECT_TRUE(source.isNull());
    EXPECT_EQ(target.get(), array);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ArrayPtr, TakesTheArrayOfACarrierAndLeavesItNull)
{
    Zu::ArrayPtrRet<char> carrier = makeText();
    char* const array = carrier.get();
    EXPECT_EQ(carrier[3], 't');
    const Zu::ArrayPtr<char> target(carrier);
    EXPECT_TRUE(carrier.isNull());
    EXPECT_EQ(target.get(), array);
    EXPECT_STREQ(target.get(), "text");
}

TEST_F(ArrayPtr, AssignmentDeletesTheOldArrayAndTakesTheNewOne)
{
    auto* const array = new Counted[2];
    Zu::ArrayPtr<Counted> target(new Counted[3]);
    Zu::ArrayPtr<Counted> source(array);
    target = source;
    EXPECT_EQ(Counted::_ended, 3);
    EXPECT_EQ(target.get(), array);
    EXPECT_TRUE(source.isNull());

    Zu::ArrayPtrRet<Counted> carrier(new Counted[1]);
    target = carrier;
    EXPECT_EQ(Counted::_ended, 5);
    EXPECT_TRUE(carrier.isNull());

    target = Zu::ArrayPtrRet<Counted>(new Counted[4]);
    EXPECT_EQ(Counted::_ended, 6);
    EXPECT_EQ(Counted::_living, 4);
}

TEST_F(ArrayPtr, AssignmentToItselfKeepsTheArrayAlive)
{
    auto* const array = new Counted[2];
    Zu::ArrayPtr<Counted> pointer(array);
    Zu::ArrayPtr<Counted>& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.get(), array);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ArrayPtr, PassingByValueLeavesTheCallersVariableNull)
{
    Zu::ArrayPtr<Counted> pointer(new Counted[2]);
    swallow(pointer);
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(Counted::_ended, 2);
}

TEST_F(ArrayPtr, AResultThatNobodyTakesIsDeletedOnce)
{
    [] { return Zu::ArrayPtrRet<Counted>(new Counted[3]); }();
    EXPECT_EQ(Counted::_living, 0);
    EXPECT_EQ(Counted::_ended, 3);
}

TEST_F(ArrayPtr, ElementsWhoseEndFailsSaySoThroughTheOwner)
{
    Failing::_fails = true;
    EXPECT_THROW({ const Zu::ArrayPtr<Failing> pointer(new Failing[2]); }, std::runtime_error);
    EXPECT_FALSE(Failing::_fails);
}

TEST_F(ArrayPtr, AConstantOwnerKeepsItsArray)
{
    EXPECT_FALSE((std::is_constructible_v<Zu::ArrayPtr<char>, const Zu::ArrayPtr<char>&>));
    EXPECT_FALSE((std::is_assignable_v<Zu::ArrayPtr<char>&, const Zu::ArrayPtr<char>&>));
    EXPECT_FALSE((std::is_assignable_v<Zu::ArrayPtr<char>&, const Zu::ArrayPtrRet<char>&>));
}

TEST_F(ArrayPtr, OwnersOfArraysAndOfSingleObjectsDoNotMix)
{
    EXPECT_FALSE((std::is_constructible_v<Zu::ArrayPtr<int>, Zu::ObjPtr<int>&>));
    EXPECT_FALSE((std::is_constructible_v<Zu::ObjPtr<int>, Zu::ArrayPtrRet<int>>));
    EXPECT_FALSE((std::is_assignable_v<Zu::ArrayPtr<int>&, Zu::ObjPtrRet<int>>));
}

} // namespace
