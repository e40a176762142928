// What tests of failing system calls share.

#ifndef ZU_TESTS_FAULTTEST_H
#define ZU_TESTS_FAULTTEST_H

#include "base/osFilePath.h"
#include "base/osFileReader.h"
#include "base/osFileWriter.h"
#include "support/errorCode.h"
#include "support/faults.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace support
{

// Files in a directory of the test's own. The number of open handles must not change.
class FaultTest : public testing::Test
{
protected:
    ~FaultTest() override
    {
        EXPECT_EQ(openHandles(), _before);
    }

    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    Zu::OsFilePath path(const std::string& name) const
    {
        return Zu::OsFilePath(file(name).c_str());
    }

    Zu::OsFilePath made(const std::string& name, const std::string& content) const
    {
        writeFile(file(name), content);
        return path(name);
    }

    // A close that fails with this error leaves the handle as it was.
    void expectCloseCanBeTriedAgain(Call close, int error) const
    {
        Zu::OsFileReader reader(made("f", "content"));
        Zu::OsFileWriter writer(path("g"), {}, false);
        {
            const Fault fault(close, error);
            for (int i = 0; i < 3; ++i)
            {
                EXPECT_EQ(codeOf([&] { reader.close(); }), error);
                EXPECT_EQ(codeOf([&] { writer.close(); }), error);
            }
            EXPECT_EQ(fault.failures(), 6);
        }
        char byte = '#';
        EXPECT_EQ(reader.read(&byte, 1), 1U);
        EXPECT_EQ(writer.write("x", 1), 1U);
        EXPECT_NO_THROW(reader.close());
        EXPECT_NO_THROW(writer.close());
    }

    TempDir _dir;

private:
    std::size_t _before = openHandles();
};

} // namespace support

#endif
