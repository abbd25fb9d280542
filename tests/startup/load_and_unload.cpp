// Loads the library named by the argument, uses it and unloads it, repeatedly. What
// it hands out lives as long as the process, so it stays where it is.

#include <cstdio>

#include <dlfcn.h>

namespace kiv {
class Charset;
}

namespace {

// kiv::Charset::defaultCharset(), as the Itanium C++ ABI names it.
const kiv::Charset* default_charset(void* library)
{
    const auto function = reinterpret_cast<kiv::Charset* (*)()>(
        dlsym(library, "_ZN3kiv7Charset14defaultCharsetEv"));
    return function != nullptr ? function() : nullptr;
}

int fail(const char* why)
{
    std::puts(why);
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    const kiv::Charset* charset = nullptr;
    for (int i = 0; i < 3 && argc == 2; ++i) {
        void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            return fail(dlerror());
        if (i == 0)
            charset = default_charset(library);
        if (charset == nullptr || default_charset(library) != charset)
            return fail("no default charset, or another one");
        dlclose(library);

        library = dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD);
        if (library == nullptr)
            return fail("the library is gone");
        dlclose(library);
    }
    std::puts("unloaded");
}
