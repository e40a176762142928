#include "base/inInitMgrImpl.h"

#include "base/inEx.h"
#include "base/inPackageInit.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Zu::InEx;
using Zu::InInitMgrImpl;

// What packages did, in order.
using Log = std::vector<std::string>;

class Package : public Zu::InPackageInit
{
public:
    Package(const std::string& name, Log& log) : InPackageInit(name.c_str()), _log(log) {}

    void performInitialize() override
    {
        if (_onInitialize) _onInitialize();
        _log.push_back(std::string("+") + getName());
    }
    void performFinalize() override
    {
        if (_onFinalize) _onFinalize();
        _log.push_back(std::string("-") + getName());
    }
    void setInitialized(bool initialized) override
    {
        _initialized = initialized;
    }
    void dependOn(const Package& other)
    {
        addDependency(&typeid(other));
    }

    std::function<void()> _onInitialize;
    std::function<void()> _onFinalize;
    bool _initialized = false;

private:
    Log& _log;
};

// Packages are identified by their types, so each index makes one.
template <int Index> class Numbered : public Package
{
public:
    using Package::Package;
};

using PackagePtr = std::unique_ptr<Package>;
using Maker = PackagePtr (*)(const std::string&, Log&);

template <int Index> PackagePtr makeNumbered(const std::string& name, Log& log)
{
    return std::make_unique<Numbered<Index>>(name, log);
}

constexpr int NUMBER_OF_TYPES = 40;

template <int... Indices>
PackagePtr makePackage(int index, const std::string& name, Log& log,
                       std::integer_sequence<int, Indices...>)
{
    static constexpr Maker makers[] = {makeNumbered<Indices>...};
    return makers[index](name, log);
}

PackagePtr makePackage(int index, const std::string& name, Log& log)
{
    return makePackage(index, name, log, std::make_integer_sequence<int, NUMBER_OF_TYPES>());
}

// Packages 0 to n - 1 and their dependencies, each any number of times.
struct Graph
{
    explicit Graph(int size) : _size(size) {}

    int _size;
    std::vector<std::pair<int, int>> _edges;
};

// In ascending byte order of the index.
std::string nameOf(int index)
{
    return std::string(1, static_cast<char>(index < 26 ? 'A' + index : 'a' + index - 26));
}

// Everything that can be reached along one edge or more, found by walking.
std::vector<std::set<int>> reachable(const Graph& graph)
{
    std::vector<std::set<int>> all;
    for (int start = 0; start < graph._size; ++start)
    {
        std::set<int> found;
        std::vector<int> open{start};
        while (!open.empty())
        {
            const int at = open.back();
            open.pop_back();
            for (const auto& [from, to] : graph._edges)
                if (from == at && found.insert(to).second) open.push_back(to);
        }
        all.push_back(found);
    }
    return all;
}

struct Expectation
{
    bool _cycle = false;
    std::vector<int> _order;
    std::vector<int> _counts;
    std::string _report;
};

// The expected result for a graph without self-loops and duplicate edges. Names are in ascending
// order of the index.
Expectation expectationOf(const Graph& graph)
{
    const std::vector<std::set<int>> reach = reachable(graph);
    Expectation expected;
    std::set<int> reported;
    for (int i = 0; i < graph._size; ++i)
    {
        const std::set<int>& mine = reach[static_cast<std::size_t>(i)];
        expected._order.push_back(i);
        expected._counts.push_back(static_cast<int>(mine.size()));
        if (!mine.count(i)) continue;
        expected._cycle = true;
        if (!reported.insert(i).second) continue;
        expected._report += "'" + nameOf(i) + "' is in a cycle with:\n";
        for (int j = i + 1; j < graph._size; ++j)
        {
            if (!mine.count(j) || !reach[static_cast<std::size_t>(j)].count(j)) continue;
            reported.insert(j);
            expected._report += "\t'" + nameOf(j) + "'\n";
        }
    }
    std::stable_sort(expected._order.begin(), expected._order.end(),
                     [&](int a, int b)
                     {
                         return expected._counts[static_cast<std::size_t>(a)] <
                                expected._counts[static_cast<std::size_t>(b)];
                     });
    return expected;
}

