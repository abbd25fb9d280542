// kiv/locale.h - national conventions for UTF-16 text: the char16 facets, and
// ulocale, a shared handle to a std::locale that has them.
//
//     kiv::ulocale german(u"de_DE"_usv);
//     kiv::uostringstream out;         // kiv/stream.h
//     out.imbue(german);
//     out << 1234567.5;                // 1.234.567,5
//
// A locale is named language_TERRITORY: two lower-case ASCII letters, '_', two
// upper-case ones. A name that is not of this form or that the platform does
// not know gives the classic locale, named "C", without an error: compare with
// classic() to find out. Here de_DE is the platform's de_DE.UTF-8, or else its
// de_DE. The empty name gives the platform's native settings; they are named by
// their character category, up to its first '.' or '@', or "*" if that is not
// a name as above, as for "C" and "C.UTF-8".
//
// The global ulocale is the library's own; std::locale::global does not touch
// it, and no stream uses it unless it is imbued with ulocale().
//
// Everything here is immutable and may be used from any thread; classic() and
// the global ulocale also while static objects are built and destroyed.

#ifndef KIV_LOCALE_H
#define KIV_LOCALE_H

#include <cstddef>
#include <iterator>
#include <locale>
#include <memory>
#include <string>

#include <kiv/char16.h>
#include <kiv/export.h>
#include <kiv/string_ref.h>

namespace kiv::detail {

// How numbers are written in some locale.
struct KIV_API numeric_punctuation {
    // Copies a wide facet. A decimal point or thousands separator above U+FFFF
    // has no single unit: it becomes the classic '.' or ','.
    static numeric_punctuation from_wide(const std::numpunct<wchar_t>& wide);

    char16 decimal_point;
    char16 thousands_sep;
    std::string grouping;
    ustring truename;
    ustring falsename;
};

}  // namespace kiv::detail

// --- Facets --------------------------------------------------------------------
//
// The members are those of the standard facets.

// Classification, case and narrowing of single units. Every class, print
// included, holds the units for which the isu* function of that name (blank:
// isuspace, without U+2028 and U+2029) is true: that of the Unicode 4.1
// repertoire. Case follows the newest Unicode data, as Char16 does.
template <>
class KIV_API std::ctype<kiv::char16> : public std::locale::facet,
                                        public std::ctype_base {
public:
    using char_type = kiv::char16;

    static std::locale::id id;

    explicit ctype(std::size_t refs = 0) : facet(refs) {}

    bool is(mask m, char_type c) const { return do_is(m, c); }
    const char_type* is(const char_type* first, const char_type* last, mask* masks) const
    {
        return do_is(first, last, masks);
    }
    const char_type* scan_is(mask m, const char_type* first, const char_type* last) const
    {
        return do_scan_is(m, first, last);
    }
    const char_type* scan_not(mask m, const char_type* first, const char_type* last) const
    {
        return do_scan_not(m, first, last);
    }

    char_type toupper(char_type c) const { return do_toupper(c); }
    const char_type* toupper(char_type* first, const char_type* last) const
    {
        return do_toupper(first, last);
    }
    char_type tolower(char_type c) const { return do_tolower(c); }
    const char_type* tolower(char_type* first, const char_type* last) const
    {
        return do_tolower(first, last);
    }

    // A byte from 0x80 up becomes U+FFFD.
    char_type widen(char c) const { return do_widen(c); }
    const char* widen(const char* first, const char* last, char_type* dest) const
    {
        return do_widen(first, last, dest);
    }
    // A decimal digit of any script becomes the ASCII digit.
    char narrow(char_type c, char dflt) const { return do_narrow(c, dflt); }
    const char_type* narrow(const char_type* first, const char_type* last, char dflt,
                            char* dest) const
    {
        return do_narrow(first, last, dflt, dest);
    }

protected:
    ~ctype() override;
    virtual const char_type* do_is(const char_type* first, const char_type* last,
                                   mask* masks) const;
    virtual bool do_is(mask m, char_type c) const;
    virtual const char_type* do_scan_is(mask m, const char_type* first,
                                        const char_type* last) const;
    virtual const char_type* do_scan_not(mask m, const char_type* first,
                                         const char_type* last) const;
    virtual const char_type* do_toupper(char_type* first, const char_type* last) const;
    virtual char_type do_toupper(char_type c) const;
    virtual const char_type* do_tolower(char_type* first, const char_type* last) const;
    virtual char_type do_tolower(char_type c) const;
    virtual const char* do_widen(const char* first, const char* last,
                                 char_type* dest) const;
    virtual char_type do_widen(char c) const;
    virtual const char_type* do_narrow(const char_type* first, const char_type* last,
                                       char dflt, char* dest) const;
    virtual char do_narrow(char_type c, char dflt) const;
};

