// kiv/string_ref.h - a view of text that someone else owns.
//
// basic_string_ref<CharT> is a pointer and a length, for CharT = char, char16,
// char16_t and wchar_t. Strings and zero-terminated pointers convert to it:
//
//     void print(kiv::basic_string_ref<char> text);
//     print("literal");
//     print(std::string("temporary for the time of the call"));
//
// Nothing is copied until a string is asked for. The text must outlive the
// view and needs no terminator. Units are compared as unsigned values.
//
// Views convert from and to std::basic_string_view; a view of char16 also
// from and to char16_t's, u"literals" and std::u16string included.

#ifndef KIV_STRING_REF_H
#define KIV_STRING_REF_H

#include <algorithm>
#include <array>
#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <ranges>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <kiv/char16.h>
#include <kiv/export.h>

namespace kiv {

template <class CharT>
class basic_string_ref;

namespace detail {

// The standard views of the text that a view of CharT can have.
template <class View, class CharT>
concept standard_view_of = std::same_as<View, std::basic_string_view<CharT>> ||
    (std::same_as<CharT, char16>&& std::same_as<View, std::u16string_view>);

template <class Text, class CharT>
concept char16_text =
    std::same_as<CharT, char16> && !std::same_as<Text, basic_string_ref<CharT>> &&
    std::convertible_to<const Text&, std::u16string_view>;

}  // namespace detail

template <class CharT>
class KIV_API basic_string_ref {
    using traits = std::char_traits<CharT>;
    using std_view = std::basic_string_view<CharT>;

public:
    using value_type = CharT;
    using traits_type = traits;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const CharT*;
    using const_pointer = const CharT*;
    using reference = const CharT&;
    using const_reference = const CharT&;
    using const_iterator = const CharT*;
    using iterator = const_iterator;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;
    using reverse_iterator = const_reverse_iterator;

    // What a search that finds nothing returns, and "to the end" as a length.
    static constexpr size_type npos = static_cast<size_type>(-1);

    // --- Construction ------------------------------------------------------

    constexpr basic_string_ref() noexcept = default;
    constexpr basic_string_ref(const CharT* p, size_type n) noexcept
        : m_data(p), m_size(n)
    {
    }
    // p must not be null and must end with a zero character.
    constexpr basic_string_ref(const CharT* p) : m_data(p), m_size(traits::length(p)) {}
    constexpr basic_string_ref(const std::basic_string<CharT>& s) noexcept
        : m_data(s.data()), m_size(s.size())
    {
    }
    constexpr basic_string_ref(std::basic_string_view<CharT> s) noexcept
        : m_data(s.data()), m_size(s.size())
    {
    }

    // A std::u16string_view and what converts to one. Templates, because clang++ 14
    // instantiates members that are not, whatever they require.
    template <detail::char16_text<CharT> Text>
    basic_string_ref(const Text& s) noexcept(
        std::is_nothrow_convertible_v<const Text&, std::u16string_view>)
        : basic_string_ref(units_of(s))
    {
    }

    constexpr void swap(basic_string_ref& other) noexcept
    {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
    }

    // --- Access; only at() checks its argument -----------------------------

    constexpr const CharT* data() const noexcept { return m_data; }
    constexpr const_iterator begin() const noexcept { return m_data; }
    constexpr const_iterator cbegin() const noexcept { return m_data; }
    constexpr const_iterator end() const noexcept { return m_data + m_size; }
    constexpr const_iterator cend() const noexcept { return m_data + m_size; }
    constexpr const_reverse_iterator rbegin() const noexcept
    {
        return const_reverse_iterator(end());
    }
    constexpr const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    constexpr const_reverse_iterator rend() const noexcept
    {
        return const_reverse_iterator(begin());
    }
    constexpr const_reverse_iterator crend() const noexcept { return rend(); }

    constexpr size_type size() const noexcept { return m_size; }
    constexpr size_type length() const noexcept { return m_size; }
    constexpr bool empty() const noexcept { return m_size == 0; }
    // The same for every character type.
    constexpr size_type max_size() const noexcept { return npos; }

    constexpr const CharT& operator[](size_type i) const { return m_data[i]; }
    constexpr const CharT& front() const { return m_data[0]; }
    constexpr const CharT& back() const { return m_data[m_size - 1]; }

    // Throws std::out_of_range unless i < size().
    constexpr const CharT& at(size_type i) const
    {
        if (i >= m_size)
            throw std::out_of_range("basic_string_ref<CharT>::at");
        return m_data[i];
    }

