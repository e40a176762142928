// A program that logs: a package, its log group, and a front that starts and stops everything.
#include "app/apProgram.h"

ZU_PACKAGE(shop, "shop");

// The group that the statements belong to; its levels are those of the major group "Shop".
ZU_LOG_GROUP(Orders, "Shop", shop);

int main(int argc, char** argv)
{
    return Zu::runProgram(
        argc, argv,
        []
        {
            for (int order = 1; order <= 3; ++order)
                ZU_LOG_WARNING(Orders,
                               "order " << order << " is late by " << order * 0.5 << " days");
            ZU_LOG_INFORMATIONAL(Orders, "is not even looked at, unless ZU_LOG_GROUPS says so");
        });
}
