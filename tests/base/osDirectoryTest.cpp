#include "base/osDirectory.h"

#include "base/exInternalError.h"
#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>
#include <vector>

namespace
{

using support::codeOf;
using support::CurrentDirectoryGuard;
using support::DIRECTORY_MARK;
using support::modeOf;
using support::onWindows;
using support::readFile;
using support::Tree;
using support::treeAt;
using support::writeFile;
using Zu::ExInternalError;
using Zu::ExSysErrorWindows;
using Zu::ObjPtr;
using Zu::OsDirectory;
using Zu::OsDirectoryFilter;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFileFilter;
using Zu::OsFilePath;
using Zu::OsFileTypes;
using Zu::OsLeafFileFilter;
using Zu::OsPassThroughFilter;
using Zu::Vector;

using Names = std::vector<std::string>;

const OsPassThroughFilter everything;
const OsFileTypes::Permissions allModes(7, 7, 7);

// Windows accepts full paths of up to 259 characters, so a name there has to be shorter.
const std::size_t longestName = onWindows ? 150 : 255;

struct RefusedByFilter
{
};

// A filter that is a function of the path.
class Asking : public OsFileFilter
{
public:
    using Question = std::function<bool(const std::string&)>;

    explicit Asking(Question question) : _question(std::move(question)) {}

    bool filter(const OsFilePath& path) const override
    {
        return _question(path.getChars());
    }

private:
    Question _question;
};

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

OsDirectory directory(const std::string& path)
{
    return OsDirectory(pathOf(path));
}

std::string joined(const std::string& path, const std::string& name)
{
    return path + OsFilePath::getSeparator() + name;
}

std::string lastElement(const std::string& path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

// Bytes of all values without a short period.
std::string bytes(std::size_t length)
{
    std::string text(length, '\0');
    std::size_t state = length + 1;
    for (char& byte : text)
    {
        state = state * 1103515245 + 12345;
        byte = static_cast<char>(state >> 16 & 0xff);
    }
    return text;
}

// The names in a directory by another way, in the order of their bytes.
Names namesAt(const std::string& path)
{
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Names listed(const OsDirectory& subject, OsFileTypes::PathTypes type, const OsFileFilter& filter)
{
    const ObjPtr<Vector<OsFilePath>> paths = subject.getChildrenPath(type, filter);
    Names names;
    for (const OsFilePath& path : *paths) names.push_back(path.getChars());
    return names;
}

Names namesIn(const std::string& path, const OsFileFilter& filter = everything)
{
    return listed(directory(path), OsFileTypes::PathRelative, filter);
}

Names sorted(Names names)
{
    std::sort(names.begin(), names.end());
    return names;
}

// The text of an exception; empty if none of this type is raised.
template <class Exception, class Act> std::string reasonOf(Act act)
{
    try
    {
        act();
    }
    catch (const Exception& exception)
    {
        return exception.getReason();
    }
    return "";
}

template <class Act> std::string nullPathReasonOf(Act act)
{
    return reasonOf<OsFileEx::ExNullFilePath>(act);
}

class OsDirectoryTest : public testing::Test
{
protected:
    // A path in the test's directory, from one with "/".
    std::string file(std::string name) const
    {
        for (char& character : name)
            if (character == '/') character = *OsFilePath::getSeparator();
        return joined(_dir.path(), name);
    }

    std::string path() const
    {
        return _dir.path();
    }

    void makeDirectory(const std::string& name) const
    {
        std::filesystem::create_directories(file(name));
    }

    void makeFile(const std::string& name, const std::string& text = "text") const
    {
        writeFile(file(name), text);
    }

    // A directory with this many files, "0" and on.
    Names makeFiles(const std::string& name, int count) const
    {
        makeDirectory(name);
        Names names;
        for (int i = 0; i < count; ++i)
        {
            names.push_back(std::to_string(i));
            makeFile(name + "/" + names.back(), "");
        }
        return sorted(names);
    }

    void makeTree(const std::string& name) const
    {
        makeDirectory(name + "/empty");
        makeDirectory(name + "/sub/with blanks/deep");
        for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200000U})
            makeFile(name + "/" + std::to_string(size), bytes(size));
        makeFile(name + "/.hidden", "hidden");
        makeFile(name + "/sub/a b.txt", "blank\r\n\n\x1a");
        makeFile(name + "/sub/with blanks/deep/f", std::string("\0\0x", 3));
    }

    // Copying is refused as an invalid path, and nothing has changed.
    template <class Copy> void expectRefused(const std::string& what, Copy copy) const
    {
        const Tree before = treeAt(path());
        std::string reason;
        try
        {
            reason = reasonOf<OsFileEx::ExInvalidPath>(copy);
        }
        catch (const Zu::ExBase& exception)
        {
            ADD_FAILURE() << what << " raises " << exception.getDetailedReason();
        }
        EXPECT_EQ(reason.rfind("Invalid path: '", 0), 0U) << what << ": " << reason;
        EXPECT_EQ(reason.substr(reason.size() < 2 ? 0 : reason.size() - 2), "'.") << what;
        EXPECT_TRUE(treeAt(path()) == before) << what;
    }

    void expectCopyRefused(const std::string& source, const std::string& target) const
    {
        expectRefused(source + " to " + target,
                      [&] { directory(file(source)).copyTo(pathOf(file(target))); });
    }

    void expectHierarchyRefused(const std::string& source, const std::string& target) const
    {
        expectRefused(source + " as " + target, [&]
                      { OsDirectory::copyHierarchy(pathOf(file(source)), pathOf(file(target))); });
    }

private:
    support::TempDir _dir;
};

class OsDirectoryLinkTest : public OsDirectoryTest
{
protected:
    void SetUp() override
    {
        std::error_code failure;
        std::filesystem::create_directory_symlink(path(), file("probe"), failure);
        if (failure) GTEST_SKIP() << "No symbolic links are to be had: " << failure.message();
        std::filesystem::remove(file("probe"));
    }

    // The target is as the link has it, so relative to the link.
    void makeLink(const std::string& name, const std::string& target) const
    {
        std::filesystem::create_symlink(target, file(name));
    }
};

class OsDirectoryModeTest : public OsDirectoryTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Windows has no modes and ignores permissions.";
    }
};

