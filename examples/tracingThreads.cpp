// Two threads that trace, each with an indentation of its own, on standard output and in the log.
#include "app/lgService.h"
#include "app/threadTraceManager.h"
#include "base/base.h"
#include <thread>

ZU_TRACE_LEVEL(Worker);

namespace
{

void work(int number)
{
    ZU_TRACE_SCOPE(Worker, "work");
    ZU_TRACE(Worker, "thread " << number << " is at it");
}

void runTwo()
{
    std::thread first(work, 1);
    std::thread second(work, 2);
    first.join();
    second.join();
}

} // namespace

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::Trace::setOptions("show=Worker");
    {
        const Zu::ThreadTraceManager toStandardOutput;
        runTwo();
    }
    {
        const Zu::LgService service;
        const Zu::LogTraceManager toTheLog;
        runTwo();
    }
}
