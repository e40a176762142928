// The parts of the sample application that show tracing, profiling and the steady beat.

#ifndef ZU_EXAMPLES_SAMPLETIMING_H
#define ZU_EXAMPLES_SAMPLETIMING_H

namespace sample
{

// Traces an operation with its scopes, as a tree of lines.
void showTrace();

// Profiles a hundred cycles of the same operation.
void showProfile();

// Shows ten beats, and how far each was off.
void showBeat();

} // namespace sample

#endif
