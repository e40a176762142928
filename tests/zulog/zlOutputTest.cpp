#include "zulog/zlOutput.h"

#include "support/tempDir.h"
#include "zulog/zlFile.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace
{

TEST(ZlOutput, WritesMuchAtOnceAndTheRestWhenAsked)
{
    const support::TempDir directory;
    const std::string path = directory.file("out");
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    Zu::ZlOutput output(file);
    output.text() += "little";
    output.writeIfLarge();
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    output.text().append(100000, 'x');
    output.writeIfLarge();
    EXPECT_EQ(std::filesystem::file_size(path), 100006U);
    EXPECT_TRUE(output.text().empty());
    output.text() += "rest";
    output.write();
    EXPECT_EQ(std::filesystem::file_size(path), 100010U);
    std::fclose(file);
}

TEST(ZlOutput, RaisesWhatCantBeWritten)
{
    const support::TempDir directory;
    const std::string path = directory.file("out");
    std::fclose(std::fopen(path.c_str(), "wb"));
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    Zu::ZlOutput output(file);
    output.text() += "text";
    EXPECT_THROW(output.write(), Zu::ZlError);
    std::fclose(file);
}

} // namespace
