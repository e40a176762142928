// A program with a log service. One of its statements is traced, between two stops of its thread,
// by whoever has started the program. It never ends by itself.

#include "app/lgMapFile.h"
#include "app/lgService.h"
#include "app/lgServiceWriter.h"
#include "base/base.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <sys/ptrace.h>
#include <thread>
#include <unistd.h>

ZU_DEFINE_LOG_GROUP(Victim);

namespace
{

// How many statements have returned. It outlives the process.
std::uint32_t* returned = nullptr;

void hold(Zu::LgServiceWriter::Step)
{
    while (true) pause();
}

void logNumber(const std::string& run, int number, const std::string& rest)
{
    ZU_LOG_WARNING(Victim, "r" << run << " n" << number << ' ' << rest << " end");
    __atomic_store_n(returned, static_cast<std::uint32_t>(number + 1), __ATOMIC_RELAXED);
}

// The thread that started this program traces the calling thread from here on.
void beTraced()
{
    constexpr int REFUSED = 7;
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) std::_Exit(REFUSED);
}

void logTraced(const std::string& run, int before, const std::string& rest)
{
    for (int i = 0; i < before; ++i) logNumber(run, i, rest);
    beTraced();
    raise(SIGSTOP);
    logNumber(run, before, rest);
    raise(SIGSTOP);
}

} // namespace

// <number of the run> <file of numbers> <events before> <length of a text> [first] [held]
int main(int argc, char** argv)
{
    if (argc < 5) return 2;
    const std::string run = argv[1];
    const int before = std::atoi(argv[3]);
    const std::string rest(static_cast<std::size_t>(std::atoi(argv[4])), '.');
    bool isFirst = false;
    bool isHeld = false;
    for (int i = 5; i < argc; ++i)
    {
        if (std::string(argv[i]) == "first") isFirst = true;
        if (std::string(argv[i]) == "held") isHeld = true;
    }
    constexpr std::uint64_t SIZE = 0x10000;
    Zu::LgMapFile numbers;
    if (!numbers.create(argv[2]) || !numbers.extend(SIZE)) return 3;
    returned = static_cast<std::uint32_t*>(numbers.map(0, SIZE));
    if (!returned) return 4;
    int words = 1;
    const Zu::InInitGuard guard(words, argv);
    ZU_START_LOG_GROUP("Victim", Victim);
    const Zu::LgService service;
    if (isHeld) Zu::LgServiceWriter::_atStep = &hold;
    if (!isFirst)
    {
        std::thread(logTraced, run, before, rest).join();
        return 5;
    }
    // Others have logged, but not the thread that is traced.
    for (int i = 0; i < before; ++i) logNumber(run, i, rest);
    std::thread(
        [&]
        {
            beTraced();
            raise(SIGSTOP);
            logNumber(run, before, rest);
            raise(SIGSTOP);
        })
        .join();
    return 5;
}