    // n must not exceed size().
    constexpr void remove_prefix(size_type n)
    {
        m_data += n;
        m_size -= n;
    }
    constexpr void remove_suffix(size_type n) { m_size -= n; }

    // --- Views of the standard library --------------------------------------

    constexpr operator std_view() const noexcept { return {m_data, m_size}; }
    template <std::same_as<std::u16string_view> View>
    requires std::same_as<CharT, char16>
    operator View() const noexcept
    {
        return {reinterpret_cast<const char16_t*>(m_data), m_size};
    }

    // --- Copies ------------------------------------------------------------

    operator std::basic_string<CharT>() const { return to_string(); }
    std::basic_string<CharT> to_string() const
    {
        return m_size == 0 ? std::basic_string<CharT>()
                           : std::basic_string<CharT>(m_data, m_size);
    }

    // Copies min(n, size() - pos) characters from pos, which may overlap dest,
    // and returns their number; adds no terminator. Throws std::out_of_range
    // if pos > size().
    constexpr size_type copy(CharT* dest, size_type n, size_type pos = 0) const
    {
        const size_type count =
            std::min(n, size_from(pos, "basic_string_ref<CharT>::copy"));
        if (count != 0)
            traits::move(dest, m_data + pos, count);
        return count;
    }

    // The view of min(n, size() - pos) characters from pos. Throws
    // std::out_of_range if pos > size().
    constexpr basic_string_ref substr(size_type pos = 0, size_type n = npos) const
    {
        const size_type rest = size_from(pos, "basic_string_ref<CharT>::substr");
        return {m_data + pos, std::min(n, rest)};
    }

    // --- Comparison --------------------------------------------------------
    //
    // 0 for equal text; its sign tells the order. Where characters differ, the
    // value is the memory comparison's for char, the difference of the units
    // for char16, -1 or 1 for char16_t and wchar_t. Where one text begins with
    // the other: -1 if this is the shorter, and if it is the longer, 2 against
    // a view and 1 against a pointer. The positional forms take
    // min(len, size() - pos) characters and throw std::out_of_range if a
    // position lies beyond its text.

    constexpr int compare(basic_string_ref v) const noexcept
    {
        return compare_text(v.m_data, v.m_size, 2);
    }
    constexpr int compare(size_type pos, size_type len, basic_string_ref v) const
    {
        return compare_part(pos, len).compare(v);
    }
    constexpr int compare(size_type pos, size_type len, basic_string_ref v,
                          size_type vpos, size_type vlen = npos) const
    {
        return compare_part(pos, len).compare(v.compare_part(vpos, vlen));
    }
    constexpr int compare(size_type pos, size_type len, const CharT* s,
                          size_type slen) const
    {
        return compare_part(pos, len).compare_text(s, slen, 1);
    }

    // Against zero-terminated text: -1, 0 or 1. A zero in this view is a
    // character like any other and does not end the view.
    constexpr int compare(const CharT* s) const
    {
        for (const CharT unit : *this) {
            if (*s == CharT() || unsigned_less(*s, unit))
                return 1;
            if (unsigned_less(unit, *s))
                return -1;
            ++s;
        }
        return *s == CharT() ? 0 : -1;
    }
    constexpr int compare(size_type pos, size_type len, const CharT* s) const
    {
        return compare_part(pos, len).compare(s);
    }

    friend constexpr bool operator==(basic_string_ref a, basic_string_ref b) noexcept
    {
        return a.m_size == b.m_size && a.compare(b) == 0;
    }
    friend constexpr std::strong_ordering operator<=>(basic_string_ref a,
                                                      basic_string_ref b) noexcept
    {
        return a.compare(b) <=> 0;
    }
    // Without these, the standard's views could be compared in two ways.
    template <detail::standard_view_of<CharT> View>
    friend constexpr bool operator==(basic_string_ref a, View b) noexcept
    {
        return a == basic_string_ref(b);
    }
    template <detail::standard_view_of<CharT> View>
    friend constexpr std::strong_ordering operator<=>(basic_string_ref a, View b) noexcept
    {
        return a <=> basic_string_ref(b);
    }

