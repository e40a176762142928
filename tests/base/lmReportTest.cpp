#include "base/lmReport.h"

#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::LmBlock;
using Zu::LmLibrary;

void* pointerTo(std::uintptr_t address)
{
    return reinterpret_cast<void*>(address);
}

std::string reportOf(const std::vector<LmLibrary>& libraries)
{
    testing::internal::CaptureStdout();
    Zu::lmPrintReport(libraries);
    std::string text = testing::internal::GetCapturedStdout();
    std::erase(text, '\r');
    return text;
}

// An address as the runtime prints it.
std::string printed(std::uintptr_t address)
{
    char text[40];
    std::snprintf(text, sizeof text, "%p", pointerTo(address));
    return text;
}

LmBlock blockOf(std::uintptr_t address, std::uint64_t size, std::uint32_t flags)
{
    return {flags, pointerTo(address), pointerTo(address), size};
}

std::string blockText(int number, std::uintptr_t address, const std::string& size,
                      const std::string& flags)
{
    return "\tBlock: " + std::to_string(number) + " \n\t\tAddress: " + printed(address) +
           " \n \t\tSize:    " + size + " \n\t\tFlags:   " + flags + "\n";
}

TEST(LmReport, NoLibrariesAreNoText)
{
    EXPECT_EQ(reportOf({}), "");
}

TEST(LmReport, LibrariesAndTheirBlocksAreNumberedFromZero)
{
    LmLibrary first(pointerTo(0x10000), "dir/first");
    first._blocks = {blockOf(0x10000, 4096, 4), blockOf(0x11000, 512, 12)};
    LmLibrary second(pointerTo(0x50000), "second 100%s");
    second._blocks = {blockOf(0x50000, 1, 16)};
    EXPECT_EQ(reportOf({first, LmLibrary(), second}),
              "\n\nLibrary: 0 \n\tLibrary path: dir/first \n\tAddress: " + printed(0x10000) +
                  " \n\n" + blockText(0, 0x10000, "4096", "READ ") +
                  blockText(1, 0x11000, "512", "READ WRITE ") +
                  "\n\nLibrary: 1 \n\tLibrary path: Unknown \n\tAddress: " + printed(0) + " \n\n" +
                  "\n\nLibrary: 2 \n\tLibrary path: second 100%s \n\tAddress: " + printed(0x50000) +
                  " \n\n" + blockText(0, 0x50000, "1", "EXECUTE "));
}

TEST(LmReport, ABlockOfSizeZeroPrintsOnlyItsNumberLine)
{
    LmLibrary library(pointerTo(0x10000), "a");
    library._blocks = {blockOf(0x10000, 0, 60), blockOf(0x10000, 1, 4), blockOf(0x20000, 0, 0)};
    EXPECT_EQ(reportOf({library}),
              "\n\nLibrary: 0 \n\tLibrary path: a \n\tAddress: " + printed(0x10000) +
                  " \n\n\tBlock: 0 \n" + blockText(1, 0x10000, "1", "READ ") + "\tBlock: 2 \n");
}

TEST(LmReport, FlagsHaveAnOrderOfTheirOwn)
{
    const char* const names[] = {"READ ", "WRITE ", "COPY ", "EXECUTE "};
    const std::uint32_t bits[] = {4, 8, 32, 16};
    for (unsigned int chosen = 0; chosen < 16; ++chosen)
    {
        std::uint32_t flags = 1U | 2U | 64U;
        std::string text;
        for (unsigned int i = 0; i < 4; ++i)
            if (chosen & (1U << i))
            {
                flags |= bits[i];
                text += names[i];
            }
        LmLibrary library(pointerTo(0x10000), "a");
        library._blocks = {blockOf(0x10000, 1, flags)};
        EXPECT_TRUE(reportOf({library}).ends_with(blockText(0, 0x10000, "1", text))) << flags;
    }
}

TEST(LmReport, ASizeIsPrintedAsAnInt)
{
    LmLibrary library(pointerTo(0x10000), "a");
    library._blocks = {blockOf(0x10000, 0x7fffffff, 0)};
    EXPECT_TRUE(reportOf({library}).ends_with(blockText(0, 0x10000, "2147483647", "")));
    library._blocks = {blockOf(0x10000, 0x80000000, 0)};
    EXPECT_TRUE(reportOf({library}).ends_with(blockText(0, 0x10000, "-2147483648", "")));
    library._blocks = {blockOf(0x10000, 0x100000005, 0)};
    EXPECT_TRUE(reportOf({library}).ends_with(blockText(0, 0x10000, "5", "")));
}

} // namespace
