#include "base/osFileFilter.h"

#include "base/exSysError.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <system_error>

namespace
{

using support::onWindows;
using Zu::OsDirectoryFilter;
using Zu::OsFileFilter;
using Zu::OsFilePath;
using Zu::OsLeafFileFilter;
using Zu::OsPassThroughFilter;

bool accepts(const OsFileFilter& filter, const std::string& path)
{
    return filter.filter(OsFilePath(path.c_str()));
}

class OsFileFilterTest : public testing::Test
{
protected:
    OsFileFilterTest()
    {
        std::ofstream(file("f.txt")) << "text";
        std::filesystem::create_directory(file("d.txt"));
    }

    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

private:
    support::TempDir _dir;
};

class OsFileFilterLinkTest : public OsFileFilterTest
{
protected:
    void SetUp() override
    {
        std::error_code failure;
        std::filesystem::create_directory_symlink(file("d.txt"), file("toDir.txt"), failure);
        if (!failure) std::filesystem::create_symlink(file("f.txt"), file("toFile.txt"), failure);
        if (!failure) std::filesystem::create_symlink(file("no"), file("dangling.txt"), failure);
        if (failure) GTEST_SKIP() << "No symbolic links are to be had: " << failure.message();
    }
};

// Tells its end.
class TellingFilter : public OsFileFilter
{
public:
    explicit TellingFilter(bool& ended) : _ended(ended) {}
    ~TellingFilter() override
    {
        _ended = true;
    }

