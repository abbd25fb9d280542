// kiv/utility.h - small utilities: readable type names, the error of an empty
// optional, and the heap-profiling interface.
//
// Everything here may be called from any thread.

#ifndef KIV_UTILITY_H
#define KIV_UTILITY_H

#include <cstdint>
#include <exception>
#include <iosfwd>
#include <string>
#include <typeinfo>

#include <kiv/export.h>

namespace kiv {

// The demangled name of a type, in the platform's own form for display; the
// name as the runtime gives it if that cannot be demangled.
KIV_API std::string type_info_name(const std::type_info& type);

// For users' code that reads an empty optional; the library never throws it.
class KIV_API BadOptionalAccess : public std::exception {
public:
    BadOptionalAccess() noexcept;
    BadOptionalAccess(const BadOptionalAccess&) noexcept;
    BadOptionalAccess& operator=(const BadOptionalAccess&) noexcept;
    ~BadOptionalAccess() override;

    const char* what() const noexcept override;  // "bad optional access"
};

// The interface of a heap profiler. This library has none behind it: nothing
// is ever recorded, written or kept.
namespace heap {

// Both counters are reported as 0.
struct HProfStats {
    std::uint64_t allocated;
    std::uint64_t live;
};

// Whatever a client registers is never read.
struct InterpreterCallbacks {};

KIV_API void StartRecording();
KIV_API void StopRecording();
KIV_API void ResetRecording();
KIV_API bool IsRecording();  // false
KIV_API void SetDumpAddr(bool dump);
KIV_API void DumpProfile(std::ostream& os);
KIV_API void RegisterInterpreterCallbacks(InterpreterCallbacks* callbacks);
KIV_API void GetStatistic(HProfStats* stats);
KIV_API void* NewCookie();  // null

}  // namespace heap
}  // namespace kiv

#endif
