#include "base/dbgBuildInfoMgr.h"

#include "base/dbgBuildInfoEx.h"
#include "base/dbgBuildInfoLog.h"
#include "base/internalAssert.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

namespace Zu
{

namespace
{

struct NameHash
{
    std::size_t operator()(const std::string& name) const
    {
        std::size_t hash = 0;
        for (const char character : name)
            hash = 5 * hash + static_cast<std::size_t>(static_cast<signed char>(character));
        return hash;
    }
};

using Group = std::vector<std::unique_ptr<DbgBuildInfo>>;
using Table = std::unordered_map<std::string, Group, NameHash>;

constexpr std::size_t BUCKETS = 8;
constexpr float LARGEST_LOAD = 4;

Table emptyTable()
{
    Table table(BUCKETS);
    table.max_load_factor(LARGEST_LOAD);
    return table;
}

Table& infoTable()
{
    static Table table = emptyTable();
    return table;
}

std::unique_ptr<DbgBuildInfo>& appInfo()
{
    static std::unique_ptr<DbgBuildInfo> info;
    return info;
}

std::string versionOf(const DbgBuildInfo& info)
{
    return std::to_string(info.getMajorVersion()) + "." + std::to_string(info.getMinorVersion());
}

void checkVersion(const DbgBuildInfo& first, const DbgBuildInfo& info, bool isRaised)
{
    if (info.getMajorVersion() == first.getMajorVersion() &&
        info.getMinorVersion() == first.getMinorVersion())
        return;
    DbgBuildInfoLog::log(LgTypes::FatalError,
                         std::string("Version mismatch, registering with API ") +
                             first.getApiName() + " v" + versionOf(first) + ": library " +
                             info.getLibraryName(false) + " using v" + versionOf(info));
    if (isRaised)
        throw DbgBuildInfoEx::ExVersionMismatch(__FILE__, __LINE__, first.getApiName(),
                                                first.getMajorVersion(), first.getMinorVersion(),
                                                info.getLibraryName(false), info.getMajorVersion(),
                                                info.getMinorVersion());
}

void checkStamp(const DbgBuildInfo& first, const DbgBuildInfo& info)
{
    const char* const expected = first.getBuildStamp(false);
    const char* const stamp = info.getBuildStamp(false);
    if (std::strcmp(stamp, expected) == 0) return;
    // The two blanks before the second "build" are frozen, see docs/compatibility.md.
    DbgBuildInfoLog::log(LgTypes::FatalError,
                         std::string("Build stamp mismatch, registering with API ") +
                             first.getApiName() + " build " + expected + ": library " +
                             info.getLibraryName(false) + " using  build " + stamp);
    throw DbgBuildInfoEx::ExBuildStampMismatch(__FILE__, __LINE__, first.getApiName(), expected,
                                               info.getLibraryName(false), stamp);
}

void printVersion(std::ostream& os, const DbgBuildInfo& info)
{
    os << info.getApiName() << " " << versionOf(info) << " " << info.getVersionLabel();
}

void printBuild(std::ostream& os, const DbgBuildInfo& info, bool verbose)
{
    os << " (" << info.getBuildStamp(verbose) << ", " << info.getBuildDate(verbose) << ")\n";
}

void printBuilder(std::ostream& os, const char* indentation, const DbgBuildInfo& info, bool verbose)
{
    if (!verbose) return;
    os << indentation << "Built by " << info.getBuiltBy(verbose) << " ("
       << info.getBuildConfiguration(verbose) << ")\n";
}

} // namespace

void DbgBuildInfoMgr::registerInfo(ObjPtr<DbgBuildInfo> info, bool validateVersions,
                                   bool checkStamps)
{
    ZU_INTERNAL_ASSERT(info.get());
    std::unique_ptr<DbgBuildInfo> record(info.release());
    Group& group = infoTable()[record->getApiName()];
    if (!group.empty())
    {
        checkVersion(*group.front(), *record, validateVersions);
        if (checkStamps) checkStamp(*group.front(), *record);
    }
    group.push_back(std::move(record));
}

void DbgBuildInfoMgr::registerAppInfo(ObjPtr<DbgBuildInfo> info)
{
    ZU_INTERNAL_ASSERT(info.get());
    if (appInfo()) throw DbgBuildInfoEx::ExAppAlreadyRegistered(__FILE__, __LINE__);
    appInfo().reset(info.release());
}

const DbgBuildInfo& DbgBuildInfoMgr::getAppInfo()
{
    if (!appInfo()) throw DbgBuildInfoEx::ExAppNotRegistered(__FILE__, __LINE__);
    return *appInfo();
}

std::ostream& DbgBuildInfoMgr::printAppInfo(std::ostream& os, bool verbose)
{
    if (!appInfo()) return os << "Unknown application name / version.\n";
    printVersion(os, *appInfo());
    printBuild(os, *appInfo(), verbose);
    printBuilder(os, "\t", *appInfo(), verbose);
    return os;
}

std::ostream& DbgBuildInfoMgr::printBuildInfo(std::ostream& os, bool verbose)
{
    printAppInfo(os, verbose);
    for (const auto& [name, group] : infoTable())
    {
        // The group is empty if there was no memory for its first record.
        if (group.empty()) continue;
        os << "API ";
        printVersion(os, *group.front());
        os << ": \n";
        for (const std::unique_ptr<DbgBuildInfo>& info : group)
        {
            os << "\t" << info->getLibraryName(verbose);
            printBuild(os, *info, verbose);
            printBuilder(os, "\t\t", *info, verbose);
        }
    }
    return os;
}

void DbgBuildInfoMgr::init() {}

void DbgBuildInfoMgr::fini()
{
    appInfo().reset();
    infoTable() = emptyTable();
}

} // namespace Zu
