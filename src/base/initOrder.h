/// @file
/// The order in which the library's static objects are constructed. Internal to the library.

#ifndef ZU_BASE_INITORDER_H
#define ZU_BASE_INITORDER_H

#include "compiler.h"

/// Fixes when a static object is constructed. Without it the order among source files is the link
/// order on one platform and its reverse on the other, and the reports of ZU_DEBUG_INITIALIZE would
/// differ. Objects with the same number are constructed in the order of their source file.
#define ZU_INIT_ORDER(priority) ZU_INIT_PRIORITY(priority)

#define ZU_INIT_ORDER_TRACE 1000
#define ZU_INIT_ORDER_BASE 1010
#define ZU_INIT_ORDER_BASE_MATH 1020
#define ZU_INIT_ORDER_DEBUGGING 1030
#define ZU_INIT_ORDER_DISCRETE_TIME 1040
#define ZU_INIT_ORDER_HEAP_MGR 1050
#define ZU_INIT_ORDER_DUMMY 1060
#define ZU_INIT_ORDER_INIT_ARG 1070
#define ZU_INIT_ORDER_INITIALIZE 1080
#define ZU_INIT_ORDER_INIT_VARS 1090
#define ZU_INIT_ORDER_LOGGER 1100
#define ZU_INIT_ORDER_OSAL 1110
#define ZU_INIT_ORDER_PROFILING 1120
#define ZU_INIT_ORDER_RANDOM 1130
#define ZU_INIT_ORDER_TESTING 1140

#endif
