// A program of test groups with checks, which pass, fail, raise, and end the process.

#include "app/apPackage.h"
#include "app/apTestRunner.h"
#include "base/exInternalError.h"
#include "base/testMgr.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

// Where a check is made outside of the groups, and the like.
bool isRequested(const std::string& what)
{
    const char* const text = std::getenv("CHECK_PROGRAM");
    return text && text == what;
}

int calls = 0;

void checkOutside(const std::string& where)
{
    if (isRequested(where)) ZU_CHECK_EQUAL(where.size(), where.size());
}

} // namespace

ZU_PACKAGE(checking, "checking",
           Zu::atStart(
               []
               {
                   checkOutside("start");
                   if (isRequested("plain")) ZU_CHECK(isRequested("plain"));
                   if (isRequested("wrong")) ZU_CHECK_EQUAL(calls, 5);
                   if (isRequested("brokenStart")) throw std::runtime_error("no start");
                   std::cout << "packages start\n";
               }),
           Zu::atStop(
               []
               {
                   checkOutside("stop");
                   if (isRequested("brokenStop")) throw std::runtime_error("no stop");
                   std::cout << "packages stop\n";
               }));

namespace
{

struct Early
{
    Early()
    {
        checkOutside("early");
    }
    ~Early()
    {
        checkOutside("late");
    }
} theEarly;

using Body = std::function<void()>;

class Group : public Zu::TestGroup
{
public:
    Group(const char* name, Body body) : TestGroup(name), _body(std::move(body)) {}

