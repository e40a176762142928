// Writes what a child process sees into the file named by its first word, one line for each further
// word: the word itself, or what it requests. The file appears when it is complete.
//
//   --await=FILE      waits until the file is there, and writes nothing
//   --variable=NAME   the value of the environment variable
//   --directory       the current directory
//   --open=FILE       whether the process has the file open; on Linux only

#include "base/osEnv.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace
{

// Whether the word is the option; `value` gets the rest of the word.
bool isOption(const std::string& word, const std::string& option, std::string& value)
{
    if (word.compare(0, option.size(), option) != 0) return false;
    value = word.substr(option.size());
    return true;
}

bool isOpen(const std::string& file)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry, ignored) == file) return true;
    }
    return false;
}

void answer(const std::string& word, std::ostream& os)
{
    std::string value;
    if (isOption(word, "--await=", value))
    {
        while (!std::filesystem::exists(value)) std::this_thread::yield();
        return;
    }
    if (isOption(word, "--variable=", value))
    {
        const char* const text = Zu::OsEnv::getVariable(value.c_str());
        os << (text ? text : "(unset)");
    }
    else if (isOption(word, "--open=", value))
        os << (isOpen(value) ? "open" : "closed");
    else if (word == "--directory")
        os << std::filesystem::current_path().string();
    else
        os << word;
    os << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) return 64;
    const std::string file = argv[1];
    {
        std::ofstream stream(file + ".part", std::ios::binary);
        for (int i = 2; i < argc; ++i) answer(argv[i], stream);
    }
    std::filesystem::rename(file + ".part", file);
}
