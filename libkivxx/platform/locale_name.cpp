#include "platform/locale_name.h"

#include <cstddef>

namespace kiv::platform {

std::array<std::string, 2> locale_names(std::string_view name)
{
    const std::string plain(name);
    return {plain + ".UTF-8", plain};
}

std::string_view bare_locale_name(std::string_view name) noexcept
{
    // Composed names are LC_CTYPE=de_DE.UTF-8;LC_NUMERIC=C;...
    constexpr std::string_view CATEGORY = "LC_CTYPE=";
    if (const std::size_t at = name.find(CATEGORY); at != std::string_view::npos) {
        name.remove_prefix(at + CATEGORY.size());
        name = name.substr(0, name.find(';'));
    }
    return name.substr(0, name.find_first_of(".@"));
}

}  // namespace kiv::platform