TEST_F(OsDirectoryTest, TheEmptyPathRaisesEverywhere)
{
    const std::string reason = "File has null file path.";
    OsDirectory none{OsFilePath()};
    EXPECT_EQ(nullPathReasonOf([&] { none.create(allModes); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { none.remove(); }), reason);
    for (const auto type : {OsFileTypes::PathFull, OsFileTypes::PathRelative})
        EXPECT_EQ(nullPathReasonOf([&] { none.getChildrenPath(type, everything); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { none.getChildren(everything); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { (void)none.hasChildren(everything); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { none.removeChildren(everything); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { none.copyTo(pathOf(file("x"))); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { none.copyTo(OsFilePath()); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { directory(path()).copyTo(OsFilePath()); }), reason);
    EXPECT_EQ(nullPathReasonOf([&] { (void)none.exists(); }), reason);
    EXPECT_EQ(treeAt(path()), Tree());
}

TEST_F(OsDirectoryTest, ACopyOfTheEmptyPathRaisesWhateverTheTargetIs)
{
    makeFile("f");
    makeDirectory("d");
    OsDirectory none{OsFilePath()};
    for (const char* const target : {"f", "d", "missing"})
        EXPECT_EQ(nullPathReasonOf([&] { none.copyTo(pathOf(file(target))); }),
                  "File has null file path.")
            << target;
}

TEST_F(OsDirectoryTest, AHierarchyOfOrToTheEmptyPathRaises)
{
    const std::string reason = "File has null file path.";
    const OsFilePath none;
    makeFile("f");
    const auto copy = [](const OsFilePath& source, const OsFilePath& target)
    { return nullPathReasonOf([&] { OsDirectory::copyHierarchy(source, target); }); };
    EXPECT_EQ(copy(none, pathOf(file("x"))), reason);
    EXPECT_EQ(copy(none, none), reason);
    EXPECT_EQ(copy(pathOf(file("f")), none), reason);
    EXPECT_EQ(copy(pathOf(path()), none), reason);
}

TEST_F(OsDirectoryTest, IsTheFileOfADirectory)
{
    makeDirectory("d");
    const OsDirectory subject = directory(file("d"));
    const OsFile& asFile = subject;
    EXPECT_EQ(asFile.getPath().getChars(), file("d"));
    EXPECT_TRUE(asFile.exists());
    EXPECT_TRUE(asFile.isDirectory());
    EXPECT_FALSE(asFile.isFile());
    EXPECT_EQ(asFile.getType(), OsFileTypes::ElementDirectory);
    EXPECT_FALSE(directory(file("missing")).exists());
}

TEST_F(OsDirectoryTest, CreateMakesAnEmptyDirectory)
{
    for (const std::string& name :
         {std::string("d"), std::string("with blanks in it"), std::string(longestName, 'n')})
    {
        directory(file(name)).create(allModes);
        EXPECT_TRUE(std::filesystem::is_directory(file(name)));
        EXPECT_TRUE(std::filesystem::is_empty(file(name)));
    }
}

TEST_F(OsDirectoryTest, CreateRaisesWhereSomethingIs)
{
    makeDirectory("d");
    makeFile("d/kept");
    makeFile("f");
    const int exists = onWindows ? 183 : 17;
    for (const char* const name : {"d", "f"})
    {
        OsDirectory subject = directory(file(name));
        EXPECT_THROW(subject.create(allModes), ExSysErrorWindows);
        EXPECT_EQ(codeOf([&] { subject.create(allModes); }), exists);
    }
    EXPECT_EQ(treeAt(path()), Tree({{"d", DIRECTORY_MARK}, {"d/kept", "text"}, {"f", "text"}}));
}

TEST_F(OsDirectoryTest, CreateNeverMakesMissingParents)
{
    EXPECT_EQ(codeOf([&] { directory(file("a/b")).create(allModes); }), onWindows ? 3 : 2);
    EXPECT_EQ(treeAt(path()), Tree());
}

TEST_F(OsDirectoryModeTest, CreateAppliesThePermissionsLessTheMask)
{
    {
        const support::ModeMaskGuard mask(0);
        directory(file("all")).create(allModes);
        directory(file("some")).create(OsFileTypes::Permissions(7, 5, 4));
        directory(file("none")).create(OsFileTypes::Permissions(0, 0, 0));
    }
    EXPECT_EQ(modeOf(file("all")), 0777U);
    EXPECT_EQ(modeOf(file("some")), 0751U);
    EXPECT_EQ(modeOf(file("none")), 0U);
    const support::ModeMaskGuard mask(0027);
    directory(file("masked")).create(allModes);
    EXPECT_EQ(modeOf(file("masked")), 0750U);
}

TEST_F(OsDirectoryTest, RemoveRemovesAnEmptyDirectory)
{
    makeDirectory("d");
    OsDirectory subject = directory(file("d"));
    OsFile& asFile = subject;
    asFile.remove();
    EXPECT_EQ(treeAt(path()), Tree());
}

TEST_F(OsDirectoryTest, RemoveRaisesWhereThereIsNoEmptyDirectory)
{
    makeTree("full");
    makeFile("f");
    const Tree before = treeAt(path());
    EXPECT_THROW(directory(file("full")).remove(), ExSysErrorWindows);
    EXPECT_EQ(codeOf([&] { directory(file("full")).remove(); }), onWindows ? 145 : 39);
    EXPECT_THROW(directory(file("missing")).remove(), ExSysErrorWindows);
    EXPECT_EQ(codeOf([&] { directory(file("missing")).remove(); }), 2);
    EXPECT_THROW(directory(file("f")).remove(), ExSysErrorWindows);
    EXPECT_EQ(treeAt(path()), before);
}

TEST_F(OsDirectoryTest, AnEmptyDirectoryHasNoChildren)
{
    makeDirectory("d");
    const OsDirectory subject = directory(file("d"));
    EXPECT_EQ(listed(subject, OsFileTypes::PathFull, everything), Names());
    EXPECT_EQ(listed(subject, OsFileTypes::PathRelative, everything), Names());
    EXPECT_EQ(subject.getChildren(everything)->size(), 0U);
    EXPECT_FALSE(subject.hasChildren(everything));
}

TEST_F(OsDirectoryTest, AllChildrenAreListedOnceHoweverManyTheyAre)
{
    for (const int count : {1, 2, 1000})
    {
        const std::string name = "d" + std::to_string(count);
        const Names expected = makeFiles(name, count);
        ASSERT_EQ(expected, namesAt(file(name)));
        EXPECT_EQ(sorted(namesIn(file(name))), expected);
        EXPECT_TRUE(directory(file(name)).hasChildren(everything));
    }
}

TEST_F(OsDirectoryTest, BothFormsListTheSameInTheSameOrder)
{
    makeFiles("d", 40);
    const OsDirectory subject = directory(file("d"));
    Names expected = listed(subject, OsFileTypes::PathRelative, everything);
    ASSERT_EQ(expected.size(), 40U);
    for (std::string& name : expected) name = joined(file("d"), name);
    EXPECT_EQ(listed(subject, OsFileTypes::PathFull, everything), expected);
}

TEST_F(OsDirectoryTest, AFullPathIsTheDirectorysAsItIsGivenWithTheName)
{
    makeDirectory("d");
    makeFile("d/f");
    const std::string separator = OsFilePath::getSeparator();
    const std::string d = file("d");
    const auto full = [](const std::string& path)
    { return listed(directory(path), OsFileTypes::PathFull, everything); };
    EXPECT_EQ(full(d), Names{d + separator + "f"});
    EXPECT_EQ(full(d + separator), Names{d + separator + "f"});
    EXPECT_EQ(full(d + separator + "."), Names{d + separator + "." + separator + "f"});
    const CurrentDirectoryGuard current(path());
    EXPECT_EQ(full("d"), Names{"d" + separator + "f"});
    EXPECT_EQ(full("."), Names{"." + separator + "d"});
}

TEST_F(OsDirectoryTest, TheDirectoryItselfAndItsParentAreNeverListedNorShownToTheFilter)
{
    makeDirectory("d/sub");
    makeFile("d/f");
    Names asked;
    const Asking recorder(
        [&](const std::string& path)
        {
            asked.push_back(path);
            return true;
        });
    for (const auto type : {OsFileTypes::PathFull, OsFileTypes::PathRelative})
    {
        asked.clear();
        EXPECT_EQ(listed(directory(file("d")), type, recorder).size(), 2U);
        // Whatever the form of the list, the filter gets the whole path.
        EXPECT_EQ(sorted(asked), (Names{file("d/f"), file("d/sub")}));
    }
}

TEST_F(OsDirectoryTest, NamesThatBeginWithDotsAreNamesLikeOthers)
{
    const Names names = {"..a", ".a", ".a.b"};
    makeDirectory("d");
    for (const std::string& name : names) makeFile("d/" + name);
    EXPECT_EQ(sorted(namesIn(file("d"))), names);
    if (onWindows) return;
    makeDirectory("dots/...");
    EXPECT_EQ(namesIn(file("dots")), Names{"..."});
}

TEST_F(OsDirectoryTest, TheFilterDecidesWhatIsListed)
{
    makeDirectory("d/sub.txt");
    for (const char* const name : {"d/a.txt", "d/b.TXT", "d/c", "d/.txt"}) makeFile(name);
    EXPECT_EQ(namesIn(file("d"), OsDirectoryFilter()), Names{"sub.txt"});
    EXPECT_EQ(sorted(namesIn(file("d"), OsLeafFileFilter())),
              (Names{".txt", "a.txt", "b.TXT", "c"}));
    EXPECT_EQ(sorted(namesIn(file("d"), OsLeafFileFilter(".txt"))), (Names{".txt", "a.txt"}));
    EXPECT_EQ(namesIn(file("d"), Asking([](const std::string&) { return false; })), Names());
}

TEST_F(OsDirectoryTest, NamesWithBlanksAndTheLongestNamesAreListed)
{
    Names names = {" before", "in the middle", std::string(longestName, 'n')};
    if (!onWindows) names.push_back("after ");
    makeDirectory("a b");
    for (const std::string& name : names) makeFile("a b/" + name);
    EXPECT_EQ(sorted(namesIn(file("a b"))), sorted(names));
    EXPECT_EQ(listed(directory(file("a b")), OsFileTypes::PathFull, everything).size(),
              names.size());
}

TEST_F(OsDirectoryTest, NamesHaveAnyBytes)
{
    if (onWindows) GTEST_SKIP() << "Windows turns the bytes of names into characters.";
    makeDirectory("d");
    std::set<std::string> names;
    for (int byte = 1; byte < 256; ++byte)
    {
        if (byte == '/' || byte == '.') continue;
        names.insert(std::string(1, static_cast<char>(byte)));
        if (byte % 16 == 15) names.insert("x" + std::string(254, static_cast<char>(byte)));
    }
    for (const std::string& name : names) makeFile("d/" + name, name);
    const Names found = namesIn(file("d"));
    EXPECT_EQ(found.size(), names.size());
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), names);
    directory(file("d")).copyTo(pathOf(file("copy")));
    EXPECT_TRUE(treeAt(file("copy")) == treeAt(file("d")));
    directory(file("d")).removeChildren(everything);
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsDirectoryTest, CharactersOfPatternsMeanThemselves)
{
    if (onWindows) GTEST_SKIP() << "Windows has no such names.";
    for (const char* const name : {"*", "?", "[ab]", "ab", "a*"})
    {
        makeDirectory(name);
        makeFile(std::string(name) + "/in " + name);
        EXPECT_EQ(namesIn(file(name)), Names{"in " + std::string(name)});
    }
}

TEST_F(OsDirectoryTest, WhatIsNoDirectoryCanNotBeListed)
{
    makeFile("f");
    for (const char* const name : {"missing", "missing/below", "f"})
    {
        OsDirectory subject = directory(file(name));
        EXPECT_THROW(subject.getChildrenPath(OsFileTypes::PathFull, everything), ExSysErrorWindows);
        EXPECT_THROW(subject.getChildrenPath(OsFileTypes::PathRelative, everything),
                     ExSysErrorWindows);
        EXPECT_THROW(subject.getChildren(everything), ExSysErrorWindows);
        EXPECT_THROW((void)subject.hasChildren(everything), ExSysErrorWindows);
        EXPECT_THROW(subject.removeChildren(everything), ExSysErrorWindows);
    }
    EXPECT_EQ(codeOf([&] { namesIn(file("missing")); }), onWindows ? 3 : 2);
    EXPECT_EQ(treeAt(path()), Tree({{"f", "text"}}));
}

TEST_F(OsDirectoryTest, HasChildrenAsksNoFurtherThanTheFirstAccepted)
{
    makeFiles("d", 5);
    const OsDirectory subject = directory(file("d"));
    for (const int accepted : {1, 3, 5})
    {
        int calls = 0;
        const Asking filter([&](const std::string&) { return ++calls == accepted; });
        EXPECT_TRUE(subject.hasChildren(filter));
        EXPECT_EQ(calls, accepted);
    }
}

TEST_F(OsDirectoryTest, HasNoChildrenIfTheFilterAcceptsNone)
{
    makeFiles("d", 5);
    Names asked;
    const Asking filter(
        [&](const std::string& path)
        {
            asked.push_back(path);
            return false;
        });
    EXPECT_FALSE(directory(file("d")).hasChildren(filter));
    EXPECT_EQ(sorted(asked),
              (Names{file("d/0"), file("d/1"), file("d/2"), file("d/3"), file("d/4")}));
    EXPECT_FALSE(directory(file("d")).hasChildren(OsDirectoryFilter()));
    EXPECT_TRUE(directory(file("d")).hasChildren(OsLeafFileFilter("4")));
    EXPECT_FALSE(directory(file("d")).hasChildren(OsLeafFileFilter("5")));
}

TEST_F(OsDirectoryTest, ChildrenAreDirectoriesOrFilesByWhatTheyAre)
{
    makeDirectory("d/sub");
    makeFile("d/sub/in");
    makeFile("d/f");
    ObjPtr<Vector<OsFile*>> children = directory(file("d")).getChildren(everything);
    std::map<std::string, std::unique_ptr<OsFile>> owned;
    for (OsFile* const child : *children) owned[child->getPath().getChars()].reset(child);
    // The objects are the caller's: they outlive the array.
    children = ObjPtr<Vector<OsFile*>>();
    ASSERT_EQ(owned.size(), 2U);
    ASSERT_TRUE(owned[file("d/sub")] && owned[file("d/f")]);
    OsFile& sub = *owned[file("d/sub")];
    OsFile& leaf = *owned[file("d/f")];
    EXPECT_TRUE(typeid(sub) == typeid(OsDirectory));
    EXPECT_TRUE(typeid(leaf) == typeid(OsFile));
    EXPECT_TRUE(dynamic_cast<OsDirectory&>(sub).hasChildren(everything));
    leaf.remove();
    EXPECT_THROW(sub.remove(), ExSysErrorWindows);
    EXPECT_EQ(treeAt(file("d")), Tree({{"sub", DIRECTORY_MARK}, {"sub/in", "text"}}));
}

TEST_F(OsDirectoryTest, ChildrenAreThoseThatTheFilterAccepts)
{
    makeFiles("d", 12);
    const ObjPtr<Vector<OsFile*>> children =
        directory(file("d")).getChildren(OsLeafFileFilter("1"));
    Names names;
    for (OsFile* const child : *children)
    {
        names.push_back(child->getPath().getChars());
        delete child;
    }
    EXPECT_EQ(sorted(names), (Names{file("d/1"), file("d/11")}));
}

TEST_F(OsDirectoryTest, AFilterThatRaisesLeavesNothingOpen)
{
    const Names names = makeFiles("d", 20);
    OsDirectory subject = directory(file("d"));
    int calls = 0;
    const Asking raising(
        [&](const std::string&) -> bool
        {
            if (++calls % 7 == 0) throw RefusedByFilter();
            return calls % 7 != 1 && calls < 0;
        });
    const auto before = support::openHandles();
    for (int round = 0; round < 50; ++round)
    {
        EXPECT_THROW(subject.getChildrenPath(OsFileTypes::PathFull, raising), RefusedByFilter);
        EXPECT_THROW(subject.getChildren(raising), RefusedByFilter);
        EXPECT_THROW((void)subject.hasChildren(raising), RefusedByFilter);
        EXPECT_THROW(subject.removeChildren(raising), RefusedByFilter);
    }
    EXPECT_EQ(support::openHandles(), before);
    EXPECT_EQ(namesAt(file("d")), names);
}

TEST_F(OsDirectoryTest, NothingStaysOpenBehindAnyOperation)
{
    makeTree("d");
    makeFile("f");
    makeDirectory("clash");
    makeFile("clash/sub");
    OsDirectory subject = directory(file("d"));
    const auto before = support::openHandles();
    for (int round = 0; round < 200; ++round)
    {
        EXPECT_TRUE(subject.hasChildren(everything));
        EXPECT_EQ(namesIn(file("d")).size(), 9U);
        EXPECT_THROW(namesIn(file("missing")), ExSysErrorWindows);
        EXPECT_THROW(namesIn(file("f")), ExSysErrorWindows);
        EXPECT_THROW(subject.copyTo(pathOf(file("f"))), OsFileEx::ExFileExists);
        EXPECT_THROW(subject.copyTo(pathOf(file("d/in"))), OsFileEx::ExInvalidPath);
        EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("clash"))),
                     ExInternalError);
        if (round % 20 == 0) OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("copy")));
    }
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsDirectoryTest, AFilterThatRaisesEndsTheListingAndRemovesNothing)
{
    const Names names = makeFiles("d", 5);
    const Asking raising(
        [calls = 0](const std::string&) mutable -> bool
        {
            if (++calls == 3) throw RefusedByFilter();
            return true;
        });
    EXPECT_THROW(directory(file("d")).removeChildren(raising), RefusedByFilter);
    EXPECT_EQ(namesAt(file("d")), names);
}

