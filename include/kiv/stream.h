// kiv/stream.h - streams of UTF-16 text, with numbers, and files in any charset.
//
//     kiv::uifstream in("prices.txt", kiv::Charset::forName(u"latin1"_usv));
//     kiv::ustring item;
//     double price;
//     while (in >> item >> price)
//         out << item << u": " << std::setw(10) << price << '\n';
//
// The classes stand over the standard stream templates of char16 and offer all
// their members. Each starts with the classic ulocale, whatever the global ones
// are, and what is chained stays on the library's type.
//
// A unit U+FFFF, a noncharacter, has the value of the end-of-file mark of
// char16_int. Words and lines read into a ustring hold it like any other unit if
// the stream buffer has an array, as those of strings and files have, and so
// does text inserted into a uofstream. All other input ends at it, with the
// eofbit, or may do so; put() of it sets the badbit; and a string stream drops
// it where its buffer has to grow just then.
//
// Where a single unit is expected (fill, delimiters), a char converts as a
// number and should be ASCII.
//
// A moved-from stream is as one newly constructed, without text. Assignment by
// move swaps, except that a file stream first closes its own file and leaves
// none to the other. A stream may not be used by two threads at once.

#ifndef KIV_STREAM_H
#define KIV_STREAM_H

#include <concepts>
#include <ios>
#include <istream>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string_view>
#include <type_traits>
#include <utility>

#include <kiv/char16.h>
#include <kiv/charset.h>
#include <kiv/export.h>
#include <kiv/locale.h>
#include <kiv/string_ref.h>

#if defined(_LIBCPP_VERSION)
// libc++ keeps the fill as an int_type and expects it to convert by itself.
template <>
inline kiv::char16 std::basic_ios<kiv::char16>::fill() const
{
    if (traits_type::eq_int_type(__fill_, traits_type::eof()))
        __fill_ = widen(' ');
    return traits_type::to_char_type(__fill_);
}
template <>
inline kiv::char16 std::basic_ios<kiv::char16>::fill(kiv::char16 unit)
{
    const kiv::char16 previous = fill();
    __fill_ = unit;
    return previous;
}
#endif

extern template class KIV_API std::basic_streambuf<kiv::char16>;
extern template class KIV_API std::basic_ios<kiv::char16>;
extern template class KIV_API std::basic_istream<kiv::char16>;
extern template class KIV_API std::basic_ostream<kiv::char16>;
extern template class KIV_API std::basic_stringbuf<kiv::char16>;

namespace kiv {

class uiostream;

namespace detail {

class file_reader;
class file_writer;

// A std::string, a std::filesystem::path.
template <class Path>
concept file_path = requires(const Path& path)
{
    {
        path.c_str()
        } -> std::convertible_to<const char*>;
};

template <class T, class... Choices>
inline constexpr bool IS_ONE_OF = (std::is_same_v<T, Choices> || ...);

// Pointers to and arrays of units, const or not.
template <class T, class Pointer = std::decay_t<T>>
inline constexpr bool IS_TEXT_POINTER = std::is_pointer_v<Pointer>&&
    IS_ONE_OF<std::remove_cv_t<std::remove_pointer_t<Pointer>>, char, char16, char16_t,
              wchar_t, char8_t, char32_t>;

// What has no member of uostream that would print or refuse it.
template <class T>
concept other_value =
    !IS_TEXT_POINTER<T> && requires(std::basic_ostream<char16> & out, const T& value)
{
    out << value;
};

}  // namespace detail

// --- Input ---------------------------------------------------------------------

class KIV_API uistream : public std::basic_istream<char16> {
    using input = std::basic_istream<char16>;

public:
    using streambuf_type = std::basic_streambuf<char16>;

    // The buffer stays the caller's. Without one the stream is bad.
    explicit uistream(streambuf_type* sb);
    ~uistream() override;

    // Returns the previous locale, which the second form takes back. Given a
    // locale without the facets of char16, the stream goes bad at any number.
    std::locale imbue(const ulocale& locale);
    using std::basic_ios<char16>::imbue;

    // --- Formatted: white space is skipped first ---------------------------

    uistream& operator>>(short& value) { return extract(value); }
    uistream& operator>>(unsigned short& value) { return extract(value); }
    uistream& operator>>(int& value) { return extract(value); }
    uistream& operator>>(unsigned int& value) { return extract(value); }
    uistream& operator>>(long& value) { return extract(value); }
    uistream& operator>>(unsigned long& value) { return extract(value); }
    uistream& operator>>(long long& value) { return extract(value); }
    uistream& operator>>(unsigned long long& value) { return extract(value); }
    uistream& operator>>(float& value) { return extract(value); }
    uistream& operator>>(double& value) { return extract(value); }
    uistream& operator>>(long double& value) { return extract(value); }
    uistream& operator>>(bool& value) { return extract(value); }
    uistream& operator>>(void*& value) { return extract(value); }

