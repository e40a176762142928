// Runs every target over its corpus.

#include "fuzzTarget.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using Names = std::set<std::string>;

const fs::path CORPORA = FUZZ_CORPORA;

std::vector<std::uint8_t> bytesOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

Names namesOfTargets()
{
    Names names;
    for (const auto& [name, run] : fuzz::targets()) names.insert(name);
    return names;
}

// Without those of which the libraries are missing.
Names withoutMissing(Names names)
{
    std::istringstream missing(FUZZ_MISSING);
    for (std::string name; missing >> name;) names.erase(name);
    return names;
}

Names namesInList()
{
    std::ifstream stream(FUZZ_TARGETS);
    Names names;
    for (std::string name; std::getline(stream, name);) names.insert(name);
    return withoutMissing(names);
}

Names namesOfCorpora()
{
    Names names;
    for (const fs::directory_entry& entry : fs::directory_iterator(CORPORA))
        names.insert(entry.path().filename().string());
    return withoutMissing(names);
}

TEST(FuzzCorpora, EveryTargetIsThere)
{
    ASSERT_FALSE(namesInList().empty());
    EXPECT_EQ(namesOfTargets(), namesInList());
    EXPECT_EQ(namesOfCorpora(), namesInList());
}

class FuzzCorpusTest : public testing::TestWithParam<std::string>
{
protected:
    static void run(const std::vector<std::uint8_t>& bytes, const std::string& origin)
    {
        SCOPED_TRACE(origin);
        try
        {
            fuzz::targets().at(GetParam())(fuzz::Input(bytes.data(), bytes.size()));
        }
        catch (const fuzz::PropertyFailure& failure)
        {
            ADD_FAILURE() << failure._text;
        }
    }
};

TEST_P(FuzzCorpusTest, EveryPropertyHolds)
{
    const fs::path directory = CORPORA / GetParam();
    ASSERT_TRUE(fs::is_directory(directory)) << directory;
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory))
        files.push_back(entry.path());
    ASSERT_FALSE(files.empty()) << directory << " is empty";
    std::sort(files.begin(), files.end());
    run({}, "the empty input");
    for (const fs::path& file : files) run(bytesOf(file), file.string());
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzCorpusTest, testing::ValuesIn(namesOfTargets()),
                         [](const testing::TestParamInfo<std::string>& target)
                         { return target.param; });

} // namespace
