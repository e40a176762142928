// The example of a server, under load, with hostile clients, and killed in between: what a client
// has an answer to is in the log, once.

#include "endProcess.h"
#include "serverSocket.h"

#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/marker.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using support::ProgramResult;

// The server as a child process.
class Server
{
public:
    // With its log files in a directory, and its maps beside them.
    explicit Server(const std::string& dir) : _logs(dir + "/logs")
    {
        const support::Environment environment =
            support::logEnvironment({{"B7Q_TEST_DIR", _dir.path()},
                                     {"ZU_LOG_GROUPS", "Server=Informational"},
                                     {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", dir},
                                     // However busy the machine is, no request is lost.
                                     {"ZU_LOG_SERVICE_WAIT_LIMIT", "3600s"}});
        _result = std::async(std::launch::async,
                             [this, environment]
                             {
                                 ProgramResult result;
                                 support::runToFiles(support::programPath("server"), {"-l", _logs},
                                                     environment, _dir.file("out"),
                                                     _dir.file("err"), result);
                                 return result;
                             });
        awaitPort();
        if (_port != 0) awaitId();
    }

    // One that has failed to end must not hang the test.
    ~Server()
    {
        if (_result.valid()) kill();
    }

    std::uint16_t port() const
    {
        return _port;
    }

    std::uint32_t id() const
    {
        return _id;
    }

    ProgramResult kill()
    {
        EXPECT_TRUE(_id != 0 && support::killProcess(_id));
        return awaitEnd();
    }

    ProgramResult awaitEnd()
    {
        ProgramResult result = _result.get();
        result.err = support::bytesOf(_dir.file("err"));
        return result;
    }

private:
    void awaitPort()
    {
        const std::string beginning = "listening on 127.0.0.1:";
        std::string text;
        do
        {
            text = support::bytesOf(_dir.file("out"));
            if (text.ends_with('\n')) break;
        } while (_result.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready);
        if (text.starts_with(beginning))
            _port = static_cast<std::uint16_t>(std::stoi(text.substr(beginning.size())));
    }

    // Its log tells its id, before there are requests.
    void awaitId()
    {
        const std::string beginning = " ticks per second, process ";
        const auto end = std::chrono::steady_clock::now() + support::PATIENCE;
        while (_id == 0 && std::chrono::steady_clock::now() < end)
        {
            const std::string log = support::bytesOf(_logs + "/events.log");
            const std::size_t origin = log.rfind(beginning);
            if (origin == std::string::npos || log.find('\n', origin) == std::string::npos)
                continue;
            const char* const text = log.c_str() + origin + beginning.size();
            _id = static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
        }
    }

    support::TempDir _dir;
    std::string _logs;
    std::future<ProgramResult> _result;
    std::uint16_t _port = 0;
    std::uint32_t _id = 0;
};

class Client
{
public:
    explicit Client(std::uint16_t port) : _socket(server::connectTo(port)) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client()
    {
        if (_socket != server::NO_SOCKET) server::close(_socket);
    }

    // From here on it waits for the server only until it is told that the server is gone: Wine
    // keeps some connections of a process that was killed.
    void waitUntil(const std::atomic<bool>& isServerGone)
    {
        server::stopWaiting(_socket);
        _isServerGone = &isServerGone;
    }

    bool send(const std::string& bytes)
    {
        for (std::size_t sent = 0; sent < bytes.size();)
        {
            const int count = server::send(_socket, bytes.data() + sent, bytes.size() - sent);
            if (count == server::LATER && goesOn(false, true)) continue;
            if (count <= 0) return false;
            sent += static_cast<std::size_t>(count);
        }
        return true;
    }

    // Sends until told to end or cut off, and reads nothing. `isStalled` is set when the server
    // takes no more.
    void sendAndNeverRead(std::atomic<bool>& isStalled, const std::atomic<bool>& isOver)
    {
        constexpr int MILLISECONDS = 100;
        server::stopWaiting(_socket);
        const std::string request = "ECHO " + std::string(4000, 'z') + "\n";
        std::size_t at = 0;
        while (!isOver)
        {
            const int count = server::send(_socket, request.data() + at, request.size() - at);
            if (count == server::BROKEN) return;
            if (count > 0) at = (at + static_cast<std::size_t>(count)) % request.size();
            std::vector<server::Watched> sockets{{_socket, false, true}};
            if (count == server::LATER) server::wait(sockets, MILLISECONDS);
            if (count == server::LATER && !sockets.front()._canWrite) isStalled = true;
        }
    }

