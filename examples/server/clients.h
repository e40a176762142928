// The connections of the server, and the loop that serves them.

#ifndef ZU_EXAMPLES_CLIENTS_H
#define ZU_EXAMPLES_CLIENTS_H

#include "serverSocket.h"
#include "workers.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace server
{

// The longest request, without the end of its line.
constexpr std::size_t LONGEST_LINE = 4096;

// One client. It has one request with the workers at a time, and the next line is read only when
// the answer is on its way: answers come in order, and a client that never reads costs little.
class Client
{
public:
    explicit Client(Socket socket) : _socket(socket) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client()
    {
        close(_socket);
    }

    // What to wait for; nothing while the workers have its request.
    Watched watched() const;
    void receive();
    void send();

    // Takes the next request if it is its turn.
    bool takeRequest(std::string& request);
    void answer(const std::string& text, bool isLast);

    bool isBusy() const
    {
        return _isAsked || !_output.empty();
    }
    bool isOver() const
    {
        return _isOver;
    }

private:
    void refuse(const char* reason);
    void endAfterLast();

    Socket _socket;
    std::string _input;
    std::string _output;
    // A request is with the workers; the last answer was given; the client has ended its side.
    bool _isAsked = false;
    bool _isLast = false;
    bool _isEnded = false;
    // Nothing more is sent; input is only dropped, up to a limit.
    bool _isSilent = false;
    std::size_t _dropped = 0;
    bool _isOver = false;
};

// Serves clients until it is asked to end, by a client or by `isAskedToEnd`.
class Clients
{
public:
    Clients(Socket listener, Socket bell, Workers& workers)
        : _listener(listener), _bell(bell), _workers(workers)
    {
    }

    void serve(const std::atomic<bool>& isAskedToEnd);

private:
    void step(int milliseconds);
    void accept();
    void deliverAnswers();
    bool isBusy() const;

    const Socket _listener;
    const Socket _bell;
    Workers& _workers;
    std::map<std::uint64_t, Client> _clients;
    std::uint64_t _lastId = 0;
    bool _isEnding = false;
};

} // namespace server

#endif