    constexpr bool starts_with(basic_string_ref v) const noexcept
    {
        return m_size >= v.m_size && basic_string_ref(m_data, v.m_size) == v;
    }
    constexpr bool starts_with(CharT c) const noexcept
    {
        return m_size != 0 && m_data[0] == c;
    }
    constexpr bool ends_with(basic_string_ref v) const noexcept
    {
        return m_size >= v.m_size &&
               basic_string_ref(m_data + (m_size - v.m_size), v.m_size) == v;
    }
    constexpr bool ends_with(CharT c) const noexcept
    {
        return m_size != 0 && m_data[m_size - 1] == c;
    }
    constexpr bool contains(basic_string_ref v) const noexcept { return find(v) != npos; }
    constexpr bool contains(CharT c) const noexcept { return find(c) != npos; }

    // --- Search: a position or npos, by the rules of std::string_view -------

    constexpr size_type find(CharT c, size_type pos = 0) const noexcept
    {
        return view().find(c, pos);
    }
    constexpr size_type find(const CharT* s, size_type pos, size_type n) const noexcept
    {
        return view().find(s, pos, n);
    }
    constexpr size_type find(const CharT* s, size_type pos = 0) const noexcept
    {
        return view().find(s, pos);
    }
    constexpr size_type find(basic_string_ref v, size_type pos = 0) const noexcept
    {
        return view().find(v.view(), pos);
    }

    constexpr size_type rfind(CharT c, size_type pos = npos) const noexcept
    {
        return view().rfind(c, pos);
    }
    constexpr size_type rfind(const CharT* s, size_type pos, size_type n) const noexcept
    {
        return view().rfind(s, pos, n);
    }
    constexpr size_type rfind(const CharT* s, size_type pos = npos) const noexcept
    {
        return view().rfind(s, pos);
    }
    constexpr size_type rfind(basic_string_ref v, size_type pos = npos) const noexcept
    {
        return view().rfind(v.view(), pos);
    }

    constexpr size_type find_first_of(CharT c, size_type pos = 0) const noexcept
    {
        return view().find(c, pos);
    }
    constexpr size_type find_first_of(const CharT* s, size_type pos,
                                      size_type n) const noexcept
    {
        return view().find_first_of(s, pos, n);
    }
    constexpr size_type find_first_of(const CharT* s, size_type pos = 0) const noexcept
    {
        return view().find_first_of(s, pos);
    }
    constexpr size_type find_first_of(basic_string_ref v,
                                      size_type pos = 0) const noexcept
    {
        return view().find_first_of(v.view(), pos);
    }

    constexpr size_type find_last_of(CharT c, size_type pos = npos) const noexcept
    {
        return view().rfind(c, pos);
    }
    constexpr size_type find_last_of(const CharT* s, size_type pos,
                                     size_type n) const noexcept
    {
        return view().find_last_of(s, pos, n);
    }
    constexpr size_type find_last_of(const CharT* s, size_type pos = npos) const noexcept
    {
        return view().find_last_of(s, pos);
    }
    constexpr size_type find_last_of(basic_string_ref v,
                                     size_type pos = npos) const noexcept
    {
        return view().find_last_of(v.view(), pos);
    }

    constexpr size_type find_first_not_of(CharT c, size_type pos = 0) const noexcept
    {
        return view().find_first_not_of(c, pos);
    }
    constexpr size_type find_first_not_of(const CharT* s, size_type pos,
                                          size_type n) const noexcept
    {
        return view().find_first_not_of(s, pos, n);
    }
    constexpr size_type find_first_not_of(const CharT* s,
                                          size_type pos = 0) const noexcept
    {
        return view().find_first_not_of(s, pos);
    }
    constexpr size_type find_first_not_of(basic_string_ref v,
                                          size_type pos = 0) const noexcept
    {
        return view().find_first_not_of(v.view(), pos);
    }

    constexpr size_type find_last_not_of(CharT c, size_type pos = npos) const noexcept
    {
        return view().find_last_not_of(c, pos);
    }
    constexpr size_type find_last_not_of(const CharT* s, size_type pos,
                                         size_type n) const noexcept
    {
        return view().find_last_not_of(s, pos, n);
    }
    constexpr size_type find_last_not_of(const CharT* s,
                                         size_type pos = npos) const noexcept
    {
        return view().find_last_not_of(s, pos);
    }
    constexpr size_type find_last_not_of(basic_string_ref v,
                                         size_type pos = npos) const noexcept
    {
        return view().find_last_not_of(v.view(), pos);
    }

private:
    // Text of char16_t has the layout of char16's.
    static basic_string_ref units_of(std::u16string_view s) noexcept
    {
        return {reinterpret_cast<const CharT*>(s.data()), s.size()};
    }

