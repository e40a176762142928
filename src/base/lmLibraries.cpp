#include "base/lmLibraries.h"

#include "base/lmReport.h"

namespace Zu
{

namespace
{

std::vector<LmLibrary>& theList()
{
    static std::vector<LmLibrary> libraries;
    return libraries;
}

} // namespace

const std::vector<LmLibrary>& LmLibraries::getList()
{
    theList().clear();
    performGetList(theList());
    return theList();
}

void LmLibraries::dumpList()
{
    lmPrintReport(getList());
}

} // namespace Zu
