// The streams over the caller's buffers.
//
// A stream that is moved is built on no buffer and then swapped with its source,
// which so becomes a new stream. The standard's own move constructors would do
// for one direction; in uiostream the second would move what the first has left.

#include <string_view>

#include <kiv/stream.h>

#include "stream/buffer_fault.h"

namespace kiv {

// --- uistream ------------------------------------------------------------------

uistream::uistream(streambuf_type* sb) : input(sb)
{
    imbue(ulocale::classic());
}

uistream::uistream(uistream&& other) : uistream(nullptr)
{
    swap(other);
    other.clear();
}

uistream& uistream::operator=(uistream&& other)
{
    swap(other);
    return *this;
}

uistream::~uistream() = default;

void uistream::swap(uistream& other)
{
    input::swap(other);
}

std::locale uistream::imbue(const ulocale& locale)
{
    return imbue(std::locale(locale));
}

template <class T>
uistream& uistream::extract(T& value)
{
    input::operator>>(value);
    return *this;
}

template uistream& uistream::extract(short&);
template uistream& uistream::extract(unsigned short&);
template uistream& uistream::extract(int&);
template uistream& uistream::extract(unsigned int&);
template uistream& uistream::extract(long&);
template uistream& uistream::extract(unsigned long&);
template uistream& uistream::extract(long long&);
template uistream& uistream::extract(unsigned long long&);
template uistream& uistream::extract(float&);
template uistream& uistream::extract(double&);
template uistream& uistream::extract(long double&);
template uistream& uistream::extract(bool&);
template uistream& uistream::extract(void*&);
template uistream& uistream::extract(std::basic_streambuf<char16>*&);
template uistream& uistream::extract(
    std::basic_istream<char16>& (*&)(std::basic_istream<char16>&));
template uistream& uistream::extract(
    std::basic_ios<char16>& (*&)(std::basic_ios<char16>&));
template uistream& uistream::extract(std::ios_base& (*&)(std::ios_base&));

uistream& uistream::operator>>(char16& unit)
{
    static_cast<input&>(*this) >> unit;
    return *this;
}

uistream& uistream::operator>>(char16_t& unit)
{
    if (char16 c; *this >> c)
        unit = static_cast<char16_t>(c);
    return *this;
}

// --- uostream ------------------------------------------------------------------

uostream::uostream(streambuf_type* sb) : output(sb)
{
    imbue(ulocale::classic());
}

// libstdc++ has no standard way to build an output side that leaves what both
// sides share alone: its default constructor forgets the buffer and the locale.
// So they are set once more; all else is as new in either case.
#if defined(_LIBCPP_VERSION)
uostream::uostream(uiostream&) : output() {}
#else
uostream::uostream(uiostream& both) : output(both.rdbuf())
{
    imbue(ulocale::classic());
}
#endif

uostream::uostream(uostream&& other) : uostream(nullptr)
{
    swap(other);
    other.clear();
}

uostream& uostream::operator=(uostream&& other)
{
    swap(other);
    return *this;
}

uostream::~uostream() = default;

void uostream::swap(uostream& other)
{
    output::swap(other);
}

std::locale uostream::imbue(const ulocale& locale)
{
    return imbue(std::locale(locale));
}

template <class T>
uostream& uostream::insert(T value)
{
    output::operator<<(value);
    return *this;
}

template uostream& uostream::insert(short);
template uostream& uostream::insert(unsigned short);
template uostream& uostream::insert(int);
template uostream& uostream::insert(unsigned int);
template uostream& uostream::insert(long);
template uostream& uostream::insert(unsigned long);
template uostream& uostream::insert(long long);
template uostream& uostream::insert(unsigned long long);
template uostream& uostream::insert(float);
template uostream& uostream::insert(double);
template uostream& uostream::insert(long double);
template uostream& uostream::insert(bool);
template uostream& uostream::insert(const void*);
template uostream& uostream::insert(std::basic_streambuf<char16>*);
template uostream& uostream::insert(
    std::basic_ostream<char16>& (*)(std::basic_ostream<char16>&));
template uostream& uostream::insert(std::basic_ios<char16>& (*)(std::basic_ios<char16>&));
template uostream& uostream::insert(std::ios_base& (*)(std::ios_base&));

uostream& uostream::operator<<(const ustring& text)
{
    return *this << basic_string_ref<char16>(text);
}

uostream& uostream::operator<<(const char16* text)
{
    static_cast<output&>(*this) << text;
    return *this;
}

uostream& uostream::operator<<(const char16_t* text)
{
    if (!text)
        return *this << static_cast<const char16*>(nullptr);
    return *this << basic_string_ref<char16>(text);
}

uostream& uostream::operator<<(const char* text)
{
    static_cast<output&>(*this) << text;
    return *this;
}

uostream& uostream::operator<<(std::string_view text)
{
    ustring units(text.size(), char16());
    report_buffer_fault(*this, [&] {
        const auto& ctype = std::use_facet<std::ctype<char16>>(getloc());
        ctype.widen(text.data(), text.data() + text.size(), units.data());
    });
    return good() ? *this << units : *this;
}

uostream& uostream::operator<<(char16 unit)
{
    if (unit == u'\uFFFF')  // which put() would take for a failure
        return *this << basic_string_ref<char16>(&unit, 1);
    static_cast<output&>(*this) << unit;
    return *this;
}

uostream& uostream::operator<<(char16_t unit)
{
    return *this << char16(unit);
}

uostream& uostream::operator<<(char c)
{
    static_cast<output&>(*this) << c;
    return *this;
}

// The standard inserter of views pads, writes in one block and resets the width
// exactly as the one of strings does.
uostream& operator<<(uostream& os, basic_string_ref<char16> text)
{
    static_cast<std::basic_ostream<char16>&>(os)
        << std::basic_string_view<char16>(text.data(), text.size());
    return os;
}

// --- uiostream -----------------------------------------------------------------

uiostream::uiostream(streambuf_type* sb) : uistream(sb), uostream(*this) {}

uiostream::uiostream(uiostream&& other) : uiostream(nullptr)
{
    swap(other);
    other.clear();
}

uiostream& uiostream::operator=(uiostream&& other)
{
    swap(other);
    return *this;
}

uiostream::~uiostream() = default;

// The output side has nothing of its own to swap.
void uiostream::swap(uiostream& other)
{
    uistream::swap(other);
}

}  // namespace kiv
