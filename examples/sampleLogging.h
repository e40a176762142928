// The part of the sample application that shows the logger at work.

#ifndef ZU_EXAMPLES_SAMPLELOGGING_H
#define ZU_EXAMPLES_SAMPLELOGGING_H

namespace sample
{

// Sets the environment variables of the logger; called before the library is started.
void prepareLogging();

// Start and stop the groups that the application logs into; for its package.
void startLogGroups();
void stopLogGroups();

// Logs from several threads and from a second process, which is this `program` again, and shows
// what became of it.
void showLogging(const char* program);

// What the second process does.
void logAsSecondProcess();

} // namespace sample

#endif
