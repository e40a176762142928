// How a process crashes.

#ifndef ZU_TESTS_APP_CRASH_H
#define ZU_TESTS_APP_CRASH_H

// Has the system neither show nor debug a crash of this process.
void crashQuietly();

// Has a function called with the number of the signal when the process crashes, as a handler of the
// program; afterwards the crash takes its course. On Windows, for exceptions that nobody handles
// and SIGABRT.
void onCrash(void (*report)(int));

// Forks, and returns the number of the signal that ended the child in this function; -1 where there
// is no fork.
int endOfChild(void (*crash)());

#endif
