// The library's headers by the names that they have below the prefix.

#include <ZU/app/lgService.h>
#include <ZU/base/lgEvent.h>
#include <ZU/base/rational.h>

#include <iostream>

ZU_DEFINE_LOG_GROUP(Prefixed);

void writePrefixed()
{
    std::cout << "prefixed " << Zu::Rational(6, 4) << std::endl;
}
