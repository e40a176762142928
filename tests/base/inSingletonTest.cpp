#include "base/inSingleton.h"
#include "base/inSingleton.imp"
#include "base/inSingletonEx.h"

#include "support/counted.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>

// A singleton can be made once in a process, so every test has its own type.
namespace inSingletonTest
{

using support::Counted;

struct Unborn : Counted
{
};
struct Alive : Counted
{
};
struct Twice : Counted
{
};
struct Ended : Counted
{
};
struct Reborn : Counted
{
};
struct Null : Counted
{
};
struct EndedUnborn : Counted
{
};
struct Left : Counted
{
};
struct Right : Counted
{
};

struct Interface : Counted
{
};

struct Implementation : Interface
{
    explicit Implementation(bool& ended) : _endedHere(ended) {}
    ~Implementation() override
    {
        _endedHere = true;
    }

    bool& _endedHere;
};

} // namespace inSingletonTest

namespace
{

using namespace inSingletonTest;
using Zu::InSingleton;
using Zu::InSingletonEx;

// The reason of the Exception that `act` raises.
template <class Exception, class Act> std::string reasonOf(Act act)
{
    try
    {
        act();
    }
    catch (const Exception& exception)
    {
        return exception.getReason();
    }
    catch (const Zu::ExBase& exception)
    {
        return std::string("(another class) ") + exception.getReason();
    }
    return "(nothing raised)";
}

TEST(InSingleton, AskedForBeforeItsCreationIsNotInitialized)
{
    EXPECT_EQ(reasonOf<InSingletonEx::ExNotInitialized>([] { InSingleton<Unborn>::getInstance(); }),
              "Zu::InSingleton<inSingletonTest::Unborn> is not initialized.");
}

TEST(InSingleton, GivesTheObjectItWasCreatedWith)
{
    auto* const object = new Alive;
    InSingleton<Alive>::create(object);
    EXPECT_EQ(&InSingleton<Alive>::getInstance(), object);
    EXPECT_EQ(&InSingleton<Alive>::getInstance(), object);
    Counted::_ended = 0;
    InSingleton<Alive>::destroy();
    EXPECT_EQ(Counted::_ended, 1);
}

TEST(InSingleton, ASecondCreationIsRefusedAndItsObjectNotStored)
{
    auto* const first = new Twice;
    InSingleton<Twice>::create(first);
    Counted::_ended = 0;
    {
        const auto second = std::make_unique<Twice>();
        EXPECT_EQ(reasonOf<InSingletonEx::ExAlreadyInitialized>(
                      [&] { InSingleton<Twice>::create(second.get()); }),
                  "Zu::InSingleton<inSingletonTest::Twice> has already been initialized.");
        EXPECT_EQ(&InSingleton<Twice>::getInstance(), first);
        EXPECT_EQ(Counted::_ended, 0);
    }
    EXPECT_EQ(Counted::_ended, 1);
    InSingleton<Twice>::destroy();
    EXPECT_EQ(Counted::_ended, 2);
}

TEST(InSingleton, DestroyedTwiceSaysThatItWasDestroyedAlready)
{
    InSingleton<Ended>::create(new Ended);
    Counted::_ended = 0;
    InSingleton<Ended>::destroy();
    EXPECT_EQ(reasonOf<InSingletonEx::ExAlreadyDestroyed>([] { InSingleton<Ended>::destroy(); }),
              "Zu::InSingleton<inSingletonTest::Ended> has already been destroyed.");
    EXPECT_EQ(Counted::_ended, 1);
}

TEST(InSingleton, DestroyedBeforeItsCreationIsNotInitialized)
{
    EXPECT_EQ(
        reasonOf<InSingletonEx::ExNotInitialized>([] { InSingleton<EndedUnborn>::destroy(); }),
        "Zu::InSingleton<inSingletonTest::EndedUnborn> is not initialized.");
    // The refused call changed nothing.
    InSingleton<EndedUnborn>::create(new EndedUnborn);
    InSingleton<EndedUnborn>::destroy();
}

TEST(InSingleton, AskedForAfterItsEndIsNotInitialized)
{
    struct Local : Counted
    {
    };
    InSingleton<Local>::create(new Local);
    InSingleton<Local>::destroy();
    EXPECT_THROW(InSingleton<Local>::getInstance(), InSingletonEx::ExNotInitialized);
}

TEST(InSingleton, CanNotBeCreatedAgain)
{
    InSingleton<Reborn>::create(new Reborn);
    InSingleton<Reborn>::destroy();
    Counted::_ended = 0;
    const auto second = std::make_unique<Reborn>();
    EXPECT_EQ(reasonOf<InSingletonEx::ExAlreadyDestroyed>(
                  [&] { InSingleton<Reborn>::create(second.get()); }),
              "Zu::InSingleton<inSingletonTest::Reborn> has already been destroyed.");
    EXPECT_EQ(Counted::_ended, 0);
    EXPECT_THROW(InSingleton<Reborn>::getInstance(), InSingletonEx::ExNotInitialized);
}

TEST(InSingleton, LivesWithoutAnObjectWhenCreatedWithNull)
{
    Counted::_ended = 0;
    InSingleton<Null>::create(nullptr);
    EXPECT_THROW(InSingleton<Null>::create(nullptr), InSingletonEx::ExAlreadyInitialized);
    InSingleton<Null>::destroy();
    EXPECT_THROW(InSingleton<Null>::destroy(), InSingletonEx::ExAlreadyDestroyed);
    EXPECT_EQ(Counted::_ended, 0);
}

TEST(InSingleton, DeletesThroughTheVirtualDestructor)
{
    bool ended = false;
    InSingleton<Interface>::create(new Implementation(ended));
    EXPECT_FALSE(ended);
    InSingleton<Interface>::destroy();
    EXPECT_TRUE(ended);
}

TEST(InSingleton, EachTypeHasALifeOfItsOwn)
{
    InSingleton<Left>::create(new Left);
    EXPECT_THROW(InSingleton<Right>::getInstance(), InSingletonEx::ExNotInitialized);
    InSingleton<Right>::create(new Right);
    InSingleton<Left>::destroy();
    EXPECT_NO_THROW(InSingleton<Right>::getInstance());
    InSingleton<Right>::destroy();
}

TEST(InSingleton, EveryFailureIsOneOfInitialisation)
{
    EXPECT_THROW(InSingleton<Unborn>::getInstance(), Zu::InEx);
    EXPECT_THROW(InSingleton<Unborn>::destroy(), std::runtime_error);
}

} // namespace
