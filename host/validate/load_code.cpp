// The helper load-code: loads one library and reports by its status, and on standard output, whether the
// system's loader found all that it needs. It has no library of ours itself, which every plug-in would then
// share.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const bool loaded = dlopen(argv[1], RTLD_LAZY | RTLD_LOCAL) != nullptr;
    if (!loaded) std::puts(dlerror());
    std::fflush(stdout);
    // How the code is unloaded is not asked.
    _exit(loaded ? 0 : 1);
}