std::string cycleReport(const InInitMgrImpl& impl)
{
    std::ostringstream os;
    impl.reportCycles(os);
    return os.str();
}

std::string dumpOf(const InInitMgrImpl& impl)
{
    std::ostringstream os;
    impl.dump(os);
    return os.str();
}

std::vector<PackagePtr> makePackages(const Graph& graph, Log& log)
{
    std::vector<PackagePtr> packages;
    for (int i = 0; i < graph._size; ++i) packages.push_back(makePackage(i, nameOf(i), log));
    for (const auto& [from, to] : graph._edges)
        packages[static_cast<std::size_t>(from)]->dependOn(*packages[static_cast<std::size_t>(to)]);
    return packages;
}

// Starts and stops the graph with its packages registered in this order.
void checkRun(const Graph& graph, const Expectation& expected, const std::vector<int>& registration)
{
    Log log;
    std::vector<PackagePtr> packages = makePackages(graph, log);
    InInitMgrImpl impl;
    for (const int index : registration)
        impl.registerPackage(*packages[static_cast<std::size_t>(index)]);

    if (expected._cycle)
    {
        ASSERT_THROW(impl.runPendingPasses(), InEx::ExDependencyCycle);
        ASSERT_EQ(cycleReport(impl), expected._report);
        ASSERT_EQ(dumpOf(impl), "No packages waiting to be initialize.\n"
                                "No packages saved.\n"
                                "Dependency cycle(s) detected...\n" +
                                    expected._report);
        ASSERT_TRUE(log.empty());
        return;
    }
    Log expectedLog;
    std::string expectedDump = "No packages waiting to be initialize.\n" +
                               std::to_string(graph._size) + " packages currently saved:\n";
    for (const int index : expected._order)
    {
        expectedLog.push_back("+" + nameOf(index));
        expectedDump += "\t'" + nameOf(index) + "' Initialized (" +
                        std::to_string(expected._counts[static_cast<std::size_t>(index)]) +
                        " dependencies)\n";
    }
    impl.runPendingPasses();
    ASSERT_EQ(log, expectedLog);
    ASSERT_EQ(dumpOf(impl), expectedDump);
    ASSERT_EQ(cycleReport(impl), "No dependency cycles to report.\n");

    for (auto index = expected._order.rbegin(); index != expected._order.rend(); ++index)
        expectedLog.push_back("-" + nameOf(*index));
    impl.finalize();
    ASSERT_EQ(log, expectedLog);
}

TEST(InInitMgrImpl, EveryGraphOfFourInEveryOrderOfRegistration)
{
    std::vector<std::pair<int, int>> possible;
    for (int from = 0; from < 4; ++from)
        for (int to = 0; to < 4; ++to)
            if (from != to) possible.emplace_back(from, to);
    for (unsigned int bits = 0; bits < 1U << possible.size(); ++bits)
    {
        Graph graph(4);
        for (std::size_t edge = 0; edge < possible.size(); ++edge)
            if (bits >> edge & 1U) graph._edges.push_back(possible[edge]);
        const Expectation expected = expectationOf(graph);
        std::vector<int> registration{0, 1, 2, 3};
        do
        {
            checkRun(graph, expected, registration);
            if (HasFatalFailure()) return;
        } while (std::next_permutation(registration.begin(), registration.end()));
    }
}