    void endSending()
    {
        server::endSending(_socket);
    }

    // The next line of the server without its end, or nothing if there is none any more.
    std::optional<std::string> line()
    {
        std::size_t end = 0;
        while ((end = _input.find('\n')) == std::string::npos)
        {
            std::array<char, 4096> bytes;
            const int count = server::receive(_socket, bytes.data(), bytes.size());
            if (count == server::LATER && goesOn(true, false)) continue;
            if (count <= 0) return std::nullopt;
            _input.append(bytes.data(), static_cast<std::size_t>(count));
        }
        std::string line = _input.substr(0, end);
        _input.erase(0, end + 1);
        return line;
    }

    std::string answerTo(const std::string& request)
    {
        return send(request + "\n") ? line().value_or("(nothing)") : "(not sent)";
    }

private:
    // Waits some time for the server; false if it is gone.
    bool goesOn(bool reads, bool writes) const
    {
        constexpr int MILLISECONDS = 50;
        if (!_isServerGone) return true;
        if (*_isServerGone) return false;
        std::vector<server::Watched> sockets{{_socket, reads, writes}};
        server::wait(sockets, MILLISECONDS);
        return true;
    }

    server::Socket _socket;
    std::string _input;
    const std::atomic<bool>* _isServerGone = nullptr;
};

std::string logIn(const support::TempDir& dir)
{
    return support::bytesOf(dir.file("logs") + "/events.log");
}

class ServerTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        server::startNetwork();
    }

    std::string log() const
    {
        return logIn(_dir);
    }

    support::TempDir _dir;
};

TEST_F(ServerTest, AnswersEachRequest)
{
    const std::pair<const char*, const char*> cases[] = {
        {"ADD 2 3", "= 5"},
        {"ADD -7 2147483647", "= 2147483640"},
        {"ADD 2147483647 2147483647", "= 4294967294"},
        {"ADD 2", "? ADD takes two whole numbers of 32 bits"},
        {"ADD 2 3 4", "? ADD takes two whole numbers of 32 bits"},
        {"ADD 2147483648 1", "? ADD takes two whole numbers of 32 bits"},
        {"ECHO good  day ", "good  day "},
        {"ECHO line\r", "line"},
        {"", "? expected ADD a b, ECHO text, STATS, QUIT or SHUTDOWN"},
        {"echo low", "? expected ADD a b, ECHO text, STATS, QUIT or SHUTDOWN"},
        {"QUIT", "= bye"},
    };
    Server server(_dir.path());
    ASSERT_NE(server.port(), 0);
    Client client(server.port());
    for (const auto& [request, answer] : cases) EXPECT_EQ(client.answerTo(request), answer);
    EXPECT_EQ(client.line(), std::nullopt);
    Client other(server.port());
    const std::string health = other.answerTo("STATS");
    EXPECT_TRUE(health.starts_with("{\"events\":{\"Internal Error\":0,")) << health;
    EXPECT_NE(health.find("\"lost\":0,\"unwritten\":0,"), std::string::npos) << health;
    EXPECT_EQ(other.answerTo("SHUTDOWN"), "= the server ends");
    const ProgramResult result = server.awaitEnd();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(support::countOf(log(), ") Informational: Requests ADD 2 3\n"), 1U) << log();
    EXPECT_EQ(support::countOf(log(), ") Warning: Requests refused: ADD 2\n"), 1U) << log();
}

TEST_F(ServerTest, RefusesAPortThatIsNone)
{
    for (const char* const port : {"65536", "80x", ""})
    {
        const ProgramResult result = support::runProgram("server", {"-p", port});
        EXPECT_EQ(result.exitCode, 2) << port;
        EXPECT_EQ(result.out, "") << port;
        EXPECT_EQ(result.err, std::string("server: option '-p' needs a whole number from 0 to "
                                          "65535, not '") +
                                  port + "'\nserver: 'server --help' shows what can be given\n");
    }
}