TEST_F(OsDirectoryTest, FilesThatAppearDuringAListingDoNotDisturbIt)
{
    const Names names = makeFiles("d", 200);
    int made = 0;
    const Asking making(
        [&](const std::string&)
        {
            if (made < 1000) makeFile("d/new" + std::to_string(made++), "");
            return true;
        });
    Names found = sorted(namesIn(file("d"), making));
    EXPECT_GE(made, 200);
    EXPECT_TRUE(std::adjacent_find(found.begin(), found.end()) == found.end());
    EXPECT_TRUE(std::includes(found.begin(), found.end(), names.begin(), names.end()));
}

TEST_F(OsDirectoryTest, FilesThatVanishDuringAListingDoNotDisturbIt)
{
    const Names names = makeFiles("d", 600);
    Names toRemove;
    for (std::size_t i = 0; i < names.size(); i += 2) toRemove.push_back(names[i]);
    const Asking removing(
        [&](const std::string&)
        {
            if (!toRemove.empty())
            {
                std::filesystem::remove(file("d/" + toRemove.back()));
                toRemove.pop_back();
            }
            return true;
        });
    const Names found = sorted(namesIn(file("d"), removing));
    EXPECT_TRUE(std::adjacent_find(found.begin(), found.end()) == found.end());
    EXPECT_TRUE(std::includes(names.begin(), names.end(), found.begin(), found.end()));
    const Names kept = namesAt(file("d"));
    EXPECT_EQ(kept.size(), 300U);
    EXPECT_TRUE(std::includes(found.begin(), found.end(), kept.begin(), kept.end()));
}

