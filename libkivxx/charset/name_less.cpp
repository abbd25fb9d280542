#include "charset/name_less.h"

#include <array>

#include <kiv/character.h>

namespace kiv {

namespace {

constexpr bool is_digit(char16 c) noexcept
{
    return c >= u'0' && c <= u'9';
}

// What each ASCII character contributes to a key, 0 for nothing.
constexpr auto KEYS = [] {
    std::array<unsigned char, 0x80> keys{};
    for (unsigned char c = 'A'; c <= 'Z'; ++c)
        keys[c] = keys[c + 0x20U] = c;
    for (unsigned char c = '0'; c <= '9'; ++c)
        keys[c] = c;
    return keys;
}();

// Walks the matching key of a name. Everything but ASCII letters and digits is
// passed over, so surrogate pairs need no joining.
class MatchingKey {
public:
    explicit MatchingKey(basic_string_ref<char16> name) noexcept : m_name(name) {}

    // The next unit of the key, 0 at its end.
    unsigned next() noexcept
    {
        while (m_at < m_name.size()) {
            const unsigned unit = Char16::toCodeUnit(m_name[m_at++]);
            const unsigned key = unit < KEYS.size() ? KEYS[unit] : 0U;
            if (key != 0 && (key != '0' || zero_counts()))
                return key;
        }
        return 0;
    }

private:
    // For the '0' just read. It counts after a digit and at the end of the
    // name; otherwise it and the zeros after it lead a number and are dropped,
    // the last one excepted if they end the name.
    bool zero_counts() noexcept
    {
        if (m_at >= 2 && is_digit(m_name[m_at - 2]))
            return true;
        while (m_at < m_name.size() && m_name[m_at] == u'0')
            ++m_at;
        return m_at == m_name.size();
    }

    basic_string_ref<char16> m_name;
    std::size_t m_at = 0;
};

}  // namespace

bool NameLess<basic_string_ref<char16>>::operator()(
    const basic_string_ref<char16>& a, const basic_string_ref<char16>& b) const noexcept
{
    MatchingKey key_a(a);
    MatchingKey key_b(b);
    for (;;) {
        const unsigned unit_a = key_a.next();
        const unsigned unit_b = key_b.next();
        if (unit_a != unit_b)
            return unit_a < unit_b;
        if (unit_a == 0)
            return false;
    }
}

}  // namespace kiv
