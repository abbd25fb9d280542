#include <kiv/utility.h>

#include "platform/demangle.h"

namespace kiv {

std::string type_info_name(const std::type_info& type)
{
    return platform::demangle(type.name());
}

BadOptionalAccess::BadOptionalAccess() noexcept = default;
BadOptionalAccess::BadOptionalAccess(const BadOptionalAccess&) noexcept = default;
BadOptionalAccess& BadOptionalAccess::operator=(const BadOptionalAccess&) noexcept =
    default;
BadOptionalAccess::~BadOptionalAccess() = default;

const char* BadOptionalAccess::what() const noexcept
{
    return "bad optional access";
}

namespace heap {

void StartRecording() {}
void StopRecording() {}
void ResetRecording() {}

bool IsRecording()
{
    return false;
}

void SetDumpAddr(bool) {}
void DumpProfile(std::ostream&) {}
void RegisterInterpreterCallbacks(InterpreterCallbacks*) {}

void GetStatistic(HProfStats* stats)
{
    *stats = {};
}

void* NewCookie()
{
    return nullptr;
}

}  // namespace heap
}  // namespace kiv
