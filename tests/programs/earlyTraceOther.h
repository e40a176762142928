// A source that traces on a level of its own, when another one calls it.

#ifndef ZU_TESTS_EARLYTRACEOTHER_H
#define ZU_TESTS_EARLYTRACEOTHER_H

void traceOther(const char* text);

#endif
