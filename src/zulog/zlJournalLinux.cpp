#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlJournal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Zu
{

namespace
{

constexpr const char* SYSTEM_SOCKET = "/run/systemd/journal/socket";

class Descriptor
{
public:
    explicit Descriptor(int value) : _value(value) {}
    ~Descriptor()
    {
        if (_value >= 0) close(_value);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int _value;
};

class Journal : public ZlTransport
{
public:
    explicit Journal(const std::string& path)
        : _socket(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        if (path.size() >= sizeof _address.sun_path)
            throw ZlError("the path of the journal's socket is too long");
        _address.sun_family = AF_UNIX;
        path.copy(_address.sun_path, path.size());
    }

    Result deliver(std::span<const std::string> messages) override
    {
        for (std::size_t i = 0; i < messages.size(); ++i)
        {
            int error = send(messages[i], -1);
            if (error == EMSGSIZE || error == ENOBUFS) error = sendAsFile(messages[i]);
            if (error != 0) return {i, LgServiceFile::errorText(error)};
        }
        return {messages.size(), ""};
    }

    void finish() override {}

private:
    // With a descriptor, the datagram is empty and the entry is in that file. Returns the error.
    int send(const std::string& message, int file)
    {
        iovec part = {const_cast<char*>(message.data()), file < 0 ? message.size() : 0};
        msghdr datagram = {};
        datagram.msg_name = &_address;
        datagram.msg_namelen = sizeof _address;
        datagram.msg_iov = &part;
        datagram.msg_iovlen = 1;
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof file)] = {};
        if (file >= 0)
        {
            datagram.msg_control = control;
            datagram.msg_controllen = sizeof control;
            cmsghdr* const head = CMSG_FIRSTHDR(&datagram);
            head->cmsg_level = SOL_SOCKET;
            head->cmsg_type = SCM_RIGHTS;
            head->cmsg_len = CMSG_LEN(sizeof file);
            std::memcpy(CMSG_DATA(head), &file, sizeof file);
        }
        ssize_t count = 0;
        do count = sendmsg(_socket._value, &datagram, MSG_NOSIGNAL);
        while (count < 0 && errno == EINTR);
        return count < 0 ? errno : 0;
    }

    // What is too large for a datagram goes as a file in memory that can't be changed any more.
    int sendAsFile(const std::string& message)
    {
        const Descriptor file(memfd_create("zulog", MFD_CLOEXEC | MFD_ALLOW_SEALING));
        if (file._value < 0) return errno;
        for (std::size_t done = 0; done < message.size();)
        {
            const ssize_t count = write(file._value, message.data() + done, message.size() - done);
            if (count < 0 && errno != EINTR) return errno;
            if (count > 0) done += static_cast<std::size_t>(count);
        }
        constexpr int SEALS = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
        if (fcntl(file._value, F_ADD_SEALS, SEALS) != 0) return errno;
        return send(message, file._value);
    }

    const Descriptor _socket;
    sockaddr_un _address = {};
};

} // namespace

std::unique_ptr<ZlTransport> zlMakeJournal(const std::string& path)
{
    return std::make_unique<Journal>(path.empty() ? SYSTEM_SOCKET : path);
}

} // namespace Zu
