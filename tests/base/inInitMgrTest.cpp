// The library's own packages, started and stopped by a program without packages.

#include "base/inInitMgr.h"

#include "support/childProcess.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using support::linesOf;
using support::ProgramResult;

struct PackageRow
{
    const char* _name;
    int _transitiveCount;
    std::size_t _dependencies;
};

// In the order of start-up.
const PackageRow PACKAGES[] = {
    {"initialize", 0, 0}, {"heapMgr", 1, 1},   {"initArg", 1, 1},      {"osal", 1, 1},
    {"initVars", 2, 2},   {"profiling", 2, 2}, {"logger", 3, 3},       {"debugging", 5, 4},
    {"baseMath", 6, 5},   {"random", 6, 5},    {"discreteTime", 7, 5}, {"testing", 7, 7},
    {"base", 12, 12},
};

std::string expectedDump()
{
    std::string dump = "No packages waiting to be initialize.\n"
                       "13 packages currently saved:\n";
    for (const PackageRow& row : PACKAGES)
        dump += std::string("\t'") + row._name + "' Initialized (" +
                std::to_string(row._transitiveCount) + " dependencies)\n";
    return dump;
}

TEST(InInitMgr, TheLibraryStartsInItsOrderAndLeavesTheCommandLineWhole)
{
    for (const char* const program : {"emptyProgram", "emptyStaticProgram"})
    {
        const ProgramResult result = support::runProgram(program, {"-v", "--", "file"});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, expectedDump() + "word '" + support::programPath(program) +
                                  "'\n"
                                  "word '-v'\n"
                                  "word '--'\n"
                                  "word 'file'\n");
    }
}

// A text of blocks, each of three lines, in no stated order: aliases are listed by address.
std::vector<std::string> sortedBlocks(const std::vector<std::string>& lines)
{
    std::vector<std::string> blocks;
    for (std::size_t i = 0; i + 2 < lines.size(); i += 3)
        blocks.push_back(lines[i] + "\n" + lines[i + 1] + "\n" + lines[i + 2]);
    std::sort(blocks.begin(), blocks.end());
    return blocks;
}

// Walks through the lines of a report.
class Report
{
public:
    explicit Report(const std::string& text) : _lines(linesOf(text)) {}

    std::string next()
    {
        return _at < _lines.size() ? _lines[_at++] : "(end)";
    }

    // The lines up to the next "----", which is taken too.
    std::vector<std::string> untilRule()
    {
        std::vector<std::string> lines;
        for (std::string line = next(); line != "----" && line != "(end)"; line = next())
            lines.push_back(line);
        return lines;
    }

private:
    std::vector<std::string> _lines;
    std::size_t _at = 0;
};

std::string operationLine(const PackageRow& row, const char* operation)
{
    return std::string(row._dependencies, ' ') + "InInit<" + row._name + ">::" + operation + "()";
}

std::string aliasBlock(const char* key, const char* description, const char* value)
{
    return std::string("Key             : ") + key + "\n     Description: " + description +
           "\n     Value      : " + value;
}

void checkAliasDump(Report& report, const std::string& kind, std::vector<std::string> blocks)
{
    EXPECT_EQ(report.next(), "----");
    EXPECT_EQ(report.next(),
              "Context aliases of type: : Zu::InContextAliasMgr<Zu::InContextAlias<" + kind +
                  "> >");
    std::sort(blocks.begin(), blocks.end());
    EXPECT_EQ(sortedBlocks(report.untilRule()), blocks);
}

void checkVariable(Report& report, const char* handle, const char* value, const char* kind,
                   const char* description)
{
    EXPECT_EQ(report.next(), "----");
    EXPECT_EQ(report.untilRule(),
              (std::vector<std::string>{
                  std::string("Initializing variable  : ") + handle,
                  std::string("     With string       : ") + value,
                  std::string("     From context alias: Zu::InContextAlias<") + kind + ">",
                  std::string("     Described as      : ") + description}));
}

