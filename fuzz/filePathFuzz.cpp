// Two lines with one path each.

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "base/osFilePath.h"
#include "base/osPathText.h"

#include "fuzzTarget.h"
#include "support/platform.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Zu::OsFilePath;

const std::string SEPARATOR = OsFilePath::getSeparator();

std::string joined(const std::string& base, const std::string& element)
{
    const bool isOpen = base.empty() || base.substr(base.size() - 1) == SEPARATOR;
    return base + (isOpen ? "" : SEPARATOR) + element;
}

bool isAbsolute(const std::string& path)
{
    if (!support::onWindows) return path.substr(0, 1) == "/";
    return path.size() > 2 && (path[1] == ':' || path.substr(0, 2) == "\\\\");
}

void checkConcatenation(const std::string& base, const std::string& element)
{
    const OsFilePath path(fuzz::exactCopy(base).get());
    const OsFilePath other(fuzz::exactCopy(element).get());
    FUZZ_REQUIRE(path.getChars() == base);
    FUZZ_REQUIRE(path.isEmpty() == base.empty());
    FUZZ_REQUIRE(path.isAbsolute() == isAbsolute(base));
    FUZZ_REQUIRE(path.isRelative() == !path.isAbsolute());

    OsFilePath sum(path);
    try
    {
        sum += other;
        FUZZ_REQUIRE(!isAbsolute(element));
        FUZZ_REQUIRE(sum.getChars() == joined(base, element));
    }
    catch (const Zu::OsFileEx::ExIllegalPathConcat&)
    {
        FUZZ_REQUIRE(isAbsolute(element));
        FUZZ_REQUIRE(sum.getChars() == base);
    }
    sum = path;
    try
    {
        sum += fuzz::exactCopy(element).get();
        FUZZ_REQUIRE(element.find(SEPARATOR) == std::string::npos);
        FUZZ_REQUIRE(sum.getChars() == joined(base, element));
    }
    catch (const Zu::OsFileEx::ExSeparatorNotAllowed&)
    {
        FUZZ_REQUIRE(element.find(SEPARATOR) != std::string::npos);
        FUZZ_REQUIRE(sum.getChars() == base);
    }
    const int order = base.compare(element);
    FUZZ_REQUIRE(OsFilePath::compare(base.c_str(), element.c_str()) == (order > 0) - (order < 0));
}

std::string extensionOf(const std::string& name)
{
    const std::size_t point = name.rfind('.');
    return point == std::string::npos ? "" : name.substr(point + 1);
}

// The parts of the resolved path; nothing if it can't be resolved.
struct Parts
{
    std::string _base;
    std::string _directory;
    std::string _extension;
};

std::optional<Parts> partsOf(const std::string& path)
{
    const OsFilePath given(fuzz::exactCopy(path).get());
    try
    {
        const Zu::ArrayPtr<char> extension(given.getExtension());
        return Parts{given.getBaseName().getChars(), given.getDirectoryName().getChars(),
                     extension.get()};
    }
    catch (const Zu::ExSysErrorWindows&)
    {
        return std::nullopt;
    }
}

// The properties of the parts that every platform guarantees.
void checkParts(const std::string& path)
{
    const std::optional<Parts> parts = partsOf(path);
    if (path.empty()) FUZZ_REQUIRE(!parts);
    if (!parts) return;
    FUZZ_REQUIRE(parts->_base.find(SEPARATOR) == std::string::npos);
    FUZZ_REQUIRE(parts->_extension == extensionOf(parts->_base));
    if (support::onWindows) return;
    const std::string current = std::filesystem::current_path().string();
    const std::string full = Zu::osLexicalFullPath(current, path);
    FUZZ_REQUIRE(full.size() < 1024);
    if (path == "." || path == "..")
        FUZZ_REQUIRE(parts->_directory == full);
    else
        FUZZ_REQUIRE(joined(parts->_directory, parts->_base) == full ||
                     (full == "/" && parts->_directory == "/" && parts->_base.empty()));
}

std::string withoutSeparatorAtEnd(std::string path)
{
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

// The meaning of two leading separators in the standard library is platform-dependent.
std::string inSingleRoot(const std::string& path)
{
    const std::size_t begin = std::min(path.find_first_not_of('/'), path.size());
    return begin < 2 ? path : path.substr(begin - 1);
}

// The form of this platform's resolved paths is computed on every platform.
void checkResolution(const std::string& currentDir, const std::string& path)
{
    const std::string base = "/" + currentDir;
    const std::string full = Zu::osLexicalFullPath(base, path);
    FUZZ_REQUIRE(full.front() == '/');
    const std::vector<std::string> elements = fuzz::split(full.substr(1), '/');
    for (std::size_t i = 0; i < elements.size(); ++i)
    {
        FUZZ_REQUIRE(elements[i] != "." && elements[i] != "..");
        // Only a trailing separator is followed by an empty element.
        FUZZ_REQUIRE(!elements[i].empty() || i + 1 == elements.size());
    }
    FUZZ_REQUIRE(Zu::osLexicalFullPath("/", full) == full);
    if (!path.empty() && path.back() == '/') FUZZ_REQUIRE(full.back() == '/');
    if (full.size() > 1 && full.back() == '/') FUZZ_REQUIRE(path.back() == '/');
    // The standard library treats trailing separators differently, and has other paths on Windows.
    if (support::onWindows) return;
    namespace fs = std::filesystem;
    const fs::path joinedPath = fs::path(inSingleRoot(base)) / fs::path(inSingleRoot(path));
    const std::string standard = joinedPath.lexically_normal().string();
    FUZZ_REQUIRE(withoutSeparatorAtEnd(full) == withoutSeparatorAtEnd(standard));
}

void run(fuzz::Input input)
{
    const std::string first = input.takeLine();
    const std::string second = input.takeLine();
    checkConcatenation(first, second);
    checkParts(first);
    checkResolution(first, second);
    FUZZ_REQUIRE(Zu::osIsAbsoluteWithoutDrive(first) == (first.substr(0, 1) == "/"));
    FUZZ_REQUIRE(Zu::osIsAbsoluteWithDrive(first) ==
                 (first.size() > 2 && (first[1] == ':' || first.substr(0, 2) == "\\\\")));
}

} // namespace

FUZZ_TARGET(filePath, run);
