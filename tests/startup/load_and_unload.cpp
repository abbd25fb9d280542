// Loads the library named by the argument, uses it and unloads it, repeatedly. What
// it hands out lives as long as the process, so it stays where it is.

#include <cstdio>

#include <dlfcn.h>

namespace kiv {
class Charset;
}

int main(int, char** argv)
{
    kiv::Charset* charset = nullptr;
    for (int i = 0; i < 3; ++i) {
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            return std::puts(dlerror()), 1;
        // kiv::Charset::defaultCharset(), as the Itanium C++ ABI names it.
        const auto default_charset = reinterpret_cast<kiv::Charset* (*)()>(
            dlsym(library, "_ZN3kiv7Charset14defaultCharsetEv"));
        if (i == 0)
            charset = default_charset();
        if (charset == nullptr || default_charset() != charset)
            return std::puts("no default charset, or another one"), 1;
        dlclose(library);
        if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == nullptr)
            return std::puts("the library is gone"), 1;
        dlclose(library);
    }
    std::puts("unloaded");
}
