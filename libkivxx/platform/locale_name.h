// platform/locale_name.h - what the platform calls its locales.

#ifndef KIV_PLATFORM_LOCALE_NAME_H
#define KIV_PLATFORM_LOCALE_NAME_H

#include <array>
#include <string>
#include <string_view>

namespace kiv::platform {

// The names that language_TERRITORY may have here, the preferred one first.
std::array<std::string, 2> locale_names(std::string_view name);

// The name of a locale without codeset and modifier: of the character category,
// where the categories differ.
std::string_view bare_locale_name(std::string_view name) noexcept;

}  // namespace kiv::platform

#endif
