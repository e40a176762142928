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

// Two bytes of the shared file represent two file locks. Code that creates or removes the file or
// checks for users holds CHANGE exclusively, for a moment. Every user holds USE, shared with the
// others. Both locks end with their process, however it ends.
constexpr off_t CHANGE = 0;
constexpr off_t USE = 1;

// Returns whether it succeeded.
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

// Anyone who can write to a mutex can make the library that operates on it write elsewhere, so
// memory that another user created or can change is not touched.
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

// A mapped shared-memory file that is counted by its users, or memory private to this process.
class SharedMemory
{
public:
    // Delegates first, so that the object is complete and its destructor cleans up after a failure.
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
    }

    pthread_mutex_t& mutex()
    {
        return *_mutex;
    }

    // Removes the name if nobody else uses it; the memory stays mapped. The child of a fork shares
    // the file locks with its parent and must not release them.
    void leave() noexcept
    {
        if (_name.empty() || getpid() != _user) return;
        setFileLock(_file.get(), CHANGE, F_WRLCK, true);
        if (setFileLock(_file.get(), USE, F_WRLCK, false)) shm_unlink(_name.c_str());
        setFileLock(_file.get(), USE, F_UNLCK, true);
        setFileLock(_file.get(), CHANGE, F_UNLCK, true);
        _name.clear();
    }

private:
    void openNamed(const std::string& name)
    {
        while (!openCurrent(name)) continue;
        // The only user: the content is new, or was left by a process that died.
        if (setFileLock(_file.get(), USE, F_WRLCK, false)) makeMutex(*_mutex);
        if (!setFileLock(_file.get(), USE, F_RDLCK, true)) ZU_RAISE_SYSTEM_ERROR(errno);
        _name = name;
        setFileLock(_file.get(), CHANGE, F_UNLCK, true);
    }

    // Opens the file and takes CHANGE; false if the last user has removed the file in between.
    bool openCurrent(const std::string& name)
    {
        _file.reset(osAboveStandard(shm_open(name.c_str(), O_RDWR | O_CREAT, 0600)));
        if (_file.get() < 0) ZU_RAISE_SYSTEM_ERROR(errno);
        if (!isOwn(statusOf(_file.get()))) ZU_RAISE_SYSTEM_ERROR(EACCES);
        if (!setFileLock(_file.get(), CHANGE, F_WRLCK, true)) ZU_RAISE_SYSTEM_ERROR(errno);
        if (statusOf(_file.get()).st_nlink == 0) return false;
        reserve(name);
        map(MAP_SHARED);
        return true;
    }

    // If memory were only promised and then not available, touching it would kill the process.
    void reserve(const std::string& name)
    {
        int code = 0;
        do code = posix_fallocate(_file.get(), 0, sizeof(pthread_mutex_t));
        while (code == EINTR);
        if (code == 0) return;
        if (setFileLock(_file.get(), USE, F_WRLCK, false)) shm_unlink(name.c_str());
        ZU_RAISE_SYSTEM_ERROR(code);
    }

    void map(int flags)
    {
        void* const memory =
            mmap(nullptr, sizeof(pthread_mutex_t), PROT_READ | PROT_WRITE, flags, _file.get(), 0);
        if (memory == MAP_FAILED) ZU_RAISE_SYSTEM_ERROR(errno);
        _mutex = static_cast<pthread_mutex_t*>(memory);
        if (_file.get() < 0) makeMutex(*_mutex);
    }

    SharedMemory() = default;

    OsDescriptor _file{-1};
    pthread_mutex_t* _mutex = nullptr;
    std::string _name;
    pid_t _user = getpid();
};

// The memory of all locks of this process. Most locks live as long as their process and are never
// destroyed, so their names are given up when the process exits.
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
