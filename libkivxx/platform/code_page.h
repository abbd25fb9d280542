// platform/code_page.h - the code page of the process.

#ifndef KIV_PLATFORM_CODE_PAGE_H
#define KIV_PLATFORM_CODE_PAGE_H

#include <string_view>

namespace kiv::platform {

// The number of the code page that stands for the codeset of the environment's
// character locale (1252 for CP1252, 950 for BIG5, 65001 for UTF-8), 0 if it
// has none. The process's own locale is neither asked nor changed.
unsigned code_page() noexcept;

// The number for the name of a codeset, compared without case and punctuation.
unsigned code_page_of(std::string_view codeset) noexcept;

}  // namespace kiv::platform

#endif
