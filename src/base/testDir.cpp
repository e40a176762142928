#include "base/testDir.h"

#include "base/osEnv.h"
#include "base/osFsUtils.h"

namespace Zu
{

namespace
{

OsFilePath* makeDefaultPath()
{
    const char* const directory = OsEnv::getVariable("ZU_TEST_DIR");
    return directory ? new OsFilePath(directory) : new OsFilePath(OsFilePath::getTempDir());
}

} // namespace

const OsFilePath& TestDir::getDefaultPath()
{
    // Never freed: it may be requested at the end of the process.
    static const OsFilePath* const path = makeDefaultPath();
    return *path;
}

OsFilePath TestDir::create(const OsFilePath& path)
{
    OsFsUtils::createDir(path.getChars(), true);
    return path;
}

} // namespace Zu
