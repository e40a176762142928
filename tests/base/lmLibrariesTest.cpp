#include "base/lmLibraries.h"

#include "base/osSharedLib.h"

#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::linesOf;
using support::onWindows;
using Zu::LmBlock;
using Zu::LmLibraries;
using Zu::LmLibrary;

// An object of this program that is never written to.
const char ownText[] = "a constant of the test program";

std::uintptr_t numberOf(const volatile void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

const LmBlock* blockAt(const LmLibrary& library, std::uintptr_t address)
{
    for (const LmBlock& block : library._blocks)
        if (address >= numberOf(block._address) && address - numberOf(block._address) < block._size)
            return &block;
    return nullptr;
}

std::vector<const LmLibrary*> librariesAt(std::uintptr_t address)
{
    std::vector<const LmLibrary*> found;
    for (const LmLibrary& library : LmLibraries::getList())
        if (blockAt(library, address)) found.push_back(&library);
    return found;
}

std::string leafOf(const LmLibrary& library)
{
    return std::filesystem::path(library._path.get()).filename().string();
}

TEST(LmLibraries, ThisLibraryIsListedOnceWithItsFile)
{
    // A text of the library's own.
    const std::uintptr_t address = numberOf(Zu::OsSharedLib::getSuffix());
    const auto found = librariesAt(address);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(leafOf(*found[0]).starts_with("libZUbase")) << found[0]->_path.get();
    EXPECT_TRUE(std::filesystem::exists(found[0]->_path.get())) << found[0]->_path.get();
    const LmBlock* const block = blockAt(*found[0], address);
    EXPECT_TRUE(block->_flags & LmBlock::Read);
    EXPECT_FALSE(block->_flags & LmBlock::Write);
}

TEST(LmLibraries, TheProgramIsListedOnceWithItsFile)
{
    const auto found = librariesAt(numberOf(ownText));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(found[0]->_path.get())) << found[0]->_path.get();
    EXPECT_FALSE(leafOf(*found[0]).starts_with("libZUbase")) << found[0]->_path.get();
}

TEST(LmLibraries, CodeLiesInABlockThatCanBeExecuted)
{
    const auto address = reinterpret_cast<std::uintptr_t>(&leafOf);
    const auto found = librariesAt(address);
    ASSERT_EQ(found.size(), 1U);
    const LmBlock* const block = blockAt(*found[0], address);
    EXPECT_TRUE(block->_flags & LmBlock::Execute);
    EXPECT_FALSE(block->_flags & LmBlock::Write);
    EXPECT_TRUE(blockAt(*found[0], numberOf(ownText)));
}

TEST(LmLibraries, WhatNoModuleHoldsIsNotListed)
{
    const auto onHeap = std::make_unique<int>(1);
    EXPECT_TRUE(librariesAt(numberOf(onHeap.get())).empty());
    EXPECT_TRUE(librariesAt(0).empty());
}

TEST(LmLibraries, EveryLibraryIsListedOnceInTheOrderOfAddresses)
{
    std::uintptr_t end = 0;
    for (const LmLibrary& library : LmLibraries::getList())
    {
        SCOPED_TRACE(library._path.get());
        EXPECT_EQ(library._address, library._base);
        EXPECT_STRNE(library._path.get(), "");
        EXPECT_STRNE(library._path.get(), "Unknown");
        ASSERT_FALSE(library._blocks.empty());
        EXPECT_EQ(library._blocks.front()._address, library._base);
        EXPECT_GE(numberOf(library._base), end);
        std::uintptr_t endOfBlock = numberOf(library._base);
        for (const LmBlock& block : library._blocks)
        {
            EXPECT_GE(numberOf(block._address), endOfBlock);
            EXPECT_EQ(block._mappedAddress, block._address);
            EXPECT_EQ(block._flags & ~std::uint32_t{60}, 0U);
            EXPECT_GT(block._size, 0U);
            endOfBlock = numberOf(block._address) + block._size;
        }
        end = std::max(end, endOfBlock);
    }
}

std::vector<std::pair<void*, std::string>> basesAndPaths(const std::vector<LmLibrary>& libraries)
{
    std::vector<std::pair<void*, std::string>> list;
    for (const LmLibrary& library : libraries)
        list.emplace_back(library._base, library._path.get());
    return list;
}

TEST(LmLibraries, ASecondCallFillsTheSameListAfresh)
{
    const std::vector<LmLibrary>& first = LmLibraries::getList();
    const auto before = basesAndPaths(first);
    const std::vector<LmLibrary>& second = LmLibraries::getList();
    EXPECT_EQ(&second, &first);
    EXPECT_EQ(basesAndPaths(second), before);
    EXPECT_GE(before.size(), 2U);
    std::set<void*> bases;
    for (const auto& [base, path] : before) EXPECT_TRUE(bases.insert(base).second) << path;
}

