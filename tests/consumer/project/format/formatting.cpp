// A program with statements that have a format.

#include "appFormat/lgFormatted.h"

#include "app/apLogGroup.h"
#include "app/apPackage.h"

ZU_PACKAGE(formatting, "formatting");
ZU_LOG_GROUP(Formatting, "Formatting", formatting);

int main()
{
    ZU_LOGF_WARNING(Formatting, "{:.1f} by libfmt", 2.5);
}
