// Threads that answer requests.

#ifndef ZU_EXAMPLES_WORKERS_H
#define ZU_EXAMPLES_WORKERS_H

#include "requests.h"
#include "serverSocket.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace server
{

// Begins with its threads, and ends when all that was asked is answered. ask() and takeAnswers()
// are for one thread, which has the bell rung when an answer is there.
class Workers
{
public:
    struct Answered
    {
        std::uint64_t _client;
        Answer _answer;
    };

    Workers(int count, const Zu::LgService& service, Socket bell);
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers();

    void ask(std::uint64_t client, std::string request);
    std::vector<Answered> takeAnswers();

private:
    struct Asked
    {
        std::uint64_t _client;
        std::string _request;
    };

    void work();
    bool take(Asked& asked);

    const Zu::LgService& _service;
    const Socket _bell;
    std::mutex _mutex;
    std::condition_variable _isAsked;
    std::deque<Asked> _asked;
    std::vector<Answered> _answered;
    bool _isEnding = false;
    std::vector<std::thread> _threads;
};

} // namespace server

#endif
