// A running process with a log service that other processes ask.

#ifndef ZU_TESTS_APP_CONTROLLED_H
#define ZU_TESTS_APP_CONTROLLED_H

#include "app/lgControlFile.h"
#include "app/lgMapFile.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace app
{

// Runs controlVictim until the object ends.
class Controlled
{
public:
    // With further words behind the file that ends it; beside a neighbour in its directory.
    explicit Controlled(support::Environment environment = {},
                        const std::vector<std::string>& words = {},
                        const Controlled* neighbour = nullptr)
        : _directory(neighbour ? neighbour->_directory : _maps.path() + "/")
    {
        std::vector<std::string> all = {_logs.file("end")};
        all.insert(all.end(), words.begin(), words.end());
        environment["B7Q_TEST_DIR"] = _logs.path();
        environment["ZU_LOG_SERVICE_MAPPING_DIRECTORY"] = _directory;
        _thread =
            std::thread([this, all, environment = std::move(environment)]
                        { _result = support::runProgram("controlVictim", all, environment); });
    }

    Controlled(const Controlled&) = delete;
    Controlled& operator=(const Controlled&) = delete;

    ~Controlled()
    {
        end("stop");
    }

    // With a separator at its end.
    std::string directory() const
    {
        return _directory;
    }

    // The control files that are there.
    std::vector<std::string> controlFiles() const
    {
        return Zu::lgNamesIn(directory(), Zu::LgControlPeer::prefix());
    }

    // When it and so many neighbours can be asked.
    void waitForFiles(std::size_t count) const
    {
        for (const auto end = endOfPatience(); std::chrono::steady_clock::now() < end; pause())
        {
            const std::vector<std::string> names = controlFiles();
            const bool areReady = std::all_of(names.begin(), names.end(),
                                              [this](const std::string& name)
                                              { return isReady(directory() + name); });
            if (names.size() == count && areReady) return;
        }
        throw std::runtime_error("there are not as many control files");
    }

    // The path of its control file, when it can be asked.
    std::string waitForFile() const
    {
        for (const auto end = endOfPatience(); std::chrono::steady_clock::now() < end; pause())
        {
            const std::vector<std::string> names = controlFiles();
            if (names.empty()) continue;
            const std::string path = directory() + names.front();
            if (isReady(path)) return path;
        }
        throw std::runtime_error("the program has no control file");
    }

    // The log, when this text is in it.
    std::string waitForText(const std::string& text) const
    {
        std::string log;
        for (const auto end = endOfPatience(); std::chrono::steady_clock::now() < end; pause())
        {
            log = support::readFile(_logs.file("events.log"));
            if (log.find(text) != std::string::npos) return log;
        }
        throw std::runtime_error("not in the log: " + text + ", but: " + log);
    }

    // Ends it by "kill", or in order, once.
    const support::ProgramResult& end(const std::string& way)
    {
        if (!_thread.joinable()) return _result;
        support::writeFile(_logs.file("making"), way);
        std::filesystem::rename(_logs.file("making"), _logs.file("end"));
        _thread.join();
        return _result;
    }

private:
    static bool isReady(const std::string& path)
    {
        Zu::LgControlPeer peer;
        char first = '\0';
        return peer.open(path) == Zu::LgControlPeer::Outcome::Opened && peer.read(0, &first, 1) &&
               first == Zu::LgControl::MAGIC[0];
    }

    static std::chrono::steady_clock::time_point endOfPatience()
    {
        return std::chrono::steady_clock::now() + std::chrono::minutes(2);
    }

    static void pause()
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }

    support::TempDir _logs;
    support::TempDir _maps;
    const std::string _directory;
    support::ProgramResult _result;
    std::thread _thread;
};

} // namespace app

#endif