TEST(InInitMgr, TellsLineByLineWhatItDoesWhenAsked)
{
    const ProgramResult result = support::runProgram("emptyProgram", {},
                                                     {{"ZU_DEBUG_INITIALIZE", "1"},
                                                      {"ZU_BUILDINFO_NO_VALIDATE", std::nullopt},
                                                      {"ZU_BUILDINFO_CHECK_STAMPS", "1"}});
    EXPECT_EQ(result.exitCode, 0);
    Report report(result.err);

    for (const char* const name :
         {"base", "baseMath", "debugging", "discreteTime", "heapMgr", "initArg", "initialize",
          "initVars", "logger", "osal", "profiling", "random", "testing"})
        EXPECT_EQ(report.next(), std::string("Registering Package: InInit<") + name + ">");
    EXPECT_EQ(report.next(), "-->_nbPckgs:13");
    int index = 0;
    for (const char* const name :
         {"base", "baseMath", "debugging", "discreteTime", "heapMgr", "initArg", "initVars",
          "initialize", "logger", "osal", "profiling", "random", "testing"})
        EXPECT_EQ(report.next(),
                  "_packagesToInit[" + std::to_string(index++) + "]: " + std::string(name));

    const char* const noValidate = "Default value for validation suppression env var";
    const char* const checkStamps = "Default value for enabling stamp check env var";
    for (const PackageRow& row : PACKAGES)
    {
        EXPECT_EQ(report.next(), operationLine(row, "performInitialize"));
        const std::string name = row._name;
        if (name == "initialize")
        {
            // Each alias and its clone in the variable.
            checkAliasDump(report, "Zu::InInitDef, 0",
                           {aliasBlock("0", noValidate, "0"), aliasBlock("0", noValidate, "0"),
                            aliasBlock("0", checkStamps, "0"), aliasBlock("0", checkStamps, "0")});
            const std::string suppress =
                aliasBlock("ZU_BUILDINFO_NO_VALIDATE", "Suppress validation of version numbers",
                           "(uninitialized)");
            const std::string enable =
                aliasBlock("ZU_BUILDINFO_CHECK_STAMPS", "Enable validation of build stamps", "1");
            checkAliasDump(report, "Zu::InInitEnv, 1", {suppress, suppress, enable, enable});
            checkAliasDump(report, "Zu::InInitOvr, 0", {});
        }
        if (name == "initArg") checkAliasDump(report, "Zu::InInitArg, 1", {});
        if (name == "debugging")
        {
            checkVariable(report, "Zu::Corvane::debugging::buildInfoNoValidate", "0",
                          "Zu::InInitDef, 0", noValidate);
            checkVariable(report, "Zu::Corvane::debugging::buildInfoCheckStamps", "1",
                          "Zu::InInitEnv, 1", "Enable validation of build stamps");
        }
    }
    for (auto row = std::rbegin(PACKAGES); row != std::rend(PACKAGES); ++row)
        EXPECT_EQ(report.next(), operationLine(*row, "performFinalize"));
    EXPECT_EQ(report.next(), "(end)");
}

TEST(InInitMgr, TellsOfOverridesWhenAsked)
{
    const ProgramResult result = support::runProgram(
        "startupProgram", {}, {{"ZU_DEBUG_INITIALIZE", "1"}, {"STARTUP_MODE", "overrides"}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.err.find("----\n"
                              "Adding override for handle: startup::size\n"
                              "     With string          : 1\n"
                              "     Described as         : first override\n"
                              "----\n"
                              "----\n"
                              "Adding override for handle: startup::size\n"
                              "     With string          : 2\n"
                              "     Described as         : second override\n"
                              "----\n"),
              std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find("----\n"
                              "Unused override for handle: startup::nowhere\n"
                              "     With string          : 4\n"
                              "     Described as         : for nobody\n"
                              "----\n"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(result.err.find("Unused override for handle: startup::size"), std::string::npos);
}

TEST(InInitMgr, GetEnvGivesTheEnvironmentOfTheBeginning)
{
    const ProgramResult result = support::runProgram(
        "startupProgram", {}, {{"STARTUP_NAME", "joe"}, {"STARTUP_MODE", "environmentSnapshot"}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "snapshot joe\n"
                          "environment changed\n"
                          "absent null\n"
                          "no name null\n"
                          "startup::name = 'changed' from Zu::InContextAlias<Zu::InInitEnv, 1>\n"
                          "end of main\n");
}

TEST(InInitMgr, ReportsThatThereAreNoCycles)
{
    std::ostringstream os;
    EXPECT_EQ(&Zu::InInitMgr::getInstance().reportCycles(os), &os);
    EXPECT_EQ(os.str(), "No dependency cycles to report.\n");
}

TEST(InInitMgr, TheBodiesOfThePackagesMakeProcessorFactsAndCounterReady)
{
    const ProgramResult result = support::runProgram("bodiesProgram");
    EXPECT_EQ(result.exitCode, 0);
    // Every 64-bit x86 processor is of type 3 and has SSE.
    EXPECT_EQ(result.out, "type 3\n"
                          "SSE 1\n"
                          "denominator 1\n");
}

} // namespace
