#include <algorithm>
#include <cctype>
#include <cstdint>

#include <kiv/case_insensitive.h>
#include <kiv/character.h>

namespace kiv {

namespace {

// The folding of one unit: two that differ only in case have one key.
template <class CharT>
struct fold;

template <>
struct fold<char> {
    static constexpr std::uint64_t HASH_MULTIPLIER = 15;

    static int key(char c) noexcept
    {
        return std::toupper(static_cast<unsigned char>(c));
    }
    static int compare(char a, char b) noexcept { return a == b ? 0 : key(a) - key(b); }
};

template <>
struct fold<char16> {
    static constexpr std::uint64_t HASH_MULTIPLIER = 31;

    // Through upper case and back: the long s, S and s share one key.
    static int key(char16 c) noexcept
    {
        return Char16::toCodeUnit(toulower(touupper(c)));
    }

    // Most pairs are settled by one mapping of each.
    static int compare(char16 a, char16 b) noexcept
    {
        if (a == b)
            return 0;
        const char16 upper_a = touupper(a);
        const char16 upper_b = touupper(b);
        if (upper_a == upper_b)
            return 0;
        return Char16::toCodeUnit(toulower(upper_a)) -
               Char16::toCodeUnit(toulower(upper_b));
    }
};

}  // namespace

template <class T>
bool case_insensitive_less<T>::operator()(const T& a, const T& b) const noexcept
{
    using folding = fold<typename T::value_type>;
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i)
        if (const int order = folding::compare(a[i], b[i]); order != 0)
            return order < 0;
    return a.size() < b.size();
}

template <class T>
bool case_insensitive_equal_to<T>::operator()(const T& a, const T& b) const noexcept
{
    using folding = fold<typename T::value_type>;
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](auto x, auto y) { return folding::compare(x, y) == 0; });
}

template <class T>
std::size_t case_insensitive_hash<T>::operator()(const T& a) const noexcept
{
    using folding = fold<typename T::value_type>;
    std::uint64_t h = 0;
    for (const auto unit : a)
        h = h * folding::HASH_MULTIPLIER + static_cast<std::uint32_t>(folding::key(unit));
    return static_cast<std::size_t>(h);
}

template struct case_insensitive_less<basic_string_ref<char>>;
template struct case_insensitive_less<basic_string_ref<char16>>;
template struct case_insensitive_equal_to<basic_string_ref<char>>;
template struct case_insensitive_equal_to<basic_string_ref<char16>>;
template struct case_insensitive_hash<basic_string_ref<char>>;
template struct case_insensitive_hash<basic_string_ref<char16>>;

}  // namespace kiv
