// The part of the sample application that shows exact time.

#ifndef ZU_EXAMPLES_SAMPLETIME_H
#define ZU_EXAMPLES_SAMPLETIME_H

namespace sample
{

// A position in a stream, when it is reached on the reference clock, and its text there and back.
void showTime();

} // namespace sample

#endif
