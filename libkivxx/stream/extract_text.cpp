// Words and lines: looked for in the buffer's own array, as far as it has one,
// and taken over in runs.

#include <algorithm>
#include <cstddef>
#include <limits>
#include <locale>

#include <kiv/stream.h>

#include "stream/buffer_fault.h"

namespace kiv {

namespace {

using traits = std::char_traits<char16>;
using streambuf = std::basic_streambuf<char16>;
using units = const char16*;

// The protected members that show what a stream buffer holds. Named through a
// derived class they are accessible, and still members of any buffer.
struct get_area : streambuf {
    static units begin(const streambuf& sb) { return (sb.*&get_area::gptr)(); }
    static units end(const streambuf& sb) { return (sb.*&get_area::egptr)(); }
    static void advance(streambuf& sb, std::ptrdiff_t n)
    {
        (sb.*&get_area::gbump)(static_cast<int>(n));
    }
};

// Eight units at a time, which compilers make one comparison of.
units find_unit(units first, units last, char16 unit)
{
    for (; last - first >= 8; first += 8) {
        bool found = false;
        for (int i = 0; i < 8; ++i)
            found |= first[i] == unit;
        if (found)
            break;
    }
    return std::find(first, last, unit);
}

enum class Stopped { AT_STOP, AT_LIMIT, AT_END };

// Takes units out of the buffer, up to the one that find_stop(first, last)
// returns the place of, which stays there, at most `limit`; gives them to take()
// in runs.
template <class FindStop, class Take>
Stopped take_units(streambuf& sb, std::size_t limit, FindStop find_stop, Take take)
{
    while (limit != 0) {
        const char16_int next = sb.sgetc();  // fills the array as well
        const units first = get_area::begin(sb);
        const auto room = static_cast<std::size_t>(get_area::end(sb) - first);
        if (room == 0) {
            if (traits::eq_int_type(next, traits::eof()))
                return Stopped::AT_END;
            // A buffer that gives one unit at a time.
            const char16 unit = traits::to_char_type(next);
            if (find_stop(&unit, &unit + 1) == &unit)
                return Stopped::AT_STOP;
            take(&unit, 1);
            sb.sbumpc();
            --limit;
            continue;
        }
        // In an array a U+FFFF is a unit. gbump() takes an int.
        constexpr std::size_t RUN = std::numeric_limits<int>::max();
        const units last = first + std::min({room, limit, RUN});
        const units stop = find_stop(first, last);
        const auto taken = static_cast<std::size_t>(stop - first);
        take(first, taken);
        get_area::advance(sb, stop - first);
        if (stop != last)
            return Stopped::AT_STOP;
        limit -= taken;
    }
    return Stopped::AT_LIMIT;
}

template <class FindStop>
Stopped move_text(streambuf& sb, ustring& text, std::size_t limit, FindStop find_stop)
{
    text.clear();
    return take_units(sb, limit, find_stop,
                      [&text](units first, std::size_t n) { text.append(first, n); });
}

// False at the end. The sentry's own way stops at a U+FFFF.
bool skip_space(streambuf& sb, const std::ctype<char16>& ctype)
{
    const auto find_other = [&ctype](units first, units last) {
        return ctype.scan_not(std::ctype_base::space, first, last);
    };
    constexpr auto ALL = std::numeric_limits<std::size_t>::max();
    return take_units(sb, ALL, find_other, [](units, std::size_t) {}) != Stopped::AT_END;
}

}  // namespace

uistream& uistream::operator>>(ustring& text)
{
    std::ios_base::iostate state = std::ios_base::goodbit;
    if (const sentry ready(*this, true); ready)
        report_buffer_fault(*this, [&] {
            streambuf& sb = *input::rdbuf();
            const auto& ctype = std::use_facet<std::ctype<char16>>(getloc());
            if ((flags() & skipws) != 0 && !skip_space(sb, ctype)) {
                state = eofbit | failbit;
                return;
            }
            const auto limit =
                width() > 0 ? static_cast<std::size_t>(width()) : text.max_size();
            const auto find_space = [&ctype](units first, units last) {
                return ctype.scan_is(std::ctype_base::space, first, last);
            };
            if (move_text(sb, text, limit, find_space) == Stopped::AT_END)
                state |= eofbit;
            width(0);
            if (text.empty())
                state |= failbit;
        });
    if (state != std::ios_base::goodbit)
        setstate(state);
    return *this;
}

uistream& getline(uistream& in, ustring& text, char16 delimiter)
{
    std::ios_base::iostate state = std::ios_base::goodbit;
    if (const uistream::sentry ready(in, true); ready)
        report_buffer_fault(in, [&] {
            streambuf& sb = *in.std::basic_ios<char16>::rdbuf();
            const auto find_delimiter = [delimiter](units first, units last) {
                return find_unit(first, last, delimiter);
            };
            switch (move_text(sb, text, text.max_size(), find_delimiter)) {
            case Stopped::AT_STOP:
                sb.sbumpc();
                break;
            case Stopped::AT_LIMIT:
                state |= std::ios_base::failbit;
                break;
            case Stopped::AT_END:
                state |= std::ios_base::eofbit;
                if (text.empty())
                    state |= std::ios_base::failbit;
                break;
            }
        });
    if (state != std::ios_base::goodbit)
        in.setstate(state);
    return in;
}

}  // namespace kiv
