// charset/name_less.h - the order in which charset names match.

#ifndef KIV_CHARSET_NAME_LESS_H
#define KIV_CHARSET_NAME_LESS_H

#include <kiv/charset.h>

namespace kiv {

// Compares names by their matching keys: the letters in upper case and the
// digits, less the zeros that lead a number. "utf8", "UTF-8" and "Utf_08" are
// equivalent, "cp" and "cp0" are not.
template <>
struct NameLess<basic_string_ref<char16>> {
    bool operator()(const basic_string_ref<char16>& a,
                    const basic_string_ref<char16>& b) const noexcept;
};

}  // namespace kiv

#endif
