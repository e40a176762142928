// The parts of the sample application that show tracing, profiling and the steady beat.

#ifndef ZU_EXAMPLES_SAMPLETIMING_H
#define ZU_EXAMPLES_SAMPLETIMING_H

namespace sample
{

// An operation with its scopes, as a tree of lines.
void showTrace();

// What a hundred cycles of the same operation took.
void showProfile();

// Ten beats, and by how much they missed their moments.
void showBeat();

} // namespace sample

#endif
