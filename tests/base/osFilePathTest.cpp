#include "base/osFilePath.h"

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "support/errorCode.h"
#include "support/platform.h"
#include "support/variableGuard.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace
{

using support::codeOf;
using support::onWindows;
using Zu::OsFileEx;
using Zu::OsFilePath;

// A path with "/" as it is on this platform.
std::string native(std::string path)
{
    for (char& character : path)
        if (character == '/') character = *OsFilePath::getSeparator();
    return path;
}

// An absolute path on this platform from one that begins with "/".
std::string absolute(const std::string& path)
{
    return (onWindows ? "C:" : "") + native(path);
}

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

std::string extensionOf(const std::string& path)
{
    return pathOf(path).getExtension().get();
}

TEST(OsFilePath, SeparatorIsOneCharacterOfThePlatform)
{
    EXPECT_STREQ(OsFilePath::getSeparator(), onWindows ? "\\" : "/");
}

TEST(OsFilePath, NullAndNothingGiveTheEmptyPath)
{
    EXPECT_TRUE(OsFilePath(nullptr).isEmpty());
    EXPECT_FALSE(OsFilePath(nullptr).isAbsolute());
    EXPECT_TRUE(OsFilePath(nullptr).isRelative());
    EXPECT_STREQ(OsFilePath(nullptr).getChars(), "");
    EXPECT_TRUE(OsFilePath().isEmpty());
    EXPECT_STREQ(OsFilePath().getChars(), "");
    EXPECT_TRUE(OsFilePath("").isEmpty());
    EXPECT_FALSE(OsFilePath("a").isEmpty());
}

TEST(OsFilePath, TextIsKeptExactlyAsGiven)
{
    for (const char* const text :
         {"a/b", "a\\b", "a//b/../.", "a\\\\b\\", "C:/x", " ", "./", "\xff"})
    {
        EXPECT_STREQ(OsFilePath(text).getChars(), text);
        OsFilePath path;
        path.set(text);
        EXPECT_STREQ(path.getChars(), text);
        path = "other";
        path = text;
        EXPECT_STREQ(path.getChars(), text);
    }
}

TEST(OsFilePath, CopiesAreIndependent)
{
    OsFilePath original("a");
    OsFilePath copy(original);
    OsFilePath assigned;
    assigned = original;
    original.set("b");
    EXPECT_STREQ(copy.getChars(), "a");
    EXPECT_STREQ(assigned.getChars(), "a");
    EXPECT_NE(copy.getChars(), assigned.getChars());
}

TEST(OsFilePath, AssigningItsOwnTextChangesNothing)
{
    OsFilePath path("some path");
    const OsFilePath& same = path;
    const char* const before = path.getChars();
    path = same;
    EXPECT_EQ(path.getChars(), before);
    path.set(path.getChars());
    EXPECT_STREQ(path.getChars(), "some path");
    path = path.getChars();
    EXPECT_STREQ(path.getChars(), "some path");
}

TEST(OsFilePath, ALongTextIsKeptWhole)
{
    const std::string text(100000, 'x');
    EXPECT_EQ(pathOf(text).getChars(), text);
    EXPECT_EQ((pathOf(text) + text.c_str()).getChars(), text + OsFilePath::getSeparator() + text);
}

TEST(OsFilePath, ThePrefixAloneDecidesWhatIsAbsolute)
{
    struct Row
    {
        const char* _path;
        bool _onWindows;
        bool _onLinux;
    };
    const Row rows[] = {
        {"", false, false},       {"/", false, true},     {"/x", false, true},
        {"/x/y", false, true},    {"//x", false, true},   {"C:", false, false},
        {"C:x", true, false},     {"C:\\", true, false},  {"C:/x", true, false},
        {"\\", false, false},     {"\\\\", false, false}, {"\\\\x", true, false},
        {"\\x\\y", false, false}, {"abc", false, false},  {"a/b", false, false},
    };
    for (const Row& row : rows)
    {
        const bool expected = onWindows ? row._onWindows : row._onLinux;
        EXPECT_EQ(OsFilePath(row._path).isAbsolute(), expected) << row._path;
        EXPECT_EQ(OsFilePath(row._path).isRelative(), !expected) << row._path;
        EXPECT_EQ(OsFilePath::isAbsolute(row._path), expected) << row._path;
    }
}

TEST(OsFilePath, ConcatenationPutsOneSeparatorBetween)
{
    EXPECT_EQ((OsFilePath("a") + "b").getChars(), native("a/b"));
    EXPECT_EQ((pathOf(native("a/")) + "b").getChars(), native("a/b"));
    EXPECT_EQ((OsFilePath("a") + pathOf(native("b/c"))).getChars(), native("a/b/c"));
    EXPECT_EQ((pathOf(absolute("/")) + "b").getChars(), absolute("/b"));
}

TEST(OsFilePath, AnEmptySideIsJoinedAsText)
{
    EXPECT_STREQ((OsFilePath() + "a").getChars(), "a");
    EXPECT_STREQ((OsFilePath() + OsFilePath("a")).getChars(), "a");
    EXPECT_STREQ((OsFilePath() + "").getChars(), "");
    EXPECT_EQ((OsFilePath("a") + "").getChars(), native("a/"));
    EXPECT_EQ((OsFilePath("a") + OsFilePath()).getChars(), native("a/"));
    EXPECT_EQ((pathOf(native("a/")) + "").getChars(), native("a/"));
}

TEST(OsFilePath, PlusLeavesItsLeftSideAsItWas)
{
    const OsFilePath left("a");
    const OsFilePath sum = left + "b" + OsFilePath("c");
    EXPECT_STREQ(left.getChars(), "a");
    EXPECT_EQ(sum.getChars(), native("a/b/c"));
}

TEST(OsFilePath, PlusAssignAppendsToItselfAndReturnsItself)
{
    OsFilePath path("a");
    EXPECT_EQ(&(path += "b"), &path);
    EXPECT_EQ(path.getChars(), native("a/b"));
    EXPECT_EQ(&(path += OsFilePath("c")), &path);
    EXPECT_EQ(path.getChars(), native("a/b/c"));
    path += path;
    EXPECT_EQ(path.getChars(), native("a/b/c/a/b/c"));
    OsFilePath element("x");
    element += element.getChars();
    EXPECT_EQ(element.getChars(), native("x/x"));
}

TEST(OsFilePath, AnElementMustNotHoldTheSeparator)
{
    for (const char* const element : {"b/c", "/b", "b/", "/"})
    {
        OsFilePath path("a");
        EXPECT_THROW(path + native(element).c_str(), OsFileEx::ExSeparatorNotAllowed);
        EXPECT_THROW(path += native(element).c_str(), OsFileEx::ExSeparatorNotAllowed);
        EXPECT_STREQ(path.getChars(), "a");
    }
}

TEST(OsFilePath, AnElementMayHoldTheOtherPlatformsSeparator)
{
    const std::string element = onWindows ? "b/c" : "b\\c";
    EXPECT_EQ((OsFilePath("a") + element.c_str()).getChars(), native("a/") + element);
}

TEST(OsFilePath, AnAbsolutePathIsNotAppended)
{
    for (const std::string& right : {absolute("/x"), absolute("/x/y"), absolute("/..")})
    {
        OsFilePath path("a");
        EXPECT_THROW(path + pathOf(right), OsFileEx::ExIllegalPathConcat) << right;
        EXPECT_THROW(path += pathOf(right), OsFileEx::ExIllegalPathConcat) << right;
        EXPECT_THROW(OsFilePath() + pathOf(right), OsFileEx::ExIllegalPathConcat) << right;
        EXPECT_STREQ(path.getChars(), "a");
    }
}

TEST(OsFilePath, DriveAndNetworkPrefixesAreAbsoluteOnWindowsOnly)
{
    for (const char* const right : {"C:\\x", "C:x", "\\\\x", "\\\\host\\share"})
    {
        if (onWindows)
        {
            EXPECT_THROW(OsFilePath("a") + OsFilePath(right), OsFileEx::ExIllegalPathConcat);
        }
        else
        {
            EXPECT_EQ((OsFilePath("a") + OsFilePath(right)).getChars(), std::string("a/") + right);
        }
    }
}

TEST(OsFilePath, TwoBackslashesAloneAreRelative)
{
    EXPECT_EQ((OsFilePath("a") + OsFilePath("\\\\")).getChars(),
              std::string("a") + OsFilePath::getSeparator() + "\\\\");
}

TEST(OsFilePath, ADriveWithoutSeparatorPassesAsAnElement)
{
    EXPECT_EQ((OsFilePath("a") + "C:x").getChars(), native("a/C:x"));
}

TEST(OsFilePath, ComparisonGoesByUnsignedBytes)
{
    EXPECT_EQ(OsFilePath::compare("a", "b"), -1);
    EXPECT_EQ(OsFilePath::compare("b", "a"), 1);
    EXPECT_EQ(OsFilePath::compare("a", "A"), 1);
    EXPECT_EQ(OsFilePath::compare("A", "a"), -1);
    EXPECT_EQ(OsFilePath::compare("\x80", "z"), 1);
    EXPECT_EQ(OsFilePath::compare("z", "\xff"), -1);
    EXPECT_EQ(OsFilePath::compare("\xff", "\x80"), 1);
    EXPECT_EQ(OsFilePath::compare("", ""), 0);
    EXPECT_EQ(OsFilePath::compare("", "a"), -1);
    EXPECT_EQ(OsFilePath::compare("a", ""), 1);
    EXPECT_EQ(OsFilePath::compare("ab", "abc"), -1);
    EXPECT_EQ(OsFilePath::compare("abc", "abc"), 0);
    EXPECT_EQ(OsFilePath::compare("a\xff", "a"), 1);
    EXPECT_EQ(OsFilePath::compare("a/b", "a\\b"), -1);
    EXPECT_EQ(OsFilePath::compare("az", "ba"), -1);
}

TEST(OsFilePath, DumpWritesTheText)
{
    std::ostringstream os;
    EXPECT_EQ(&OsFilePath("a b/c").dump(os), &os);
    EXPECT_EQ(os.str(), "a b/c");
}

TEST(OsFilePath, NamesOfAnAbsolutePath)
{
    const OsFilePath path = pathOf(absolute("/a/b.txt"));
    EXPECT_STREQ(path.getBaseName().getChars(), "b.txt");
    EXPECT_EQ(path.getDirectoryName().getChars(), absolute("/a"));
    EXPECT_EQ(extensionOf(absolute("/a/b.txt")), "txt");
    EXPECT_EQ(path.getChars(), absolute("/a/b.txt"));
}

TEST(OsFilePath, SlashesAreResolvedOnBothPlatforms)
{
    const OsFilePath path(onWindows ? "C:/a/b.txt" : "/a/b.txt");
    EXPECT_STREQ(path.getBaseName().getChars(), "b.txt");
    EXPECT_EQ(path.getDirectoryName().getChars(), absolute("/a"));
}

TEST(OsFilePath, NamesAreThoseOfTheCleanedPath)
{
    struct Row
    {
        const char* _path;
        const char* _base;
        const char* _directory;
    };
    const Row rows[] = {
        {"/a/./b", "b", "/a"}, {"/a/x/../b", "b", "/a"}, {"/../a/b", "b", "/a"},
        {"/a//b", "b", "/a"},  {"/a/b/.", "b", "/a"},    {"/a/b/x/..", "b", "/a"},
        {"/a/b/", "", "/a/b"}, {"/a/b//", "", "/a/b"},   {"/a/b/x/../", "", "/a/b"},
    };
    for (const Row& row : rows)
    {
        const OsFilePath path = pathOf(absolute(row._path));
        EXPECT_STREQ(path.getBaseName().getChars(), row._base) << row._path;
        EXPECT_EQ(path.getDirectoryName().getChars(), absolute(row._directory)) << row._path;
    }
}

TEST(OsFilePath, TheRootHasNoBaseNameAndLeavesTheBareDrive)
{
    const std::string bare = onWindows ? "C:" : "/";
    const OsFilePath root = pathOf(absolute("/"));
    EXPECT_TRUE(root.getBaseName().isEmpty());
    EXPECT_EQ(root.getDirectoryName().getChars(), bare);
    EXPECT_EQ(pathOf(absolute("/a")).getDirectoryName().getChars(), bare);
    EXPECT_STREQ(pathOf(absolute("/a")).getBaseName().getChars(), "a");
}

TEST(OsFilePath, RelativePathsAreResolvedAgainstTheCurrentDirectory)
{
    const std::filesystem::path current = std::filesystem::current_path();
    EXPECT_EQ(OsFilePath("x").getDirectoryName().getChars(), current.string());
    EXPECT_STREQ(OsFilePath("x").getBaseName().getChars(), "x");
    EXPECT_EQ(pathOf(native("x/y")).getDirectoryName().getChars(), (current / "x").string());
    EXPECT_EQ(pathOf(native("x/")).getDirectoryName().getChars(), (current / "x").string());
    EXPECT_TRUE(pathOf(native("x/")).getBaseName().isEmpty());
}

TEST(OsFilePath, TheDirectoryOfOneOrTwoPointsIsTheDirectoryItself)
{
    const std::filesystem::path current = std::filesystem::current_path();
    EXPECT_EQ(OsFilePath(".").getDirectoryName().getChars(), current.string());
    EXPECT_EQ(OsFilePath("..").getDirectoryName().getChars(), current.parent_path().string());
    EXPECT_EQ(OsFilePath(".").getBaseName().getChars(), current.filename().string());
    // Only these two texts count, not every text for the same place.
    EXPECT_EQ(pathOf(native("./.")).getDirectoryName().getChars(), current.parent_path().string());
}

TEST(OsFilePath, ExtensionIsWhatFollowsTheLastPointOfTheBaseName)
{
    EXPECT_EQ(extensionOf("a.tar.gz"), "gz");
    EXPECT_EQ(extensionOf(".profile"), "profile");
    EXPECT_EQ(extensionOf("a"), "");
    EXPECT_EQ(extensionOf(native("x.y/a")), "");
    EXPECT_EQ(extensionOf(native("x.y/")), "");
    EXPECT_EQ(extensionOf(native("x/a.b/../c.d")), "d");
}

TEST(OsFilePath, APointAtTheEndGivesNoExtension)
{
    EXPECT_EQ(extensionOf("a."), "");
    EXPECT_EQ(extensionOf("a.b."), onWindows ? "b" : "");
}

TEST(OsFilePath, TheEmptyPathCanNotBeResolved)
{
    EXPECT_THROW(OsFilePath().getBaseName(), Zu::ExSysErrorWindows);
    EXPECT_THROW(OsFilePath().getDirectoryName(), Zu::ExSysErrorWindows);
    EXPECT_THROW(OsFilePath().getExtension(), Zu::ExSysErrorWindows);
}

TEST(OsFilePath, AFullPathOfMoreThan1023CharactersRaises)
{
    const std::string root = absolute("/");
    for (const std::size_t length : {1024U, 1025U, 5000U})
    {
        const OsFilePath path = pathOf(root + std::string(length - root.size(), 'x'));
        EXPECT_THROW(path.getBaseName(), Zu::ExSysErrorWindows) << length;
        EXPECT_THROW(path.getDirectoryName(), Zu::ExSysErrorWindows) << length;
        EXPECT_THROW(path.getExtension(), Zu::ExSysErrorWindows) << length;
    }
    // The part added to a relative path counts too.
    const std::string relative(1023, 'x');
    EXPECT_THROW(pathOf(relative).getBaseName(), Zu::ExSysErrorWindows);
}

TEST(OsFilePath, AFullPathOf1023CharactersIsResolved)
{
    if (!support::resolvesLongPaths())
        GTEST_SKIP() << "The platform's own call does not resolve so long a path.";
    const std::string root = absolute("/");
    const std::string name(1023 - root.size(), 'x');
    EXPECT_EQ(pathOf(root + name).getBaseName().getChars(), name);
}

TEST(OsFilePath, ALongTextThatResolvesToAShortPathIsResolved)
{
    if (!support::resolvesLongPaths())
        GTEST_SKIP() << "The platform's own call does not resolve so long a path.";
    std::string detour;
    for (int i = 0; i < 400; ++i) detour += "/a/..";
    EXPECT_STREQ(pathOf(absolute(detour + "/b")).getBaseName().getChars(), "b");
}

TEST(OsFilePath, RootIsThatOfTheCurrentDrive)
{
    EXPECT_EQ(OsFilePath::getRootDir().getChars(),
              std::filesystem::current_path().root_path().string());
}

TEST(OsFilePath, TempDirComesFromTheEnvironmentWithASeparatorAtItsEnd)
{
    const support::VariableGuard variable(onWindows ? "TMP" : "TMPDIR");
    variable.set(absolute("/users/x y"));
    EXPECT_EQ(OsFilePath::getTempDir().getChars(), absolute("/users/x y/"));
    variable.set(absolute("/users/x y/"));
    EXPECT_EQ(OsFilePath::getTempDir().getChars(), absolute("/users/x y/"));
}

TEST(OsFilePath, WithoutAVariableTheTempDirIsThePlatformsOwn)
{
    const support::VariableGuard variable("TMPDIR");
    variable.set("");
    const std::string temp = OsFilePath::getTempDir().getChars();
    if (onWindows)
    {
        EXPECT_TRUE(std::filesystem::is_directory(temp)) << temp;
        EXPECT_EQ(temp.back(), '\\');
    }
    else
    {
        EXPECT_EQ(temp, "/tmp/");
    }
}

TEST(OsFilePath, ATempDirOfMoreThan1023CharactersRaisesOnLinux)
{
    if (onWindows) GTEST_SKIP() << "Windows itself decides what to do with such a variable.";
    const support::VariableGuard variable("TMPDIR");
    // With the separator that is added.
    const std::string longest = "/" + std::string(1021, 't');
    variable.set(longest);
    EXPECT_EQ(OsFilePath::getTempDir().getChars(), longest + "/");
    variable.set(longest + "t");
    EXPECT_THROW(OsFilePath::getTempDir(), Zu::ExSysErrorWindows);
}

TEST(OsFilePath, HomeDirIsTheVariableWithTheSeparatorOfThePlatform)
{
    const support::VariableGuard home("HOME");
    home.set("C:/users/x");
    EXPECT_STREQ(OsFilePath::getHomeDir().getChars(), onWindows ? "C:\\users\\x" : "C:/users/x");
    home.set("/a/b\\c/");
    EXPECT_STREQ(OsFilePath::getHomeDir().getChars(), onWindows ? "\\a\\b\\c\\" : "/a/b\\c/");
}

TEST(OsFilePath, WithoutHomeThereIsNoHomeDir)
{
    const support::VariableGuard home("HOME");
    const support::VariableGuard profile("USERPROFILE");
    profile.set("elsewhere");
    home.set("");
    EXPECT_THROW(OsFilePath::getHomeDir(), OsFileEx::ExHomeNotDefined);
}

TEST(OsFilePath, AHomeOfMoreThan1023CharactersRaises)
{
    const support::VariableGuard home("HOME");
    const std::string longest(1023, 'h');
    home.set(longest);
    EXPECT_EQ(OsFilePath::getHomeDir().getChars(), longest);
    home.set(longest + "h");
    EXPECT_THROW(OsFilePath::getHomeDir(), Zu::ExSysErrorWindows);
}

TEST(OsFilePath, WhatCanNotBeResolvedCarriesTheCodeOfTheSystem)
{
    // An invalid name or a missing one, and a name that is too long.
    EXPECT_EQ(codeOf([] { OsFilePath().getBaseName(); }), onWindows ? 123 : 2);
    EXPECT_EQ(codeOf([] { OsFilePath().getDirectoryName(); }), onWindows ? 123 : 2);
    EXPECT_EQ(codeOf([] { OsFilePath(std::string(5000, 'x').c_str()).getBaseName(); }),
              onWindows ? 206 : 36);
}

} // namespace
