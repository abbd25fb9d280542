// String streams: the operations that the input chooses have the outcome that they have
// for std::wistringstream and its siblings over the same text. File streams: the text
// that the charset's whole-string conversions give.
//
// The text has no U+FFFF and no white space or digits but those of ASCII, which is where
// the streams mean to differ.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>

#include <kiv/stream.h>

#include "fuzz_support.h"

namespace {

using namespace kivfuzz;

struct Library {
    using Char = kiv::char16;
    using String = kiv::ustring;
    using Input = kiv::uistringstream;
    using Output = kiv::uostringstream;
    using Both = kiv::ustringstream;
};

struct Standard {
    using Char = wchar_t;
    using String = std::wstring;
    using Input = std::wistringstream;
    using Output = std::wostringstream;
    using Both = std::wstringstream;
};

template <class Char>
Char unit(char16_t c)
{
    return static_cast<Char>(c);
}

// Letters beyond ASCII in the upper half: Latin, Greek, half a pair, Chinese.
template <class S>
typename S::String text_from(Bytes& bytes, unsigned n)
{
    typename S::String text;
    for (const char c : bytes.text(n))
        text += unit<typename S::Char>(
            static_cast<signed char>(c) >= 0
                ? static_cast<char16_t>(c)
                : u"\u00E9\u03B1\xD83D\u4E2D"[static_cast<unsigned char>(c) % 4]);
    return text;
}

// What a run does, to be compared with another's.
class Log {
public:
    void number(auto value) { m_text += std::to_string(value) + ' '; }
    template <class Char>
    void units(const Char* text, std::size_t n)
    {
        for (std::size_t i = 0; i < n; ++i)
            number(static_cast<unsigned>(static_cast<char16_t>(text[i])));
        m_text += '\n';
    }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

void set_flags(std::ios_base& stream, Bytes& bytes)
{
    using io = std::ios_base;
    const unsigned how = bytes.number(2);
    constexpr io::fmtflags BASES[] = {io::dec, io::hex, io::oct, io::fmtflags()};
    constexpr io::fmtflags FORMS[] = {io::fmtflags(), io::fixed, io::scientific,
                                      io::fixed | io::scientific};
    constexpr io::fmtflags SIDES[] = {io::left, io::right, io::internal, io::fmtflags()};
    stream.setf(BASES[how % 4], io::basefield);
    stream.setf(FORMS[how / 4 % 4], io::floatfield);
    stream.setf(SIDES[how / 16 % 4], io::adjustfield);
    const auto set = [&](unsigned bit, io::fmtflags flag) {
        stream.setf(how >> bit & 1 ? flag : io::fmtflags(), flag);
    };
    set(6, io::boolalpha);
    set(7, io::showbase);
    set(8, io::showpoint);
    set(9, io::showpos);
    set(10, io::uppercase);
    set(11, io::skipws);
    set(12, io::unitbuf);
}

template <class T>
void extract(auto& in, Log& log)
{
    T value = T(7);
    in >> value;
    if constexpr (std::is_arithmetic_v<T>)
        log.number(value);
    else
        log.units(value.data(), value.size());
}

template <class S>
void input_step(auto& in, Bytes& bytes, Log& log)
{
    using Char = typename S::Char;
    Char room[16];
    std::fill(std::begin(room), std::end(room), unit<Char>(u'#'));
    const auto delimiter = unit<Char>(u"\n ,e"[bytes.below(4)]);
    const auto n = static_cast<std::streamsize>(bytes.below(16));
    typename S::String text;
    switch (bytes.below(26)) {
    case 0:
        return extract<short>(in, log);
    case 1:
        return extract<unsigned short>(in, log);
    case 2:
        return extract<int>(in, log);
    case 3:
        return extract<unsigned>(in, log);
    case 4:
        return extract<long long>(in, log);
    case 5:
        return extract<unsigned long long>(in, log);
    case 6:
        return extract<float>(in, log);
    case 7:
        return extract<double>(in, log);
    case 8:
        return extract<long double>(in, log);
    case 9:
        return extract<bool>(in, log);
    case 10:
        in >> room[0];
        break;
    case 11:
        in >> text;
        break;
    case 12:
        in >> std::setw(static_cast<int>(n)) >> text;
        break;
    case 13: {
        const auto c = in.get();
        log.number(c == std::char_traits<Char>::eof());
        break;
    }
    case 14:
        in.get(room[0]);
        break;
    case 15:
        in.get(room, n, delimiter);
        break;
    case 16:
        in.getline(room, n, delimiter);
        break;
    case 17:
        getline(in, text, delimiter);
        break;
    case 18:
        in.ignore(n, std::char_traits<Char>::to_int_type(delimiter));
        break;
    case 19:
        in.read(room, n);
        break;
    case 20:
        // What is written is available at once or later: when the array grows.
        if constexpr (std::is_same_v<decltype(in), typename S::Input&>)
            log.number(in.readsome(room, n));
        break;
    case 21:
        in.unget();
        break;
    case 22:
        in.putback(delimiter);
        break;
    case 23:
        in.seekg(static_cast<std::streamoff>(n) - 8, std::ios_base::seekdir(n % 3));
        break;
    case 24:
        in.clear();
        break;
    default:
        in >> std::ws;
        set_flags(in, bytes);
    }
    log.units(room, std::size(room));
    log.units(text.data(), text.size());
}

template <class S>
void output_step(auto& out, Bytes& bytes, Log& log)
{
    using Char = typename S::Char;
    const unsigned operation = bytes.below(16);
    const std::uint64_t value = operation < 9 ? bytes.number64() : 0;
    const auto real = std::bit_cast<double>(value);
    switch (operation) {
    case 0:
        out << static_cast<short>(value);
        break;
    case 1:
        out << static_cast<unsigned>(value);
        break;
    case 2:
        out << static_cast<int>(value);
        break;
    case 3:
        out << static_cast<long long>(value);
        break;
    case 4:
        out << value;
        break;
    case 5:
        out << real;
        break;
    case 6:
        out << static_cast<float>(real);
        break;
    case 7:
        out << static_cast<long double>(real);
        break;
    case 8:
        out << (value % 2 != 0);
        break;
    case 9:
        out << text_from<S>(bytes, bytes.below(20));
        break;
    case 10:
        out << text_from<S>(bytes, bytes.below(20)).c_str();
        break;
    case 11:
        out << static_cast<char>('a' + bytes.below(20)) << "ASCII";
        break;
    case 12:
        out << unit<Char>(u'\u00E9') << std::setw(int(bytes.below(40)));
        break;
    case 13: {
        const auto text = text_from<S>(bytes, bytes.below(20));
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        break;
    }
    case 14:
        out.seekp(static_cast<std::streamoff>(bytes.below(30)) - 5,
                  std::ios_base::seekdir(bytes.below(3)));
        log.number(static_cast<std::streamoff>(out.tellp()));
        break;
    default:
        set_flags(out, bytes);
        out.precision(bytes.below(30));
        out.fill(unit<Char>(u"*\u4E2D "[bytes.below(3)]));
        out.clear();
    }
    log.number(static_cast<int>(out.rdstate()));
    log.number(out.width());
}

template <class S, class Stream>
void log_text(const Stream& stream, Log& log)
{
    const typename S::String text = stream.str();
    log.units(text.data(), text.size());
}

template <class S>
Log run(Bytes bytes, unsigned kind)
{
    Log log;
    const auto text = text_from<S>(bytes, bytes.byte());
    const auto read = [&](auto& in) {
        input_step<S>(in, bytes, log);
        log.number(static_cast<int>(in.rdstate()));
        log.number(in.gcount());
    };
    if (kind == 0) {
        typename S::Input in(text);
        while (bytes.left() > 0) {
            read(in);
            log.number(static_cast<std::streamoff>(in.tellg()));
        }
    } else if (kind == 1) {
        typename S::Output out(text,
                               bytes.one_in(2) ? std::ios_base::ate : std::ios_base::out);
        while (bytes.left() > 0)
            output_step<S>(out, bytes, log);
        log_text<S>(out, log);
    } else {
        typename S::Both both(text);
        while (bytes.left() > 0)
            if (bytes.one_in(2))
                read(both);
            else
                output_step<S>(both, bytes, log);
        log_text<S>(both, log);
    }
    return log;
}

void require_equal(const std::string& got, const std::string& want)
{
    if (got != want)
        std::fprintf(stderr, "--- got\n%s\n--- expected\n%s\n", got.c_str(),
                     want.c_str());
    require(got == want);
}

// --- Files -----------------------------------------------------------------------------

void check_files(Bytes bytes)
{
    static const ScratchFolder folder;
    static const auto charsets = kiv::Charset::availableCharsets();
    const std::string path = folder.path() / "text";
    const kiv::Charset* const charset = charsets[bytes.byte() % charsets.size()];
    const auto action = bytes.one_in(2) ? kiv::CodingErrorAction::REPLACE
                                        : kiv::CodingErrorAction::IGNORE;
    const std::string text = bytes.rest();
    std::ofstream(path, std::ios_base::binary) << text;

    const auto decoder = charset->newDecoder();
    decoder->onMalformedInput(action).onUnmappableCharacter(action);
    const kiv::ustring units = decoder->decode(text);
    kiv::uifstream in(path, charset, action);
    kiv::ustring line, read;
    while (getline(in, line, u'e'))
        read += line + (in.eof() ? kiv::ustring() : kiv::ustring(1, u'e'));
    require(in.eof() && !in.bad() && read == units);

    const auto encoder = charset->newEncoder();
    encoder->onMalformedInput(action).onUnmappableCharacter(action);
    const kiv::ustring any = units + units_of(text);
    kiv::uofstream out(path, charset, action);
    const std::size_t half = any.size() / 2;
    out << any.substr(0, half) << any.substr(half);
    out.close();
    require(out.good());
    std::ifstream written(path, std::ios_base::binary);
    require(std::string(std::istreambuf_iterator<char>(written), {}) ==
            encoder->encode(any));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    Bytes bytes(data, size);
    const unsigned kind = bytes.below(4);
    if (kind == 3)
        check_files(bytes);
    else
        require_equal(run<Library>(bytes, kind).text(),
                      run<Standard>(bytes, kind).text());
    return 0;
}
