// What a program, the library, a client library and modules loaded at run time share.

#include "support/childProcess.h"

#include <gtest/gtest.h>

namespace
{

TEST(Boundary, PackagesVariablesSingletonsAndExceptionsCrossModules)
{
    const support::ProgramResult result = support::runProgram(
        "boundaryProgram", {"-n", "x", "-e", "5", "rest", support::modulePath("boundaryEarly"),
                            support::modulePath("boundaryLate")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "client up\n"
              "early up, size 5 from Zu::InContextAlias<Zu::InInitArg, 1>\n"
              "program up, name x\n"
              "started, 2 word left\n"
              "loaded\n"
              "program caught ExDoubleInit: Multiple calls to initialize().\n"
              "program caught ClientError: of the client\n"
              "program caught std::logic_error: of the standard library\n"
              "module caught InEx: Init error in package: 'program'.\n"
              "module caught ClientError: of the program\n"
              "module caught InEx: Trying to do post initialization registration of context alias "
              "instance: 'built by the module' (key: 7).\n"
              "late up, without a size\n"
              "the module's variable is an int\n"
              "stopping\n"
              "late down\n"
              "program down\n"
              "early down\n"
              "client down, ledger early;program;late;main;\n");
}

TEST(Boundary, TheNameOfATypeOutlivesItsModule)
{
    const support::ProgramResult result =
        support::runProgram("unloadProgram", {support::modulePath("sampleModule")});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "unloaded\n"
                          "sample::Type\n"
                          "int\n");
}

} // namespace
