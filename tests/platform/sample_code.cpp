// The code of the bundles that the tests build: plain names of its own, and one of a library it depends on.
#include <cstdio>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED int sampleVariable;
int sampleVariable = 41;

/// The test program exports a function of the same name with another answer.
EXPORTED int sampleFunction();
int sampleFunction() {
    return 1;
}

/// Makes the C library a dependency, whose names must not be taken for the bundle's.
EXPORTED int sampleGreeting();
int sampleGreeting() {
    return std::puts("sample");
}
