// Part of the tests for Windows only, as the class is.

#include "base/osRegKeyHandle.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace
{

using Zu::OsRegKeyHandle;

// A key of this test alone, with one number and one text.
class OsRegKeyHandleTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const unsigned long number = 70000;
        RegDeleteKeyA(HKEY_CURRENT_USER, name);
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                  &key, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExA(key, "number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                       sizeof number);
        RegSetValueExA(key, "longText", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcdefgh"), 9);
        RegCloseKey(key);
    }

    void TearDown() override
    {
        RegDeleteKeyA(HKEY_CURRENT_USER, name);
    }

    // Processes that run at the same time have a key each.
    const std::string _keyName = "Software\\ZUbaseTest" + std::to_string(GetCurrentProcessId());
    const char* const name = _keyName.c_str();
};

TEST_F(OsRegKeyHandleTest, ValuesAreRead)
{
    OsRegKeyHandle key(HKEY_CURRENT_USER, name, 0, KEY_READ);
    unsigned long type = 0;
    unsigned long number = 0;
    unsigned long size = sizeof number;
    EXPECT_EQ(
        key.queryValue("number", nullptr, &type, reinterpret_cast<unsigned char*>(&number), &size),
        ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<unsigned long>(REG_DWORD));
    EXPECT_EQ(number, 70000U);
    EXPECT_EQ(size, 4U);
}

TEST_F(OsRegKeyHandleTest, TheCodeOfAQueryIsReturned)
{
    OsRegKeyHandle key(HKEY_CURRENT_USER, name, 0, KEY_READ);
    unsigned long type = 0;
    unsigned char data[4];
    unsigned long size = sizeof data;
    EXPECT_EQ(key.queryValue("missing", nullptr, &type, data, &size), ERROR_FILE_NOT_FOUND);
    size = sizeof data;
    EXPECT_EQ(key.queryValue("longText", nullptr, &type, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 9U);
}

TEST_F(OsRegKeyHandleTest, TheKeyIsDescribed)
{
    OsRegKeyHandle key(HKEY_CURRENT_USER, name, 0, KEY_READ);
    unsigned long subKeys = 99;
    unsigned long values = 99;
    unsigned long maxNameLength = 99;
    unsigned long maxValueLength = 99;
    FILETIME time;
    EXPECT_EQ(key.queryInfo(nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values,
                            &maxNameLength, &maxValueLength, nullptr, &time),
              ERROR_SUCCESS);
    EXPECT_EQ(subKeys, 0U);
    EXPECT_EQ(values, 2U);
    EXPECT_EQ(maxNameLength, 8U);
    EXPECT_GE(maxValueLength, 9U);
}

TEST_F(OsRegKeyHandleTest, TheHandleIsThatOfTheSystem)
{
    const OsRegKeyHandle key(HKEY_CURRENT_USER, name, 0, KEY_READ);
    EXPECT_EQ(RegQueryValueExA(key.getOSHandle(), "number", nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
}

TEST_F(OsRegKeyHandleTest, TheHandleIsClosedAtTheEnd)
{
    HKEY handle = nullptr;
    {
        const OsRegKeyHandle key(HKEY_CURRENT_USER, name, 0, KEY_READ);
        handle = key.getOSHandle();
    }
    EXPECT_EQ(RegQueryValueExA(handle, "number", nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_HANDLE);
}

TEST(OsRegKeyHandleDeathTest, AMissingKeyIsFatal)
{
    EXPECT_DEATH(OsRegKeyHandle(HKEY_CURRENT_USER, "Software\\ZUbaseTestMissing", 0, KEY_READ),
                 "Assertion failed: result == ERROR_SUCCESS, file ");
}

TEST(OsRegKeyHandleDeathTest, AKeyThatCanNotBeClosedIsFatal)
{
    EXPECT_DEATH(
        {
            const OsRegKeyHandle key(HKEY_CURRENT_USER, "Software", 0, KEY_READ);
            RegCloseKey(key.getOSHandle());
        },
        "Assertion failed: result == ERROR_SUCCESS, file ");
}

} // namespace
