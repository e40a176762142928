// A source that traces on its own level when another one calls it.

#ifndef ZU_TESTS_EARLYTRACEOTHER_H
#define ZU_TESTS_EARLYTRACEOTHER_H

void traceOther(const char* text);

#endif
