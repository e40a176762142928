#include "support/childProcess.h"

#include "support/tempDir.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace support
{

namespace
{

std::string readText(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::erase(text, '\r');
    return text;
}

} // namespace

ProgramResult runProgram(const std::string& name, const std::vector<std::string>& arguments,
                         const Environment& environment)
{
    const TempDir dir;
    Environment changes{{"B7Q_TEST_DIR", dir.file("logs")}};
    for (const auto& [variable, value] : environment) changes[variable] = value;
    ProgramResult result;
    runToFiles(programPath(name), arguments, changes, dir.file("out"), dir.file("err"), result);
    result.out = readText(dir.file("out"));
    result.err = readText(dir.file("err"));
    return result;
}

std::string programPath(const std::string& name)
{
    return std::string(ZU_TEST_BIN_DIR "/") + name + ZU_TEST_PROGRAM_SUFFIX;
}

std::string modulePath(const std::string& name)
{
    return std::string(ZU_TEST_BIN_DIR "/lib") + name + ZU_TEST_MODULE_SUFFIX;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

} // namespace support
