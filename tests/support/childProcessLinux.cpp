#include "support/childProcess.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace support
{

namespace
{

std::map<std::string, std::string> changedEnvironment(const Environment& changes)
{
    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry; ++entry)
    {
        const std::string text = *entry;
        const std::size_t separator = text.find('=');
        if (separator != std::string::npos)
            variables[text.substr(0, separator)] = text.substr(separator + 1);
    }
    for (const auto& [name, value] : changes)
    {
        if (value)
            variables[name] = *value;
        else
            variables.erase(name);
    }
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

void runToFiles(const std::string& path, const std::vector<std::string>& arguments,
                const Environment& environment, const std::string& outFile,
                const std::string& errFile, ProgramResult& result)
{
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> entries;
    for (const auto& [name, value] : changedEnvironment(environment))
        entries.push_back(name + "=" + value);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    const int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 1, outFile.c_str(), create, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errFile.c_str(), create, 0600);
    pid_t child = 0;
    const int error = posix_spawn(&child, path.c_str(), &actions, nullptr, pointersTo(words).data(),
                                  pointersTo(entries).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("can't start " + path);

    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    result.aborted = WIFSIGNALED(status);
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace support