// The output of a successful run of the program.
std::string outputOf(const std::vector<std::string>& words)
{
    const support::ProgramResult result = support::runProgram("heapProgram", words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

// An address as the runtime prints it.
std::string printedAddress(const std::string& text)
{
    void* address = nullptr;
    std::sscanf(text.c_str(), "%p", &address);
    std::array<char, 40> printed{};
    std::snprintf(printed.data(), printed.size(), "%p", address);
    return printed.data();
}

std::string flagsText(unsigned int flags)
{
    std::string text;
    if (flags & 4) text += "READ ";
    if (flags & 8) text += "WRITE ";
    if (flags & 32) text += "COPY ";
    if (flags & 16) text += "EXECUTE ";
    return text;
}

// The report of a list, which has a line for each library and each block.
std::string reportOf(const std::string& list)
{
    std::string report;
    int libraries = 0;
    int blocks = 0;
    for (const std::string& line : linesOf(list))
    {
        std::istringstream words(line);
        std::string kind;
        std::string address;
        words >> kind >> address;
        if (kind == "library")
        {
            std::string path;
            std::getline(words >> std::ws, path);
            report += "\n\nLibrary: " + std::to_string(libraries++) + " \n\tLibrary path: " + path +
                      " \n\tAddress: " + printedAddress(address) + " \n\n";
            blocks = 0;
            continue;
        }
        std::uint64_t size = 0;
        unsigned int flags = 0;
        words >> size >> flags;
        report += "\tBlock: " + std::to_string(blocks++) + " \n";
        if (size == 0) continue;
        report += "\t\tAddress: " + printedAddress(address) +
                  " \n \t\tSize:    " + std::to_string(static_cast<int>(size)) +
                  " \n\t\tFlags:   " + flagsText(flags) + "\n";
    }
    return report;
}

TEST(LmLibraries, TheReportTellsWhatIsInTheList)
{
    const std::string out = outputOf({"libraries"});
    const std::string between = "\n=====\n";
    const std::size_t end = out.find(between);
    ASSERT_NE(end, std::string::npos);
    const std::string list = out.substr(end + between.size());
    EXPECT_EQ(out.substr(0, end), reportOf(list));
    // A block of code.
    EXPECT_NE(out.find("\n\t\tFlags:   READ EXECUTE \n"), std::string::npos);
}

TEST(LmLibraries, TheReportNamesTheProgramAndTheLibrary)
{
    const std::string prefix = "\tLibrary path: ";
    int programs = 0;
    int libraries = 0;
    for (const std::string& line : linesOf(outputOf({"libraries"})))
    {
        if (!line.starts_with(prefix)) continue;
        ASSERT_EQ(line.back(), ' ');
        const std::filesystem::path path =
            line.substr(prefix.size(), line.size() - 1 - prefix.size());
        const std::filesystem::path program = support::programPath("heapProgram");
        if (path.filename() == program.filename())
        {
            ++programs;
            EXPECT_TRUE(std::filesystem::equivalent(path, program)) << path;
        }
        if (path.filename().string().starts_with("libZUbase")) ++libraries;
    }
    EXPECT_EQ(programs, 1);
    EXPECT_EQ(libraries, 1);
}

// A copy of a module in a directory of the test's own, by a name of about 200 characters.
std::string copyOfModule(const support::TempDir& dir, const char* part)
{
    const std::size_t length = 200;
    std::filesystem::path path = dir.path();
    while (path.string().size() + 50 < length) path /= std::string(40, 'd');
    std::filesystem::create_directories(path);
    std::string leaf = part;
    if (path.string().size() + leaf.size() < length)
        leaf.append(length - path.string().size() - leaf.size(), 'l');
    path /= leaf + Zu::OsSharedLib::getSuffix();
    std::filesystem::copy_file(support::modulePath("sampleModule"), path);
    return path.string();
}

TEST(LmLibraries, AModuleIsListedByItsFile)
{
    const support::TempDir dir;
    const std::string path = dir.file("listed module") + Zu::OsSharedLib::getSuffix();
    std::filesystem::copy_file(support::modulePath("sampleModule"), path);
    const std::vector<std::string> lines = linesOf(outputOf({"module", path, "listed module"}));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], "again");
    for (const std::string& listed : {lines[0], lines[2]})
        EXPECT_TRUE(std::filesystem::equivalent(listed, path)) << listed;
}

TEST(LmLibraries, ALongPathIsCutOnWindowsAlone)
{
    const support::TempDir dir;
    const std::string path = copyOfModule(dir, "long");
    const std::string part = std::string(40, 'd');
    const std::vector<std::string> lines = linesOf(outputOf({"module", path, part}));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], lines[2]);
    if (onWindows)
        EXPECT_EQ(lines[0].size(), 149U);
    else
        EXPECT_TRUE(std::filesystem::equivalent(lines[0], path)) << lines[0];
}

TEST(LmLibraries, AFileThatIsGoneIsToldSo)
{
    if (onWindows) GTEST_SKIP() << "the file of a loaded module can't be removed here";
    const support::TempDir dir;
    const std::string path =
        (std::filesystem::canonical(dir.path()) / "gone").string() + Zu::OsSharedLib::getSuffix();
    std::filesystem::copy_file(support::modulePath("sampleModule"), path);
    EXPECT_EQ(outputOf({"removed", path, "gone"}), path + " (deleted)\n");
}

} // namespace
