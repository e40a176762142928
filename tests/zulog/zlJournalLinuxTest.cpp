#include "zulog/zlFile.h"
#include "zulog/zlJournal.h"

#include "support/tempDir.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

// A socket as the journal's own, and what arrives there.
class ZlJournal : public testing::Test
{
protected:
    struct Datagram
    {
        std::string _text;
        // What it carries, or -1.
        int _file = -1;
    };

    ~ZlJournal() override
    {
        if (_socket >= 0) close(_socket);
    }

    void listen()
    {
        _socket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        ASSERT_GE(_socket, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        ASSERT_LT(_path.size(), sizeof address.sun_path);
        _path.copy(address.sun_path, _path.size());
        ASSERT_EQ(bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }

    // What has arrived; a datagram is there when the sender's call returns.
    Datagram receive() const
    {
        std::string buffer(100000, '\0');
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control = {};
        iovec part = {buffer.data(), buffer.size()};
        msghdr message = {};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const ssize_t count = recvmsg(_socket, &message, MSG_CMSG_CLOEXEC);
        EXPECT_GE(count, 0) << std::strerror(errno);
        Datagram datagram;
        datagram._text = buffer.substr(0, count < 0 ? 0 : static_cast<std::size_t>(count));
        if (const cmsghdr* const head = CMSG_FIRSTHDR(&message))
            std::memcpy(&datagram._file, CMSG_DATA(head), sizeof datagram._file);
        return datagram;
    }

    bool isEmpty() const
    {
        char byte = 0;
        return recv(_socket, &byte, 1, 0) < 0 && errno == EAGAIN;
    }

    support::TempDir _directory;
    const std::string _path = _directory.file("journal");
    int _socket = -1;
};

std::string contentOf(int file)
{
    std::string content;
    std::array<char, 4096> buffer = {};
    for (ssize_t count = 1; count > 0;)
    {
        count = pread(file, buffer.data(), buffer.size(), static_cast<off_t>(content.size()));
        if (count > 0) content.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return content;
}

bool isSealed(int file)
{
    constexpr int ALL = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;
    return (fcntl(file, F_GET_SEALS) & ALL) == ALL;
}

std::string largeMessage()
{
    std::string message = "MESSAGE=";
    for (int i = 0; message.size() < 1500000; ++i) message += std::to_string(i) + " ";
    return message + "\n";
}

TEST_F(ZlJournal, EachMessageIsADatagram)
{
    listen();
    const Texts messages = {"MESSAGE=one\n", std::string("MESSAGE=\0two\n", 13)};
    const auto journal = Zu::zlMakeJournal(_path);
    const auto result = journal->deliver(messages);
    EXPECT_EQ(result._taken, 2U);
    EXPECT_EQ(result._failure, "");
    journal->finish();
    for (const std::string& message : messages)
    {
        const Datagram datagram = receive();
        EXPECT_EQ(datagram._text, message);
        EXPECT_EQ(datagram._file, -1);
    }
    EXPECT_TRUE(isEmpty());
}

// The journal takes files that nobody changes any more.
TEST_F(ZlJournal, WhatIsTooLargeForADatagramIsASealedFile)
{
    listen();
    const std::string large = largeMessage();
    const auto result = Zu::zlMakeJournal(_path)->deliver(Texts({large, "MESSAGE=two\n"}));
    EXPECT_EQ(result._taken, 2U);
    EXPECT_EQ(result._failure, "");
    const Datagram datagram = receive();
    EXPECT_EQ(datagram._text, "");
    ASSERT_GE(datagram._file, 0);
    EXPECT_TRUE(contentOf(datagram._file) == large);
    EXPECT_TRUE(isSealed(datagram._file));
    close(datagram._file);
    EXPECT_EQ(receive()._text, "MESSAGE=two\n");
}

TEST_F(ZlJournal, ASocketThatIsAbsentTakesNothingUntilItIsThere)
{
    const auto journal = Zu::zlMakeJournal(_path);
    const Texts messages = {"MESSAGE=one\n"};
    const auto failed = journal->deliver(messages);
    EXPECT_EQ(failed._taken, 0U);
    EXPECT_EQ(failed._failure, std::strerror(ENOENT));
    listen();
    const auto result = journal->deliver(messages);
    EXPECT_EQ(result._taken, 1U);
    EXPECT_EQ(result._failure, "");
    EXPECT_EQ(receive()._text, "MESSAGE=one\n");
    close(_socket);
    _socket = -1;
    // Its name is still there.
    EXPECT_EQ(journal->deliver(messages)._failure, std::strerror(ECONNREFUSED));
}

TEST_F(ZlJournal, APathThatIsTooLongIsRefused)
{
    EXPECT_THROW(Zu::zlMakeJournal(std::string(sizeof(sockaddr_un::sun_path), 'x')), Zu::ZlError);
    EXPECT_NO_THROW(Zu::zlMakeJournal(std::string(sizeof(sockaddr_un::sun_path) - 1, 'x')));
}

} // namespace