TEST(InInitMgrImpl, RandomGraphsStartAsTheReferenceTells)
{
    std::mt19937 random(7);
    for (int round = 0; round < 600; ++round)
    {
        Graph graph(1 + static_cast<int>(random() % NUMBER_OF_TYPES));
        const auto size = static_cast<std::size_t>(graph._size);
        // Two thirds follow a random order of the packages, so that they have no cycle.
        std::vector<int> rank(size);
        for (std::size_t i = 0; i < size; ++i) rank[i] = static_cast<int>(i);
        std::shuffle(rank.begin(), rank.end(), random);
        std::set<std::pair<int, int>> edges;
        for (std::size_t edge = random() % (3 * size); edge > 0; --edge)
        {
            std::size_t from = random() % size;
            std::size_t to = random() % size;
            if (from == to) continue;
            if (round % 3 != 0 && rank[from] < rank[to]) std::swap(from, to);
            edges.emplace(static_cast<int>(from), static_cast<int>(to));
        }
        graph._edges.assign(edges.begin(), edges.end());
        std::vector<int> registration = rank;
        std::shuffle(registration.begin(), registration.end(), random);
        checkRun(graph, expectationOf(graph), registration);
        if (HasFatalFailure()) return;
    }
}

// Two or three packages, A, B and C.
class InInitMgrImplTest : public testing::Test
{
protected:
    void registerAll()
    {
        for (Package* package : {_a.get(), _b.get(), _c.get()}) _impl.registerPackage(*package);
    }

    Log _log;
    PackagePtr _a = makePackage(0, "A", _log);
    PackagePtr _b = makePackage(1, "B", _log);
    PackagePtr _c = makePackage(2, "C", _log);
    InInitMgrImpl _impl;
};

TEST_F(InInitMgrImplTest, AnEmptyRegistryStartsAndStops)
{
    _impl.runPendingPasses();
    EXPECT_EQ(dumpOf(_impl), "No packages waiting to be initialize.\nNo packages saved.\n");
    EXPECT_NO_THROW(_impl.finalize());
    EXPECT_TRUE(_log.empty());
}

TEST_F(InInitMgrImplTest, DumpShowsWhatWaits)
{
    _impl.registerPackage(*_b);
    _impl.registerPackage(*_a);
    EXPECT_EQ(dumpOf(_impl), "2 packages waiting to be initialize:\n"
                             "\t'B' Not initialized\n"
                             "\t'A' Not initialized\n"
                             "No packages saved.\n");
}

TEST_F(InInitMgrImplTest, TwoObjectsOfOneTypeAreOnePackage)
{
    const PackagePtr twin = makePackage(0, "A", _log);
    _impl.registerPackage(*_a);
    _impl.registerPackage(*twin);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, Log{"+A"});
    EXPECT_NE(_a->_initialized, twin->_initialized);
}

TEST_F(InInitMgrImplTest, SiblingsStartInByteOrderOfTheNames)
{
    const PackagePtr packages[] = {makePackage(3, "b", _log), makePackage(4, "a", _log),
                                   makePackage(5, "B", _log), makePackage(6, "\xc4", _log),
                                   makePackage(7, "", _log)};
    for (const PackagePtr& package : packages) _impl.registerPackage(*package);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+", "+B", "+a", "+b", "+\xc4"}));
}

TEST_F(InInitMgrImplTest, ADependencyGivenTwiceCountsTwice)
{
    _a->dependOn(*_b);
    _a->dependOn(*_b);
    _c->dependOn(*_b);
    registerAll();
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+B", "+C", "+A"}));
    EXPECT_NE(dumpOf(_impl).find("'A' Initialized (2 dependencies)"), std::string::npos);
}

TEST_F(InInitMgrImplTest, ADependencyOnItselfAloneDoesNotStopThePass)
{
    _a->dependOn(*_a);
    _b->dependOn(*_a);
    registerAll();
    _impl.runPendingPasses();
    // Its own name counts for A; B, with one dependency as well, follows by name.
    EXPECT_EQ(_log, (Log{"+C", "+A", "+B"}));
    EXPECT_NE(dumpOf(_impl).find("'A' Initialized (1 dependencies)"), std::string::npos);
}

