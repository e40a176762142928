#include "base/lmReport.h"

#include <cstdint>
#include <cstdio>

namespace Zu
{

namespace
{

void dumpFlags(std::uint32_t flags)
{
    if (flags & LmBlock::Read) std::printf("READ ");
    if (flags & LmBlock::Write) std::printf("WRITE ");
    if (flags & LmBlock::Copy) std::printf("COPY ");
    if (flags & LmBlock::Execute) std::printf("EXECUTE ");
}

void dumpBlock(int number, const LmBlock& block)
{
    std::printf("\tBlock: %d \n", number);
    if (block._size == 0) return;
    std::printf("\t\tAddress: %p \n ", block._address);
    std::printf("\t\tSize:    %d \n", static_cast<int>(block._size));
    std::printf("\t\tFlags:   ");
    dumpFlags(block._flags);
    std::printf("\n");
}

void dumpLibrary(int number, const LmLibrary& library)
{
    std::printf("\n\nLibrary: %d \n", number);
    std::printf("\tLibrary path: %s \n", library._path.get());
    std::printf("\tAddress: %p \n\n", library._address);
    int block = 0;
    for (const LmBlock& each : library._blocks) dumpBlock(block++, each);
}

} // namespace

void lmPrintReport(const std::vector<LmLibrary>& libraries)
{
    int number = 0;
    for (const LmLibrary& library : libraries) dumpLibrary(number++, library);
    std::fflush(stdout);
}

} // namespace Zu