TEST_F(ServerTest, EndsInOrderWhenTheSystemAsksIt)
{
    Server server(_dir.path());
    ASSERT_NE(server.port(), 0);
    Client client(server.port());
    EXPECT_EQ(client.answerTo("ECHO last"), "last");
    if (!support::askProcessToEnd(server.id()))
    {
        EXPECT_EQ(client.answerTo("SHUTDOWN"), "= the server ends");
        server.awaitEnd();
        GTEST_SKIP() << "no process can send SIGTERM to another one here";
    }
    EXPECT_EQ(server.awaitEnd().exitCode, 0);
    EXPECT_EQ(client.line(), std::nullopt);
    EXPECT_EQ(support::countOf(log(), ") Informational: Requests ECHO last\n"), 1U) << log();
    EXPECT_TRUE(log().ends_with(support::STOP_BANNER)) << log();
}

// Each does its worst to a server that serves others at the same time.

void sendOverlongLine(std::uint16_t port)
{
    Client client(port);
    EXPECT_EQ(client.answerTo(std::string(200000, 'x')), "? a line has at most 4096 bytes");
    EXPECT_EQ(client.line(), std::nullopt);
    // The longest that is allowed.
    Client other(port);
    EXPECT_EQ(other.answerTo("ECHO " + std::string(4091, 'y')), std::string(4091, 'y'));
    EXPECT_EQ(other.answerTo("ECHO " + std::string(4092, 'y')), "? a line has at most 4096 bytes");
}

void sendBinary(std::uint16_t port)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        if (i != '\n') bytes += static_cast<char>(i);
    Client client(port);
    EXPECT_EQ(client.answerTo(bytes), "? a request has no NUL characters");
    bytes.erase(0, 1);
    EXPECT_EQ(client.answerTo("ECHO " + bytes), bytes);
}

void sendAndHalfClose(std::uint16_t port)
{
    Client client(port);
    EXPECT_TRUE(client.send("ADD 2 3\nECHO half\nECHO not ended"));
    client.endSending();
    EXPECT_EQ(client.line(), "= 5");
    EXPECT_EQ(client.line(), "half");
    EXPECT_EQ(client.line(), std::nullopt);
}

void sendForgedLines(std::uint16_t port)
{
    Client client(port);
    const std::string forged = "x\r===== Message Logger Stopped =====\x1b[2J\xe2\x80\xae";
    EXPECT_EQ(client.answerTo("ECHO " + forged), forged);
    EXPECT_TRUE(client.send("ECHO a\n===== Message Logger Stopped =====\n"));
    EXPECT_EQ(client.line(), "a");
    EXPECT_EQ(client.line(), "? expected ADD a b, ECHO text, STATS, QUIT or SHUTDOWN");
}

// One client that stalls keeps nobody else from being served.
void talkUntil(const std::atomic<bool>& isStalled, std::uint16_t port)
{
    Client client(port);
    while (!isStalled) ASSERT_EQ(client.answerTo("ADD 1 1"), "= 2");
    EXPECT_EQ(client.answerTo("ADD 1 2"), "= 3");
}

// The ids whose answer a client has received, and those that it has sent.
struct Load
{
    std::vector<std::string> _answered;
    std::string _wrong;
};

// Sends this many requests, or as many as the server lives.
Load load(std::uint16_t port, const std::string& name, int count, std::atomic<int>& answered,
          const std::atomic<bool>& isServerGone)
{
    Load load;
    Client client(port);
    client.waitUntil(isServerGone);
    for (int i = 0; i < count; ++i)
    {
        const std::string id = name + "-" + std::to_string(i) + "-end";
        const std::optional<std::string> answer =
            client.send("ECHO " + id + "\n") ? client.line() : std::nullopt;
        if (!answer) break;
        if (*answer != id) load._wrong = id + ": " + *answer;
        load._answered.push_back(id);
        ++answered;
    }
    return load;
}

constexpr int CLIENTS = 3;

std::vector<std::future<Load>> startLoad(std::uint16_t port, const std::string& name, int count,
                                         std::atomic<int>& answered,
                                         const std::atomic<bool>& isServerGone)
{
    std::vector<std::future<Load>> loads;
    for (int i = 0; i < CLIENTS; ++i)
        loads.push_back(std::async(std::launch::async, load, port, name + std::to_string(i), count,
                                   std::ref(answered), std::cref(isServerGone)));
    return loads;
}

