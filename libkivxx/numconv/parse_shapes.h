// numconv/parse_shapes.h - what the other shapes of a parser make of from_chars_c().

#ifndef KIV_NUMCONV_PARSE_SHAPES_H
#define KIV_NUMCONV_PARSE_SHAPES_H

#include <cerrno>
#include <cstddef>
#include <limits>

#include <kiv/numconv.h>

namespace kiv::numconv {

template <class CharT>
constexpr bool is_above(const from_chars_result<CharT>& result) noexcept
{
    return result.range == number_range::above;
}

template <class CharT>
void finish_terminated(const from_chars_result<CharT>& result, CharT** end)
{
    if (end != nullptr)
        *end = const_cast<CharT*>(result.ptr);
    if (is_above(result))
        errno = ERANGE;
}

// raise(result) throws.
template <class CharT, class Raise>
void finish_view(const from_chars_result<CharT>& result, basic_string_ref<CharT> s,
                 std::size_t* idx, Raise raise)
{
    if (result.ec == std::errc::invalid_argument) [[unlikely]]
        raise(result);
    if (idx != nullptr)
        *idx = static_cast<std::size_t>(result.ptr - s.data());
    if (is_above(result)) [[unlikely]]
        raise(result);
}

// parse_view(view, &idx) is the shape for views.
template <class CharT, class ParseView>
auto parse_at(BasicCharIterator<CharT>& it, ParseView parse_view)
{
    // Moves the cursor when the parser has set the index, thrown or not.
    struct Mover {
        BasicCharIterator<CharT>& it;
        std::size_t read = 0;
        ~Mover() { it.position(it.position() + read); }
    };
    const basic_string_ref<CharT> rest = it.rest();
    Mover mover{it};
    return parse_view(rest, &mover.read);
}

}  // namespace kiv::numconv

#endif
