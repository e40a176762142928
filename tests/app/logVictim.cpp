// A program with a log service that ends in the way its first word says: after a number of events
// per thread, or at a step of the writing thread. What it logs is numbered, and the number of the
// last statement that returned is in a file of its own.

#include "app/lgMapFile.h"
#include "app/lgService.h"
#include "app/lgServiceRecovery.h"
#include "app/lgServiceWriter.h"
#include "base/base.h"

#include "stress/hardEnd.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Victim);

namespace
{

// Where each thread notes how many of its statements have returned. It outlives the process.
std::uint32_t* returned = nullptr;

std::atomic<int> stepsLeft{0};

void endAtStep(Zu::LgServiceWriter::Step)
{
    if (--stepsLeft == 0) stress::killSelf();
}

void endAtStepOfRecovery()
{
    if (--stepsLeft == 0) stress::killSelf();
}

void logNumbers(int thread, int first, int count)
{
    for (int i = first; i < first + count; ++i)
    {
        ZU_LOG_WARNING(Victim, "t" << thread << " n" << i << " end");
        __atomic_store_n(&returned[thread], static_cast<std::uint32_t>(i + 1), __ATOMIC_RELAXED);
    }
}

void logFromThreads(int threads, int first, int count)
{
    std::vector<std::thread> others;
    for (int i = 1; i < threads; ++i) others.emplace_back(logNumbers, i, first, count);
    logNumbers(0, first, count);
    for (std::thread& other : others) other.join();
}

std::filesystem::path logPath()
{
    return std::filesystem::path(std::getenv("B7Q_TEST_DIR")) / "events.log";
}

// When what waited is in the file, but not yet noted as such.
void endAfterWrite(Zu::LgServiceWriter::Step step)
{
    std::error_code error;
    if (step == Zu::LgServiceWriter::Step::Tried &&
        std::filesystem::file_size(logPath(), error) > 0 && !error)
        stress::killSelf();
}

// All of it waits.
void logWhileBlocked(Zu::LgService& service, int threads, int count)
{
    logFromThreads(threads, 0, count);
    service.flush(std::chrono::seconds(30));
}

void endBy(const std::string& way)
{
    if (way == "exit") std::exit(0);
    if (way == "quick_exit") stress::quickExit();
    if (way == "_exit") std::_Exit(0);
    if (way == "abort") std::abort();
    if (way == "terminate") std::terminate();
    if (way == "uncaught") throw std::runtime_error("nobody catches this");
    if (way == "segv") std::raise(SIGSEGV);
    if (way == "kill") stress::killSelf();
}

} // namespace

int main(int argc, char** argv)
{
    // "open" <file that another process has left>, or:
    if (argc == 3 && std::string(argv[1]) == "open")
    {
        Zu::LgLeftFile file;
        return static_cast<int>(file.open(argv[2]));
    }
    // <way> <file of numbers> <threads> <events of each> [<step>]
    if (argc < 5) return 2;
    std::string way = argv[1];
    // "blocked <way>": the file fails until the end. "unblocked <way>": until the step counts.
    const bool isUnblocked = way.rfind("unblocked ", 0) == 0;
    const bool isBlocked = isUnblocked || way.rfind("blocked ", 0) == 0;
    if (isBlocked) way.erase(0, way.find(' ') + 1);
    const int threads = std::atoi(argv[3]);
    const int count = std::atoi(argv[4]);
    if (argc > 5) stepsLeft = std::atoi(argv[5]);
    // The guard takes the words.
    const std::chrono::microseconds delay(stepsLeft);
    Zu::LgMapFile numbers;
    if (count > 0)
    {
        if (!numbers.create(argv[2]) || !numbers.extend(0x10000)) return 3;
        returned = static_cast<std::uint32_t*>(numbers.map(0, 0x10000));
        if (!returned) return 4;
    }
    if (way == "recovery step") Zu::LgServiceRecovery::_atStep = &endAtStepOfRecovery;
    int words = 1;
    const Zu::InInitGuard guard(words, argv);
    ZU_START_LOG_GROUP("Victim", Victim);
    {
        // One that is never destroyed lives when main returns.
        static auto* const living = new std::optional<Zu::LgService>;
        // The log file can't be opened as long as its name is a directory's.
        if (isBlocked) std::filesystem::create_directory(logPath());
        living->emplace();
        if (isBlocked) logWhileBlocked(**living, threads, count);
        if (isUnblocked) std::filesystem::remove(logPath());
        if (way == "write") Zu::LgServiceWriter::_atStep = &endAfterWrite;
        if (way == "step") Zu::LgServiceWriter::_atStep = &endAtStep;
        if (way == "other")
        {
            std::thread(
                [delay]
                {
                    std::this_thread::sleep_for(delay);
                    stress::killSelf();
                })
                .detach();
        }
        if (!isBlocked || isUnblocked) logFromThreads(threads, isUnblocked ? count : 0, count);
        endBy(way);
        if (way == "main")
        {
            living->reset();
            delete living;
        }
        if (way == "recovery step" || way == "step" || way == "write" || way == "other")
            living->reset();
    }
    if (way == "main" || way == "outlives") ZU_STOP_LOG_GROUP(Victim);
    if (way == "living") std::exit(0);
    return 0;
}