    // One unit.
    uistream& operator>>(char16& unit);
    uistream& operator>>(char16_t& unit);
    // A word: up to the next white space, or width() units if that is set.
    uistream& operator>>(ustring& text);

    uistream& operator>>(streambuf_type* sb) { return extract(sb); }
    uistream& operator>>(uistream& (*manipulator)(uistream&))
    {
        return manipulator(*this);
    }
    uistream& operator>>(input& (*manipulator)(input&)) { return extract(manipulator); }
    uistream& operator>>(std::basic_ios<char16>& (*manipulator)(std::basic_ios<char16>&))
    {
        return extract(manipulator);
    }
    uistream& operator>>(std::ios_base& (*manipulator)(std::ios_base&))
    {
        return extract(manipulator);
    }
    // Whatever else a standard stream takes, std::setw(8) for one.
    template <class T>
    requires requires(input& in, T&& value) { in >> std::forward<T>(value); }
    uistream& operator>>(T&& value)
    {
        static_cast<input&>(*this) >> std::forward<T>(value);
        return *this;
    }

    // --- Unformatted -------------------------------------------------------

    char16_int get() { return input::get(); }
    // Leaves the unit as it was at the end of the text.
    uistream& get(char16& unit) { return self(input::get(unit)); }
    // At most n - 1 units and a terminator; the delimiter stays in the stream.
    uistream& get(char16* units, std::streamsize n, char16 delimiter = u'\n')
    {
        return self(input::get(units, n, delimiter));
    }
    uistream& get(streambuf_type& sb, char16 delimiter = u'\n')
    {
        return self(input::get(sb, delimiter));
    }
    // As get, but takes the delimiter out of the stream without storing it.
    uistream& getline(char16* units, std::streamsize n, char16 delimiter = u'\n')
    {
        return self(input::getline(units, n, delimiter));
    }
    uistream& ignore(long long count = 1,
                     char16_int delimiter = std::char_traits<char16>::eof())
    {
        return self(input::ignore(count, delimiter));
    }
    uistream& read(char16* units, std::streamsize n)
    {
        return self(input::read(units, n));
    }
    uistream& putback(char16 unit) { return self(input::putback(unit)); }
    uistream& unget() { return self(input::unget()); }
    uistream& seekg(pos_type position) { return self(input::seekg(position)); }
    uistream& seekg(off_type offset, std::ios_base::seekdir direction)
    {
        return self(input::seekg(offset, direction));
    }

protected:
    uistream(uistream&& other);
    uistream& operator=(uistream&& other);
    // All but the buffers.
    void swap(uistream& other);

private:
    // For what the standard members return, which is this stream.
    uistream& self(std::basic_ios<char16>&) { return *this; }
    template <class T>
    uistream& extract(T& value);  // the standard member; instantiated in the library
};

// The text up to the delimiter, which is taken out of the stream but not stored.
KIV_API uistream& getline(uistream& in, ustring& text, char16 delimiter = u'\n');

// --- Output --------------------------------------------------------------------

class KIV_API uostream : public std::basic_ostream<char16> {
    using output = std::basic_ostream<char16>;

public:
    using streambuf_type = std::basic_streambuf<char16>;

    explicit uostream(streambuf_type* sb);
    ~uostream() override;

    // As for uistream.
    std::locale imbue(const ulocale& locale);
    using std::basic_ios<char16>::imbue;

    // --- Formatted ---------------------------------------------------------

    uostream& operator<<(short value) { return insert(value); }
    uostream& operator<<(unsigned short value) { return insert(value); }
    uostream& operator<<(int value) { return insert(value); }
    uostream& operator<<(unsigned int value) { return insert(value); }
    uostream& operator<<(long value) { return insert(value); }
    uostream& operator<<(unsigned long value) { return insert(value); }
    uostream& operator<<(long long value) { return insert(value); }
    uostream& operator<<(unsigned long long value) { return insert(value); }
    uostream& operator<<(float value) { return insert(value); }
    uostream& operator<<(double value) { return insert(value); }
    uostream& operator<<(long double value) { return insert(value); }
    uostream& operator<<(bool value) { return insert(value); }
    uostream& operator<<(const void* value) { return insert(value); }

