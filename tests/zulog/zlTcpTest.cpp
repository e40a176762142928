#include "zulog/zlTcp.h"

#include "serverSocket.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

TEST(ZlTcp, AFrameHasTheLengthInFront)
{
    std::string out = "before ";
    Zu::zlAppendFrame(out, "hello");
    Zu::zlAppendFrame(out, "");
    Zu::zlAppendFrame(out, "a\nb c");
    EXPECT_EQ(out, "before 5 hello0 5 a\nb c");
}

// What the next client sends until it ends its direction.
std::string receiveAll(server::Socket listener)
{
    const auto wait = [](server::Socket socket)
    {
        std::vector<server::Watched> sockets(1);
        sockets[0]._socket = socket;
        sockets[0]._reads = true;
        server::wait(sockets, 60000);
    };
    wait(listener);
    const server::Socket client = server::acceptFrom(listener);
    std::string text;
    char bytes[256];
    for (int count = server::LATER; count != server::CLOSED && count != server::BROKEN;)
    {
        wait(client);
        count = server::receive(client, bytes, sizeof bytes);
        if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    }
    server::close(client);
    return text;
}

TEST(ZlTcp, DeliversFrames)
{
    server::startNetwork();
    std::uint16_t port = 0;
    const server::Socket listener = server::listenOn(port);
    std::string received;
    std::thread receiver([&] { received = receiveAll(listener); });
    Zu::ZlTcp tcp("127.0.0.1", std::to_string(port));
    const std::string large(100000, 'x');
    const std::vector<std::string> messages = {"a", large, "c"};
    const Zu::ZlTransport::Result result = tcp.deliver(messages);
    EXPECT_EQ(result._taken, 3U);
    EXPECT_EQ(result._failure, "");
    EXPECT_EQ(tcp.deliver(messages)._taken, 3U);
    tcp.finish();
    receiver.join();
    server::close(listener);
    const std::string once = "1 a100000 " + large + "1 c";
    EXPECT_TRUE(received == once + once) << received.size();
}

TEST(ZlTcp, NobodyWhoListensIsAFailure)
{
    server::startNetwork();
    std::uint16_t port = 0;
    server::close(server::listenOn(port));
    Zu::ZlTcp tcp("127.0.0.1", std::to_string(port));
    const std::vector<std::string> messages = {"a"};
    const Zu::ZlTransport::Result result = tcp.deliver(messages);
    EXPECT_EQ(result._taken, 0U);
    EXPECT_NE(result._failure, "");
    tcp.finish();
}

} // namespace
