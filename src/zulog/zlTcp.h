/// @file
/// Carries syslog messages over TCP.

#ifndef ZU_ZULOG_ZLTCP_H
#define ZU_ZULOG_ZLTCP_H

#include "zlTransport.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Zu
{

/// A connection. Raises ZlError with the system's reason. Not thread-safe.
class ZlSocket
{
public:
    /// Tries the addresses of the host, one after the other.
    ZlSocket(const std::string& host, const std::string& port);
    ~ZlSocket();
    ZlSocket(const ZlSocket&) = delete;
    ZlSocket& operator=(const ZlSocket&) = delete;

    /// Waits until the system has taken all of it.
    void write(std::string_view bytes);

    /// Whether the other side has ended the connection, as far as it is known by now. What it sends
    /// is dropped.
    bool isClosed();

    /// Sends no more, and waits until the other side has read all and closed, at most for some
    /// seconds.
    void finish();

private:
    std::intptr_t _handle = -1;
};

/// Sends syslog messages over TCP with octet counting, after RFC 6587: the length of each message
/// precedes it. Messages count as taken when the system has them: TCP reports no more. So when the
/// receiver or the network fails, what was under way is lost unnoticed. Not thread-safe.
class ZlTcp : public ZlTransport
{
public:
    ZlTcp(std::string host, std::string port);
    ~ZlTcp() override;

    Result deliver(std::span<const std::string> messages) override;
    void finish() override;

private:
    const std::string _host;
    const std::string _port;
    std::unique_ptr<ZlSocket> _socket;
};

/// Appends a message behind its length: "5 hello".
void zlAppendFrame(std::string& out, std::string_view message);

} // namespace Zu

#endif
