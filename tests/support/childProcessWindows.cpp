#include "support/childProcess.h"

#include <cstring>
#include <stdexcept>
#include <windows.h>

namespace support
{

namespace
{

// Quotes a word for the C runtime of the child, which splits the command line.
std::string quoted(const std::string& word)
{
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char character : word)
    {
        if (character == '"') text.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        text += character;
    }
    text.append(backslashes, '\\');
    return text + "\"";
}

std::string environmentBlock(const Environment& changes)
{
    struct CaseBlindLess
    {
        bool operator()(const std::string& a, const std::string& b) const
        {
            return _stricmp(a.c_str(), b.c_str()) < 0;
        }
    };
    std::map<std::string, std::string, CaseBlindLess> variables;
    char* const present = GetEnvironmentStringsA();
    for (const char* entry = present; *entry; entry += std::strlen(entry) + 1)
    {
        const char* const separator = std::strchr(entry + 1, '=');
        if (separator) variables[std::string(entry, separator)] = separator + 1;
    }
    FreeEnvironmentStringsA(present);
    for (const auto& [name, value] : changes)
    {
        if (value)
            variables[name] = *value;
        else
            variables.erase(name);
    }
    std::string block;
    for (const auto& [name, value] : variables) block += name + "=" + value + '\0';
    return block + '\0';
}

HANDLE openInheritable(const char* file, DWORD access, DWORD creation)
{
    SECURITY_ATTRIBUTES security{sizeof security, nullptr, TRUE};
    return CreateFileA(file, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &security, creation,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Whether the process has announced that it terminates itself, see stress::killSelf().
bool endsHard(DWORD process)
{
    const std::string name = "zuEndsHard" + std::to_string(process);
    const HANDLE event = OpenEventA(SYNCHRONIZE, FALSE, name.c_str());
    if (event) CloseHandle(event);
    return event != nullptr;
}

} // namespace

void runToFiles(const std::string& path, const std::vector<std::string>& arguments,
                const Environment& environment, const std::string& outFile,
                const std::string& errFile, ProgramResult& result)
{
    std::string line = quoted(path);
    for (const std::string& argument : arguments) line += " " + quoted(argument);
    std::string block = environmentBlock(environment);

    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = openInheritable("NUL", GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput = openInheritable(outFile.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = openInheritable(errFile.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    PROCESS_INFORMATION process{};
    // Wine occasionally fails to start a program while many others start and end.
    constexpr int TRIALS = 5;
    BOOL started = FALSE;
    DWORD error = 0;
    for (int trial = 0; trial < TRIALS && !started; ++trial)
    {
        if (trial > 0) Sleep(200);
        started = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, block.data(),
                                 nullptr, &startup, &process);
        error = GetLastError();
    }
    for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError})
        CloseHandle(handle);
    if (!started)
        throw std::runtime_error("can't start " + path + ": error " + std::to_string(error));

    // A process that terminates itself sometimes hangs in Wine: that is then completed here.
    constexpr DWORD PATIENCE = 2000;
    while (WaitForSingleObject(process.hProcess, PATIENCE) == WAIT_TIMEOUT)
        if (endsHard(process.dwProcessId)) TerminateProcess(process.hProcess, 3);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    // abort() ends a program of this runtime with 3, a fatal exception with its own code.
    result.aborted = exitCode == 3 || exitCode >= 0xC0000000U;
    result.exitCode = static_cast<int>(exitCode);
}

} // namespace support