TEST_F(OsDirectoryTest, AFilterMayRemoveWhatItIsShown)
{
    const Names names = makeFiles("d", 500);
    const Asking removing([](const std::string& path) { return std::filesystem::remove(path); });
    EXPECT_EQ(sorted(namesIn(file("d"), removing)), names);
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsDirectoryTest, ADirectoryThatVanishesDuringItsListingEndsIt)
{
    if (onWindows) GTEST_SKIP() << "Windows keeps a directory that is being listed.";
    makeFiles("d", 1);
    const Asking removing([&](const std::string&)
                          { return std::filesystem::remove_all(file("d")) > 0; });
    EXPECT_EQ(namesIn(file("d"), removing), Names{"0"});
    EXPECT_EQ(treeAt(path()), Tree());
}

TEST_F(OsDirectoryTest, RemoveChildrenRemovesFilesAndEmptyDirectories)
{
    makeFiles("d", 300);
    makeDirectory("d/empty");
    makeDirectory("d/with blanks");
    makeFile("beside");
    directory(file("d")).removeChildren(everything);
    EXPECT_EQ(treeAt(path()), Tree({{"d", DIRECTORY_MARK}, {"beside", "text"}}));
    directory(file("d")).removeChildren(everything);
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsDirectoryTest, RemoveChildrenLeavesWhatTheFilterRefuses)
{
    makeDirectory("d/full.txt");
    makeDirectory("d/empty");
    for (const char* const name : {"d/full.txt/in.txt", "d/a.txt", "d/b", "d/c.txt"})
        makeFile(name);
    directory(file("d")).removeChildren(OsLeafFileFilter(".txt"));
    EXPECT_EQ(treeAt(file("d")), Tree({{"full.txt", DIRECTORY_MARK},
                                       {"full.txt/in.txt", "text"},
                                       {"empty", DIRECTORY_MARK},
                                       {"b", "text"}}));
}

