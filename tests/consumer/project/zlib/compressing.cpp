// A program with the compressor of the optional library.

#include "appZlib/lgServiceGzip.h"

#include "app/lgServiceCompressor.h"

#include <iostream>
#include <string>

int main()
{
    const auto factory = Zu::LgServiceCompressor::getFactory();
    const auto compressor = factory ? factory() : nullptr;
    std::string out;
    const bool isDone = compressor && compressor->add("text", 4, true, out);
    std::cout << (isDone && out.rfind("\x1f\x8b", 0) == 0 ? "compressed to a file of gzip"
                                                          : "failed")
              << std::endl;
}