    void run(int, char** const) override
    {
        _body();
    }

private:
    Body _body;
};

struct Opaque
{
    bool operator==(const Opaque&) const
    {
        return false;
    }
};

int countCall()
{
    return ++calls;
}

void raiseRange()
{
    throw std::out_of_range("too far");
}

void doNothing() {}

double half(std::size_t number)
{
    return static_cast<double>(number) / 2;
}

void passAll()
{
    const std::string text = "text";
    bool areAllTrue = ZU_CHECK(text == "text");
    areAllTrue = ZU_CHECK(std::is_same_v<int, int>) && areAllTrue;
    areAllTrue = ZU_CHECK_EQUAL(text, "text") && areAllTrue;
    areAllTrue = ZU_CHECK_EQUAL(text.size(), 4) && areAllTrue;
    areAllTrue = ZU_CHECK_NOT_EQUAL(-1, std::numeric_limits<unsigned>::max()) && areAllTrue;
    areAllTrue = ZU_CHECK_LESS(-1, 1U) && areAllTrue;
    areAllTrue = ZU_CHECK_LESS_EQUAL(1, 1U) && areAllTrue;
    areAllTrue = ZU_CHECK_GREATER(2, 1) && areAllTrue;
    areAllTrue = ZU_CHECK_GREATER_EQUAL(2, 2) && areAllTrue;
    areAllTrue = ZU_CHECK_NEAR(1.0, 1.25, 0.25) && areAllTrue;
    areAllTrue = ZU_CHECK_THROWS(raiseRange(), std::out_of_range) && areAllTrue;
    areAllTrue = ZU_CHECK_THROWS(throw std::out_of_range("too far"), std::exception) && areAllTrue;
    ZU_CHECK_EQUAL(countCall(), 1);
    if (!areAllTrue) throw std::logic_error("a check that holds was false");
}

void failAll()
{
    const std::string text = "a\nb";
    bool isAnyTrue = ZU_CHECK(text.empty());
    isAnyTrue = ZU_CHECK_EQUAL(text, "text") || isAnyTrue;
    isAnyTrue = ZU_CHECK_EQUAL(text.size(), 4) || isAnyTrue;
    isAnyTrue = ZU_CHECK_EQUAL(Opaque(), Opaque()) || isAnyTrue;
    isAnyTrue = ZU_CHECK_NOT_EQUAL(1, 1) || isAnyTrue;
    isAnyTrue = ZU_CHECK_LESS(1, 1) || isAnyTrue;
    isAnyTrue = ZU_CHECK_LESS_EQUAL(2, 1) || isAnyTrue;
    isAnyTrue = ZU_CHECK_GREATER(1, 1) || isAnyTrue;
    isAnyTrue = ZU_CHECK_GREATER_EQUAL(0, 1) || isAnyTrue;
    isAnyTrue = ZU_CHECK_NEAR(1.0, half(text.size()), 0.25) || isAnyTrue;
    isAnyTrue = ZU_CHECK_THROWS(doNothing(), std::out_of_range) || isAnyTrue;
    isAnyTrue = ZU_CHECK_THROWS(raiseRange(), Zu::ExBase) || isAnyTrue;
    isAnyTrue = ZU_CHECK_EQUAL(countCall(), 0) || isAnyTrue;
    if (isAnyTrue) throw std::logic_error("a check that failed was true");
    std::cout << "the group goes on\n";
}

// Each with ten failing checks and many that hold.
void checkInThreads(bool areSomeFailing)
{
    constexpr int THREADS = 8;
    constexpr int CHECKS = 1000;
    std::vector<std::thread> threads;
    threads.reserve(THREADS);
    for (int thread = 0; thread < THREADS; ++thread)
        threads.emplace_back(
            [=]
            {
                for (int i = 0; i < CHECKS; ++i) ZU_CHECK_LESS(i, CHECKS);
                for (int i = 0; areSomeFailing && i < 10; ++i) ZU_CHECK_EQUAL(thread, -1);
            });
    for (std::thread& thread : threads) thread.join();
}

Group thePassing("Passing", passAll);
Group theFailing("Failing", failAll);
Group theFamily("ThrowsFamily",
                [] { throw Zu::ExInternalError("dir/thrown.cpp", 7, "why 100%s <&>"); });
Group theStandard("ThrowsStandard", raiseRange);
Group theNumber("ThrowsNumber",
                []
                {
                    ZU_CHECK(calls < 0);
                    throw 7;
                });
Group theThreads("Threads", [] { checkInThreads(false); });
Group theFailingThreads("FailingThreads", [] { checkInThreads(true); });
Group theMany("Many",
              []
              {
                  for (int i = 0; i < 150; ++i) ZU_CHECK_EQUAL(i, -1);
              });
Group theTerminating("Terminating", [] { std::thread(raiseRange).join(); });
Group theUntitled(nullptr, [] { std::cout << "the untitled group runs\n"; });

// Announces neither its beginning nor its end, and requests its name.
class Quiet : public Zu::TestGroup
{
public:
    Quiet() : TestGroup("Quiet")
    {
        setPrintHeaders(false);
        setGroupNameInArgs(true);
    }

    void prepare(int argc, char** const argv) override
    {
        std::cout << "prepare " << argc << " " << argv[0] << (argv[1] ? "" : " null") << "\n";
    }

    void run(int argc, char** const argv) override
    {
        std::cout << "run " << argc << " " << argv[0] << (argv[1] ? "" : " null") << "\n";
        if (isPixified()) std::cout << "pixified\n";
        ZU_CHECK(!isRequested("loud"));
    }

    void terminate() override
    {
        std::cout << "terminate\n";
    }
} theQuiet;

// Raises in the operation that is requested.
class Steps : public Zu::TestGroup
{
public:
    Steps() : TestGroup("Steps") {}

    void prepare(int argc, char** const argv) override
    {
        enter("prepare");
        ZU_CHECK_EQUAL(argc, 0);
        ZU_CHECK(!argv[0]);
    }

    void run(int, char** const) override
    {
        enter("run");
    }

    void terminate() override
    {
        enter("terminate");
    }

private:
    static void enter(const std::string& step)
    {
        std::cout << step << "\n";
        if (isRequested(step)) throw std::runtime_error("no " + step);
    }
} theSteps;

} // namespace

int main(int argc, char** argv)
{
    const int result =
        isRequested("base") ? Zu::TestMgr::runTest(argc, argv) : Zu::runTests(argc, argv);
    checkOutside("after");
    return isRequested("twice") ? Zu::runTests(argc, argv) : result;
}
