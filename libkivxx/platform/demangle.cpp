#include "platform/demangle.h"

#include <cstdlib>
#include <memory>
#include <new>

#include <cxxabi.h>

namespace kiv::platform {

std::string demangle(const char* mangled)
{
    constexpr int OUT_OF_MEMORY = -1;  // fixed by the Itanium C++ ABI
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
    if (status == OUT_OF_MEMORY)
        throw std::bad_alloc();
    return name ? std::string(name.get()) : std::string(mangled);
}

}  // namespace kiv::platform
