// Extraction and insertion on streams of char.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <istream>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

#include <kiv/decimal.h>

#include "decimal/companion_calls.h"
#include "decimal/locale_text.h"
#include "decimal/parts.h"

namespace kiv::decimal {

namespace {

using std::ios_base;

// For a handler: sets the badbit and, if the exception mask has it, passes the
// exception on. setstate() would put one of its own in the place of that.
void report_buffer_fault(std::istream& in)
{
    try {
        in.setstate(ios_base::badbit);
    } catch (const ios_base::failure&) {
        // The state is set; what is thrown follows.
    }
    if ((in.exceptions() & ios_base::badbit) != 0)
        throw;
}

// Feeds the parser from the buffer; what is to be set besides.
ios_base::iostate take_number(std::streambuf& buffer, DecParseState& state)
{
    using traits = std::char_traits<char>;
    bool complete = false;
    for (;;) {
        const int next = buffer.sgetc();
        if (traits::eq_int_type(next, traits::eof()))
            return ios_base::eofbit | (complete ? ios_base::goodbit : ios_base::failbit);
        const int answer = kivDecParseNextChar(
            &state, static_cast<unsigned char>(traits::to_char_type(next)));
        if ((answer & IS_END) == 0 || (answer & IS_NUMBER) != 0) {
            complete = (answer & IS_NUMBER) != 0;
            buffer.sbumpc();
        }
        if ((answer & IS_END) != 0)
            return complete ? ios_base::goodbit : ios_base::failbit;
    }
}

template <class Decimal>
std::istream& extract(std::istream& in, Decimal& x)
{
    const std::istream::sentry sentry(in);
    DecParseState parse;
    if (!sentry || !begin_parse(parse, DecimalFormat<Decimal>::PRECISION, in.getloc()))
        return in;
    ios_base::iostate state = ios_base::badbit;
    try {
        state = take_number(*in.rdbuf(), parse);
    } catch (...) {
        report_buffer_fault(in);
        return in;
    }
    if ((state & ios_base::failbit) == 0)
        x = Decimal(Companion<Decimal>::parsed(&parse));
    in.setstate(state);
    return in;
}

// A locale's grouping for the companion.
class Grouping {
public:
    explicit Grouping(const std::string& sizes) noexcept
    {
        if (sizes.size() < sizeof m_sizes)
            std::transform(sizes.begin(), sizes.end(), m_sizes, [](char size) {
                return static_cast<signed char>(size) > 0 ? size : NO_MORE;
            });
    }
    const char* sizes() const noexcept { return m_sizes; }

private:
    static constexpr char NO_MORE = 127;

    char m_sizes[8]{};
};

DecFormatSpec format_spec(const ios_base& stream, const Grouping& grouping,
                          const std::numpunct<char>& punctuation)
{
    const auto flags = stream.flags();
    const auto notation = flags & ios_base::floatfield;
    const bool upper = (flags & ios_base::uppercase) != 0;
    DecFormatSpec spec{};
    if (notation == ios_base::scientific)
        spec.conversion = upper ? 'E' : 'e';
    else if (notation == ios_base::fixed)
        spec.conversion = upper ? 'F' : 'f';
    else
        spec.conversion = upper ? 'G' : 'g';
    spec.sign = (flags & ios_base::showpos) != 0 ? '+' : '\0';
    spec.alternate = (flags & ios_base::showpoint) != 0;
    const bool counts = (flags & ios_base::fixed) != 0 || stream.precision() > 0;
    spec.precision = counts ? static_cast<int>(std::clamp<std::streamsize>(
                                  stream.precision(), INT_MIN, INT_MAX))
                            : -1;
    spec.decimal_point = static_cast<unsigned char>(punctuation.decimal_point());
    spec.thousands_sep = static_cast<unsigned char>(punctuation.thousands_sep());
    spec.grouping = grouping.sizes();
    return spec;
}

template <class Decimal>
std::ostream& insert(std::ostream& out, Decimal x)
{
    constexpr int ROOM = 64;
    constexpr auto format = Companion<Decimal>::format;

    const std::locale locale = out.getloc();
    const auto& punctuation = std::use_facet<std::numpunct<char>>(locale);
    const Grouping grouping(punctuation.grouping());
    const DecFormatSpec spec = format_spec(out, grouping, punctuation);
    char text[ROOM];
    const int length = format(&spec, x.pattern(), text, ROOM);
    if (length < ROOM)
        return out << text;
    const auto long_text =
        std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(length) + 1);
    format(&spec, x.pattern(), long_text.get(), length + 1);
    return out << long_text.get();
}

template <class Decimal>
std::string to_fixed(const std::locale& locale, Decimal x, int precision)
{
    std::ostringstream out;
    out.imbue(locale);
    out.setf(ios_base::fixed, ios_base::floatfield);
    out.precision(precision);
    insert(out, x);
    return std::move(out).str();
}

}  // namespace

#define KIV_STREAMS(TYPE)                                                              \
    std::basic_istream<char>& operator>>(std::basic_istream<char>& in, TYPE& x)        \
    {                                                                                  \
        return extract(in, x);                                                         \
    }                                                                                  \
    std::basic_ostream<char>& operator<<(std::basic_ostream<char>& out, const TYPE& x) \
    {                                                                                  \
        return insert(out, x);                                                         \
    }                                                                                  \
    std::string to_string(const TYPE& x, int precision)                                \
    {                                                                                  \
        return to_fixed(std::locale::classic(), x, precision);                         \
    }                                                                                  \
    std::string to_string(const std::locale& locale, const TYPE& x, int precision)     \
    {                                                                                  \
        return to_fixed(locale, x, precision);                                         \
    }
KIV_STREAMS(decimal32)
KIV_STREAMS(decimal64)
KIV_STREAMS(decimal128)
#undef KIV_STREAMS

}  // namespace kiv::decimal
