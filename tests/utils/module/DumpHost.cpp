#include <dlfcn.h>

// A program that has no JSON library of its own loads and unloads a plug-in that has. Its status tells what went wrong.
int main(int, char** arguments) {
    enum { kDone, kNoDump, kNotUnloaded };
    for (int round = 0; round < 3; ++round) {
        void* module = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr || !reinterpret_cast<bool (*)()>(dlsym(module, "MakeDump"))()) {
            return kNoDump;
        }
        dlclose(module);
        if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
            return kNotUnloaded;
        }
    }
    return kDone;
}
