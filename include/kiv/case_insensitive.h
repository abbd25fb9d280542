// kiv/case_insensitive.h - ordering, equality and hashing that ignore case.
//
// Function objects for ordered and hashed containers of views:
//
//     std::set<kiv::basic_string_ref<char>,
//              kiv::case_insensitive_less<kiv::basic_string_ref<char>>> names;
//
// Text is folded unit by unit, so lengths never change. A byte is folded with
// toupper of the current C locale (changing that locale reorders containers in
// use); a UTF-16 unit with toulower(touupper(unit)), whatever the locale. So
// '_' sorts after the letters for char and before them for char16. Equal texts
// have equal hashes and are equivalent in the order. Nothing allocates.

#ifndef KIV_CASE_INSENSITIVE_H
#define KIV_CASE_INSENSITIVE_H

#include <cstddef>

#include <kiv/char16.h>
#include <kiv/export.h>
#include <kiv/string_ref.h>

namespace kiv {

// Each is offered for basic_string_ref<char> and basic_string_ref<char16>.

// A proper prefix orders first.
template <class T>
struct KIV_API case_insensitive_less {
    bool operator()(const T& a, const T& b) const noexcept;
};

template <class T>
struct KIV_API case_insensitive_equal_to {
    bool operator()(const T& a, const T& b) const noexcept;
};

// h = h * 15 + key for char, h * 31 + key for char16, from 0, modulo 2^64.
template <class T>
struct KIV_API case_insensitive_hash {
    std::size_t operator()(const T& a) const noexcept;
};

extern template struct KIV_API case_insensitive_less<basic_string_ref<char>>;
extern template struct KIV_API case_insensitive_less<basic_string_ref<char16>>;
extern template struct KIV_API case_insensitive_equal_to<basic_string_ref<char>>;
extern template struct KIV_API case_insensitive_equal_to<basic_string_ref<char16>>;
extern template struct KIV_API case_insensitive_hash<basic_string_ref<char>>;
extern template struct KIV_API case_insensitive_hash<basic_string_ref<char16>>;

}  // namespace kiv

#endif