TEST_F(InInitMgrImplTest, AnUnknownDependencyIsNamedByItsType)
{
    _a->dependOn(*_b);
    _impl.registerPackage(*_a);
    try
    {
        _impl.runPendingPasses();
        FAIL();
    }
    catch (const InEx::ExPackageNotRegistered& exception)
    {
        const std::string reason = exception.getReason();
        EXPECT_EQ(reason.find("Init Package not registered: '"), 0U);
        EXPECT_NE(reason.find("Numbered<1>'."), std::string::npos) << reason;
    }
    EXPECT_TRUE(_log.empty());
}

TEST_F(InInitMgrImplTest, ABodyThatThrowsAtAnyPlaceLeavesItsPredecessorsUp)
{
    for (int place = 0; place < 3; ++place)
    {
        Log log;
        Graph graph(3);
        graph._edges = {{1, 0}, {2, 1}};
        const std::vector<PackagePtr> packages = makePackages(graph, log);
        InInitMgrImpl impl;
        for (const PackagePtr& package : packages) impl.registerPackage(*package);
        packages[static_cast<std::size_t>(place)]->_onInitialize = []
        { throw std::domain_error("body"); };
        EXPECT_THROW(impl.runPendingPasses(), std::domain_error);
        EXPECT_FALSE(impl.isInitializing());
        impl.finalize();

        Log expected;
        for (int i = 0; i < place; ++i) expected.push_back("+" + nameOf(i));
        for (int i = place; i-- > 0;) expected.push_back("-" + nameOf(i));
        EXPECT_EQ(log, expected) << place;
    }
}

TEST_F(InInitMgrImplTest, AFinaliserThatThrowsEndsTheWalkAndLeavesEverythingAsItIs)
{
    _b->dependOn(*_a);
    _c->dependOn(*_b);
    registerAll();
    _impl.runPendingPasses();
    _b->_onFinalize = [] { throw std::domain_error("body"); };
    EXPECT_THROW(_impl.finalize(), std::domain_error);
    EXPECT_TRUE(_impl.isFinalizing());
    EXPECT_EQ(_log, (Log{"+A", "+B", "+C", "-C"}));
    EXPECT_NE(dumpOf(_impl).find("3 packages currently saved:"), std::string::npos);
    // It is not finalised, so it can be queried again.
    _b->_onFinalize = nullptr;
    EXPECT_NO_THROW(_impl.finalize());
    EXPECT_FALSE(_impl.isFinalizing());
}

TEST_F(InInitMgrImplTest, FlagsTellWhatIsUnderWay)
{
    bool duringStart = false;
    bool duringStop = false;
    _a->_onInitialize = [&] { duringStart = _impl.isInitializing() && !_impl.isFinalizing(); };
    _a->_onFinalize = [&] { duringStop = _impl.isFinalizing() && !_impl.isInitializing(); };
    _impl.registerPackage(*_a);
    EXPECT_FALSE(_impl.isInitializing());
    _impl.runPendingPasses();
    EXPECT_FALSE(_impl.isInitializing());
    _impl.finalize();
    EXPECT_FALSE(_impl.isFinalizing());
    EXPECT_TRUE(duringStart);
    EXPECT_TRUE(duringStop);
}

TEST_F(InInitMgrImplTest, FinaliseFirstOrTwiceIsAnError)
{
    EXPECT_THROW(_impl.finalize(), InEx::ExFinaliseBeforeInit);
    _impl.runPendingPasses();
    EXPECT_NO_THROW(_impl.finalize());
    EXPECT_THROW(_impl.finalize(), InEx::ExDoubleFinalise);
}

TEST_F(InInitMgrImplTest, APackageAfterStartNeedsAGuard)
{
    _impl.runPendingPasses();
    EXPECT_THROW(_impl.registerPackage(*_a), InEx::ExReinitWithoutGuard);
    _impl.incReinitCount();
    EXPECT_NO_THROW(_impl.registerPackage(*_a));
    EXPECT_TRUE(_log.empty());
    _impl.decReinitCount();
    EXPECT_EQ(_log, Log{"+A"});
}

