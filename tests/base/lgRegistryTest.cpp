#include "base/lgRegistry.h"

#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/objPtr.h"
#include "base/osCpuInfo.h"
#include "support/counted.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::LgLog;
using Zu::LgQueue;
using Zu::LgRegistry;
using Zu::LgSimpleRegistry;
using Zu::ObjPtr;

using Queues = Zu::List<LgQueue*>;
using Notes = std::vector<std::string>;

// Says in which order it was called, with the ids of the queues.
class NotingRegistry : public LgRegistry, public support::Counted
{
public:
    NotingRegistry(const std::string& name, Notes& notes) : _name(name), _notes(notes) {}

    void registerQueue(LgQueue* queue) override
    {
        note("+", queue);
        _queues.registerQueue(queue);
    }

    void deregisterQueue(LgQueue* queue) override
    {
        note("-", queue);
        _queues.deregisterQueue(queue);
    }

    Queues getQueueList() const override
    {
        return _queues.getQueueList();
    }

private:
    void note(const char* what, const LgQueue* queue)
    {
        _notes.push_back(_name + what + std::to_string(queue->getThreadId()));
    }

    std::string _name;
    Notes& _notes;
    LgSimpleRegistry _queues;
};

TEST(LgSimpleRegistry, IsEmptyAtFirst)
{
    EXPECT_TRUE(LgSimpleRegistry().getQueueList().empty());
}

TEST(LgSimpleRegistry, KeepsTheOrderOfRegistration)
{
    LgQueue one;
    LgQueue two;
    LgQueue three;
    LgSimpleRegistry registry;
    for (LgQueue* const queue : {&two, &three, &one}) registry.registerQueue(queue);
    EXPECT_EQ(registry.getQueueList(), (Queues{&two, &three, &one}));
}

TEST(LgSimpleRegistry, AQueueMayBeRegisteredTwiceAndIsDeregisteredWhereverItStands)
{
    LgQueue one;
    LgQueue two;
    LgSimpleRegistry registry;
    for (LgQueue* const queue : {&one, &two, &one}) registry.registerQueue(queue);
    EXPECT_EQ(registry.getQueueList(), (Queues{&one, &two, &one}));
    registry.deregisterQueue(&one);
    EXPECT_EQ(registry.getQueueList(), (Queues{&two}));
}

TEST(LgSimpleRegistry, DeregisteringAQueueThatIsNotThereDoesNothing)
{
    LgQueue one;
    LgQueue two;
    LgSimpleRegistry registry;
    registry.deregisterQueue(&one);
    registry.registerQueue(&two);
    registry.deregisterQueue(&one);
    EXPECT_EQ(registry.getQueueList(), (Queues{&two}));
}

TEST(LgSimpleRegistry, TheListIsACopy)
{
    LgQueue one;
    LgQueue two;
    LgSimpleRegistry registry;
    registry.registerQueue(&one);
    Queues list = registry.getQueueList();
    registry.registerQueue(&two);
    EXPECT_EQ(list, (Queues{&one}));
    list.clear();
    EXPECT_EQ(registry.getQueueList(), (Queues{&one, &two}));
}

TEST(LgSimpleRegistry, ACopyHasAListOfItsOwn)
{
    LgQueue one;
    LgQueue two;
    LgSimpleRegistry source;
    source.registerQueue(&one);
    LgSimpleRegistry copy(source);
    LgSimpleRegistry assigned;
    assigned.registerQueue(&two);
    assigned = source;
    source.deregisterQueue(&one);
    copy.registerQueue(&two);
    EXPECT_TRUE(source.getQueueList().empty());
    EXPECT_EQ(copy.getQueueList(), (Queues{&one, &two}));
    EXPECT_EQ(assigned.getQueueList(), (Queues{&one}));
}

TEST(LgSimpleRegistry, DoesNotOwnItsQueues)
{
    LgQueue queue(5);
    {
        LgSimpleRegistry registry;
        registry.registerQueue(&queue);
    }
    EXPECT_EQ(queue.getThreadId(), 5U);
    EXPECT_TRUE(queue.isEmpty());
}

// Each test begins and ends with an empty registry of the simple kind in place.
class LgLogRegistryTest : public support::CountedTest
{
protected:
    LgLogRegistryTest()
    {
        reset();
    }
    ~LgLogRegistryTest() override
    {
        reset();
    }

    static void reset()
    {
        LgLog::setRegistry(ObjPtr<LgRegistry>(new LgSimpleRegistry));
        for (LgQueue* const queue : LgLog::getRegistry()->getQueueList())
            LgLog::getRegistry()->deregisterQueue(queue);
    }

