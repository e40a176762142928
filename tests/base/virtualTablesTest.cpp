// The order of the virtual functions: clients that were built against an earlier version call by
// these slots.

#include "base/base.h"
#include "support/vtableSlot.h"

#include <gtest/gtest.h>

namespace
{

// The operations have consecutive slots, beginning with this one.
template <class... Members> void expectSlotsFrom(std::ptrdiff_t first, Members... members)
{
    for (const auto slot : {support::slotOf(members)...}) EXPECT_EQ(slot, first++);
}

// What follows the two slots of a destructor.
constexpr std::ptrdiff_t behindDestructor = 2;

template <class T> class VirtualTablesTyped : public testing::Test
{
};

using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(VirtualTablesTyped, Types);

TEST(VirtualTables, Exceptions)
{
    expectSlotsFrom(0, &Zu::ExBase::getReason, &Zu::ExBase::getDetailedReason);
    expectSlotsFrom(4, &Zu::ExBase::clone);
}

TEST(VirtualTables, EnvironmentVariables)
{
    expectSlotsFrom(behindDestructor, &Zu::EnvVar::refresh, &Zu::EnvVar::dump);
}

TEST(VirtualTables, Packages)
{
    using Operation = void (Zu::InPackageInitBase::*)(Zu::InVariableBase*);
    expectSlotsFrom(behindDestructor, static_cast<Operation>(&Zu::InPackageInitBase::addDependency),
                    static_cast<Operation>(&Zu::InPackageInitBase::removeDependency));
    expectSlotsFrom(4, &Zu::InPackageInit::getName, &Zu::InPackageInit::performInitialize,
                    &Zu::InPackageInit::performFinalize, &Zu::InPackageInit::setInitialized);
}

TEST(VirtualTables, Aliases)
{
    expectSlotsFrom(behindDestructor, &Zu::InContextAliasBase::clone,
                    &Zu::InContextAliasBase::getPriority, &Zu::InContextAliasBase::getKey);
}

TEST(VirtualTables, Logger)
{
    using Observer = Zu::LgQueue::Observer;
    expectSlotsFrom(behindDestructor, &Observer::entryAdded, &Observer::entryRemoved,
                    &Observer::waitForSpace);
    expectSlotsFrom(behindDestructor, &Zu::LgRegistry::registerQueue,
                    &Zu::LgRegistry::deregisterQueue, &Zu::LgRegistry::getQueueList);
    expectSlotsFrom(behindDestructor, &Zu::LgInterProcessLock::lock,
                    &Zu::LgInterProcessLock::unlock);
}

// Protected operations are reached through a class of our own.
struct OpenTrace : Zu::Trace
{
    static auto prefix()
    {
        return &OpenTrace::printPrefix;
    }
};

TEST(VirtualTables, Tracing)
{
    expectSlotsFrom(behindDestructor, OpenTrace::prefix());
    expectSlotsFrom(0, &Zu::TraceManager::getTrace, &Zu::TraceManager::print);
}

TEST(VirtualTables, System)
{
    expectSlotsFrom(behindDestructor, &Zu::OsFileFilter::filter);
    using Arch = Zu::OsMemoryArch;
    expectSlotsFrom(0, &Arch::getLargeBlockSize, &Arch::getL1DataSize, &Arch::getL2Size,
                    &Arch::getL1DataWaySize, &Arch::getL2WaySize, &Arch::getL1DataLineSize,
                    &Arch::getL2LineSize, &Arch::getPageSize, &Arch::getAlignment);
    expectSlotsFrom(behindDestructor, &Zu::OsProcessImp::wait);
    expectSlotsFrom(behindDestructor, &Zu::OsSharedLib::getFunction);
}

TEST(VirtualTables, ReferenceClock)
{
    expectSlotsFrom(behindDestructor, &Zu::DtRefClockSource::getCount);
}

TEST(VirtualTables, Counter)
{
    using Engine = Zu::HwCounterEng;
    using Span = double (Engine::*)(std::uint64_t, std::uint64_t) const;
    using Now = double (Engine::*)() const;
    expectSlotsFrom(behindDestructor, &Engine::timeStamp, static_cast<Span>(&Engine::seconds),
                    static_cast<Now>(&Engine::seconds), &Engine::resolution,
                    &Engine::getRateNumerator, &Engine::getRateDenominator, &Engine::dump);
}

TEST(VirtualTables, TimersAndProfilers)
{
    using Interval = Zu::IntervalTimer;
    expectSlotsFrom(behindDestructor, &Interval::start, &Interval::stop, &Interval::timeInterval,
                    &Interval::sinceStart);
    using Timer = Zu::TimerBase;
    expectSlotsFrom(behindDestructor, &Timer::setName, &Timer::getName, &Timer::start, &Timer::stop,
                    &Timer::reset, &Timer::totalTime);
    using Profiler = Zu::ProfilerBase;
    expectSlotsFrom(behindDestructor, &Profiler::setName, &Profiler::getName, &Profiler::start,
                    &Profiler::stop, &Profiler::endCycle, &Profiler::reset, &Profiler::cycleTime,
                    &Profiler::totalTime, &Profiler::averageTime, &Profiler::minTime,
                    &Profiler::maxTime, &Profiler::standardDeviation, &Profiler::cycles);
    expectSlotsFrom(0, &Zu::Sleeper::getTime, &Zu::Sleeper::getResolution, &Zu::Sleeper::sleep);
    using Periodic = Zu::PeriodicTimer;
    expectSlotsFrom(behindDestructor, &Periodic::start, &Periodic::stop, &Periodic::wait,
                    &Periodic::setInterval);
}

TYPED_TEST(VirtualTablesTyped, SourcesOfValuesAndPairs)
{
    using Rng = Zu::RnRng<TypeParam>;
    expectSlotsFrom(0, &Rng::operator(), &Rng::getSample, &Rng::getSequence,
                    &Rng::getEfficientWidth, &Rng::getEfficientMin, &Rng::getEfficientMax,
                    &Rng::getEfficientFraction, &Rng::getPdf, &Rng::restart, &Rng::getName);
    using BiRng = Zu::RnBiRng<TypeParam>;
    expectSlotsFrom(0, &BiRng::getSample, &BiRng::getSequence, &BiRng::getEfficientWidth,
                    &BiRng::getEfficientMin, &BiRng::getEfficientMax, &BiRng::getEfficientFraction,
                    &BiRng::getPdf, &BiRng::restart, &BiRng::getName);
}

TYPED_TEST(VirtualTablesTyped, SourcesOfTuplesAndDirections)
{
    using MultiRng = Zu::RnMultiRng<TypeParam, 4>;
    expectSlotsFrom(0, &MultiRng::getSample, &MultiRng::getSequence, &MultiRng::getEfficientWidth,
                    &MultiRng::getEfficientMin, &MultiRng::getEfficientMax,
                    &MultiRng::getEfficientFraction, &MultiRng::getPdf, &MultiRng::restart,
                    &MultiRng::getName);
    using Directions = Zu::RnSphericalRng<TypeParam>;
    expectSlotsFrom(0, &Directions::getSampleXYZ, &Directions::getSampleAngles,
                    &Directions::getSampleCosine, &Directions::getSequenceXYZ,
                    &Directions::getSequenceAngles, &Directions::getSequenceCosine,
                    &Directions::getPdfXYZ, &Directions::getPdfAngles, &Directions::getPdfCosine,
                    &Directions::restart, &Directions::getName);
}

TYPED_TEST(VirtualTablesTyped, Histograms)
{
    expectSlotsFrom(behindDestructor, &Zu::RnHistogram<TypeParam>::getBinIndex);
    expectSlotsFrom(behindDestructor, &Zu::RnHistogramBi<TypeParam>::getBinIndices);
    using Spherical = Zu::RnHistogramSpherical<TypeParam>;
    expectSlotsFrom(behindDestructor, &Spherical::getBinIndices, &Spherical::getBinIndicesCosine);
    using Hemispherical = Zu::RnHistogramHemispherical<TypeParam>;
    expectSlotsFrom(behindDestructor, &Hemispherical::getBinIndices,
                    &Hemispherical::getBinIndicesCosine);
}

// The interfaces of random sources have no virtual destructor; a concrete class has its own behind
// the interface's operations.
template <class Concrete> struct Derived : Concrete
{
    virtual void next() {}
};

TYPED_TEST(VirtualTablesTyped, DestructorsOfSourcesComeLast)
{
    using Shuffling = Derived<Zu::RnNumRecUniformRng<TypeParam>>;
    expectSlotsFrom(9, &Shuffling::getName);
    expectSlotsFrom(12, &Shuffling::next);
    using Combined = Derived<Zu::RnLecuyerUniformRng<TypeParam>>;
    expectSlotsFrom(12, &Combined::next);
    using Pairs = Derived<Zu::RnHaltonBiRng<TypeParam>>;
    expectSlotsFrom(8, &Pairs::getName);
    expectSlotsFrom(11, &Pairs::next);
    using Tuples = Derived<Zu::RnNiederreiterMultiRng<TypeParam>>;
    expectSlotsFrom(11, &Tuples::next);
    using Directions = Derived<Zu::RnUniformSphericalRng<TypeParam>>;
    expectSlotsFrom(10, &Directions::getName);
    expectSlotsFrom(13, &Directions::next);
}

} // namespace
