// The system's sockets, as far as a server and its clients on this machine need them. None of the
// calls waits, but wait() and connectTo(). Errors of the set-up are std::system_error.

#ifndef ZU_EXAMPLES_SERVERSOCKET_H
#define ZU_EXAMPLES_SERVERSOCKET_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace server
{

using Socket = std::intptr_t;
constexpr Socket NO_SOCKET = -1;

// Results of receive() and send() that are no number of bytes. A connection that the other side
// has closed in its direction is CLOSED for receive().
constexpr int CLOSED = 0;
constexpr int LATER = -1;
constexpr int BROKEN = -2;

// The bytes that the system keeps for a client that does not read.
constexpr int MOST_WAITING = 65536;

// A socket to wait for, and what it is ready for. An error counts as ready: the next call reports
// it.
struct Watched
{
    Socket _socket = NO_SOCKET;
    bool _reads = false;
    bool _writes = false;
    bool _canRead = false;
    bool _canWrite = false;
};

// Once, before all others.
void startNetwork();

// Listens on 127.0.0.1. The port 0 stands for any, and is replaced by the one that was found.
Socket listenOn(std::uint16_t& port);

// The next client, or NO_SOCKET if there is none.
Socket acceptFrom(Socket listener);

// A connection to 127.0.0.1 for a client, whose calls wait; NO_SOCKET if nobody listens.
Socket connectTo(std::uint16_t port);

// A socket that becomes ready to be read when it is rung, by any thread or a signal handler.
Socket makeBell();
void ring(Socket bell);
void silence(Socket bell);

// From now on receive() and send() do not wait; this holds for what acceptFrom() returns.
void stopWaiting(Socket socket);

int receive(Socket socket, char* bytes, std::size_t size);
int send(Socket socket, const char* bytes, std::size_t size);

// Tells the other side that nothing follows; it can still be heard.
void endSending(Socket socket);
void close(Socket socket);

// Waits until one of them is ready, at most this time.
void wait(std::vector<Watched>& sockets, int milliseconds);

} // namespace server

#endif
