// The part of the sample application that shows exact time.

#ifndef ZU_EXAMPLES_SAMPLETIME_H
#define ZU_EXAMPLES_SAMPLETIME_H

namespace sample
{

// Shows a position in a stream, when the reference clock reaches it, and its conversion to text and
// back.
void showTime();

} // namespace sample

#endif
