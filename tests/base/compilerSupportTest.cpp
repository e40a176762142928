#include "base/compilerSupport.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <typeinfo>

namespace
{

namespace Compiler = Zu::Compiler;

TEST(CompilerSupport, NamesOfTypesAreThoseOfTheLanguage)
{
    EXPECT_EQ(Compiler::demangled(typeid(int).name()), "int");
    EXPECT_EQ(Compiler::demangled(typeid(Compiler::CpuidRegisters).name()),
              "Zu::Compiler::CpuidRegisters");
    EXPECT_EQ(Compiler::demangled("no name of a type"), "no name of a type");
}

TEST(CompilerSupport, TheProcessorNamesItsMaker)
{
    const Compiler::CpuidRegisters registers = Compiler::cpuid(0, 0);
    EXPECT_GT(registers._eax, 0U);
    for (const std::uint32_t word : {registers._ebx, registers._edx, registers._ecx})
        for (int i = 0; i < 4; ++i)
        {
            const auto character = static_cast<char>(word >> (8 * i) & 0xFF);
            EXPECT_GE(character, ' ');
            EXPECT_LE(character, '~');
        }
}

TEST(CompilerSupport, ADescriptorThatIsNoneIsNotAdopted)
{
    std::ofstream file;
    EXPECT_FALSE(Compiler::adoptDescriptor(file, -1, std::ios::binary));
    EXPECT_FALSE(file.is_open());
}

} // namespace
