// A program with a log service that crashes in the way its first word says. Further words:
//
//   held       the writing thread does not write before a crash waits for it
//   stuck      the writing thread never writes
//   handler    the program has handlers of its own, installed before the service
//   writer     the writing thread crashes
//   crashing   the handler of SIGABRT crashes itself
//   child      the child of a fork crashes, and the program goes on
//   ended      the service has ended before
//   again      a second service is the one that lives

#include "app/lgService.h"
#include "app/lgServiceFatal.h"
#include "app/lgServiceWriter.h"
#include "base/base.h"

#include "app/crash.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Fatal);

namespace
{

std::string way;
std::atomic<bool> hasLogged{false};

// Not optimised away, and not what a compiler knows.
volatile int zero = 0;
int* volatile nowhere = nullptr;

void crash()
{
    if (way == "write") *nowhere = 1;
    if (way == "divide") std::exit(100 / zero);
    if (way == "trap") __builtin_trap();
    if (way == "abort") std::abort();
    // The number of a signal.
    std::raise(std::atoi(way.c_str()));
}

// Called in order: the crash happens in this thread, outside the standard streams.
void report(int signal)
{
    std::printf("handler %d %s\n", signal,
                Zu::LgServiceFatal::isAsked() ? "has waited" : "has not waited");
    std::fflush(stdout);
}

void crashToo(int)
{
    *nowhere = 1;
}

// At a step of the writing thread.
void wait(Zu::LgServiceWriter::Step)
{
    while (!Zu::LgServiceFatal::isAsked()) std::this_thread::yield();
}

void stay(Zu::LgServiceWriter::Step)
{
    while (true) std::this_thread::sleep_for(std::chrono::hours(1));
}

void crashAtStep(Zu::LgServiceWriter::Step)
{
    while (!hasLogged) std::this_thread::yield();
    crash();
}

} // namespace

int main(int argc, char** argv)
{
    // The guard takes them.
    const std::vector<std::string> flags(argv + 1, argv + argc);
    const auto has = [&flags](const std::string& word)
    { return std::find(flags.begin(), flags.end(), word) != flags.end(); };
    way = flags.at(0);
    crashQuietly();
    // A machine under load may take longer than a crash waits.
    Zu::LgServiceFatal::_limit = std::chrono::minutes(10);
    if (has("handler")) onCrash(&report);
    if (has("crashing")) std::signal(SIGABRT, &crashToo);
    int words = 1;
    const Zu::InInitGuard guard(words, argv);
    ZU_START_LOG_GROUP("Fatal", Fatal);
    std::optional<Zu::LgService> service(std::in_place);
    if (has("again"))
    {
        service.reset();
        service.emplace();
    }
    service->flush(std::chrono::minutes(10));
    if (has("held")) Zu::LgServiceWriter::_atStep = &wait;
    if (has("writer")) Zu::LgServiceWriter::_atStep = &crashAtStep;
    if (has("stuck"))
    {
        Zu::LgServiceFatal::_limit = std::chrono::milliseconds(10);
        Zu::LgServiceWriter::_atStep = &stay;
    }
    if (way != "none")
        for (int i = 0; i < 400; ++i) ZU_LOG_WARNING(Fatal, "number " << i);
    hasLogged = true;
    if (has("writer")) service->flush(std::chrono::minutes(10));
    if (has("ended")) service.reset();
    if (has("child"))
    {
        std::printf("child %d\n", endOfChild(&crash));
        service->flush(std::chrono::minutes(10));
        return 0;
    }
    if (way != "none") crash();
    return 0;
}
