// The name of a thread, as the system has it.

#ifndef ZU_TESTS_APP_THREADNAME_H
#define ZU_TESTS_APP_THREADNAME_H

#include <string>

// Of the calling thread, in UTF-8.
std::string systemNameOfThread();

#endif