// Adds what they have received.
void finish(std::vector<std::future<Load>>& loads, std::vector<std::string>& answered)
{
    for (std::future<Load>& future : loads)
    {
        const Load load = future.get();
        EXPECT_EQ(load._wrong, "");
        answered.insert(answered.end(), load._answered.begin(), load._answered.end());
    }
}

// How often each request of the load is in a log.
std::map<std::string, int> loggedIds(const std::string& log)
{
    std::map<std::string, int> ids;
    const std::string beginning = "Informational: Requests ECHO load ";
    for (const std::string& line : support::linesOf(log))
    {
        const std::size_t at = line.find(beginning);
        if (at != std::string::npos && line.ends_with("-end"))
            ++ids[line.substr(at + beginning.size() - 5)];
    }
    return ids;
}

// A server is killed after so many requests of the load; the next one ends in order after more.
void runServers(const support::TempDir& dir, int middle, int rest)
{
    constexpr int ENDLESS = 1 << 30;
    std::atomic<int> count{0};
    std::atomic<bool> isGone{false};
    std::vector<std::string> answered;
    {
        Server first(dir.path());
        ASSERT_NE(first.port(), 0);
        auto loads = startLoad(first.port(), "load first ", ENDLESS, count, isGone);
        while (count < middle) std::this_thread::yield();
        const ProgramResult result = first.kill();
        isGone = true;
        EXPECT_NE(result.exitCode, 0);
        finish(loads, answered);
    }
    EXPECT_GE(answered.size(), static_cast<std::size_t>(middle));
    {
        Server second(dir.path());
        ASSERT_NE(second.port(), 0);
        Client neverReading(second.port());
        std::atomic<bool> isStalled{false};
        std::atomic<bool> isOver{false};
        std::thread never([&] { neverReading.sendAndNeverRead(isStalled, isOver); });
        isGone = false;
        auto loads = startLoad(second.port(), "load second ", rest, count, isGone);
        sendOverlongLine(second.port());
        sendBinary(second.port());
        sendAndHalfClose(second.port());
        sendForgedLines(second.port());
        talkUntil(isStalled, second.port());
        finish(loads, answered);
        Client last(second.port());
        EXPECT_EQ(last.answerTo("SHUTDOWN"), "= the server ends");
        const ProgramResult result = second.awaitEnd();
        isOver = true;
        never.join();
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
    }
    const std::string text = logIn(dir);
    std::map<std::string, int> logged = loggedIds(text);
    for (const std::string& id : answered) ASSERT_EQ(logged[id], 1) << id;
    // One request of each client was on its way when the first server was killed.
    EXPECT_LE(logged.size(), answered.size() + CLIENTS);
    for (const auto& [id, times] : logged) EXPECT_EQ(times, 1) << id;
    EXPECT_EQ(text.find("Event overflow"), std::string::npos);
    // Clients can't forge lines.
    EXPECT_EQ(text.find_first_of("\r\x1b"), std::string::npos);
    EXPECT_EQ(support::countOf(text, std::string("\n") + support::STOP_BANNER), 1U);
    EXPECT_EQ(support::countOf(text, "ECHO x\\x0d===== Message Logger Stopped =====\\x1b[2J"), 1U);
    EXPECT_EQ(support::countOf(text, "ECHO half\n"), 1U);
    EXPECT_EQ(support::countOf(text, "not ended"), 0U);
}

// Once, or for as many seconds as ZU_STRESS_SECONDS says: each round with more requests.
TEST_F(ServerTest, WhatIsAnsweredIsLoggedOnceWhateverClientsAndAKillDo)
{
    constexpr int REQUESTS = 300;
    const char* const seconds = std::getenv("ZU_STRESS_SECONDS");
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    int round = 0;
    do
    {
        ++round;
        const support::TempDir dir;
        runServers(dir, 2 * REQUESTS + 17 * round, round * REQUESTS);
    } while (std::chrono::steady_clock::now() < end && !HasFailure());
    std::cout << round << (round == 1 ? " round" : " rounds") << std::endl;
}

} // namespace
