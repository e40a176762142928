#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlTcp.h"

#include <cerrno>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace Zu
{

namespace
{

constexpr time_t CONNECT_SECONDS = 10;
constexpr time_t FINISH_SECONDS = 5;

[[noreturn]] void fail(int error)
{
    // What a time limit of a socket is reported as.
    const bool isTime = error == EAGAIN || error == EINPROGRESS;
    throw ZlError(LgServiceFile::errorText(isTime ? ETIMEDOUT : error));
}

// 0 is for ever.
void setLimit(int handle, int option, time_t seconds)
{
    const timeval limit = {seconds, 0};
    setsockopt(handle, SOL_SOCKET, option, &limit, sizeof limit);
}

// The handle, or -1 with errno.
int connectTo(const addrinfo& address)
{
    const int handle = socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC, 0);
    if (handle < 0) return -1;
    const int on = 1;
    setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    setLimit(handle, SO_SNDTIMEO, CONNECT_SECONDS);
    if (connect(handle, address.ai_addr, address.ai_addrlen) == 0)
    {
        setLimit(handle, SO_SNDTIMEO, 0);
        return handle;
    }
    const int error = errno;
    close(handle);
    errno = error;
    return -1;
}

int handleOf(std::intptr_t value)
{
    return static_cast<int>(value);
}

} // namespace

ZlSocket::ZlSocket(const std::string& host, const std::string& port)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    const int result = getaddrinfo(host.c_str(), port.c_str(), &hints, &addresses);
    if (result != 0) throw ZlError(gai_strerror(result));
    for (const addrinfo* one = addresses; one && _handle < 0; one = one->ai_next)
        _handle = connectTo(*one);
    const int error = errno;
    freeaddrinfo(addresses);
    if (_handle < 0) fail(error);
}

ZlSocket::~ZlSocket()
{
    close(handleOf(_handle));
}

void ZlSocket::write(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t count = send(handleOf(_handle), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) fail(errno);
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

bool ZlSocket::isClosed()
{
    char dropped[256];
    ssize_t count = 1;
    while (count > 0) count = recv(handleOf(_handle), dropped, sizeof dropped, MSG_DONTWAIT);
    return count == 0 || (errno != EAGAIN && errno != EINTR);
}

void ZlSocket::finish()
{
    shutdown(handleOf(_handle), SHUT_WR);
    setLimit(handleOf(_handle), SO_RCVTIMEO, FINISH_SECONDS);
    char dropped[256];
    while (recv(handleOf(_handle), dropped, sizeof dropped, 0) > 0) continue;
}

} // namespace Zu