TEST_F(OsDirectoryTest, RemoveChildrenListsAllBeforeItRemoves)
{
    makeFiles("d", 50);
    std::set<std::size_t> present;
    const Asking counting(
        [&](const std::string&)
        {
            present.insert(namesAt(file("d")).size());
            return true;
        });
    directory(file("d")).removeChildren(counting);
    EXPECT_EQ(present, std::set<std::size_t>{50});
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsDirectoryTest, AFullDirectoryAmongTheChildrenEndsTheirRemoval)
{
    makeFiles("d", 20);
    makeDirectory("d/full");
    makeFile("d/full/in");
    // An unchanged directory is listed in the same order each time.
    const Names order = namesIn(file("d"));
    const auto full = std::find(order.begin(), order.end(), "full");
    ASSERT_TRUE(full != order.end());
    EXPECT_EQ(codeOf([&] { directory(file("d")).removeChildren(everything); }),
              onWindows ? 145 : 39);
    EXPECT_EQ(namesAt(file("d")), sorted(Names(full, order.end())));
    EXPECT_EQ(readFile(file("d/full/in")), "text");
}

TEST_F(OsDirectoryTest, WhatIsGoneBeforeItsRemovalIsNoFailure)
{
    makeFiles("d", 10);
    const Asking removing([](const std::string& path) { return std::filesystem::remove(path); });
    EXPECT_NO_THROW(directory(file("d")).removeChildren(removing));
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsDirectoryTest, CopyToMakesTheMissingTarget)
{
    makeTree("d");
    OsDirectory subject = directory(file("d"));
    OsFile& asFile = subject;
    asFile.copyTo(pathOf(file("copy")));
    EXPECT_TRUE(treeAt(file("copy")) == treeAt(file("d")));
    EXPECT_EQ(treeAt(file("copy")).size(), 13U);
    EXPECT_EQ(subject.getPath().getChars(), file("d"));
}

TEST_F(OsDirectoryTest, APathWithASeparatorAtItsEndIsCopiedStraightIntoADirectory)
{
    makeDirectory("source/sub");
    writeFile(file("source/f"), "content");
    makeDirectory("target");
    directory(file("source") + OsFilePath::getSeparator()).copyTo(pathOf(file("target")));
    EXPECT_EQ(treeAt(file("target")), treeAt(file("source")));
    directory(file("source")).copyTo(pathOf(file("target")));
    EXPECT_EQ(treeAt(file("target/source")), treeAt(file("source")));
}

TEST_F(OsDirectoryTest, CopyToGoesIntoAnExistingDirectoryUnderTheBaseName)
{
    makeTree("source");
    makeDirectory("target");
    makeFile("target/kept");
    directory(file("source")).copyTo(pathOf(file("target")));
    EXPECT_EQ(namesAt(file("target")), (Names{"kept", "source"}));
    EXPECT_TRUE(treeAt(file("target/source")) == treeAt(file("source")));
}

TEST_F(OsDirectoryTest, ACopyReplacesFilesAndKeepsOthersWhereItsDirectoryIsAlready)
{
    makeDirectory("d/sub");
    makeFile("d/f", "new");
    makeFile("d/sub/g", "new");
    makeDirectory("target/d/sub");
    makeFile("target/d/f", "old and longer");
    makeFile("target/d/sub/other", "kept");
    directory(file("d")).copyTo(pathOf(file("target")));
    EXPECT_EQ(
        treeAt(file("target/d")),
        Tree({{"f", "new"}, {"sub", DIRECTORY_MARK}, {"sub/g", "new"}, {"sub/other", "kept"}}));
}

