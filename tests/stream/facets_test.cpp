// The facets and the locales that carry them. The oracles are the isu* functions
// and the wide facets and streams of the standard library.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <kiv/character.h>
#include <kiv/stream.h>

// glibc does not free the list that it makes of LOCPATH.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:argz_add_sep";
}

namespace {

using namespace kiv;
using base = std::ctype_base;
using ios = std::ios_base;

// Before any locale is looked for. A locale that is missing there fails tests.
[[maybe_unused]] const int locpath = setenv("LOCPATH", KIV_LOCALE_DIR, 1);

// Locales by the library's and by the platform's name.
constexpr struct {
    const char16_t* name;
    const char* platform_name;
} LOCALES[] = {{u"de_DE", "de_DE.UTF-8"}, {u"en_US", "en_US.UTF-8"},
               {u"en_IN", "en_IN.UTF-8"}, {u"ar_EG", "ar_EG.UTF-8"},
               {u"ja_JP", "ja_JP.UTF-8"}, {u"es_ES", "es_ES"}};

ulocale named(const std::u16string& name)
{
    return ulocale(ustring(name.begin(), name.end()));
}

// Unit by unit, for text without surrogates.
std::wstring widen(const ustring& units)
{
    std::wstring wide;
    for (const char16 c : units)
        wide += static_cast<wchar_t>(static_cast<char16_t>(c));
    return wide;
}

// The standard's mask has bits of its own and composite classes: a class that
// strays into a neighbour's bit differs from the function of its name.
TEST(Ctype, EveryUnit)
{
    static constexpr struct {
        base::mask mask;
        bool (*function)(char16_int) noexcept;
    } classes[] = {
        {base::upper, isuupper}, {base::lower, isulower}, {base::alpha, isualpha},
        {base::digit, isudigit}, {base::alnum, isualnum}, {base::xdigit, isuxdigit},
        {base::space, isuspace}, {base::cntrl, isucntrl}, {base::punct, isupunct},
        {base::graph, isugraph}, {base::print, isuprint},
    };
    const auto& ctype = std::use_facet<std::ctype<char16>>(ulocale::classic());
    constexpr std::size_t N = 0x10000;
    std::vector<char16> units(N);
    for (std::size_t u = 0; u < N; ++u)
        units[u] = static_cast<char16_t>(u);
    std::vector<base::mask> masks(N);
    const char16 *const first = units.data(), *const last = first + N;
    EXPECT_EQ(ctype.is(first, last, masks.data()), last);
    for (std::size_t u = 0; u < N; ++u) {
        SCOPED_TRACE(u);
        const char16 c = units[u];
        for (const auto& [mask, function] : classes) {
            ASSERT_EQ(ctype.is(mask, c), function(c));
            ASSERT_EQ((masks[u] & mask) != 0, function(c));
        }
        const bool ends_line = u == 0x2028 || u == 0x2029;
        ASSERT_EQ(ctype.is(base::blank, c), isuspace(c) && !ends_line);
        char16 upper = c, lower = c;
        ASSERT_EQ(ctype.toupper(&upper, &upper + 1), &upper + 1);
        ASSERT_EQ(ctype.tolower(&lower, &lower + 1), &lower + 1);
        ASSERT_TRUE(upper == touupper(c) && ctype.toupper(c) == upper);
        ASSERT_TRUE(lower == toulower(c) && ctype.tolower(c) == lower);
        const int digit = Char16::digit(static_cast<char32_t>(u), 10);
        const auto want = u < 0x80 ? static_cast<int>(u) : digit >= 0 ? '0' + digit : '!';
        char narrow = 0;
        ASSERT_EQ(ctype.narrow(&c, &c + 1, '!', &narrow), &c + 1);
        ASSERT_TRUE(narrow == want && ctype.narrow(c, '!') == want);
    }
    std::mt19937 random(1);
    for (int i = 0; i < 300; ++i) {
        const auto mask = static_cast<base::mask>(random() & random());
        const char16* const from = first + random() % N;
        const auto member = [&](char16 c) { return ctype.is(mask, c); };
        EXPECT_EQ(ctype.scan_is(mask, from, last), std::find_if(from, last, member));
        EXPECT_EQ(ctype.scan_not(mask, from, last), std::find_if_not(from, last, member));
    }
    for (char16_t byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        char16 wide{};
        EXPECT_EQ(ctype.widen(&c, &c + 1, &wide), &c + 1);
        EXPECT_TRUE(wide == (byte < 0x80 ? byte : u'\uFFFD') && ctype.widen(c) == wide);
    }
}

void expect_punctuation(const std::locale& locale, const std::locale& wide_locale)
{
    const auto& punct = std::use_facet<std::numpunct<char16>>(locale);
    const auto& wide = std::use_facet<std::numpunct<wchar_t>>(wide_locale);
    EXPECT_EQ(widen({punct.decimal_point(), punct.thousands_sep()}),
              (std::wstring{wide.decimal_point(), wide.thousands_sep()}));
    EXPECT_EQ(punct.grouping(), wide.grouping());
    EXPECT_EQ(widen(punct.truename() + punct.falsename()),
              wide.truename() + wide.falsename());
}

TEST(Ulocale, Punctuation)
{
    expect_punctuation(ulocale::classic(), std::locale::classic());
    for (const auto& [name, platform_name] : LOCALES) {
        const std::locale standard = named(name), wide(platform_name);
        EXPECT_EQ(standard.name(), "*");
        expect_punctuation(standard, wide);
        const std::locale by_name(standard,
                                  new std::numpunct_byname<char16>(platform_name));
        expect_punctuation(by_name, wide);
    }
    EXPECT_THROW(new std::numpunct_byname<char16>("xx_YY"), std::runtime_error);

    // No locale has it; a unit cut off from the value would be any character.
    struct Far : std::numpunct<wchar_t> {
        wchar_t do_decimal_point() const override { return L'\U0001F600'; }
        wchar_t do_thousands_sep() const override { return L'\U0001F601'; }
    };
    const auto far = detail::numeric_punctuation::from_wide(Far());
    EXPECT_TRUE(far.decimal_point == u'.' && far.thousands_sep == u',');
}

TEST(Ulocale, Names)
{
    for (const auto& [name, platform_name] : LOCALES) {
        EXPECT_EQ(widen(named(name).name()),
                  std::wstring(platform_name, platform_name + 5));
        EXPECT_TRUE(named(name) == named(name) && named(name) != ulocale::classic());
    }
    for (const char16_t* name :
         {u"de", u"de-DE", u"DE_de", u"de_DEU", u"de_de", u"xx_YY", u"d{_DE", u"`e_DE",
          u"de_D[", u"de_@E", u"de_DE.UTF-8", u"C", u"\u0164e_DE"})
        EXPECT_EQ(named(name).name(), u"C"_us);

    static constexpr struct {
        const char *all, *lang, *numeric;
        const wchar_t* name;
        char16_t decimal_point;
    } natives[] = {
        {"de_DE.UTF-8", "", "", L"de_DE", u','},
        {"es_ES", "", "", L"es_ES", u','},
        {"C", "", "", L"*", u'.'},
        {"C.UTF-8", "", "", L"*", u'.'},
        {"", "en_US.UTF-8", "", L"en_US", u'.'},
        {"", "", "", L"*", u'.'},
        {"", "ja_JP.UTF-8", "de_DE.UTF-8", L"ja_JP", u','},
    };
    unsetenv("LC_CTYPE");
    for (const auto& n : natives) {
        setenv("LC_ALL", n.all, 1);
        setenv("LANG", n.lang, 1);
        setenv("LC_NUMERIC", n.numeric, 1);
        const ulocale native(u""_usv);
        EXPECT_EQ(widen(native.name()), n.name) << n.all << n.lang;
        EXPECT_EQ(std::use_facet<std::numpunct<char16>>(native).decimal_point(),
                  char16(n.decimal_point));
    }
    setenv("LC_ALL", "xx_YY.UTF-8", 1);
    EXPECT_THROW(ulocale(u""_usv), std::runtime_error);
    setenv("LC_ALL", "C", 1);
}

TEST(Concurrency, GlobalLocaleIsExchangedWhole)
{
    const ulocale locales[] = {named(u"de_DE"), named(u"ja_JP"), ulocale::classic()};
    EXPECT_TRUE(ulocale() == ulocale::classic());
    EXPECT_TRUE(ulocale::global(locales[0]) == ulocale::classic());
    EXPECT_TRUE(ulocale() == locales[0] && std::locale().name() == "C");
    std::atomic<int> torn{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (unsigned i = t; i < t + 500; ++i) {
                const ulocale seen = i % 2 ? ulocale() : ulocale::global(locales[i % 3]);
                uostringstream out;
                out.imbue(seen);
                out << 1.5;
                torn += out.str() != (seen == locales[0] ? u"1,5"_us : u"1.5"_us);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(torn, 0);
    ulocale::global(locales[0]);
    EXPECT_TRUE(ulocale::global(ulocale::classic()) == locales[0]);
}

// Numbers come out, and go in, as through the wide streams with the same locale
// and flags.
class Numbers : public testing::Test {
protected:
    unsigned below(std::size_t n) { return static_cast<unsigned>(m_random() % n); }

    ios::fmtflags random_flags()
    {
        constexpr auto ALL = ios::basefield | ios::floatfield | ios::adjustfield |
                             ios::showbase | ios::showpos | ios::showpoint |
                             ios::uppercase | ios::boolalpha | ios::skipws;
        return static_cast<ios::fmtflags>(m_random() & static_cast<unsigned>(ALL));
    }

    // Of every size: the number of bits is as random as they are.
    template <class T>
    T random_value()
    {
        const unsigned long long bits = m_random() >> below(64);
        const unsigned long long value = below(2) ? bits : 0 - bits;
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(std::is_same_v<T, bool> ? bits % 2 : value);
        else if (below(20) == 0)
            return below(2) ? std::numeric_limits<T>::infinity()
                            : std::numeric_limits<T>::quiet_NaN();
        else
            return std::ldexp(static_cast<T>(value), static_cast<int>(below(160)) - 80);
    }

    template <class T>
    void expect_inserted()
    {
        const ios::fmtflags flags = random_flags();
        const unsigned width = below(24), precision = below(20);
        const char16_t fill = below(2) ? u'*' : u'\u3000';
        const T value = random_value<T>();
        const auto insert = [&](auto& out, auto fill_unit) {
            out.str({});
            out.flags(flags);
            out.width(width);
            out.precision(precision);
            out.fill(fill_unit);
            out << value;
            EXPECT_EQ(out.width(), 0);
        };
        insert(m_out, char16(fill));
        insert(m_wide_out, static_cast<wchar_t>(fill));
        ASSERT_EQ(widen(m_out.str()), m_wide_out.str());
    }

    // What some stream wrote, often damaged, or any characters of numbers.
    ustring random_number_text()
    {
        static constexpr char16_t UNITS[] = u"0123456789012,,..+-xXeEaAfFgtrue \u0663";
        m_out.str({});
        m_out.flags(random_flags());
        below(2) ? m_out << random_value<double>() : m_out << random_value<long>();
        const bool any = below(4) == 0;
        ustring number = any ? ustring() : m_out.str();
        for (unsigned damage = below(any ? 12 : 3); damage > 0; --damage)
            number.replace(below(number.size() + 1), below(2), 1,
                           UNITS[below(std::size(UNITS) - 1)]);
        return number;
    }

    template <class T>
    void expect_extracted()
    {
        const ustring number = random_number_text();
        const ios::fmtflags flags = random_flags();
        const auto extract = [&](auto& in, const auto& text) {
            T value{};
            in.clear();
            in.str(text);
            in.flags(flags);
            in >> value;
            return value;
        };
        ASSERT_EQ(extract(m_in, number), extract(m_wide_in, widen(number)));
        ASSERT_EQ(m_in.rdstate(), m_wide_in.rdstate()) << testing::PrintToString(number);
        ASSERT_EQ(m_in.rdbuf()->in_avail(), m_wide_in.rdbuf()->in_avail());
    }

    template <class... T>
    void run(const std::locale& locale, const std::locale& wide_locale)
    {
        m_out.imbue(locale);
        m_in.imbue(locale);
        m_wide_out.imbue(wide_locale);
        m_wide_in.imbue(wide_locale);
        for (int i = 0; i < 250; ++i)
            ((expect_inserted<T>(), expect_extracted<T>()), ...);
    }
    void run_all(const std::locale& locale, const std::locale& wide_locale)
    {
        run<short, unsigned short, int, unsigned, long, unsigned long>(locale,
                                                                       wide_locale);
        run<unsigned long long, float, double, long double, bool>(locale, wide_locale);
    }

    std::mt19937_64 m_random{20};
    uostringstream m_out;
    uistringstream m_in;
    std::wostringstream m_wide_out;
    std::wistringstream m_wide_in;
};

TEST_F(Numbers, AreThoseOfTheWideStreams)
{
    run_all(ulocale::classic(), std::locale::classic());
    for (const auto& [name, platform_name] : LOCALES) {
        SCOPED_TRACE(platform_name);
        run_all(named(name), std::locale(platform_name));
    }
}

}  // namespace
