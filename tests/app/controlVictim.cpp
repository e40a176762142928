// A program that other processes ask. It has a log service, and logs until there is the file that
// its first word names: "kill" in it ends the program at once, anything else in order. With a
// second word, it has no service, and answers all requests with that word; an empty one, with none.

#include "app/lgControlFile.h"
#include "app/lgService.h"
#include "base/base.h"

#include "stress/hardEnd.h"
#include "support/fileTest.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

ZU_DEFINE_LOG_GROUP(Table);
ZU_DEFINE_LOG_GROUP(Window);

namespace
{

void pause()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

void logUntil(const std::string& file)
{
    for (int i = 0; !std::filesystem::exists(file); ++i, pause())
        ZU_LOG_INFORMATIONAL(Table, "row " << i);
}

// Without a service, by hand.
void answerUntil(const std::string& file, const std::string& answer)
{
    Zu::LgControlFile control;
    const std::string name = Zu::LgControlFile::prefix() + "1-2";
    control.create(std::string(std::getenv("ZU_LOG_SERVICE_MAPPING_DIRECTORY")) + "/" + name);
    Zu::LgControl::Header& header = *control.header();
    header._version = Zu::LgControl::VERSION;
    header._process = 2;
    std::memcpy(header._program, "/bin/victim", 11);
    std::memcpy(header._magic, Zu::LgControl::MAGIC, sizeof header._magic);
    for (; !std::filesystem::exists(file); pause())
    {
        const std::uint64_t number = std::atomic_ref(header._requestNumber).load();
        if (answer.empty() || number == header._answerNumber) continue;
        std::memcpy(control.roomForAnswer(answer.size()), answer.data(), answer.size());
        header._answer._length = static_cast<std::uint32_t>(answer.size());
        header._answer._hash = Zu::LgControl::hashOf(answer.data(), answer.size(), number);
        std::atomic_ref(header._answerNumber).store(number);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string end = argv[1];
    if (argc > 2) return answerUntil(end, argv[2]), 0;
    int words = 1;
    const Zu::InInitGuard guard(words, argv);
    ZU_START_LOG_GROUP("Database", Table);
    ZU_START_LOG_GROUP("UI", Window);
    {
        const Zu::LgService service;
        logUntil(end);
        if (support::readFile(end) == "kill") stress::killSelf();
    }
    ZU_STOP_LOG_GROUP(Table);
    ZU_STOP_LOG_GROUP(Window);
    return 0;
}