    NotingRegistry* newRegistry(const std::string& name)
    {
        return new NotingRegistry(name, _notes);
    }

    // They outlive every registry that lists them.
    LgQueue _one{1};
    LgQueue _two{2};
    LgQueue _three{3};
    Notes _notes;
};

TEST_F(LgLogRegistryTest, TheNewRegistryIsInPlaceAndTheFormerOneIsTheCallers)
{
    LgRegistry* const former = LgLog::getRegistry();
    ObjPtr<LgRegistry> next(newRegistry("next"));
    LgRegistry* const expected = next.get();
    const ObjPtr<LgRegistry> returned(LgLog::setRegistry(next));
    EXPECT_EQ(LgLog::getRegistry(), expected);
    EXPECT_EQ(returned.get(), former);
    EXPECT_TRUE(next.isNull());
}

TEST_F(LgLogRegistryTest, NullChangesNothing)
{
    LgRegistry* const former = LgLog::getRegistry();
    former->registerQueue(&_one);
    EXPECT_TRUE(LgLog::setRegistry(ObjPtr<LgRegistry>()).isNull());
    EXPECT_EQ(LgLog::getRegistry(), former);
    EXPECT_EQ(former->getQueueList(), (Queues{&_one}));
}

TEST_F(LgLogRegistryTest, TheQueuesMoveInTheirOrderAndTheFormerRegistryIsEmpty)
{
    LgLog::setRegistry(ObjPtr<LgRegistry>(newRegistry("old")));
    for (LgQueue* const queue : {&_two, &_one, &_three}) LgLog::getRegistry()->registerQueue(queue);
    _notes.clear();
    const ObjPtr<LgRegistry> old(LgLog::setRegistry(ObjPtr<LgRegistry>(newRegistry("new"))));
    EXPECT_EQ(LgLog::getRegistry()->getQueueList(), (Queues{&_two, &_one, &_three}));
    EXPECT_TRUE(old->getQueueList().empty());
    EXPECT_EQ(_notes, (Notes{"new+2", "new+1", "new+3", "old-2", "old-1", "old-3"}));
}

TEST_F(LgLogRegistryTest, AQueueThatIsRegisteredTwiceStaysSo)
{
    LgRegistry* const former = LgLog::getRegistry();
    for (LgQueue* const queue : {&_one, &_two, &_one}) former->registerQueue(queue);
    const ObjPtr<LgRegistry> old(LgLog::setRegistry(ObjPtr<LgRegistry>(new LgSimpleRegistry)));
    EXPECT_EQ(LgLog::getRegistry()->getQueueList(), (Queues{&_one, &_two, &_one}));
    EXPECT_TRUE(old->getQueueList().empty());
}

TEST_F(LgLogRegistryTest, QueuesOfTheNewRegistryStandBeforeThoseThatMove)
{
    LgLog::getRegistry()->registerQueue(&_one);
    ObjPtr<LgRegistry> next(new LgSimpleRegistry);
    next->registerQueue(&_two);
    LgLog::setRegistry(next);
    EXPECT_EQ(LgLog::getRegistry()->getQueueList(), (Queues{&_two, &_one}));
}

TEST_F(LgLogRegistryTest, AFormerRegistryThatNobodyTakesEnds)
{
    LgLog::setRegistry(ObjPtr<LgRegistry>(newRegistry("first")));
    EXPECT_EQ(support::Counted::_living, 1);
    LgLog::setRegistry(ObjPtr<LgRegistry>(newRegistry("second")));
    EXPECT_EQ(support::Counted::_living, 1);
    EXPECT_EQ(support::Counted::_ended, 1);
}

TEST_F(LgLogRegistryTest, StartUpMakesANewRegistryAndShutDownKeepsIt)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    const support::TempDir dir;
    const support::VariableGuard variable("B7Q_TEST_DIR");
    variable.set(dir.path());
    LgLog::setRegistry(ObjPtr<LgRegistry>(newRegistry("former")));
    LgLog::getRegistry()->registerQueue(&_one);
    LgLog::init();
    LgRegistry* const registry = LgLog::getRegistry();
    EXPECT_EQ(support::Counted::_living, 0);
    EXPECT_TRUE(registry->getQueueList().empty());
    EXPECT_TRUE(dynamic_cast<LgSimpleRegistry*>(registry));
    registry->registerQueue(&_one);
    LgLog::destroy();
    EXPECT_EQ(LgLog::getRegistry(), registry);
    EXPECT_EQ(registry->getQueueList(), (Queues{&_one}));
}

} // namespace
