#include "base/lgInterProcessLock.h"

#include "base/exRaise.h"
#include "base/lgLockName.h"
#include "base/osDescriptor.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <list>
#include <mutex>
#include <pthread.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zu
{

namespace
{

// Two bytes of the shared file stand for two locks on it. Who makes, ends or counts the users holds
// CHANGE alone, for a moment; every user holds USE together with the others. Both end with their
// process, however it ends.
constexpr off_t CHANGE = 0;
constexpr off_t USE = 1;

// Whether it succeeded.
bool setFileLock(int file, off_t byte, short kind, bool wait)
{
    struct flock lock = {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    int result = 0;
    do result = fcntl(file, wait ? F_OFD_SETLKW : F_OFD_SETLK, &lock);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

struct stat statusOf(int file)
{
    struct stat status = {};
    if (fstat(file, &status) != 0) ZU_RAISE_SYSTEM_ERROR(errno);
    return status;
}

// Whoever can write to a mutex leads the library that works on it to write elsewhere, so memory
// that another user made or can change is not touched.
bool isOwn(const struct stat& status)
{
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() && (status.st_mode & 0077) == 0;
}

void makeMutex(pthread_mutex_t& mutex)
{
    pthread_mutexattr_t attributes;
    int code = pthread_mutexattr_init(&attributes);
    if (code != 0) ZU_RAISE_SYSTEM_ERROR(code);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    code = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (code != 0) ZU_RAISE_SYSTEM_ERROR(code);
}

// A mapped file of shared memory, counted by its users, or memory of this process alone.
class SharedMemory
{
public:
    // The empty object stands before anything is opened, so that a failure closes what there is.
    explicit SharedMemory(const char* name) : SharedMemory()
    {
        if (name)
            openNamed(lgLockName(name, geteuid()));
        else
            map(MAP_SHARED | MAP_ANONYMOUS);
    }

    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    ~SharedMemory()
    {
        if (_mutex) munmap(_mutex, sizeof(pthread_mutex_t));
        closeFile();
    }

    pthread_mutex_t& mutex()
    {
        return *_mutex;
    }

    // Removes the name if nobody else uses it; the memory stays. A child of a fork shares the locks
    // on the file with its parent and must leave them alone.
    void leave() noexcept
    {
        if (_name.empty() || getpid() != _user) return;
        setFileLock(_file, CHANGE, F_WRLCK, true);
        if (setFileLock(_file, USE, F_WRLCK, false)) shm_unlink(_name.c_str());
        setFileLock(_file, USE, F_UNLCK, true);
        setFileLock(_file, CHANGE, F_UNLCK, true);
        _name.clear();
    }

private:
    void openNamed(const std::string& name)
    {
        while (!openCurrent(name)) closeFile();
        // Alone with the file: what is in it is of nobody, or was left by a process that died.
        if (setFileLock(_file, USE, F_WRLCK, false)) makeMutex(*_mutex);
        if (!setFileLock(_file, USE, F_RDLCK, true)) ZU_RAISE_SYSTEM_ERROR(errno);
        _name = name;
        setFileLock(_file, CHANGE, F_UNLCK, true);
    }

    // Opens the file and holds CHANGE; false if the last user has removed it in between.
    bool openCurrent(const std::string& name)
    {
        _file = osAboveStandard(shm_open(name.c_str(), O_RDWR | O_CREAT, 0600));
        if (_file < 0) ZU_RAISE_SYSTEM_ERROR(errno);
        if (!isOwn(statusOf(_file))) ZU_RAISE_SYSTEM_ERROR(EACCES);
        if (!setFileLock(_file, CHANGE, F_WRLCK, true)) ZU_RAISE_SYSTEM_ERROR(errno);
        if (statusOf(_file).st_nlink == 0) return false;
        reserve(name);
        map(MAP_SHARED);
        return true;
    }

    // Memory that is only promised would end the process when it is touched and there is none.
    void reserve(const std::string& name)
    {
        int code = 0;
        do code = posix_fallocate(_file, 0, sizeof(pthread_mutex_t));
        while (code == EINTR);
        if (code == 0) return;
        if (setFileLock(_file, USE, F_WRLCK, false)) shm_unlink(name.c_str());
        ZU_RAISE_SYSTEM_ERROR(code);
    }

    void map(int flags)
    {
        void* const memory =
            mmap(nullptr, sizeof(pthread_mutex_t), PROT_READ | PROT_WRITE, flags, _file, 0);
        if (memory == MAP_FAILED) ZU_RAISE_SYSTEM_ERROR(errno);
        _mutex = static_cast<pthread_mutex_t*>(memory);
        if (_file < 0) makeMutex(*_mutex);
    }

    void closeFile() noexcept
    {
        if (_file >= 0) ::close(_file);
        _file = -1;
    }

    SharedMemory() = default;

    int _file = -1;
    pthread_mutex_t* _mutex = nullptr;
    std::string _name;
    pid_t _user = getpid();
};

// The memory of all locks of this process. Most locks live as long as their process and are never
// ended: their names are left when the process exits.
class OpenMemories
{
public:
    static OpenMemories& instance()
    {
        static OpenMemories* const theInstance = new OpenMemories;
        return *theInstance;
    }

    void add(SharedMemory& memory)
    {
        const std::lock_guard guard(_mutex);
        _memories.push_back(&memory);
    }

    void remove(SharedMemory& memory)
    {
        const std::lock_guard guard(_mutex);
        _memories.remove(&memory);
    }

private:
    OpenMemories()
    {
        std::atexit([] { instance().leaveAll(); });
    }

    void leaveAll()
    {
        const std::lock_guard guard(_mutex);
        for (SharedMemory* const memory : _memories) memory->leave();
    }

    std::mutex _mutex;
    std::list<SharedMemory*> _memories;
};

class LockLinux : public LgInterProcessLock
{
public:
    explicit LockLinux(const char* name) : _memory(name)
    {
        OpenMemories::instance().add(_memory);
    }

    ~LockLinux() noexcept(false) override
    {
        OpenMemories::instance().remove(_memory);
        _memory.leave();
    }

    void lock() override
    {
        const int code = pthread_mutex_lock(&_memory.mutex());
        if (code == 0) return;
        if (code == EOWNERDEAD)
        {
            pthread_mutex_consistent(&_memory.mutex());
            pthread_mutex_unlock(&_memory.mutex());
        }
        ZU_RAISE_SYSTEM_ERROR(code);
    }

    void unlock() override
    {
        const int code = pthread_mutex_unlock(&_memory.mutex());
        if (code != 0) ZU_RAISE_SYSTEM_ERROR(code);
    }

private:
    SharedMemory _memory;
};

} // namespace

LgInterProcessLock* LgInterProcessLock::create(const char* name)
{
    return new LockLinux(name);
}

} // namespace Zu
