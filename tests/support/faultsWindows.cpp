#include "support/faults.h"

#include <windows.h>

namespace
{

using support::Call;

bool isDriveFalse = false;
UINT falseType = 0;
DWORD falseSectorSize = 0;
bool isWithoutNumbers = false;
HANDLE unclosed = nullptr;

// Whether this call is to fail; sets the last error if so.
bool fails(Call call)
{
    int error = 0;
    if (!support::isToFail(call, error)) return false;
    SetLastError(static_cast<DWORD>(error));
    return true;
}

} // namespace

// System calls go through pointers of these names, which the linker replaces.
#define ZU_TEST_WRAP(call, parameters, words, name, failure)                                       \
    extern decltype(&call) __real___imp_##call;                                                    \
    static auto WINAPI fail##call parameters->decltype(call words)                                 \
    {                                                                                              \
        return fails(Call::name) ? failure : __real___imp_##call words;                            \
    }                                                                                              \
    decltype(&call) __wrap___imp_##call = fail##call;

ZU_TEST_WRAP(CreateFileA,
             (LPCSTR a, DWORD b, DWORD c, LPSECURITY_ATTRIBUTES d, DWORD e, DWORD f, HANDLE g),
             (a, b, c, d, e, f, g), CREATE_FILE, INVALID_HANDLE_VALUE)
ZU_TEST_WRAP(FindFirstFileA, (LPCSTR a, LPWIN32_FIND_DATAA b), (a, b), FIND_FIRST_FILE,
             INVALID_HANDLE_VALUE)
ZU_TEST_WRAP(FindNextFileA, (HANDLE a, LPWIN32_FIND_DATAA b), (a, b), FIND_NEXT_FILE, FALSE)
ZU_TEST_WRAP(FlushFileBuffers, (HANDLE a), (a), FLUSH_FILE_BUFFERS, FALSE)
ZU_TEST_WRAP(GetFileAttributesA, (LPCSTR a), (a), GET_FILE_ATTRIBUTES, INVALID_FILE_ATTRIBUTES)
ZU_TEST_WRAP(GetFileSizeEx, (HANDLE a, PLARGE_INTEGER b), (a, b), GET_FILE_SIZE, FALSE)
ZU_TEST_WRAP(GetFileTime, (HANDLE a, LPFILETIME b, LPFILETIME c, LPFILETIME d), (a, b, c, d),
             GET_FILE_TIME, FALSE)
ZU_TEST_WRAP(GetFinalPathNameByHandleA, (HANDLE a, LPSTR b, DWORD c, DWORD d), (a, b, c, d),
             GET_FINAL_PATH_NAME, 0)
ZU_TEST_WRAP(GetComputerNameA, (LPSTR a, LPDWORD b), (a, b), GET_HOST_NAME, FALSE)
ZU_TEST_WRAP(GetUserNameA, (LPSTR a, LPDWORD b), (a, b), GET_USER_NAME, FALSE)
ZU_TEST_WRAP(MoveFileExA, (LPCSTR a, LPCSTR b, DWORD c), (a, b, c), MOVE_FILE, FALSE)
ZU_TEST_WRAP(SetEndOfFile, (HANDLE a), (a), SET_END_OF_FILE, FALSE)
ZU_TEST_WRAP(SetFilePointerEx, (HANDLE a, LARGE_INTEGER b, PLARGE_INTEGER c, DWORD d), (a, b, c, d),
             SET_FILE_POINTER, FALSE)
ZU_TEST_WRAP(SetFileTime, (HANDLE a, const FILETIME* b, const FILETIME* c, const FILETIME* d),
             (a, b, c, d), SET_FILE_TIME, FALSE)

#undef ZU_TEST_WRAP

extern "C"
{

    extern decltype(&CloseHandle) __real___imp_CloseHandle;
    extern decltype(&ReadFile) __real___imp_ReadFile;
    extern decltype(&WriteFile) __real___imp_WriteFile;
    extern decltype(&GetDiskFreeSpaceA) __real___imp_GetDiskFreeSpaceA;
    extern decltype(&GetDriveTypeA) __real___imp_GetDriveTypeA;
    extern decltype(&GetFileInformationByHandle) __real___imp_GetFileInformationByHandle;

    static BOOL WINAPI failClose(HANDLE handle)
    {
        if (!fails(Call::CLOSE_HANDLE)) return __real___imp_CloseHandle(handle);
        unclosed = handle;
        return FALSE;
    }

    static BOOL WINAPI failRead(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                                LPOVERLAPPED overlapped)
    {
        if (!fails(Call::READ_FILE))
            return __real___imp_ReadFile(file, buffer, size, count, overlapped);
        *count = 0;
        return FALSE;
    }

    static BOOL WINAPI failWrite(HANDLE file, LPCVOID buffer, DWORD size, LPDWORD count,
                                 LPOVERLAPPED overlapped)
    {
        if (!fails(Call::WRITE_FILE))
            return __real___imp_WriteFile(file, buffer, size, count, overlapped);
        *count = 0;
        return FALSE;
    }

    static BOOL WINAPI failDiskFreeSpace(LPCSTR root, LPDWORD sectors, LPDWORD bytes,
                                         LPDWORD freeClusters, LPDWORD clusters)
    {
        if (fails(Call::GET_DISK_FREE_SPACE)) return FALSE;
        const BOOL result =
            __real___imp_GetDiskFreeSpaceA(root, sectors, bytes, freeClusters, clusters);
        if (isDriveFalse) *bytes = falseSectorSize;
        return result;
    }

    static UINT WINAPI falseDriveType(LPCSTR root)
    {
        return isDriveFalse ? falseType : __real___imp_GetDriveTypeA(root);
    }

    static BOOL WINAPI failFileInformation(HANDLE file, LPBY_HANDLE_FILE_INFORMATION information)
    {
        if (fails(Call::GET_FILE_INFORMATION)) return FALSE;
        const BOOL result = __real___imp_GetFileInformationByHandle(file, information);
        if (isWithoutNumbers) information->nFileIndexHigh = information->nFileIndexLow = 0;
        return result;
    }

    decltype(&CloseHandle) __wrap___imp_CloseHandle = failClose;
    decltype(&ReadFile) __wrap___imp_ReadFile = failRead;
    decltype(&WriteFile) __wrap___imp_WriteFile = failWrite;
    decltype(&GetDiskFreeSpaceA) __wrap___imp_GetDiskFreeSpaceA = failDiskFreeSpace;
    decltype(&GetDriveTypeA) __wrap___imp_GetDriveTypeA = falseDriveType;
    decltype(&GetFileInformationByHandle) __wrap___imp_GetFileInformationByHandle =
        failFileInformation;

} // extern "C"

namespace support
{

void closeUnclosed()
{
    CloseHandle(unclosed);
    unclosed = nullptr;
}

FalseDrive::FalseDrive(std::uint32_t type, std::uint32_t sectorSize)
{
    isDriveFalse = true;
    falseType = type;
    falseSectorSize = sectorSize;
}

FalseDrive::~FalseDrive()
{
    isDriveFalse = false;
}

NoFileNumbers::NoFileNumbers()
{
    isWithoutNumbers = true;
}

NoFileNumbers::~NoFileNumbers()
{
    isWithoutNumbers = false;
}

} // namespace support