TEST_F(InInitMgrImplTest, NestedGuardsMakeOnePassAtTheOutermostEnd)
{
    _impl.runPendingPasses();
    _b->dependOn(*_a);
    _impl.incReinitCount();
    _impl.incReinitCount();
    _impl.registerPackage(*_b);
    _impl.decReinitCount();
    EXPECT_TRUE(_log.empty());
    _impl.registerPackage(*_a);
    _impl.decReinitCount();
    EXPECT_EQ(_log, (Log{"+A", "+B"}));
}

TEST_F(InInitMgrImplTest, ASecondObjectOfAPackageThatIsUpIsDropped)
{
    _impl.registerPackage(*_a);
    _impl.runPendingPasses();
    const PackagePtr twin = makePackage(0, "A", _log);
    _impl.incReinitCount();
    _impl.registerPackage(*twin);
    _impl.decReinitCount();
    EXPECT_EQ(_log, Log{"+A"});
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+A", "-A"}));
}

TEST_F(InInitMgrImplTest, ADependencyOnAPackageThatFailedIsNotResolvedLater)
{
    _a->_onInitialize = [] { throw std::domain_error("body"); };
    _impl.registerPackage(*_a);
    EXPECT_THROW(_impl.runPendingPasses(), std::domain_error);
    const Zu::InPackageInit& failed = *_a;
    EXPECT_FALSE(_impl.isTypeInitialized(typeid(failed)));
    _b->dependOn(*_a);
    _impl.incReinitCount();
    _impl.registerPackage(*_b);
    EXPECT_THROW(_impl.decReinitCount(), InEx::ExPackageNotRegistered);
}

TEST_F(InInitMgrImplTest, LaterPassesStopFirst)
{
    _impl.registerPackage(*_b);
    _impl.runPendingPasses();
    _impl.incReinitCount();
    _impl.registerPackage(*_a);
    _impl.decReinitCount();
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+B", "+A", "-A", "-B"}));
}

TEST_F(InInitMgrImplTest, ABodyMayLoadPackagesUnderAGuard)
{
    _a->_onInitialize = [this]
    {
        _impl.incReinitCount();
        _impl.registerPackage(*_c);
        _impl.decReinitCount();
    };
    _b->dependOn(*_a);
    _impl.registerPackage(*_a);
    _impl.registerPackage(*_b);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+C", "+A", "+B"}));
    EXPECT_FALSE(_impl.isInitializing());
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+C", "+A", "+B", "-C", "-B", "-A"}));
}

TEST_F(InInitMgrImplTest, PackagesDeclaredDuringAPassUnderAnOuterGuardFollowInTheNext)
{
    _a->_onInitialize = [this] { _impl.registerPackage(*_c); };
    _b->dependOn(*_a);
    _impl.incReinitCount();
    _impl.registerPackage(*_a);
    _impl.registerPackage(*_b);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+A", "+B", "+C"}));
    _impl.decReinitCount();
    EXPECT_EQ(_log.size(), 3U);
}

TEST_F(InInitMgrImplTest, AnObjectThatEndsIsForgotten)
{
    registerAll();
    _impl.forgetPackage(*_b);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+A", "+C"}));
    _impl.forgetPackage(*_c);
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+A", "+C", "-A"}));
}

TEST_F(InInitMgrImplTest, TheReportOfACycleEndsWithItsPackages)
{
    _a->dependOn(*_b);
    _b->dependOn(*_a);
    registerAll();
    EXPECT_THROW(_impl.runPendingPasses(), InEx::ExDependencyCycle);
    EXPECT_EQ(cycleReport(_impl), "'A' is in a cycle with:\n\t'B'\n");
    _impl.forgetPackage(*_b);
    EXPECT_EQ(cycleReport(_impl), "No dependency cycles to report.\n");
}