    // Text. ASCII is widened; a byte from 0x80 up becomes U+FFFD.
    uostream& operator<<(const ustring& text);
    uostream& operator<<(const char16* text);
    uostream& operator<<(const char16_t* text);
    uostream& operator<<(const char* text);
    uostream& operator<<(std::string_view text);
    uostream& operator<<(char16 unit);
    uostream& operator<<(char16_t unit);
    uostream& operator<<(char c);
    // Would come out as numbers and addresses; convert them first.
    uostream& operator<<(wchar_t) = delete;
    uostream& operator<<(char8_t) = delete;
    uostream& operator<<(char32_t) = delete;
    uostream& operator<<(const wchar_t*) = delete;
    uostream& operator<<(const char8_t*) = delete;
    uostream& operator<<(const char32_t*) = delete;

    uostream& operator<<(streambuf_type* sb) { return insert(sb); }
    uostream& operator<<(uostream& (*manipulator)(uostream&))
    {
        return manipulator(*this);
    }
    uostream& operator<<(output& (*manipulator)(output&)) { return insert(manipulator); }
    uostream& operator<<(std::basic_ios<char16>& (*manipulator)(std::basic_ios<char16>&))
    {
        return insert(manipulator);
    }
    uostream& operator<<(std::ios_base& (*manipulator)(std::ios_base&))
    {
        return insert(manipulator);
    }
    // Whatever else a standard stream takes, std::setw(8) for one.
    template <detail::other_value T>
    uostream& operator<<(const T& value)
    {
        static_cast<output&>(*this) << value;
        return *this;
    }

    // --- Unformatted -------------------------------------------------------

    uostream& put(char16 unit) { return self(output::put(unit)); }
    // Widened as by <<.
    template <std::same_as<char> Char>
    uostream& put(Char c)
    {
        return put(this->widen(c));
    }
    uostream& write(const char16* units, std::streamsize n)
    {
        return self(output::write(units, n));
    }
    uostream& flush() { return self(output::flush()); }
    uostream& seekp(pos_type position) { return self(output::seekp(position)); }
    uostream& seekp(off_type offset, std::ios_base::seekdir direction)
    {
        return self(output::seekp(offset, direction));
    }

protected:
    // The output side of a stream whose input side is set up.
    explicit uostream(uiostream& both);
    uostream(uostream&& other);
    uostream& operator=(uostream&& other);
    void swap(uostream& other);

private:
    uostream& self(std::basic_ios<char16>&) { return *this; }
    template <class T>
    uostream& insert(T value);  // the standard member; instantiated in the library
};

// Formatted insertion, with width, fill and adjustment as for a string.
KIV_API uostream& operator<<(uostream& os, basic_string_ref<char16> text);

// --- Both ----------------------------------------------------------------------

class KIV_API uiostream : public uistream, public uostream {
public:
    using char_type = char16;
    using int_type = char16_int;
    using traits_type = std::char_traits<char16>;
    using pos_type = traits_type::pos_type;
    using off_type = traits_type::off_type;
    using streambuf_type = std::basic_streambuf<char16>;

    explicit uiostream(streambuf_type* sb);
    ~uiostream() override;

    std::locale imbue(const ulocale& locale) { return uistream::imbue(locale); }
    using std::basic_ios<char16>::imbue;

protected:
    uiostream(uiostream&& other);
    uiostream& operator=(uiostream&& other);
    void swap(uiostream& other);
};

// --- Strings -------------------------------------------------------------------
//
// Each is built from a mode, or from a text and a mode, which are those of the
// standard string streams: in, out or both unless given. A uistringstream always
// has in, a uostringstream always has out.

namespace detail {

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
class KIV_API string_stream : public Stream {
public:
    explicit string_stream(std::ios_base::openmode mode = DEFAULT);
    explicit string_stream(const ustring& text, std::ios_base::openmode mode = DEFAULT);
    ~string_stream() override;
    void swap(string_stream& other);