    bool filter(const OsFilePath& path) const override
    {
        return path.isEmpty();
    }

private:
    bool& _ended;
};

TEST_F(OsFileFilterTest, AFilterOfOnesOwnIsAskedAndEndedThroughTheBase)
{
    bool ended = false;
    std::unique_ptr<OsFileFilter> filter = std::make_unique<TellingFilter>(ended);
    EXPECT_TRUE(accepts(*filter, ""));
    EXPECT_FALSE(accepts(*filter, "x"));
    filter.reset();
    EXPECT_TRUE(ended);
}

TEST_F(OsFileFilterTest, ThePassThroughFilterAcceptsEverything)
{
    const OsPassThroughFilter filter;
    for (const std::string& path : {file("f.txt"), file("d.txt"), file("no"), file("no/way"),
                                    std::string(), std::string("."), std::string(5000, 'x')})
        EXPECT_TRUE(accepts(filter, path)) << path;
}

TEST_F(OsFileFilterTest, TheDirectoryFilterAcceptsDirectoriesAlone)
{
    const OsDirectoryFilter filter;
    EXPECT_TRUE(accepts(filter, file("d.txt")));
    EXPECT_TRUE(accepts(filter, "."));
    EXPECT_TRUE(accepts(filter, ".."));
    for (const std::string& path :
         {file("f.txt"), file("no"), file("f.txt/below"), std::string(), std::string(5000, 'x')})
        EXPECT_FALSE(accepts(filter, path)) << path;
}

TEST_F(OsFileFilterTest, TheLeafFilterWithoutSuffixRefusesDirectoriesAlone)
{
    const OsLeafFileFilter filter;
    EXPECT_TRUE(accepts(filter, file("f.txt")));
    // This only excludes directories, and a missing file is not a directory.
    EXPECT_TRUE(accepts(filter, file("no")));
    EXPECT_TRUE(accepts(filter, ""));
    EXPECT_FALSE(accepts(filter, file("d.txt")));
    EXPECT_FALSE(accepts(filter, "."));
    EXPECT_FALSE(accepts(filter, ".."));
}

TEST_F(OsFileFilterTest, ANullSuffixIsNone)
{
    const char* const none = nullptr;
    const OsLeafFileFilter filter(none);
    EXPECT_TRUE(accepts(filter, file("f.txt")));
    EXPECT_TRUE(accepts(filter, file("no")));
    EXPECT_FALSE(accepts(filter, file("d.txt")));
}

TEST_F(OsFileFilterTest, AnEmptySuffixEndsEveryName)
{
    const OsLeafFileFilter filter("");
    EXPECT_TRUE(accepts(filter, file("f.txt")));
    EXPECT_TRUE(accepts(filter, file("no")));
    EXPECT_FALSE(accepts(filter, file("d.txt")));
}

TEST_F(OsFileFilterTest, ASuffixIsTheExactTailOfTheBaseName)
{
    struct Row
    {
        const char* _suffix;
        const char* _name;
        bool _accepted;
    };
    const Row rows[] = {
        {".txt", "a.txt", true},     {".txt", "a.b.txt", true},
        {".txt", "a b.txt", true},   {".txt", ".txt", true},
        {".txt", "a.TXT", false},    {".txt", "a.tXt", false},
        {".txt", "t", false},        {".txt", "txt", false},
        {".txt", "atxt", false},     {".txt", "a.txt.b", false},
        {".txt", "a.tx", false},     {".txt", "a.ttxt", false},
        {"a.txt", "a.txt", true},    {"a.txt", "ba.txt", true},
        {"aa.txt", "a.txt", false},  {"t", "t", true},
        {"t", "a.txt", true},        {"T", "a.txt", false},
        {"/a.txt", "a.txt", false},  {"\\a.txt", "a.txt", false},
        {".*", "a.txt", false},      {".tx?", "a.txt", false},
        {"txt", "atxt", true},       {"x", "xy", false},
        {"n/a.txt", "a.txt", false}, {" b", "a b", true},
        {" b", "a_b", false},
    };
    for (const Row& row : rows)
    {
        const OsLeafFileFilter filter(row._suffix);
        EXPECT_EQ(accepts(filter, file(row._name)), row._accepted)
            << row._suffix << " of " << row._name;
        EXPECT_EQ(accepts(filter, row._name), row._accepted) << row._suffix << " of " << row._name;
    }
}

TEST_F(OsFileFilterTest, ASuffixDecidesAmongFilesAndRefusesDirectoriesThatHaveIt)
{
    const OsLeafFileFilter filter(".txt");
    std::ofstream(file("t")) << "text";
    std::ofstream(file("d.txt/in")) << "text";
    EXPECT_TRUE(accepts(filter, file("f.txt")));
    EXPECT_FALSE(accepts(filter, file("d.txt")));
    EXPECT_FALSE(accepts(filter, file("t")));
    EXPECT_FALSE(accepts(filter, file("d.txt/in")));
}

TEST_F(OsFileFilterTest, APathThatEndsInASeparatorHasNoNameForTheSuffix)
{
    const std::string path = file("no.txt") + OsFilePath::getSeparator();
    EXPECT_FALSE(accepts(OsLeafFileFilter(".txt"), path));
    EXPECT_TRUE(accepts(OsLeafFileFilter(), path));
}

TEST_F(OsFileFilterTest, TheSuffixIsCopied)
{
    char suffix[] = ".txt";
    const OsLeafFileFilter filter(suffix);
    suffix[1] = 'X';
    EXPECT_TRUE(accepts(filter, file("f.txt")));
    EXPECT_FALSE(accepts(filter, file("f.Xxt")));
}

TEST_F(OsFileFilterTest, ASuffixMayBeLongerThanAnyName)
{
    const std::string suffix(100000, 'x');
    EXPECT_FALSE(accepts(OsLeafFileFilter(suffix.c_str()), file("xxx")));
}

TEST_F(OsFileFilterTest, ASuffixHasAnyBytes)
{
    if (onWindows) GTEST_SKIP() << "Windows turns the bytes of names into characters.";
    for (const char* const suffix : {"\xff", "\x80\x01", "\xc3", "\n", "\\"})
    {
        EXPECT_TRUE(accepts(OsLeafFileFilter(suffix), file(std::string("a") + suffix)));
        EXPECT_FALSE(accepts(OsLeafFileFilter(suffix), file(suffix + std::string("a"))));
    }
}

TEST_F(OsFileFilterTest, APathThatHasNoBaseNameRaisesWithASuffix)
{
    const OsLeafFileFilter filter(".txt");
    EXPECT_THROW(accepts(filter, ""), Zu::ExSysErrorWindows);
    EXPECT_THROW(accepts(filter, file(std::string(2000, 'x') + ".txt")), Zu::ExSysErrorWindows);
}

TEST_F(OsFileFilterLinkTest, ALinkCountsAsWhatItLeadsTo)
{
    const OsDirectoryFilter directories;
    const OsLeafFileFilter leaves;
    const OsLeafFileFilter texts(".txt");
    EXPECT_TRUE(accepts(directories, file("toDir.txt")));
    EXPECT_FALSE(accepts(leaves, file("toDir.txt")));
    EXPECT_FALSE(accepts(texts, file("toDir.txt")));
    for (const char* const name : {"toFile.txt", "dangling.txt"})
    {
        EXPECT_FALSE(accepts(directories, file(name))) << name;
        EXPECT_TRUE(accepts(leaves, file(name))) << name;
        EXPECT_TRUE(accepts(texts, file(name))) << name;
    }
}

} // namespace