// The classic punctuation: '.', ',', no grouping, "true" and "false".
template <>
class KIV_API std::numpunct<kiv::char16> : public std::locale::facet {
public:
    using char_type = kiv::char16;
    using string_type = kiv::ustring;

    static std::locale::id id;

    explicit numpunct(std::size_t refs = 0) : facet(refs) {}

    char_type decimal_point() const { return do_decimal_point(); }
    char_type thousands_sep() const { return do_thousands_sep(); }
    std::string grouping() const { return do_grouping(); }
    string_type truename() const { return do_truename(); }
    string_type falsename() const { return do_falsename(); }

protected:
    ~numpunct() override;
    virtual char_type do_decimal_point() const;
    virtual char_type do_thousands_sep() const;
    virtual std::string do_grouping() const;
    virtual string_type do_truename() const;
    virtual string_type do_falsename() const;
};

// The punctuation of a locale by the platform's own name for it, for example
// de_DE.UTF-8. Throws std::runtime_error if the platform does not know it.
template <>
class KIV_API std::numpunct_byname<kiv::char16> : public std::numpunct<kiv::char16> {
public:
    explicit numpunct_byname(const char* name, std::size_t refs = 0);
    explicit numpunct_byname(const std::string& name, std::size_t refs = 0);

protected:
    ~numpunct_byname() override;
    char_type do_decimal_point() const override { return m_punctuation.decimal_point; }
    char_type do_thousands_sep() const override { return m_punctuation.thousands_sep; }
    std::string do_grouping() const override { return m_punctuation.grouping; }
    string_type do_truename() const override { return m_punctuation.truename; }
    string_type do_falsename() const override { return m_punctuation.falsename; }

private:
    void init(const char* name);

    kiv::detail::numeric_punctuation m_punctuation;
};

// Number extraction and insertion are the standard templates, instantiated once,
// in the library.
extern template class KIV_API std::num_get<kiv::char16>;
extern template class KIV_API std::num_put<kiv::char16>;

namespace kiv {

// --- ulocale -------------------------------------------------------------------

class KIV_API ulocale {
public:
    // The global locale, or the classic one while no global locale is set.
    ulocale();
    // The named locale, see above. The empty name passes on the error of a
    // native locale that does not exist (std::runtime_error).
    explicit ulocale(const basic_string_ref<char16>& name);
    // Moving copies, so that no ulocale is ever empty.
    ulocale(const ulocale&) noexcept = default;
    ulocale& operator=(const ulocale&) noexcept = default;
    ~ulocale() = default;

    static const ulocale& classic();
    // Makes the locale the global one and returns the one that was: the classic
    // one at first.
    static ulocale global(const ulocale& locale);

    ustring name() const;
    operator std::locale() const;

    // Whether the names are equal.
    bool operator==(const ulocale& other) const noexcept;

private:
    struct Data;
    struct GlobalData;
    class numpunct_from_wide;

    explicit ulocale(std::shared_ptr<Data> data) noexcept;
    const std::shared_ptr<Data>& data() const noexcept { return m_data; }

    static bool isValidLocaleName(const basic_string_ref<char16>& name) noexcept;
    static std::shared_ptr<Data> classicData();
    static std::shared_ptr<Data> nativeData();
    static std::shared_ptr<Data> namedData(const basic_string_ref<char16>& name);
    static std::locale addGenericFacets(std::locale locale);
    static std::locale addClassicFacets(std::locale locale);
    static std::locale addSpecificFacets(std::locale locale);

    static GlobalData s_global;

    std::shared_ptr<Data> m_data;
};

}  // namespace kiv

#endif