TEST_F(OsDirectoryTest, CopyToNeverTakesThePlaceOfAFile)
{
    makeTree("d");
    makeFile("f");
    const Tree before = treeAt(path());
    EXPECT_EQ(
        reasonOf<OsFileEx::ExFileExists>([&] { directory(file("d")).copyTo(pathOf(file("f"))); }),
        "File already exists.");
    // The source is not checked before the target.
    EXPECT_THROW(directory(file("missing")).copyTo(pathOf(file("f"))), OsFileEx::ExFileExists);
    makeDirectory("target");
    makeFile("target/d", "in the way");
    EXPECT_EQ(
        reasonOf<ExInternalError>([&] { directory(file("d")).copyTo(pathOf(file("target"))); }),
        "A regular file with the same path name exists.");
    EXPECT_EQ(readFile(file("target/d")), "in the way");
    std::filesystem::remove_all(file("target"));
    EXPECT_TRUE(treeAt(path()) == before);
}

TEST_F(OsDirectoryTest, ACopyNeedsItsSourceAndTheParentOfItsTarget)
{
    makeTree("d");
    const Tree before = treeAt(path());
    EXPECT_THROW(directory(file("missing")).copyTo(pathOf(file("x"))), ExSysErrorWindows);
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("missing")), pathOf(file("x"))),
                 ExSysErrorWindows);
    EXPECT_THROW(directory(file("d")).copyTo(pathOf(file("no/x"))), ExSysErrorWindows);
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("no/x"))),
                 ExSysErrorWindows);
    EXPECT_TRUE(treeAt(path()) == before);
}

TEST_F(OsDirectoryTest, AHierarchyThatIsAFileIsCopiedAsOne)
{
    makeFile("f", "of f");
    makeDirectory("d");
    OsDirectory::copyHierarchy(pathOf(file("f")), pathOf(file("g")));
    OsDirectory::copyHierarchy(pathOf(file("f")), pathOf(file("d")));
    directory(file("f")).copyTo(pathOf(file("h")));
    EXPECT_EQ(
        treeAt(path()),
        Tree(
            {{"f", "of f"}, {"g", "of f"}, {"h", "of f"}, {"d", DIRECTORY_MARK}, {"d/f", "of f"}}));
    expectHierarchyRefused("f", "f");
    expectHierarchyRefused("f", "d/../f");
}

TEST_F(OsDirectoryTest, AHierarchyIsCopiedIntoADirectoryThatIsThereAlready)
{
    makeTree("d");
    makeDirectory("target");
    makeFile("target/kept");
    Tree expected = treeAt(file("d"));
    expected["kept"] = "text";
    for (int round = 0; round < 2; ++round)
    {
        OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("target")));
        EXPECT_TRUE(treeAt(file("target")) == expected);
    }
}

TEST_F(OsDirectoryTest, AFailureEndsACopyAndLeavesWhatWasDone)
{
    makeFiles("d", 20);
    makeDirectory("d/sub");
    const Names order = namesIn(file("d"));
    const auto failing = std::find(order.begin(), order.end(), "sub");
    ASSERT_TRUE(failing != order.end());
    makeDirectory("target");
    makeFile("target/sub", "in the way");
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("target"))),
                 ExInternalError);
    EXPECT_EQ(namesAt(file("target")), sorted(Names(order.begin(), failing + 1)));
    EXPECT_EQ(readFile(file("target/sub")), "in the way");
    EXPECT_EQ(namesAt(file("d")), sorted(order));
}

TEST_F(OsDirectoryModeTest, ACopyHasTheModesOfNewDirectoriesAndFiles)
{
    const support::ModeMaskGuard mask(0027);
    makeDirectory("d/sub");
    makeFile("d/f");
    directory(file("d")).copyTo(pathOf(file("copy")));
    EXPECT_EQ(modeOf(file("copy")), 0750U);
    EXPECT_EQ(modeOf(file("copy/sub")), 0750U);
    EXPECT_EQ(modeOf(file("copy/f")), 0640U);
}

TEST_F(OsDirectoryTest, ManyEntriesAndDeepTreesAreCopied)
{
    makeFiles("d", 200);
    std::string deep = "d";
    for (int level = 0; level < (onWindows ? 30 : 50); ++level) deep += "/s";
    makeDirectory(deep);
    makeFile(deep + "/f", "at the bottom");
    directory(file("d")).copyTo(pathOf(file("e")));
    EXPECT_TRUE(treeAt(file("e")) == treeAt(file("d")));
    deep[0] = 'e';
    EXPECT_EQ(readFile(file(deep + "/f")), "at the bottom");
}

TEST_F(OsDirectoryTest, ADirectoryIsNeverCopiedOntoOrIntoItself)
{
    makeTree("d");
    makeDirectory("other");
    makeDirectory("d/sub/here");
    // An existing directory gets the copy under the base name, so the parent means the directory
    // itself.
    for (const char* const target : {"d", "d/", ".", "./", "other/..", "d/..", "d/sub", "d/sub/",
                                     "d/sub/..", "d/new", "d/new/", "d/./new", "d/sub/new",
                                     "d/sub/../new", "d/sub/here/new", "other/../d/new", "./d/new"})
        expectCopyRefused("d", target);
    for (const char* const source : {"d/.", "d/sub/..", "./d", "other/../d", "d/./."})
        for (const char* const target : {"d", "d/new", "d/sub", "."})
            expectCopyRefused(source, target);
    for (const char* const target : {"d", "d/", "d/new", "d/sub"}) expectCopyRefused("d/", target);
    expectCopyRefused("d/sub", "d");
    expectCopyRefused(".", "d");
    expectCopyRefused(".", "new");
}

TEST_F(OsDirectoryTest, AHierarchyIsNeverCopiedOntoOrIntoItself)
{
    makeTree("d");
    makeDirectory("other");
    for (const char* const source : {"d", "d/", "d/.", "./d", "d/sub/..", "other/../d"})
        for (const char* const target : {"d", "d/", "d/.", "./d", "d/sub/..", "d/sub", "d/new",
                                         "d/new/", "d/sub/new", "other/../d/new", "d/no/new"})
            expectHierarchyRefused(source, target);
}

TEST_F(OsDirectoryTest, RelativePathsLeadToTheSameRefusals)
{
    makeTree("d");
    const CurrentDirectoryGuard current(path());
    const std::string up = joined("..", "d");
    const auto copy = [](const std::string& source, const std::string& target)
    { OsDirectory::copyHierarchy(pathOf(source), pathOf(target)); };
    expectRefused("relative to absolute", [&] { copy("d", file("d/new")); });
    expectRefused("absolute to relative", [&] { copy(file("d"), joined("d", "new")); });
    expectRefused("the current directory", [&] { copy(".", "new"); });
    expectRefused("onto itself", [&] { copy("d", "d"); });
    const CurrentDirectoryGuard below(file("d"));
    expectRefused("from below", [&] { copy(up, "new"); });
    expectRefused("parent", [&] { copy("..", "new"); });
    copy("sub", joined("..", "copy"));
    EXPECT_TRUE(treeAt(file("copy")) == treeAt(file("d/sub")));
}

