#include "base/objPtr.h"

#include "support/counted.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using support::Counted;

struct Derived : Counted
{
    explicit Derived(bool& ended) : _endedHere(ended) {}
    ~Derived() override
    {
        _endedHere = true;
    }

    bool& _endedHere;
};

// Its destructor can be made to fail.
struct Failing
{
    explicit Failing(int& ends, bool fails = true) : _ends(ends), _fails(fails) {}
    ~Failing() noexcept(false)
    {
        ++_ends;
        if (_fails) throw std::runtime_error("the end failed");
    }

    int& _ends;
    bool _fails;
};

} // namespace

template <> inline constexpr bool Zu::ownedMayThrow<Failing> = true;

namespace
{

Zu::ObjPtrRet<Counted> make(int value)
{
    return Zu::ObjPtrRet<Counted>(new Counted(value));
}

// Takes the object and gives it back.
Zu::ObjPtrRet<Counted> pass(Zu::ObjPtr<Counted> object)
{
    return Zu::ObjPtrRet<Counted>(object.release());
}

void swallow(Zu::ObjPtr<Counted> object)
{
    EXPECT_FALSE(object.isNull());
    EXPECT_EQ(Counted::_ended, 0);
}

class ObjPtr : public support::CountedTest
{
};

TEST_F(ObjPtr, IsNullWithoutAnObject)
{
    const Zu::ObjPtr<Counted> pointer;
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(pointer.get(), nullptr);
    const Zu::ObjPtr<Counted> fromNull(static_cast<Counted*>(nullptr));
    EXPECT_TRUE(fromNull.isNull());
    const Zu::ObjPtrRet<Counted> carrier;
    EXPECT_TRUE(carrier.isNull());
}

TEST_F(ObjPtr, DeletesItsObjectOnceAtItsEnd)
{
    {
        const Zu::ObjPtr<Counted> pointer(new Counted(1));
        EXPECT_EQ(Counted::_living, 1);
    }
    EXPECT_EQ(Counted::_living, 0);
    EXPECT_EQ(Counted::_ended, 1);
}

TEST_F(ObjPtr, DeletesThroughTheVirtualDestructor)
{
    bool ended = false;
    {
        const Zu::ObjPtr<Counted> pointer(new Derived(ended));
        EXPECT_FALSE(ended);
    }
    EXPECT_TRUE(ended);
}

TEST_F(ObjPtr, GivesAccessAndKeepsTheObject)
{
    auto* const object = new Counted(7);
    const Zu::ObjPtr<Counted> pointer(object);
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(&*pointer, object);
    EXPECT_EQ(pointer->_value, 7);
    pointer->_value = 8;
    EXPECT_EQ((*pointer)._value, 8);
    EXPECT_FALSE(pointer.isNull());
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ObjPtr, ReleaseGivesTheObjectAwayUndeleted)
{
    auto* const object = new Counted;
    {
        Zu::ObjPtr<Counted> pointer(object);
        EXPECT_EQ(pointer.release(), object);
        EXPECT_TRUE(pointer.isNull());
        EXPECT_EQ(pointer.release(), nullptr);
    }
    EXPECT_EQ(Counted::_ended, 0);
    delete object;
}

TEST_F(ObjPtr, CopyingTransfersAndLeavesTheSourceNull)
{
    auto* const object = new Counted;
    Zu::ObjPtr<Counted> source(object);
    const Zu::ObjPtr<Counted> target(source);
    EXPECT_TRUE(source.isNull());
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ObjPtr, TakesTheObjectOfACarrierAndLeavesItNull)
{
    Zu::ObjPtrRet<Counted> carrier = make(3);
    Counted* const object = carrier.get();
    const Zu::ObjPtr<Counted> target(carrier);
    EXPECT_TRUE(carrier.isNull());
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ObjPtr, AnObjectThatIsConstantKeepsWhatItOwns)
{
    EXPECT_FALSE((std::is_constructible_v<Zu::ObjPtr<Counted>, const Zu::ObjPtr<Counted>&>));
    EXPECT_FALSE((std::is_constructible_v<Zu::ObjPtr<Counted>, const Zu::ObjPtrRet<Counted>&>));
    EXPECT_FALSE((std::is_assignable_v<Zu::ObjPtr<Counted>&, const Zu::ObjPtr<Counted>&>));
    EXPECT_FALSE((std::is_assignable_v<Zu::ObjPtr<Counted>&, const Zu::ObjPtrRet<Counted>&>));
}

TEST_F(ObjPtr, AssignmentDeletesTheOldObjectAndTakesTheNewOne)
{
    auto* const object = new Counted(2);
    Zu::ObjPtr<Counted> target(new Counted(1));
    Zu::ObjPtr<Counted> source(object);
    Zu::ObjPtr<Counted>* const result = &static_cast<Zu::ObjPtr<Counted>&>(target = source);
    EXPECT_EQ(result, &target);
    EXPECT_EQ(Counted::_ended, 1);
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(target->_value, 2);
    EXPECT_TRUE(source.isNull());
}

TEST_F(ObjPtr, AssignmentOfANullPointerDeletesTheOldObject)
{
    Zu::ObjPtr<Counted> target(new Counted);
    Zu::ObjPtr<Counted> source;
    target = source;
    EXPECT_TRUE(target.isNull());
    EXPECT_EQ(Counted::_ended, 1);
}

TEST_F(ObjPtr, AssignmentToItselfKeepsTheObjectAlive)
{
    auto* const object = new Counted(5);
    Zu::ObjPtr<Counted> pointer(object);
    Zu::ObjPtr<Counted>& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(Counted::_ended, 0);
    EXPECT_EQ(pointer->_value, 5);
    pointer = std::move(same);
    EXPECT_EQ(pointer.get(), object);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ObjPtr, AssignmentFromACarrierTakesItsObject)
{
    Zu::ObjPtr<Counted> target(new Counted(1));
    Zu::ObjPtrRet<Counted> carrier = make(2);
    Counted* const object = carrier.get();
    target = carrier;
    EXPECT_EQ(Counted::_ended, 1);
    EXPECT_EQ(target.get(), object);
    EXPECT_TRUE(carrier.isNull());

    target = make(3);
    EXPECT_EQ(Counted::_ended, 2);
    EXPECT_EQ(target->_value, 3);
}

TEST_F(ObjPtr, PassingByValueLeavesTheCallersVariableNull)
{
    Zu::ObjPtr<Counted> pointer(new Counted);
    swallow(pointer);
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(Counted::_ended, 1);
}

TEST_F(ObjPtr, ACarrierCanBePassedOnByValue)
{
    swallow(make(1));
    EXPECT_EQ(Counted::_ended, 1);
}

TEST_F(ObjPtr, AnObjectGoesInAndComesBack)
{
    Zu::ObjPtr<Counted> pointer(new Counted(9));
    Counted* const object = pointer.get();
    const Zu::ObjPtr<Counted> back(pass(pointer));
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(back.get(), object);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST_F(ObjPtr, AResultThatNobodyTakesIsDeletedOnce)
{
    make(1);
    EXPECT_EQ(Counted::_living, 0);
    EXPECT_EQ(Counted::_ended, 1);
}

TEST_F(ObjPtr, ACarrierOffersWhatAnOwnerOffers)
{
    Zu::ObjPtrRet<Counted> carrier = make(4);
    EXPECT_FALSE(carrier.isNull());
    EXPECT_EQ(carrier->_value, 4);
    EXPECT_EQ(&*carrier, carrier.get());
    Zu::ObjPtrRet<Counted> next(carrier);
    EXPECT_TRUE(carrier.isNull());
    carrier = next;
    EXPECT_TRUE(next.isNull());
    Counted* const object = carrier.release();
    EXPECT_TRUE(carrier.isNull());
    EXPECT_EQ(Counted::_ended, 0);
    delete object;
}

TEST_F(ObjPtr, AnObjectWhoseEndFailsSaysSoThroughItsOwner)
{
    int ends = 0;
    EXPECT_THROW({ const Zu::ObjPtr<Failing> pointer(new Failing(ends)); }, std::runtime_error);
    EXPECT_EQ(ends, 1);
    EXPECT_THROW({ const Zu::ObjPtrRet<Failing> carrier(new Failing(ends)); }, std::runtime_error);
    EXPECT_EQ(ends, 2);
}

TEST_F(ObjPtr, TheNewObjectIsOwnedAlsoWhenTheEndOfTheOldOneFails)
{
    int ends = 0;
    int laterEnds = 0;
    {
        Zu::ObjPtr<Failing> target(new Failing(ends));
        auto* const object = new Failing(laterEnds, false);
        Zu::ObjPtr<Failing> source(object);
        EXPECT_THROW(target = source, std::runtime_error);
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(target.get(), object);
        EXPECT_TRUE(source.isNull());
        EXPECT_EQ(laterEnds, 0);
    }
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(laterEnds, 1);
}

TEST_F(ObjPtr, OnlyAnObjectWhoseEndMayFailMakesItsOwnersEndFail)
{
    EXPECT_TRUE(std::is_nothrow_destructible_v<Zu::ObjPtr<Counted>>);
    EXPECT_TRUE(std::is_nothrow_destructible_v<Zu::ObjPtrRet<Counted>>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Zu::ObjPtr<Failing>>);
}

TEST_F(ObjPtr, IsOnePointerWide)
{
    EXPECT_EQ(sizeof(Zu::ObjPtr<Counted>), sizeof(Counted*));
    EXPECT_EQ(sizeof(Zu::ObjPtrRet<Counted>), sizeof(Counted*));
}

// A class that hides its implementation: the owner's type is declared, no more.
class Hidden;

class HiddenBase
{
public:
    virtual ~HiddenBase() = default;
};

class Holder : public HiddenBase
{
public:
    Holder();
    ~Holder() override;

private:
    Zu::ObjPtr<Hidden> _hidden;
};

struct Outer
{
    Holder _holder;
};

TEST_F(ObjPtr, OwnsWhatIsOnlyDeclaredWhereItsOwnerIsDeclared)
{
    const std::vector<Outer> outers(3);
    EXPECT_EQ(outers.size(), 3U);
    EXPECT_TRUE(std::is_nothrow_destructible_v<Outer>);
}

class Hidden
{
};

Holder::Holder() : _hidden(new Hidden) {}

Holder::~Holder() = default;

TEST_F(ObjPtr, AnAssignmentIsTheOwnerItself)
{
    Zu::ObjPtr<int> owner;
    Zu::ObjPtr<int>& result = owner = Zu::ObjPtrRet<int>(new int(5));
    EXPECT_EQ(&result, &owner);
    Zu::ObjPtr<int> other(new int(6));
    Zu::ObjPtr<int>& second = owner = other;
    EXPECT_EQ(&second, &owner);
    EXPECT_EQ(*owner, 6);
}

} // namespace