    std::basic_stringbuf<char16>* rdbuf() const noexcept;
    ustring str() const;
    void str(const ustring& text);

private:
    std::basic_stringbuf<char16> m_buffer;
};

constexpr std::ios_base::openmode MODE_IN = std::ios_base::in;
constexpr std::ios_base::openmode MODE_OUT = std::ios_base::out;

using uistream_of_string = string_stream<uistream, MODE_IN, MODE_IN>;
using uostream_of_string = string_stream<uostream, MODE_OUT, MODE_OUT>;
using uiostream_of_string =
    string_stream<uiostream, std::ios_base::openmode{}, MODE_IN | MODE_OUT>;

extern template class KIV_API string_stream<uistream, MODE_IN, MODE_IN>;
extern template class KIV_API string_stream<uostream, MODE_OUT, MODE_OUT>;
extern template class KIV_API
    string_stream<uiostream, std::ios_base::openmode{}, MODE_IN | MODE_OUT>;

}  // namespace detail

class KIV_API uistringstream : public detail::uistream_of_string {
public:
    using string_stream::string_stream;
    uistringstream() = default;
    uistringstream(uistringstream&& other) : uistringstream() { swap(other); }
    uistringstream& operator=(uistringstream&& other)
    {
        swap(other);
        return *this;
    }
    ~uistringstream() override;
};

class KIV_API uostringstream : public detail::uostream_of_string {
public:
    using string_stream::string_stream;
    uostringstream() = default;
    uostringstream(uostringstream&& other) : uostringstream() { swap(other); }
    uostringstream& operator=(uostringstream&& other)
    {
        swap(other);
        return *this;
    }
    ~uostringstream() override;
};

class KIV_API ustringstream : public detail::uiostream_of_string {
public:
    using string_stream::string_stream;
    ustringstream() = default;
    ustringstream(ustringstream&& other) : ustringstream() { swap(other); }
    ustringstream& operator=(ustringstream&& other)
    {
        swap(other);
        return *this;
    }
    ~ustringstream() override;
};

// --- Files ---------------------------------------------------------------------
//
// The bytes of a file pass through the coders of its charset in memory of fixed
// size. With REPORT, a fault makes the stream bad once the text before it has
// been read or written; with exceptions(std::ios_base::badbit) the coding error
// itself is thrown. REPLACE and IGNORE go on behind it. A byte order mark is
// text like any other. There is no seeking.
//
// A reader at the end of a file that has grown goes on after clear(). With
// unitbuf, a writer whose exception mask has the badbit throws what was wrong
// with one insertion from the next one, or from close().
//
// A file that does not open, or a charset that is null, sets the failbit.

class KIV_API uifstream : public uistream {
public:
    uifstream();
    explicit uifstream(const char* path, const Charset* charset = Charset::UTF_8,
                       CodingErrorAction faults = CodingErrorAction::REPORT);
    template <detail::file_path Path>
    explicit uifstream(const Path& path, const Charset* charset = Charset::UTF_8,
                       CodingErrorAction faults = CodingErrorAction::REPORT)
        : uifstream(path.c_str(), charset, faults)
    {
    }
    uifstream(uifstream&& other);
    uifstream& operator=(uifstream&& other);
    ~uifstream() override;
    void swap(uifstream& other);

    // Fails if a file is open.
    void open(const char* path, const Charset* charset = Charset::UTF_8,
              CodingErrorAction faults = CodingErrorAction::REPORT);
    template <detail::file_path Path>
    void open(const Path& path, const Charset* charset = Charset::UTF_8,
              CodingErrorAction faults = CodingErrorAction::REPORT)
    {
        open(path.c_str(), charset, faults);
    }
    bool is_open() const;
    void close();

    // What becomes of faults of the open file from here on: after clear(), a
    // stream that met one goes on at it.
    void onFault(CodingErrorAction action);

private:
    std::unique_ptr<detail::file_reader> m_file;
};

class KIV_API uofstream : public uostream {
public:
    uofstream();
    // Replaces the file, or with std::ios_base::app as mode adds to it.
    explicit uofstream(const char* path, const Charset* charset = Charset::UTF_8,
                       CodingErrorAction faults = CodingErrorAction::REPORT,
                       std::ios_base::openmode mode = std::ios_base::out);
    template <detail::file_path Path>
    explicit uofstream(const Path& path, const Charset* charset = Charset::UTF_8,
                       CodingErrorAction faults = CodingErrorAction::REPORT,
                       std::ios_base::openmode mode = std::ios_base::out)
        : uofstream(path.c_str(), charset, faults, mode)
    {
    }
    uofstream(uofstream&& other);
    uofstream& operator=(uofstream&& other);
    // Closes; what fails then goes unnoticed.
    ~uofstream() override;
    void swap(uofstream& other);

    void open(const char* path, const Charset* charset = Charset::UTF_8,
              CodingErrorAction faults = CodingErrorAction::REPORT,
              std::ios_base::openmode mode = std::ios_base::out);
    template <detail::file_path Path>
    void open(const Path& path, const Charset* charset = Charset::UTF_8,
              CodingErrorAction faults = CodingErrorAction::REPORT,
              std::ios_base::openmode mode = std::ios_base::out)
    {
        open(path.c_str(), charset, faults, mode);
    }
    bool is_open() const;
    // Writes all that is left; half a surrogate pair is a fault now.
    void close();

    // As for uifstream. What was to be written behind the fault still is.
    void onFault(CodingErrorAction action);

private:
    std::unique_ptr<detail::file_writer> m_file;
};

}  // namespace kiv

#endif
