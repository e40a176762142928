#include "threadName.h"

#include <array>
#include <pthread.h>

std::string systemNameOfThread()
{
    std::array<char, 16> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return name.data();
}