TEST_F(InInitMgrImplTest, PackagesOfAnotherCycleAreListedWithTheFirst)
{
    // A and B are one cycle, C and D another, and A depends on C.
    const PackagePtr d = makePackage(3, "D", _log);
    _a->dependOn(*_b);
    _b->dependOn(*_a);
    _a->dependOn(*_c);
    _c->dependOn(*d);
    d->dependOn(*_c);
    registerAll();
    _impl.registerPackage(*d);
    EXPECT_THROW(_impl.runPendingPasses(), InEx::ExDependencyCycle);
    EXPECT_EQ(cycleReport(_impl), "'A' is in a cycle with:\n\t'B'\n\t'C'\n\t'D'\n");
}

TEST_F(InInitMgrImplTest, ACycleThatABodySurvivesIsNotReportedAfterwards)
{
    const PackagePtr d = makePackage(3, "D", _log);
    _b->dependOn(*_c);
    _c->dependOn(*_b);
    _a->_onInitialize = [this]
    {
        _impl.incReinitCount();
        _impl.registerPackage(*_b);
        _impl.registerPackage(*_c);
        EXPECT_THROW(_impl.decReinitCount(), InEx::ExDependencyCycle);
        EXPECT_EQ(cycleReport(_impl), "'B' is in a cycle with:\n\t'C'\n");
    };
    d->dependOn(*_a);
    _impl.registerPackage(*_a);
    _impl.registerPackage(*d);
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+A", "+D"}));
    EXPECT_EQ(cycleReport(_impl), "No dependency cycles to report.\n");
}

TEST_F(InInitMgrImplTest, AFinaliserMayEndOtherPackages)
{
    // B destroys A, which precedes it in the walk, and D, which follows it.
    PackagePtr d = makePackage(3, "D", _log);
    registerAll();
    _impl.registerPackage(*d);
    _impl.runPendingPasses();
    _b->_onFinalize = [&]
    {
        _impl.forgetPackage(*_a);
        _impl.forgetPackage(*d);
        _a.reset();
        d.reset();
    };
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+A", "+B", "+C", "+D", "-D", "-C", "-B"}));
}

TEST_F(InInitMgrImplTest, ABodyMayEndPackagesOfItsPass)
{
    _b->_onInitialize = [this]
    {
        for (PackagePtr* package : {&_a, &_c})
        {
            _impl.forgetPackage(**package);
            package->reset();
        }
    };
    registerAll();
    _impl.runPendingPasses();
    EXPECT_EQ(_log, (Log{"+A", "+B"}));
    EXPECT_EQ(dumpOf(_impl), "No packages waiting to be initialize.\n"
                             "1 packages currently saved:\n"
                             "\t'B' Initialized (0 dependencies)\n");
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+A", "+B", "-B"}));
}

TEST_F(InInitMgrImplTest, ANewObjectTakesThePlaceOfOneWhoseBodyFailed)
{
    _a->_onInitialize = [] { throw std::domain_error("body"); };
    _impl.registerPackage(*_a);
    EXPECT_THROW(_impl.runPendingPasses(), std::domain_error);
    const PackagePtr second = makePackage(0, "A", _log);
    _impl.incReinitCount();
    _impl.registerPackage(*second);
    _impl.decReinitCount();
    _a->_onFinalize = [] { FAIL() << "it never was up"; };
    _impl.finalize();
    EXPECT_EQ(_log, (Log{"+A", "-A"}));
}

TEST_F(InInitMgrImplTest, APassAfterOneWithACycleStartsAfresh)
{
    _a->dependOn(*_b);
    _b->dependOn(*_a);
    _impl.registerPackage(*_a);
    _impl.registerPackage(*_b);
    EXPECT_THROW(_impl.runPendingPasses(), InEx::ExDependencyCycle);
    _impl.incReinitCount();
    _impl.registerPackage(*_c);
    EXPECT_NO_THROW(_impl.decReinitCount());
    EXPECT_EQ(_log, Log{"+C"});
}

TEST(InInitMgrImplDeathTest, MoreGuardEndsThanGuardsAreFatal)
{
    InInitMgrImpl impl;
    EXPECT_DEATH(impl.decReinitCount(), "Assertion failed: _reinitCount >= 0, file");
}

} // namespace