    constexpr std_view view() const noexcept { return {m_data, m_size}; }

    constexpr size_type size_from(size_type pos, const char* operation) const
    {
        if (pos > m_size)
            throw std::out_of_range(operation);
        return m_size - pos;
    }

    constexpr basic_string_ref compare_part(size_type pos, size_type len) const
    {
        const size_type rest = size_from(pos, "basic_string_ref<CharT>::compare");
        return {m_data + pos, std::min(len, rest)};
    }

    constexpr int compare_text(const CharT* s, size_type n, int if_longer) const noexcept
    {
        // Both sizes are tested here: behind std::min, g++ 12 takes an empty
        // view's null pointer for one that is read, and warns in users' code.
        if (m_size != 0 && n != 0) {
            const int difference = compare_units(m_data, s, std::min(m_size, n));
            if (difference != 0)
                return difference;
        }
        return m_size < n ? -1 : m_size > n ? if_longer : 0;
    }

    // wchar_t is signed on some platforms and so are its traits' comparisons,
    // and char16_t's traits leave the value open.
    static constexpr int compare_units(const CharT* p, const CharT* q,
                                       size_type n) noexcept
    {
        if constexpr (std::is_same_v<CharT, char> || std::is_same_v<CharT, char16>) {
            return traits::compare(p, q, n);
        } else {
            for (size_type i = 0; i < n; ++i)
                if (p[i] != q[i])
                    return unsigned_less(p[i], q[i]) ? -1 : 1;
            return 0;
        }
    }

    static constexpr bool unsigned_less(CharT a, CharT b) noexcept
    {
        if constexpr (std::is_integral_v<CharT>)
            return static_cast<std::make_unsigned_t<CharT>>(a) <
                   static_cast<std::make_unsigned_t<CharT>>(b);
        else
            return a < b;
    }

    const CharT* m_data = nullptr;
    size_type m_size = 0;
};

extern template class KIV_API basic_string_ref<char>;
extern template class KIV_API basic_string_ref<char16>;
extern template class KIV_API basic_string_ref<char16_t>;
extern template class KIV_API basic_string_ref<wchar_t>;

template <class CharT>
constexpr void swap(basic_string_ref<CharT>& a, basic_string_ref<CharT>& b) noexcept
{
    a.swap(b);
}

// Formatted insertion, with width, fill and adjustment as for a string.
KIV_API std::ostream& operator<<(std::ostream& os, basic_string_ref<char> text);
KIV_API std::wostream& operator<<(std::wostream& os, basic_string_ref<wchar_t> text);

namespace detail {

// The text of a literal operator, terminator included.
template <std::size_t N>
struct literal_text {
    consteval literal_text(const char16_t (&text)[N]) { std::copy_n(text, N, units); }
    char16_t units[N]{};
};

template <std::size_t N>
consteval std::array<char16, N> to_char16(const literal_text<N>& text)
{
    std::array<char16, N> units{};
    std::copy_n(text.units, N, units.begin());
    return units;
}

template <literal_text TEXT>
inline constexpr auto literal_units = to_char16(TEXT);

}  // namespace detail

inline namespace literals {

// u"text"_usv is a constant view of static, zero-terminated text.
template <detail::literal_text TEXT>
constexpr basic_string_ref<char16> operator""_usv() noexcept
{
    constexpr const auto& units = detail::literal_units<TEXT>;
    return {units.data(), units.size() - 1};
}

}  // namespace literals
}  // namespace kiv

template <class CharT>
inline constexpr bool std::ranges::enable_view<kiv::basic_string_ref<CharT>> = true;
template <class CharT>
inline constexpr bool std::ranges::enable_borrowed_range<kiv::basic_string_ref<CharT>> =
    true;

// Equal text has equal hash values, whether in a view or in a string.
template <class CharT>
struct std::hash<kiv::basic_string_ref<CharT>> {
    std::size_t operator()(kiv::basic_string_ref<CharT> text) const noexcept
    {
        using unit =
            std::conditional_t<std::is_same_v<CharT, kiv::char16>, char16_t, CharT>;
        return std::hash<std::basic_string_view<unit>>()(text);
    }
};

template <>
struct std::hash<kiv::ustring> {
    std::size_t operator()(const kiv::ustring& text) const noexcept
    {
        return std::hash<kiv::basic_string_ref<kiv::char16>>()(text);
    }
};

#endif