// Without its separator the root would mean the current directory there.
TEST_F(OsDirectoryTest, AMissingPathBelowTheRootIsNotTakenForTheCurrentDirectory)
{
    makeTree("d");
    const CurrentDirectoryGuard current(file("d"));
    const std::string root = std::filesystem::current_path().root_path().string();
    const std::string missing = root + "zuTest" + std::to_string(support::processId());
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf("."), pathOf(joined(missing, "new"))),
                 ExSysErrorWindows);
}

TEST_F(OsDirectoryTest, NamesInOtherLettersAreTheSameDirectoryOnWindows)
{
    makeTree("d");
    if (onWindows)
    {
        expectHierarchyRefused("d", "D");
        expectHierarchyRefused("D", "d/new");
        expectCopyRefused("d", "D/new");
    }
    else
    {
        OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("D")));
        EXPECT_TRUE(treeAt(file("D")) == treeAt(file("d")));
    }
}

TEST_F(OsDirectoryTest, NeighboursAndParentsAreGoodTargets)
{
    makeTree("d");
    const Tree expected = treeAt(file("d"));
    makeDirectory("dir");
    for (const char* const target : {"dd", "d2", "d.copy", "D d", "dir/d", "dir/../e"})
    {
        directory(file("d")).copyTo(pathOf(file(target)));
        EXPECT_TRUE(treeAt(file(target)) == expected) << target;
    }
    makeDirectory("e/d");
    directory(file("d/sub")).copyTo(pathOf(file("d/sub2")));
    EXPECT_TRUE(treeAt(file("d/sub2")) == treeAt(file("d/sub")));
    OsDirectory::copyHierarchy(pathOf(file("d/sub")), pathOf(file("d")));
    EXPECT_EQ(readFile(file("d/a b.txt")), readFile(file("d/sub/a b.txt")));
}

TEST_F(OsDirectoryTest, PathsTooLongForTheSystemRaise)
{
    makeDirectory("d");
    makeFile("d/f");
    const Tree before = treeAt(path());
    for (const std::size_t length : {1023U, 1024U, 1025U, 5000U, 100000U})
    {
        // Elements of a length that each would be good.
        std::string text = path();
        while (text.size() < length) text += *OsFilePath::getSeparator() + std::string(99, 'n');
        OsDirectory subject = directory(text);
        EXPECT_THROW(subject.create(allModes), ExSysErrorWindows) << length;
        EXPECT_THROW(subject.remove(), ExSysErrorWindows) << length;
        EXPECT_THROW(subject.getChildrenPath(OsFileTypes::PathFull, everything), ExSysErrorWindows);
        EXPECT_THROW(subject.getChildren(everything), ExSysErrorWindows) << length;
        EXPECT_THROW((void)subject.hasChildren(everything), ExSysErrorWindows) << length;
        EXPECT_THROW(subject.removeChildren(everything), ExSysErrorWindows) << length;
        EXPECT_THROW(subject.copyTo(pathOf(file("x"))), ExSysErrorWindows) << length;
        EXPECT_THROW(directory(file("d")).copyTo(pathOf(text)), ExSysErrorWindows) << length;
        EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(text)),
                     ExSysErrorWindows);
    }
    EXPECT_THROW(directory(file(std::string(256, 'n'))).create(allModes), ExSysErrorWindows);
    EXPECT_EQ(treeAt(path()), before);
}

TEST_F(OsDirectoryTest, ATreeOfMoreThan1024CharactersIsHandledWholeOrRaises)
{
    if (onWindows) GTEST_SKIP() << "Windows does not make such a tree.";
    std::string deep = "d";
    for (int level = 0; level < 15; ++level) deep += "/" + std::string(100, 's');
    makeDirectory(deep);
    makeFile(deep + "/f", "at the bottom");
    ASSERT_GT(file(deep).size(), 1500U);
    const Tree before = treeAt(file("d"));
    const std::string list =
        reasonOf<ExSysErrorWindows>([&] { EXPECT_EQ(namesIn(file(deep)), Names{"f"}); });
    const std::string copy =
        reasonOf<ExSysErrorWindows>([&] { directory(file("d")).copyTo(pathOf(file("e"))); });
    EXPECT_TRUE(!copy.empty() || treeAt(file("e")) == before) << list << copy;
    EXPECT_TRUE(treeAt(file("d")) == before);
}

TEST_F(OsDirectoryLinkTest, ALinkIsAChildOfTheKindThatItLeadsTo)
{
    makeDirectory("d/sub");
    makeDirectory("outside");
    makeFile("f");
    makeLink("d/toDir", "../outside");
    makeLink("d/toFile", "../f");
    makeLink("d/dangling", "nowhere");
    EXPECT_EQ(sorted(namesIn(file("d"))), (Names{"dangling", "sub", "toDir", "toFile"}));
    EXPECT_EQ(sorted(namesIn(file("d"), OsDirectoryFilter())), (Names{"sub", "toDir"}));
    const ObjPtr<Vector<OsFile*>> children = directory(file("d")).getChildren(everything);
    Names directories;
    for (OsFile* const child : *children)
    {
        const std::unique_ptr<OsFile> owned(child);
        if (dynamic_cast<OsDirectory*>(child))
            directories.push_back(lastElement(child->getPath().getChars()));
    }
    EXPECT_EQ(sorted(directories), (Names{"sub", "toDir"}));
}

TEST_F(OsDirectoryLinkTest, ALinkToADirectoryIsListedAsThatDirectory)
{
    makeFiles("d", 3);
    makeLink("link", "d");
    EXPECT_EQ(listed(directory(file("link")), OsFileTypes::PathFull, OsLeafFileFilter("2")),
              Names{file("link/2")});
}

