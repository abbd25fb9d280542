// platform/demangle.h - readable names from the runtime's type names.

#ifndef KIV_PLATFORM_DEMANGLE_H
#define KIV_PLATFORM_DEMANGLE_H

#include <string>

namespace kiv::platform {

// The readable form of a mangled type name, the name itself if it has none.
// Throws std::bad_alloc.
std::string demangle(const char* mangled);

}  // namespace kiv::platform

#endif
