// Tracing by several threads, for tests that need a whole process. The first word selects the
// action.

#include "app/threadTraceManager.h"
#include "base/traceStatement.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

ZU_TRACE_LEVEL(Main);

namespace
{

void traceTree(int thread)
{
    for (int i = 0; i < 100; ++i)
    {
        ZU_TRACE_SCOPE(Main, "scope");
        ZU_TRACE(Main, "thread " << thread << " line " << i);
    }
}

// Threads that trace at the same time.
void traceFromThreads()
{
    const Zu::ThreadTraceManager manager;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(traceTree, thread);
    for (std::thread& thread : threads) thread.join();
}

// The process ends while a thread traces.
[[noreturn]] void exitInTheMiddle()
{
    static const auto* const manager = new Zu::ThreadTraceManager;
    static std::atomic<int> rounds{0};
    static const std::thread* const endless = new std::thread(
        []
        {
            while (true)
            {
                traceTree(0);
                ++rounds;
            }
        });
    while (manager && endless && rounds < 2) std::this_thread::yield();
    std::exit(7);
}

// The manager lives until static objects are destroyed.
void traceLate()
{
    struct Late
    {
        Late()
        {
            ZU_TRACE(Main, "beginning");
        }
        Late(const Late&) = delete;
        Late& operator=(const Late&) = delete;
        ~Late()
        {
            ZU_TRACE(Main, "end");
        }
    };
    static const Zu::ThreadTraceManager manager;
    static const Late late;
    ZU_TRACE(Main, "middle");
}

} // namespace

int main(int, char** words)
{
    const std::string what = words[1];
    if (what == "threads") traceFromThreads();
    if (what == "exit") exitInTheMiddle();
    if (what == "late") traceLate();
    return 0;
}
