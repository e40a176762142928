#include "sampleBuild.h"

#include "base/base.h"

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace sample
{

namespace
{

constexpr Zu::DbgBuildText BUILD = {
    "Sample application",   1,      0,       "example", "sampleApplication",
    "Sample application 1", "S. 1", __DATE__};

std::uint64_t sizeOf(const Zu::LmLibrary& library)
{
    std::uint64_t size = 0;
    for (const Zu::LmBlock& block : library._blocks) size += block._size;
    return size;
}

} // namespace

void registerBuild()
{
    Zu::DbgBuildInfoMgr::registerAppInfo(
        Zu::ObjPtr<Zu::DbgBuildInfo>(new Zu::DbgTextBuildInfo(BUILD)));
}

void showBuild()
{
    std::ostringstream text;
    Zu::DbgBuildInfoMgr::printBuildInfo(text, false);
    std::istringstream lines(text.str());
    for (std::string line; std::getline(lines, line);) std::cout << "  " << line << std::endl;
}

void showLibraries()
{
    for (const Zu::LmLibrary& library : Zu::LmLibraries::getList())
        std::cout << "  " << std::setw(6) << sizeOf(library) / 1024 << " KiB in " << std::setw(2)
                  << library._blocks.size() << " blocks  " << library._path.get() << std::endl;
}

} // namespace sample
