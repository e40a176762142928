#include "base/osPathText.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace
{

using namespace Zu;

struct Answer
{
    const char* _path;
    bool _expected;
};

TEST(OsPathText, WithDriveOnlyADriveOrNetworkPrefixOfThreeCharactersIsAbsolute)
{
    const Answer answers[] = {
        {"", false},      {"C", false},       {"C:", false},   {"C:x", true},   {"C:\\", true},
        {"c:/x", true},   {"C:\\a\\b", true}, {"\\", false},   {"\\\\", false}, {"\\\\x", true},
        {"\\\\\\", true}, {"\\x\\y", false},  {"//x", false},  {"/x/y", false}, {"\\/x", false},
        {"abc", false},   {"ab:", false},     {"a\\b", false}, {"::x", true},   {":ab", false},
        {".:\\", true},   {"a\\\\b", false},  {"...", false},
    };
    for (const Answer& answer : answers)
        EXPECT_EQ(osIsAbsoluteWithDrive(answer._path), answer._expected) << answer._path;
}

TEST(OsPathText, WithoutDriveALeadingSlashIsAbsolute)
{
    const Answer answers[] = {
        {"", false},     {"/", true},      {"/a", true},   {"//a", true},   {"/..", true},
        {"a", false},    {"a/b", false},   {"./a", false}, {"../a", false}, {"C:\\x", false},
        {"C:/x", false}, {"\\\\x", false}, {"\\x", false}, {"~/a", false},
    };
    for (const Answer& answer : answers)
        EXPECT_EQ(osIsAbsoluteWithoutDrive(answer._path), answer._expected) << answer._path;
}

TEST(OsPathText, ConcatenationPutsOneSeparatorBetweenUnlessThereIsOneOrNothingBefore)
{
    struct Row
    {
        const char* _base;
        const char* _element;
        char _separator;
        const char* _expected;
    };
    const Row rows[] = {
        {"a", "b", '\\', "a\\b"},
        {"a", "b", '/', "a/b"},
        {"a\\", "b", '\\', "a\\b"},
        {"a/", "b", '/', "a/b"},
        {"a\\\\", "b", '\\', "a\\\\b"},
        {"a//", "b", '/', "a//b"},
        {"", "a", '\\', "a"},
        {"", "a", '/', "a"},
        {"", "", '\\', ""},
        {"", "", '/', ""},
        {"a", "", '\\', "a\\"},
        {"a", "", '/', "a/"},
        {"a\\", "", '\\', "a\\"},
        {"a/", "", '/', "a/"},
        {"a", "b\\c", '\\', "a\\b\\c"},
        {"a", "b/c", '/', "a/b/c"},
        {"a/", "b", '\\', "a/\\b"},
        {"a\\", "b", '/', "a\\/b"},
        {"C:\\", "x", '\\', "C:\\x"},
        {"/", "x", '/', "/x"},
        {"a", "\\b", '\\', "a\\\\b"},
        {"C:", "x", '\\', "C:\\x"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(osConcatenate(row._base, row._element, row._separator), row._expected)
            << row._base << " and " << row._element;
}

TEST(OsPathText, DirectoryOfADrivePathIsWhatStandsBeforeTheLastBackslash)
{
    struct Row
    {
        const char* _full;
        const char* _given;
        const char* _expected;
    };
    const Row rows[] = {
        {"C:\\a\\b.txt", "C:\\a\\b.txt", "C:\\a"},
        {"C:\\a\\b.txt", "b.txt", "C:\\a"},
        {"C:\\a\\", "C:\\a\\", "C:\\a"},
        {"C:\\a", "C:\\a", "C:"},
        {"C:\\", "C:\\", "C:"},
        {"C:\\a\\b", ".", "C:\\a\\b"},
        {"C:\\a", "..", "C:\\a"},
        {"C:\\", "..", "C:\\"},
        {"C:\\a\\b", "./", "C:\\a"},
        {"C:\\a\\b\\", ".\\", "C:\\a\\b"},
        {"C:\\a\\...", "...", "C:\\a"},
        {"\\\\host\\share\\x", "\\\\host\\share\\x", "\\\\host\\share"},
        {"", "", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(osDirectoryName(row._full, row._given, '\\', ""), row._expected)
            << row._full << " from " << row._given;
}

TEST(OsPathText, DirectoryOfASlashPathEndsAtTheRoot)
{
    struct Row
    {
        const char* _full;
        const char* _given;
        const char* _expected;
    };
    const Row rows[] = {
        {"/a/b.txt", "/a/b.txt", "/a"},
        {"/a/b/c", "c", "/a/b"},
        {"/a/", "/a/", "/a"},
        {"/a", "/a", "/"},
        {"/", "/", "/"},
        {"/a/b", ".", "/a/b"},
        {"/a", "..", "/a"},
        {"/", "..", "/"},
        {"/a/b/", "./", "/a/b"},
        {"/a/b", "./.", "/a"},
        {"/a/b\\c", "b\\c", "/a"},
        {"", "", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(osDirectoryName(row._full, row._given, '/', "/"), row._expected)
            << row._full << " from " << row._given;
}

TEST(OsPathText, ExtensionIsWhatFollowsTheLastPoint)
{
    struct Row
    {
        const char* _name;
        const char* _expected;
    };
    const Row rows[] = {
        {"b.txt", "txt"}, {"a.tar.gz", "gz"}, {".profile", "profile"},
        {"a.", ""},       {"a", ""},          {"", ""},
        {".", ""},        {"a..", ""},        {"a..b", "b"},
        {"..a", "a"},     {"a.b c", "b c"},   {".a.", ""},
    };
    for (const Row& row : rows) EXPECT_EQ(osExtension(row._name), row._expected) << row._name;
}

TEST(OsPathText, LexicalFullPathResolvesAgainstTheCurrentDirectory)
{
    struct Row
    {
        const char* _current;
        const char* _path;
        const char* _expected;
    };
    const Row rows[] = {
        {"/c/d", "x", "/c/d/x"},
        {"/c/d", "x/y", "/c/d/x/y"},
        {"/c/d", "/x/y", "/x/y"},
        {"/c/d", ".", "/c/d"},
        {"/c/d", "..", "/c"},
        {"/c/d", "../..", "/"},
        {"/c/d", "../../..", "/"},
        {"/c/d", "../../../x", "/x"},
        {"/c/d", "./x", "/c/d/x"},
        {"/c/d", "x/./y", "/c/d/x/y"},
        {"/c/d", "x/../y", "/c/d/y"},
        {"/c/d", "x/..", "/c/d"},
        {"/c/d", "x/.", "/c/d/x"},
        {"/c/d", "x//y", "/c/d/x/y"},
        {"/c/d", "x///y////z", "/c/d/x/y/z"},
        {"/c/d", "x/", "/c/d/x/"},
        {"/c/d", "x//", "/c/d/x/"},
        {"/c/d", "x/../", "/c/d/"},
        {"/c/d", "./", "/c/d/"},
        {"/c/d", "../", "/c/"},
        {"/c/d", "/", "/"},
        {"/c/d", "//", "/"},
        {"/c/d", "///x", "/x"},
        {"/c/d", "/..", "/"},
        {"/c/d", "/../", "/"},
        {"/c/d", "/../x", "/x"},
        {"/c/d", "/./x", "/x"},
        {"/c/d", "...", "/c/d/..."},
        {"/c/d", ".x", "/c/d/.x"},
        {"/c/d", "..x", "/c/d/..x"},
        {"/c/d", "x.", "/c/d/x."},
        {"/c/d", "a\\b", "/c/d/a\\b"},
        {"/c/d", "C:\\x", "/c/d/C:\\x"},
        {"/c/d", " ", "/c/d/ "},
        {"/", "x", "/x"},
        {"/", ".", "/"},
        {"/", "..", "/"},
        {"/", "x/", "/x/"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(osLexicalFullPath(row._current, row._path), row._expected)
            << row._current << " and " << row._path;
}

// Replaces the first occurrence of `what`; whether there was one.
bool replaceFirst(std::string& text, const std::string& what, const std::string& by)
{
    const std::size_t position = text.find(what);
    if (position == std::string::npos) return false;
    text.replace(position, what.size(), by);
    return true;
}

// The same resolution by rewriting the text step by step until no rule applies.
std::string slowFullPath(const std::string& current, const std::string& path)
{
    std::string text = (path[0] == '/' ? path : current + "/" + path) + "/";
    while (replaceFirst(text, "//", "/") || replaceFirst(text, "/./", "/")) continue;
    for (std::size_t up = text.find("/../"); up != std::string::npos; up = text.find("/../"))
    {
        const std::size_t before = up == 0 ? 0 : text.rfind('/', up - 1);
        text.erase(before, up + 3 - before);
    }
    if (path.back() != '/' && text != "/") text.pop_back();
    return text;
}

TEST(OsPathText, LexicalFullPathAgreesWithStepwiseRewritingOnRandomPaths)
{
    const char* const pieces[] = {"/", "/", "/", ".", "..", "a", "b", "/../", "/./", ".c", "d."};
    const char* const currents[] = {"/", "/x", "/x/y", "/x/y/z"};
    std::mt19937 random(51);
    for (int round = 0; round < 20000; ++round)
    {
        std::string path;
        const auto length = 1 + random() % 9;
        for (std::size_t piece = 0; piece < length; ++piece) path += pieces[random() % 11];
        const std::string current = currents[random() % 4];
        ASSERT_EQ(osLexicalFullPath(current, path), slowFullPath(current, path))
            << current << " and " << path;
    }
}

TEST(OsPathText, APathEndsInANameUnlessItsLastElementIsAStepOrARoot)
{
    for (const char* const path : {"a", "a/", "a//", "/a", "d/a", "d/./a", "d/../a/", ".a", "..a",
                                   "a.", "a..", "...", "d/...", "a b", " ", "a:", "d/a:", "\\."})
        EXPECT_TRUE(Zu::osEndsInName(path, '/')) << path;
    for (const char* const path :
         {"", "/", "//", ".", "..", "./", "..//", "/.", "/..", "a/.", "a/./", "a/..", "a/..///"})
    {
        EXPECT_FALSE(Zu::osEndsInName(path, '/')) << path;
        EXPECT_FALSE(Zu::osEndsInName(path, '\\')) << path;
    }
}

TEST(OsPathText, WithDrivesNeitherThoseNorPointsAndBlanksAreNames)
{
    for (const char* const path :
         {"a", "a\\", "C:\\a", "C:/a\\/", "C:a", "C:..a", "\\a", "/a", "\\\\server\\share\\a",
          "//server/share/a", "d\\\\a", "d\\.a", "..a", "a.", "a ."})
        EXPECT_TRUE(Zu::osEndsInName(path, '\\')) << path;
    for (const char* const path : {"\\",
                                   "C:",
                                   "C:\\",
                                   "C:/",
                                   "C:\\.",
                                   "a\\.",
                                   "a\\..",
                                   "a\\..\\",
                                   "...",
                                   "a\\...",
                                   "a\\. .",
                                   " ",
                                   "a\\ ",
                                   "C:.",
                                   "C:..",
                                   "C:..\\",
                                   "C:...",
                                   "\\\\server\\share",
                                   "//server/share/",
                                   "\\\\server",
                                   "\\\\server\\\\share",
                                   "\\\\"})
        EXPECT_FALSE(Zu::osEndsInName(path, '\\')) << path;
}

} // namespace