TEST_F(OsDirectoryLinkTest, RemoveChildrenRemovesLinksAndNeverWhatTheyLeadTo)
{
    makeDirectory("d");
    makeTree("outside");
    makeFile("f");
    makeDirectory("hollow");
    makeLink("d/toDir", "../outside");
    makeLink("d/toEmptyDir", "../hollow");
    makeLink("d/toFile", "../f");
    makeLink("d/dangling", "nowhere");
    makeLink("d/toParent", "..");
    const Tree outside = treeAt(file("outside"));
    directory(file("d")).removeChildren(everything);
    EXPECT_EQ(namesAt(file("d")), Names());
    EXPECT_TRUE(treeAt(file("outside")) == outside);
    EXPECT_EQ(namesAt(path()), (Names{"d", "f", "hollow", "outside"}));
    EXPECT_EQ(readFile(file("f")), "text");
}

TEST_F(OsDirectoryLinkTest, RemoveNeverTouchesTheDirectoryThatALinkLeadsTo)
{
    makeDirectory("d");
    makeLink("link", "d");
    reasonOf<ExSysErrorWindows>([&] { directory(file("link")).remove(); });
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
}

TEST_F(OsDirectoryLinkTest, CopiesFollowLinks)
{
    makeDirectory("d/sub");
    makeDirectory("outside");
    makeFile("outside/o", "of outside");
    makeFile("d/sub/s", "of sub");
    makeFile("f", "of f");
    makeLink("d/toDir", "../outside");
    makeLink("d/again", "../outside");
    makeLink("d/toSibling", "sub");
    makeLink("d/toFile", "../f");
    makeLink("link", "d");
    const Tree expected({{"sub", DIRECTORY_MARK},
                         {"sub/s", "of sub"},
                         {"toDir", DIRECTORY_MARK},
                         {"toDir/o", "of outside"},
                         {"again", DIRECTORY_MARK},
                         {"again/o", "of outside"},
                         {"toSibling", DIRECTORY_MARK},
                         {"toSibling/s", "of sub"},
                         {"toFile", "of f"}});
    directory(file("d")).copyTo(pathOf(file("copy")));
    EXPECT_EQ(treeAt(file("copy")), expected);
    directory(file("link")).copyTo(pathOf(file("byLink")));
    EXPECT_EQ(treeAt(file("byLink")), expected);
    makeDirectory("target");
    directory(file("link")).copyTo(pathOf(file("target")));
    EXPECT_EQ(treeAt(file("target/link")), expected);
}

TEST_F(OsDirectoryLinkTest, ALinkThatLeadsNowhereFailsTheCopy)
{
    makeDirectory("d");
    makeLink("d/dangling", "nowhere");
    EXPECT_THROW(directory(file("d")).copyTo(pathOf(file("copy"))), ExSysErrorWindows);
    EXPECT_EQ(treeAt(file("d")), Tree({{"dangling", "<link> nowhere"}}));
}

TEST_F(OsDirectoryLinkTest, ALinkThatLeadsBackIsRefusedBeforeAnythingIsMade)
{
    for (const char* const target : {".", "..", "../d", "./sub/.."})
    {
        makeTree("d");
        makeLink("d/back", target);
        expectCopyRefused("d", "copy");
        expectHierarchyRefused("d", "copy");
        makeDirectory("existing");
        expectHierarchyRefused("d", "existing");
        std::filesystem::remove_all(file("d"));
        std::filesystem::remove_all(file("existing"));
    }
    for (const char* const target : {".", "..", "../..", "../../..", "../../../d"})
    {
        makeTree("d");
        makeLink("d/sub/with blanks/back", target);
        expectCopyRefused("d", "copy");
        std::filesystem::remove_all(file("d"));
    }
}

TEST_F(OsDirectoryLinkTest, LinksThatLeadBackTogetherAreRefused)
{
    makeDirectory("a");
    makeDirectory("b");
    makeLink("a/toB", "../b");
    makeLink("b/toA", "../a");
    expectCopyRefused("a", "copy");
    makeDirectory("c");
    makeLink("c/toA", "../a");
    expectCopyRefused("c", "copy");
}

TEST_F(OsDirectoryLinkTest, ACopyThroughALinkToItselfIsRefused)
{
    makeTree("d");
    makeLink("link", "d");
    makeLink("link2", "link");
    for (const char* const link : {"link", "link2"})
    {
        const std::string inLink = std::string(link) + "/new";
        expectCopyRefused("d", link);
        expectCopyRefused("d", inLink);
        expectCopyRefused(link, "d");
        expectCopyRefused(link, "d/new");
        expectCopyRefused(link, inLink);
        expectHierarchyRefused("d", link);
        expectHierarchyRefused("d", std::string(link) + "/");
        expectHierarchyRefused("d", std::string(link) + "/.");
        expectHierarchyRefused(link, "d");
        expectHierarchyRefused(link, link);
        expectHierarchyRefused("d", std::string(link) + "/sub/new");
    }
}

TEST_F(OsDirectoryLinkTest, ATargetThatALinkOfTheSourceLeadsToIsRefused)
{
    makeDirectory("d");
    makeDirectory("outside/below");
    makeLink("d/toOutside", "../outside");
    expectHierarchyRefused("d", "outside/new");
    expectHierarchyRefused("d", "outside/below");
    expectCopyRefused("d", "outside");
}

TEST_F(OsDirectoryLinkTest, ParentsOfLinksAreThoseOfWhatTheyLeadTo)
{
    makeDirectory("d/sub");
    makeDirectory("other/below");
    makeLink("toSub", "d/sub");
    makeLink("d/toBelow", "../other/below");
    // The system goes up from the link's target.
    expectHierarchyRefused("d", "toSub/../new");
    EXPECT_NO_THROW(
        OsDirectory::copyHierarchy(pathOf(file("d/sub")), pathOf(file("d/sub/../beside"))));
    EXPECT_TRUE(std::filesystem::is_directory(file("d/beside")));
}

// The target's own links are met while copying, when something may have been copied already.
TEST_F(OsDirectoryLinkTest, ALinkInTheTargetThatLeadsIntoTheSourceIsRefused)
{
    makeDirectory("d/sub");
    makeFile("d/sub/deep", "kept");
    makeDirectory("target");
    makeLink("target/sub", "../d/sub");
    const Tree before = treeAt(file("d"));
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("target"))),
                 OsFileEx::ExInvalidPath);
    EXPECT_TRUE(treeAt(file("d")) == before);
    makeDirectory("other");
    makeLink("other/sub", "../d");
    EXPECT_THROW(OsDirectory::copyHierarchy(pathOf(file("d")), pathOf(file("other"))),
                 OsFileEx::ExInvalidPath);
    EXPECT_TRUE(treeAt(file("d")) == before);
}

} // namespace
