#include <complex>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <kiv/stream.h>

namespace {

using namespace kiv;
using std::ios_base;
using traits = std::char_traits<char16>;

// The argument must have the library's type, or this does not compile.
template <class Stream>
void chained(Stream&&)
{
    static_assert(std::is_same_v<Stream, uostream&> || std::is_same_v<Stream, uistream&>);
}

const ustring before_main = (uostringstream() << 1.5).str();

template <class T>
constexpr bool REFUSED = !requires(uostream & out, T& value)
{
    out << value;
};
static_assert(REFUSED<wchar_t*> && REFUSED<wchar_t[2]> && REFUSED<char8_t*>);
static_assert(REFUSED<char32_t[2]> && REFUSED<const char32_t*> && !REFUSED<int*>);

TEST(Streams, InsertersStayOnTheStream)
{
    const char16 units[] = {u'p', u'q', char16()};
    const char16* const pointer = units;
    ustringstream os;
    enum { SEVEN = 7 };
    chained(os << u"us"_us << "abc" << 'x' << u'y' << char16(u'z') << units << pointer);
    chained(os << u"lit" << u"v"_usv << std::basic_string_view<char16>(units, 1)
               << '\xE9');
    char16_t text[] = u"16";
    char16 own[] = {u'o', char16()};
    const auto dash = +[](uostream& out) -> uostream& { return out << u'-'; };
    chained(os << text << dash << text + 1 << own << std::string("\xE9\0", 2));
    chained(os << std::u16string(u"s\0", 2) << std::setw(3) << std::string("r"));
    chained(os.put('c').put('\xE9').put(u'\u20AC'));
    EXPECT_EQ(os.str(), u"usabcxyzpqpqlitvp\uFFFD16-6o\uFFFD\0s\0  rc\uFFFD\u20AC"_us);
    os.str(ustring());
    chained(os << std::setw(5) << 42 << std::hex << 255 << std::dec << std::endl);
    chained(os << std::setfill(char16(u'*')) << std::setw(4) << SEVEN << std::flush);
    chained(os << std::boolalpha << true << std::complex<int>(3, 4) << short{-1} << 2.5F
               << 7ULL);
    EXPECT_EQ(os.str(), u"   42ff\n***7true(3,4)-12.57"_us);
    uostringstream copy;
    chained(copy << os.rdbuf() << nullptr);
    EXPECT_EQ(copy.str(), os.str() + u"nullptr"_us);
    EXPECT_EQ((uostringstream() << "an rvalue" << u"x").str(), u"an rvaluex"_us);

    os.str(ustring());
    os << std::left << std::setw(6) << u"abc"_usv << std::right << std::setw(6)
       << u"abc"_usv << std::internal << std::setw(5) << u"abc"_usv << std::setw(2)
       << u"abc"_usv;
    EXPECT_EQ(os.str(), u"abc******abc**abcabc"_us);
    EXPECT_EQ(os.width(), 0);
    EXPECT_EQ(before_main, u"1.5"_us);
    EXPECT_EQ((uostringstream(u"ab"_us, ios_base::in) << u'X').str(), u"Xb"_us);
    EXPECT_EQ((uostringstream(u"ab"_us, ios_base::ate) << u'X').str(), u"abX"_us);
}

TEST(Streams, InputStaysOnTheStream)
{
    uistringstream in(u"42 3.5 word x y 7f  rest"_us);
    int i = 0;
    unsigned h = 0;
    double d = 0;
    ustring word, line;
    char16 c;
    char16_t c16 = 0;
    chained(in >> i >> std::ws >> d >> std::setw(3) >> word >> c >> c16 >> std::hex >> h);
    EXPECT_TRUE(word == u"wor"_us && in.width() == 0);
    EXPECT_TRUE(i == 42 && d == 3.5 && c == u'd' && c16 == u'x' && in.fail());
    in.clear();
    chained(in >> c >> h >> word);
    EXPECT_TRUE(h == 0x7F && word == u"rest"_us && in.eof() && !in.fail());
    in >> word;
    EXPECT_TRUE(in.fail());

    in.clear();
    c = u'k';
    chained(in.get(c));
    EXPECT_TRUE(c == u'k' && in.rdstate() == (ios_base::eofbit | ios_base::failbit));

    in.clear();
    in.str(u"one;two\nthree, a line of several steps\n\nlast"_us);
    char16 units[4] = {};
    chained(in.get(units, 4, u';').ignore().get(units, 4).ignore(100, char16(u'\n')));
    EXPECT_EQ(ustring(units), u"two"_us);
    chained(in.getline(units, 4));
    EXPECT_TRUE(in.fail());  // three has no room
    in.clear();
    chained(getline(in, line));
    EXPECT_EQ(line, u"ee, a line of several steps"_us);
    EXPECT_TRUE(getline(in, line).good() && line.empty());
    EXPECT_TRUE(getline(in, line, u's').good() && line == u"la"_us);
    EXPECT_TRUE(getline(in, line) && in.eof() && line == u"t"_us);
    EXPECT_TRUE(getline(in, line).fail());
    in.clear();
    uostringstream rest;
    chained(in.seekg(-5, ios_base::end).ignore().unget().ignore().get(*rest.rdbuf()));
    EXPECT_EQ(rest.str(), u"last"_us);
    chained(rest.seekp(0).put(u'c').write(units, 2).seekp(0, ios_base::end).flush());
    EXPECT_EQ(rest.str(), u"ctht"_us);
    uistringstream more(u" \uFFFFx\uFFFF \uFFFF\n0x1f-a;b"_us, ios_base::out);
    const auto skip_one = +[](uistream& is) -> uistream& { return is.ignore(); };
    void* p = nullptr;
    EXPECT_TRUE(more >> word && word == u"\uFFFFx\uFFFF"_us);
    EXPECT_TRUE(getline(more, word).good() && word == u" \uFFFF"_us);
    chained((more >> p >> skip_one).get(*rest.rdbuf(), u';') >> rest.rdbuf());
    EXPECT_TRUE(p == reinterpret_cast<void*>(0x1F) && rest.str() == u"cthta;b"_us);
    more.exceptions(ios_base::failbit);
    EXPECT_THROW(more >> word, ios_base::failure);
}

template <class Base>
struct Movable : Base {
    using Base::Base;
    Movable(Movable&& other) : Base(std::move(other)) {}
    void operator=(Movable&& other) { Base::operator=(std::move(other)); }
};

template <class Stream>
void expect_state(const Stream& stream, const ustring& text, bool marked)
{
    using punct = std::numpunct<char16>;
    const auto point = std::use_facet<punct>(stream.getloc()).decimal_point();
    EXPECT_EQ(point, char16(marked ? u',' : u'.'));
    EXPECT_EQ(stream.rdbuf()->getloc(), stream.getloc());
    EXPECT_EQ(stream.fill(), char16(marked ? u'#' : u' '));
    EXPECT_EQ(stream.width(), marked ? 7 : 0);
    EXPECT_EQ(stream.rdstate(), marked ? ios_base::eofbit : ios_base::goodbit);
    EXPECT_EQ(stream.str(), text);
    EXPECT_EQ(static_cast<const std::basic_ios<char16>&>(stream).rdbuf(), stream.rdbuf());
}

template <class Stream>
class StringStreams : public testing::Test {
};
using Types = testing::Types<uistringstream, uostringstream, ustringstream>;
TYPED_TEST_SUITE(StringStreams, Types);

TYPED_TEST(StringStreams, ConstructionMoveAndSwap)
{
    const ulocale german(u"de_DE"_usv);
    for (const ustring& text :
         {u"short"_us, ustring(100, u'x')}) {  // inside, on the heap
        ulocale::global(german);               // streams start classic all the same
        TypeParam a(text);
        ulocale::global(ulocale::classic());
        expect_state(a, text, false);
        a.imbue(german);
        a.fill(u'#');
        a.width(7);
        a.setstate(ios_base::eofbit);
        TypeParam b(std::move(a));
        expect_state(b, text, true);
        expect_state(a, ustring(), false);
        a = std::move(b);
        expect_state(a, text, true);
        b.str(u"other"_us);
        a.swap(b);
        expect_state(b, text, true);
        expect_state(a, u"other"_us, false);
        b.clear();
        if constexpr (std::is_base_of_v<uistream, TypeParam>) {
            EXPECT_TRUE(b.get() == text[0] && a.get() == u'o');
        }
        if constexpr (std::is_base_of_v<uostream, TypeParam>) {
            b.put(u'!');
            EXPECT_TRUE(b.str() == u"!"_us + text.substr(1) && a.str() == u"other"_us);
        }
    }
}

// Takes k units, or gives k sevens, one at a time; then it fails or throws.
class RationedBuffer : public std::basic_streambuf<char16> {
public:
    RationedBuffer(std::size_t k, bool throws) : m_left(k), m_throws(throws) {}
    ustring taken;

protected:
    bool empty() const
    {
        if (m_left == 0 && m_throws)
            throw std::domain_error("out of units");
        return m_left == 0;
    }
    int_type overflow(int_type c) override
    {
        return empty() ? traits::eof() : (--m_left, taken += char16(c), c);
    }
    int_type underflow() override { return empty() ? traits::eof() : u'7'; }
    int_type uflow() override { return empty() ? traits::eof() : (--m_left, u'7'); }

private:
    std::size_t m_left;
    bool m_throws;
};

TEST(Streams, CallersBuffers)
{
    uistream none(nullptr);
    EXPECT_TRUE(none.bad() && uostream(nullptr).bad() && uiostream(nullptr).bad());
    EXPECT_EQ(none.imbue(ulocale(u"de_DE"_usv)), std::locale(ulocale::classic()));

    std::basic_stringbuf<char16> buffer;
    uiostream both(&buffer);
    EXPECT_TRUE(both.good() && both.rdbuf() == &buffer && both.fill() == u' ');
    EXPECT_EQ(both.imbue(ulocale(u"de_DE"_usv)), std::locale(ulocale::classic()));
    double d = 0;
    both << 3.5;
    both >> d;
    EXPECT_TRUE(d == 3.5 && buffer.str() == u"3,5"_us);
    const auto expect_moves = [&](auto a) {
        a.imbue(ulocale(u"de_DE"_usv));
        a.fill(u'#');
        a.setstate(ios_base::eofbit);
        auto b(std::move(a));
        EXPECT_TRUE(b.fill() == u'#' && b.eof() && a.fill() == u' ' && a.good());
        a = std::move(b);
        EXPECT_TRUE(a.fill() == u'#' && a.eof() && a.getloc() != b.getloc());
        EXPECT_TRUE(b.fill() == u' ' && !b.rdbuf() && a.rdbuf() == &buffer);
    };
    expect_moves(Movable<uistream>(&buffer));
    expect_moves(Movable<uostream>(&buffer));
    expect_moves(Movable<uiostream>(&buffer));

    for (const bool throws : {false, true})
        for (std::size_t k = 0; k < 6; ++k) {
            RationedBuffer sink(k, throws), words(k, throws), lines(k, throws);
            uostream out(&sink);
            out << u"abcde"_usv;
            EXPECT_EQ(sink.taken, u"abcde"_us.substr(0, k));
            EXPECT_EQ(out.bad(), k < 5);
            ustring text;
            uistream in(&words);
            in >> text;
            EXPECT_EQ(in.rdstate() & ~ios_base::failbit,
                      throws ? ios_base::badbit : ios_base::eofbit);
            EXPECT_EQ(text, ustring(k, u'7'));
            uistream throwing(&lines);
            throwing.exceptions(ios_base::badbit);
            if (throws)
                EXPECT_THROW(getline(throwing, text), std::domain_error);
            else
                EXPECT_TRUE(getline(throwing, text).eof());
        }
}

// It unwinds through handlers; one that keeps it ends the process.
TEST(Streams, ThreadCancellation)
{
    struct Waiting : std::basic_streambuf<char16> {
        int_type underflow() override { return static_cast<char16_t>(pause()); }
    };
    const auto read = [](void*) -> void* {
        Waiting buffer;
        ustring word;
        uistream(&buffer) >> word;
        return nullptr;
    };
    pthread_t thread;
    void* result = nullptr;
    pthread_create(&thread, nullptr, read, nullptr);
    pthread_cancel(thread);
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
}

class FileStreams : public testing::Test {
protected:
    void TearDown() override { std::filesystem::remove(m_path); }
    std::string bytes() const
    {
        std::ifstream in(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    const std::filesystem::path m_path =
        std::filesystem::temp_directory_path() /
        ("kiv_stream_test_" + std::to_string(getpid()));  // tests run side by side
};

// Sizes around those of the arrays inside, pairs across their boundaries.
TEST_F(FileStreams, TextOfAnySizeInAnyCharset)
{
    for (const auto& name : {u"UTF-8"_usv, u"UTF-16LE"_usv, u"GB18030"_usv})
        for (const unsigned size : {0U, 1U, 4094U, 4095U, 4096U, 4097U, 8191U, 30000U}) {
            const Charset* charset = Charset::forName(name);
            ustring text, lines, line;
            while (text.size() < size)
                text += text.size() % 7 ? u"\uFFFF\u00E4\n"_us : u"\U0001F600\u4E2D"_us;
            uofstream out(m_path, charset);
            out << text;
            out.close();
            ASSERT_EQ(bytes(), charset->encode(text));
            out.open(m_path, charset);
            for (const char16 c : text)
                out << c;
            uofstream(std::move(out)).close();
            uifstream opened(m_path, charset), in(std::move(opened));
            EXPECT_TRUE(!opened.is_open() && opened.good());
            while (getline(in, line))
                lines +=
                    in.eof() ? line : line + char16(in.unget().unget().ignore().get());
            ASSERT_TRUE(lines == text && in.eof() && !in.bad()) << size;
        }
}

TEST_F(FileStreams, FaultsStopWhereTheyAre)
{
    std::ofstream(m_path) << "one two\xFFthree";
    uifstream in(m_path);
    ustring word;
    in >> word >> word;
    EXPECT_TRUE(in.bad() && word == u"two"_us);
    in.clear();
    in.exceptions(ios_base::badbit);
    EXPECT_THROW(in >> word, MalformedInputError);
    in.clear();
    in.onFault(CodingErrorAction::REPLACE);
    in >> word;
    EXPECT_EQ(word, u"\uFFFDthree"_us);

    uofstream out(m_path, Charset::ISO_8859_1);
    out << u"caf\u00E9 \u20AC!" << std::flush;
    EXPECT_TRUE(out.bad() && bytes() == "caf\xE9 ");
    out.clear();
    out.exceptions(ios_base::badbit);
    EXPECT_THROW(out.close(), UnmappableCharacterError);
    EXPECT_FALSE(out.is_open());

    uofstream half(m_path);
    half << u"a" << char16(u'\xD83D') << std::flush;
    EXPECT_TRUE(half.good()) << "the other half may follow";
    half << char16(u'\xDE00') << char16(u'\xD83D');
    half.close();
    EXPECT_TRUE(half.bad());
    uofstream(m_path, Charset::US_ASCII, CodingErrorAction::REPLACE, ios_base::app)
        .put(u'\u20AC');
    EXPECT_EQ(bytes(), "a\xF0\x9F\x98\x80?");
    std::ofstream growing(m_path);
    uifstream reader(m_path);
    EXPECT_TRUE((reader >> word).eof());
    growing << "b\xE2\x82" << std::flush;
    reader.clear();
    EXPECT_TRUE((reader >> word).bad() && word == u"b"_us);
    growing << "\xAC!" << std::flush;
    reader.clear();
    EXPECT_TRUE((reader >> word).eof() && word == u"\u20AC!"_us);
}

// It is a destructor that writes then.
TEST_F(FileStreams, UnitbufDefersWhatWouldBeThrown)
{
    EXPECT_TRUE((uofstream(m_path, Charset::US_ASCII) << std::unitbuf << u'\xE9').bad());
    uofstream out(m_path, Charset::US_ASCII);
    out.exceptions(ios_base::badbit);
    EXPECT_NO_THROW(out << std::unitbuf << u"a\xE9z");
    EXPECT_THROW(out << u'c', UnmappableCharacterError);
    out.clear();
    out.onFault(CodingErrorAction::IGNORE);
    out << u'd';
    EXPECT_EQ(bytes(), "azd");
    out.close();
    out.open("/dev/full");
    EXPECT_NO_THROW(out << u'f');
    EXPECT_THROW(out << u'g', ios_base::failure);
}

TEST_F(FileStreams, WhatDoesNotOpenFails)
{
    EXPECT_TRUE(uifstream("/nonexistent/file").fail());
    EXPECT_TRUE(uofstream(std::string("/nonexistent/file")).fail());
    EXPECT_TRUE(uofstream(m_path, Charset::forName(u"no such"_usv)).fail());
    EXPECT_TRUE(uofstream("/dev/full").put(u'x').flush().bad());
    EXPECT_FALSE(uifstream(m_path.parent_path()).ignore().good());  // a folder
    uofstream out;
    EXPECT_TRUE(out.good() && !out.is_open() && out.put(u'x').bad());
    out.open(m_path);
    EXPECT_TRUE(out.good());
    out.open(m_path);
    EXPECT_TRUE(out.fail()) << "open already";
    out.clear();
    out << u"stale";
    EXPECT_EQ(out.rdbuf()->getloc(), out.getloc());
    out = uofstream();
    EXPECT_TRUE(out.good() && !out.is_open() && bytes() == "stale") << "closed";
    uifstream in(m_path);
    in.ignore();
    in.close();
    in.open(m_path.parent_path());
    EXPECT_TRUE(in.get() == traits::eof() && in.bad());
    in.clear();
    EXPECT_TRUE(in.get() == traits::eof()) << "nothing of the file before";
}

}  // namespace
