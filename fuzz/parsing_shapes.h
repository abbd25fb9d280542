// What the three shapes of a number parser make of a text, which must be the same.

#ifndef KIV_FUZZ_PARSING_SHAPES_H
#define KIV_FUZZ_PARSING_SHAPES_H

#include <cerrno>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include <kiv/numconv.h>
#include <kiv/string_ref.h>

#include "fuzz_support.h"

namespace kivfuzz {

// strto() and sto() of a type.
template <class T>
struct Parser;

#define KIV_FUZZ_PARSER(T, suffix)                                             \
    template <>                                                                \
    struct kivfuzz::Parser<T> {                                                \
        static T strto(auto... how) { return kiv::strto##suffix##_c(how...); } \
        static T sto(auto&&... how) { return kiv::sto##suffix##_c(how...); }   \
    }

// Zeros differ by their sign, decimals by every bit; binary NaNs are all alike.
template <class T>
bool same(T a, T b)
{
    if constexpr (requires { a.pattern(); })
        return std::memcmp(&a, &b, sizeof a) == 0;
    else
        return a == b ? std::signbit(a) == std::signbit(b) : a != a && b != b;
}

template <class T>
struct Outcome {
    T value;
    std::size_t end;
    bool found, above;

    bool operator==(const Outcome& o) const
    {
        return same(value, o.value) && end == o.end && found == o.found &&
               above == o.above;
    }
};

template <class T, class CharT>
Outcome<T> by_pointer(const std::basic_string<CharT>& text, auto... base)
{
    const auto units = exact_copy(text, true);
    CharT* end = nullptr;
    errno = 0;
    const T value =
        Parser<T>::strto(static_cast<const CharT*>(units.get()), &end, base...);
    return {value, static_cast<std::size_t>(end - units.get()), end != units.get(),
            errno == ERANGE};
}

// By parse(&idx), which throws where the pointer shape returns what it did.
template <class T>
Outcome<T> by_exceptions(const Outcome<T>& pointer, auto parse)
{
    std::size_t idx = 0;
    try {
        const T value = parse(&idx);
        return {value, idx, true, false};
    } catch (const std::invalid_argument&) {
        require(idx == 0);
        return {pointer.value, 0, false, false};
    } catch (const std::out_of_range&) {
        return {pointer.value, idx, true, true};
    }
}

// Of all shapes.
template <class T, class CharT>
Outcome<T> by_all_shapes(const std::basic_string<CharT>& text, auto... base)
{
    const Outcome<T> first = by_pointer<T>(text, base...);
    const auto units = exact_copy(text, false);
    const kiv::basic_string_ref<CharT> view(units.get(), text.size());
    require(first == by_exceptions<T>(first, [&](std::size_t* idx) {
                return Parser<T>::sto(view, idx, base...);
            }));
    kiv::BasicCharIterator<CharT> it(view);
    require(first == by_exceptions<T>(first, [&](std::size_t* idx) {
                struct SetIndex {
                    ~SetIndex() { *idx = it.position(); }
                    std::size_t* idx;
                    kiv::BasicCharIterator<CharT>& it;
                } set_index{idx, it};
                return Parser<T>::sto(it, base...);
            }));
    return first;
}

}  // namespace kivfuzz

#endif
