#include <dlfcn.h>

#include <cstdio>

// A program that has no JSON library of its own loads and unloads a plug-in that has.
int main(int, char** arguments) {
    for (int round = 1; round <= 3; ++round) {
        void* module = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        const auto makeDump = reinterpret_cast<bool (*)()>(dlsym(module, "MakeDump"));
        if (!makeDump()) {
            std::fprintf(stderr, "round %d: no dump\n", round);
            return 1;
        }
        dlclose(module);
        if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
            std::fprintf(stderr, "round %d: the plug-in was not unloaded\n", round);
            return 1;
        }
    }
    return 0;
}
