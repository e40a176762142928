#include "base/osSharedLib.h"

#include "base/osSharedLibEx.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cstddef>
#include <ctime>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace
{

using support::onWindows;
using Zu::ObjPtr;
using Zu::OsFilePath;
using Zu::OsSharedLib;
using Zu::OsSharedLibEx;

ObjPtr<OsSharedLib> openSample()
{
    return OsSharedLib::open(OsFilePath(support::modulePath("sampleModule").c_str()));
}

// The reason with which a library can't be opened; empty if it can.
std::string refusalToOpen(const std::string& path)
{
    try
    {
        const ObjPtr<OsSharedLib> library(OsSharedLib::open(OsFilePath(path.c_str())));
    }
    catch (const OsSharedLibEx::ExCantOpenLib& ex)
    {
        return ex.what();
    }
    return "";
}

TEST(OsSharedLib, SuffixIsThatOfThePlatform)
{
    EXPECT_STREQ(OsSharedLib::getSuffix(), onWindows ? ".dll" : ".so");
}

TEST(OsSharedLib, AFunctionOfALibraryIsCalled)
{
    const ObjPtr<OsSharedLib> library = openSample();
    const auto product = reinterpret_cast<int (*)(int, int)>(library->getFunction("sampleProduct"));
    EXPECT_EQ(product(6, 7), 42);
    EXPECT_EQ(library->getFunction("sampleProduct"), library->getFunction("sampleProduct"));
    EXPECT_NE(library->getFunction("sampleProduct"), library->getFunction("sampleCount"));
}

TEST(OsSharedLib, PathIsTheTextThatWasOpened)
{
    EXPECT_EQ(openSample()->getPath().getChars(), support::modulePath("sampleModule"));
}

TEST(OsSharedLib, ALibraryStaysLoadedWhenItsObjectEnds)
{
    int (*count)() = nullptr;
    {
        const ObjPtr<OsSharedLib> library = openSample();
        count = reinterpret_cast<int (*)()>(library->getFunction("sampleCount"));
    }
    const int before = count();
    const ObjPtr<OsSharedLib> again = openSample();
    EXPECT_EQ(reinterpret_cast<int (*)()>(again->getFunction("sampleCount"))(), before + 1);
}

TEST(OsSharedLib, AMissingFileIsToldWithItsPathAndTheMessageOfTheSystem)
{
    const support::TempDir dir;
    const std::string path = dir.file("missing") + OsSharedLib::getSuffix();
    const std::string reason = refusalToOpen(path);
    const std::string start = "Can't open dynamic library '" + path + "': ";
    ASSERT_EQ(reason.substr(0, start.size()), start);
    EXPECT_GT(reason.size(), start.size() + 1);
    EXPECT_EQ(reason.back(), '.');
    if (!onWindows)
    {
        EXPECT_NE(reason.find("No such file or directory", start.size()), std::string::npos);
    }
}

TEST(OsSharedLib, TheMessageOfTheSystemTellsReasonsApart)
{
    const support::TempDir dir;
    const std::string path = dir.file("text") + OsSharedLib::getSuffix();
    const std::string missing = refusalToOpen(path);
    std::ofstream(path) << "This is not a library, whatever its name says.\n";
    const std::string invalid = refusalToOpen(path);
    EXPECT_NE(missing, "");
    EXPECT_NE(invalid, "");
    EXPECT_NE(missing, invalid);
}

TEST(OsSharedLib, ALongPathIsCutInTheReason)
{
    const support::TempDir dir;
    std::string path = dir.path();
    while (path.size() < 300) path += "/missing";
    const std::string start = "Can't open dynamic library '" + path.substr(0, 256) + "': ";
    EXPECT_EQ(refusalToOpen(path).substr(0, start.size()), start);
}

TEST(OsSharedLib, TheEmptyPathIsNotOpened)
{
    const std::string start = "Can't open dynamic library '': ";
    EXPECT_EQ(refusalToOpen("").substr(0, start.size()), start);
}

TEST(OsSharedLib, AMissingFunctionIsToldWithItsNameAndThePath)
{
    const ObjPtr<OsSharedLib> library = openSample();
    const std::string name(70, 'f');
    try
    {
        library->getFunction(name.c_str());
        FAIL();
    }
    catch (const OsSharedLibEx::ExFunctionNotFound& ex)
    {
        EXPECT_EQ(ex.what(), "Function '" + name.substr(0, 64) +
                                 "' not found in dynamic library '" +
                                 support::modulePath("sampleModule").substr(0, 256) + "'.");
    }
    // The library is as good as before.
    EXPECT_NE(library->getFunction("sampleCount"), nullptr);
}

TEST(OsSharedLib, FunctionsOfOtherLibrariesAreNotFound)
{
    // The module has none of these itself, but the libraries that it needs do.
    const ObjPtr<OsSharedLib> library(
        OsSharedLib::open(OsFilePath(support::modulePath("boundaryLate").c_str())));
    EXPECT_NE(library->getFunction("throwFromModule"), nullptr);
    for (const char* const name : {"malloc", "printf", "_ZN2Zu7OsUtils6getPidEv"})
        EXPECT_THROW(library->getFunction(name), OsSharedLibEx::ExFunctionNotFound) << name;
    EXPECT_THROW(library->getFunction(nullptr), OsSharedLibEx::ExFunctionNotFound);
}

// The library chooses the address of a function when it is loaded: it may be in another library, or
// in one of the system.
TEST(OsSharedLib, AnIndirectFunctionOfALibraryIsItsOwnWhereverItLeads)
{
    if (onWindows) GTEST_SKIP() << "Libraries there have no such functions.";
    for (const char* const name : {"indirectModule", "indirectModuleOldHash"})
    {
        const ObjPtr<OsSharedLib> library(
            OsSharedLib::open(OsFilePath(support::modulePath(name).c_str())));
        const auto length =
            reinterpret_cast<std::size_t (*)(const char*)>(library->getFunction("indirectLength"));
        EXPECT_EQ(length("four"), 4U);
        const auto twice = reinterpret_cast<int (*)(int)>(library->getFunction("directTwice"));
        EXPECT_EQ(twice(21), 42);
        // It needs these, and others define them.
        for (const char* const foreign : {"strlen", "time", "gettimeofday", "malloc", "nothing"})
            EXPECT_THROW(library->getFunction(foreign), OsSharedLibEx::ExFunctionNotFound)
                << name << " " << foreign;
    }
    const ObjPtr<OsSharedLib> runtime(OsSharedLib::open(OsFilePath("libc.so.6")));
    const auto now = reinterpret_cast<std::time_t (*)(std::time_t*)>(runtime->getFunction("time"));
    const std::time_t before = std::time(nullptr);
    EXPECT_GE(now(nullptr), before);
    for (const char* const name : {"gettimeofday", "strlen", "memcpy", "malloc", "printf"})
        EXPECT_NE(runtime->getFunction(name), nullptr) << name;
    // Of the library that the math library needs, too.
    const ObjPtr<OsSharedLib> math(OsSharedLib::open(OsFilePath("libm.so.6")));
    EXPECT_NE(math->getFunction("sin"), nullptr);
    EXPECT_THROW(math->getFunction("gettimeofday"), OsSharedLibEx::ExFunctionNotFound);
}

TEST(OsSharedLib, AnEmptyNameIsNoLibrary)
{
    EXPECT_THROW(OsSharedLib::open(OsFilePath()), OsSharedLibEx::ExCantOpenLib);
}

} // namespace
