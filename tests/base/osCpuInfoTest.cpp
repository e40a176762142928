#include "base/osCpuInfo.h"

#include "support/childProcess.h"
#include "support/platform.h"

#include <chrono>
#include <cpuid.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace
{

using support::onWindows;
using support::ProgramResult;
using support::runProgram;
using Zu::OsCpuInfo;

// Expects that the program was aborted by a failed check of this expression after this output.
void expectAborted(const ProgramResult& result, const std::string& out,
                   const std::string& expression)
{
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(result.out, out);
    const std::string start = "Assertion failed: " + expression;
    EXPECT_EQ(result.err.substr(0, start.size()), start) << result.err;
}

TEST(OsCpuInfo, NothingIsKnownBeforeInitialize)
{
    const ProgramResult result = runProgram("processorProgram", {"features", "type", "name"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "MMX 0, SSE 0\ntype 4\nname UNKNOWN\nend\n");
}

TEST(OsCpuInfo, A64BitProcessorIsKnownAfterInitialize)
{
    const ProgramResult result =
        runProgram("processorProgram", {"initialize", "features", "type", "frequency"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "MMX 1, SSE 1\ntype 3\nfrequency 1\nend\n");
}

TEST(OsCpuInfo, FinalizeForgetsNothing)
{
    const ProgramResult result =
        runProgram("processorProgram", {"initialize", "finalize", "features", "type", "frequency"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "MMX 1, SSE 1\ntype 3\nfrequency 1\nend\n");
}

TEST(OsCpuInfo, FrequencyIsNotKnownBeforeInitialize)
{
    expectAborted(runProgram("processorProgram", {"features", "frequency"}), "MMX 0, SSE 0\n",
                  "_hwCounterFrequency != 0, file ");
}

TEST(OsCpuInfo, A64BitProcessorHasNoName)
{
    expectAborted(runProgram("processorProgram", {"name", "initialize", "name"}), "name UNKNOWN\n",
                  "_type != X64");
}

TEST(OsCpuInfo, TypesHaveFixedValues)
{
    EXPECT_EQ(OsCpuInfo::MIPS, 0);
    EXPECT_EQ(OsCpuInfo::IA32, 1);
    EXPECT_EQ(OsCpuInfo::IA64, 2);
    EXPECT_EQ(OsCpuInfo::X64, 3);
    EXPECT_EQ(OsCpuInfo::UNKNOWN, 4);
}

TEST(OsCpuInfo, WithAllPointersNullNothingHappens)
{
    EXPECT_NO_THROW(OsCpuInfo::getDetailedType(nullptr, nullptr, nullptr, nullptr));
}

TEST(OsCpuInfo, FamilyModelAndSteppingAreFilledWithoutTheType)
{
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
    ASSERT_TRUE(__get_cpuid(1, &eax, &ebx, &ecx, &edx));
    int family = -1;
    int model = -1;
    int stepping = -1;
    OsCpuInfo::getDetailedType(nullptr, &family, &model, &stepping);
    EXPECT_EQ(family, static_cast<int>(eax >> 8 & 15));
    EXPECT_EQ(model, static_cast<int>(eax >> 4 & 15));
    EXPECT_EQ(stepping, static_cast<int>(eax & 15));

    int alone = -1;
    OsCpuInfo::getDetailedType(nullptr, nullptr, &alone, nullptr);
    EXPECT_EQ(alone, model);
}

TEST(OsCpuInfo, TypeIsFilledAlone)
{
    OsCpuInfo::initialize();
    OsCpuInfo::Type type = OsCpuInfo::MIPS;
    OsCpuInfo::getDetailedType(&type, nullptr, nullptr, nullptr);
    EXPECT_EQ(type, OsCpuInfo::X64);
}

TEST(OsCpuInfo, TheCounterNeverGoesBack)
{
    std::uint64_t last = OsCpuInfo::getHwCounterValue();
    for (int i = 0; i < 100000; ++i)
    {
        const std::uint64_t value = OsCpuInfo::getHwCounterValue();
        ASSERT_GE(value, last);
        last = value;
    }
}

TEST(OsCpuInfo, TheCounterRises)
{
    const std::uint64_t first = OsCpuInfo::getHwCounterValue();
    while (OsCpuInfo::getHwCounterValue() == first) continue;
    EXPECT_GT(OsCpuInfo::getHwCounterValue(), first);
}

TEST(OsCpuInfo, OnLinuxTheCounterIsTheSteadyClockInNanoseconds)
{
    if (onWindows) GTEST_SKIP() << "Windows states a frequency of its own.";
    const auto steadyTime = []
    {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
    };
    OsCpuInfo::initialize();
    EXPECT_EQ(OsCpuInfo::getHwCounterFrequency(), 1000000000U);
    const std::uint64_t before = steadyTime();
    const std::uint64_t value = OsCpuInfo::getHwCounterValue();
    const std::uint64_t after = steadyTime();
    EXPECT_LE(before, value);
    EXPECT_LE(value, after);
}

} // namespace
