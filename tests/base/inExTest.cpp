#include "base/inEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Zu::InEx;

template <class Exception, class... Arguments>
support::ExceptionRow runtimeRow(const char* name, const std::string& reason,
                                 const Arguments&... arguments)
{
    return support::exceptionRow<Exception, std::runtime_error, InEx>(name, reason, arguments...);
}

template <class Exception, class... Arguments>
support::ExceptionRow logicRow(const char* name, const std::string& reason,
                               const Arguments&... arguments)
{
    return support::exceptionRow<Exception, std::logic_error, InEx>(name, reason, arguments...);
}

std::vector<support::ExceptionRow> rows()
{
    const std::string name = "a name";
    const std::string longOne = support::longName('n');
    const std::string cut = support::cutName('n', 256);
    return {
        runtimeRow<InEx::ExPackageNotRegistered>("ExPackageNotRegistered",
                                                 "Init Package not registered: 'a name'.", name),
        runtimeRow<InEx::ExPackageNotRegistered>(
            "ExPackageNotRegisteredLong", "Init Package not registered: '" + cut + "'.", longOne),
        logicRow<InEx::ExDependencyCycle>("ExDependencyCycle",
                                          "Init dependencies contain cycle(s)"),
        runtimeRow<InEx::ExPackageInitError>("ExPackageInitError",
                                             "Init error in package: 'a name'.", name),
        runtimeRow<InEx::ExPackageInitError>("ExPackageInitErrorLong",
                                             "Init error in package: '" + cut + "'.", longOne),
        runtimeRow<InEx::ExRegAfterInit>("ExRegAfterInit",
                                         "Package registered after initialize()."),
        runtimeRow<InEx::ExReinitWithoutGuard>(
            "ExReinitWithoutGuard", "Reinitialize without using the reinitialize guard."),
        runtimeRow<InEx::ExDoubleInit>("ExDoubleInit", "Multiple calls to initialize()."),
        runtimeRow<InEx::ExFinaliseBeforeInit>("ExFinaliseBeforeInit",
                                               "Call to finalize() before initialize()."),
        runtimeRow<InEx::ExDoubleFinalise>("ExDoubleFinalise", "Multiple calls to finalize()."),
        runtimeRow<InEx::ExHandleAlreadyInUse>(
            "ExHandleAlreadyInUse",
            "Trying to register an object with an already used handle: 'a name'.", name),
        runtimeRow<InEx::ExHandleAlreadyInUse>(
            "ExHandleAlreadyInUseLong",
            "Trying to register an object with an already used handle: '" + cut + "'.", longOne),
        logicRow<InEx::ExUninitializedObject>(
            "ExUninitializedObject",
            "Trying to access an object that is not fully initialized: 'a name'.", name),
        logicRow<InEx::ExUninitializedObject>(
            "ExUninitializedObjectLong",
            "Trying to access an object that is not fully initialized: '" + cut + "'.", longOne),
        logicRow<InEx::ExInvalidObject>(
            "ExInvalidObject", "Trying to access an object that has an invalid value: 'a name'.",
            name),
        logicRow<InEx::ExInvalidObject>(
            "ExInvalidObjectLong",
            "Trying to access an object that has an invalid value: '" + cut + "'.", longOne),
        logicRow<InEx::ExContextAliasAlreadyDefined>(
            "ExContextAliasAlreadyDefined",
            "Trying to re-create an already existing Context Alias: 'a name'.", name),
        logicRow<InEx::ExContextAliasAlreadyDefined>(
            "ExContextAliasAlreadyDefinedLong",
            "Trying to re-create an already existing Context Alias: '" + cut + "'.", longOne),
        logicRow<InEx::ExVariableAlreadyInitialized>(
            "ExVariableAlreadyInitialized",
            "Trying to override an InVariable that is already initialized: 'a name'.", name),
        logicRow<InEx::ExVariableAlreadyInitialized>(
            "ExVariableAlreadyInitializedLong",
            "Trying to override an InVariable that is already initialized: '" + cut + "'.",
            longOne),
        logicRow<InEx::ExNoNewContextAliasAfterInit>(
            "ExNoNewContextAliasAfterInit",
            "Trying to do post initialization registration of context alias instance: 'a name' "
            "(key: a key).",
            name, std::string("a key")),
        logicRow<InEx::ExNoNewContextAliasAfterInit>(
            "ExNoNewContextAliasAfterInitLong",
            "Trying to do post initialization registration of context alias instance: '" + cut +
                "' (key: " + support::cutName('k', 256) + ").",
            longOne, support::longName('k')),
        logicRow<InEx::ExNoNewContextAliasAfterInit>(
            "ExNoNewContextAliasAfterInitLongKey",
            "Trying to do post initialization registration of context alias instance: 'a name' "
            "(key: " +
                support::cutName('k', 256) + ").",
            name, support::longName('k')),
    };
}

using support::ExceptionFamilies;
INSTANTIATE_TEST_SUITE_P(InEx, ExceptionFamilies, testing::ValuesIn(rows()), support::RowName());

TEST(InEx, ANameOf256CharactersIsKeptWhole)
{
    const std::string name(256, 'p');
    EXPECT_EQ(InEx::ExPackageInitError("a.cpp", 1, name.c_str()).getReason(),
              "Init error in package: '" + name + "'.");
}

TEST(InEx, APercentSignInANameIsText)
{
    EXPECT_STREQ(InEx::ExInvalidObject("a.cpp", 1, "100%s%n").getReason(),
                 "Trying to access an object that has an invalid value: '100%s%n'.");
}

TEST(InEx, AHandlerForTheOtherStandardClassIsPassedBy)
{
    EXPECT_THROW(
        {
            try
            {
                throw InEx::ExDependencyCycle("a.cpp", 1);
            }
            catch (const std::runtime_error&)
            {
            }
        },
        std::logic_error);
    EXPECT_THROW(
        {
            try
            {
                throw InEx::ExDoubleInit("a.cpp", 1);
            }
            catch (const std::logic_error&)
            {
            }
        },
        std::runtime_error);
}

} // namespace
