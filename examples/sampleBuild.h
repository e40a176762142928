// What the sample application shows of its build.

#ifndef ZU_EXAMPLES_SAMPLEBUILD_H
#define ZU_EXAMPLES_SAMPLEBUILD_H

namespace sample
{

// Registers the application's build record.
void registerBuild();

// Shows who runs here: the application, and the libraries that have registered.
void showBuild();

// Shows what is loaded into the process.
void showLibraries();

} // namespace sample

#endif
