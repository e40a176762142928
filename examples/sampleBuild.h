// The part of the sample application that shows its build.

#ifndef ZU_EXAMPLES_SAMPLEBUILD_H
#define ZU_EXAMPLES_SAMPLEBUILD_H

namespace sample
{

// Registers the application's build record.
void registerBuild();

// Shows the records of the application and of the libraries that have registered.
void showBuild();

// Shows what is loaded into the process.
void showLibraries();

} // namespace sample

#endif
