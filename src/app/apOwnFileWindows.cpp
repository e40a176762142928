#include "app/apOwnFile.h"

#include <memory>
#include <system_error>
#include <vector>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

namespace Zu
{

namespace
{

std::string textOf(DWORD code)
{
    return std::system_category().message(static_cast<int>(code));
}

struct CloseFile
{
    void operator()(void* file) const
    {
        CloseHandle(file);
    }
};
using File = std::unique_ptr<void, CloseFile>;

struct FreeLocal
{
    void operator()(void* memory) const
    {
        LocalFree(memory);
    }
};

constexpr DWORD CHANGES =
    FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC | WRITE_OWNER | GENERIC_WRITE | GENERIC_ALL;

bool isWellKnown(PSID who, WELL_KNOWN_SID_TYPE type)
{
    return IsWellKnownSid(who, type) != FALSE;
}

bool isThisUser(PSID who)
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    const File guard(token);
    std::vector<char> user(sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE);
    DWORD size = 0;
    return GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()),
                               &size) &&
           EqualSid(reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid, who);
}

// Whoever may do everything anyway, and this user.
bool isTrusted(PSID who)
{
    return isWellKnown(who, WinLocalSystemSid) || isWellKnown(who, WinBuiltinAdministratorsSid) ||
           isWellKnown(who, WinCreatorOwnerSid) || isThisUser(who);
}

std::string nameOf(PSID who)
{
    char* text = nullptr;
    if (!ConvertSidToStringSidA(who, &text)) return "somebody";
    const std::unique_ptr<char, FreeLocal> guard(text);
    return text;
}

// Those of objects in directories of users have another form, and are on no file.
ApAccessEntry::Kind kindOf(BYTE type)
{
    switch (type)
    {
    case ACCESS_ALLOWED_ACE_TYPE:
    case ACCESS_ALLOWED_CALLBACK_ACE_TYPE:
        return ApAccessEntry::Kind::Allows;
    case ACCESS_DENIED_ACE_TYPE:
    case ACCESS_DENIED_OBJECT_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_ACE_TYPE:
    case ACCESS_DENIED_CALLBACK_OBJECT_ACE_TYPE:
        return ApAccessEntry::Kind::Denies;
    default:
        return ApAccessEntry::Kind::Unknown;
    }
}

ApAccessEntry entryOf(void* ace)
{
    const auto* const header = static_cast<ACE_HEADER*>(ace);
    ApAccessEntry entry;
    entry._kind = kindOf(header->AceType);
    entry._isForOthers = (header->AceFlags & INHERIT_ONLY_ACE) != 0;
    if (entry._kind != ApAccessEntry::Kind::Allows) return entry;
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
    entry._isForChanges = (allowed->Mask & CHANGES) != 0;
    entry._isForTrusted = isTrusted(&allowed->SidStart);
    entry._who = nameOf(&allowed->SidStart);
    return entry;
}

std::string refusalOf(ACL* list)
{
    // Without a list everybody may do everything.
    if (!list) return "everybody can change it";
    std::vector<ApAccessEntry> entries;
    for (DWORD i = 0; i < list->AceCount; ++i)
    {
        void* ace = nullptr;
        if (!GetAce(list, i, &ace)) return textOf(GetLastError());
        entries.push_back(entryOf(ace));
    }
    return apRefusalOf(entries);
}

std::string refusalOf(HANDLE file)
{
    if (GetFileType(file) != FILE_TYPE_DISK) return "it is not a plain file";
    PSID owner = nullptr;
    ACL* list = nullptr;
    void* descriptor = nullptr;
    const DWORD code = GetSecurityInfo(file, SE_FILE_OBJECT,
                                       OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                       &owner, nullptr, &list, nullptr, &descriptor);
    if (code != ERROR_SUCCESS) return textOf(code);
    const std::unique_ptr<void, FreeLocal> guard(descriptor);
    if (!owner || !isTrusted(owner)) return "it belongs to another user";
    return refusalOf(list);
}

} // namespace

std::string apReadOwnFile(const std::string& path, std::string& content)
{
    const HANDLE handle =
        CreateFileA(path.c_str(), GENERIC_READ | READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return textOf(GetLastError());
    const File file(handle);
    if (std::string refusal = refusalOf(handle); !refusal.empty()) return refusal;
    content.resize(AP_LONGEST_FILE + 1);
    std::size_t size = 0;
    for (DWORD count = 1; count > 0 && size < content.size(); size += count)
        if (!ReadFile(handle, content.data() + size, static_cast<DWORD>(content.size() - size),
                      &count, nullptr))
            return textOf(GetLastError());
    if (size > AP_LONGEST_FILE) return "it is longer than 1 MiB";
    content.resize(size);
    return {};
}

} // namespace Zu
