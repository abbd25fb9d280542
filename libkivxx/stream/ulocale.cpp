#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <kiv/charset.h>
#include <kiv/locale.h>

#include "platform/locale_name.h"

namespace kiv {

using namespace literals;

struct ulocale::Data {
    const std::locale locale;
    const ustring name;
};

// Constant-initialised and never destroyed: static objects may use it at any time.
// Read and replaced by the atomic functions of shared_ptr only. std::atomic of it
// is missing in libc++ 14, and in libstdc++ 12 its load() releases its lock without
// ordering, which is a data race with the next exchange.
struct ulocale::GlobalData {
    constexpr GlobalData() noexcept : value() {}
    ~GlobalData() {}

    union {
        std::shared_ptr<Data> value;
    };
};

constinit ulocale::GlobalData ulocale::s_global;

// The punctuation of a locale, from its wide facet.
class ulocale::numpunct_from_wide : public std::numpunct<char16> {
public:
    explicit numpunct_from_wide(const std::locale& locale)
        : m_punctuation(detail::numeric_punctuation::from_wide(
              std::use_facet<std::numpunct<wchar_t>>(locale)))
    {
    }

protected:
    char16 do_decimal_point() const override { return m_punctuation.decimal_point; }
    char16 do_thousands_sep() const override { return m_punctuation.thousands_sep; }
    std::string do_grouping() const override { return m_punctuation.grouping; }
    ustring do_truename() const override { return m_punctuation.truename; }
    ustring do_falsename() const override { return m_punctuation.falsename; }

private:
    detail::numeric_punctuation m_punctuation;
};

// --- Construction --------------------------------------------------------------

ulocale::ulocale() : m_data(std::atomic_load(&s_global.value))
{
    if (!m_data)
        m_data = classic().m_data;
}

ulocale::ulocale(const basic_string_ref<char16>& name)
{
    if (name.empty())
        m_data = nativeData();
    else if (isValidLocaleName(name))
        m_data = namedData(name);
    if (!m_data)
        m_data = classic().m_data;
}

ulocale::ulocale(std::shared_ptr<Data> data) noexcept : m_data(std::move(data)) {}

bool ulocale::isValidLocaleName(const basic_string_ref<char16>& name) noexcept
{
    const auto between = [](char16 c, char16 low, char16 high) {
        return low <= c && c <= high;
    };
    return name.size() == 5 && between(name[0], u'a', u'z') &&
           between(name[1], u'a', u'z') && name[2] == u'_' &&
           between(name[3], u'A', u'Z') && between(name[4], u'A', u'Z');
}

std::shared_ptr<ulocale::Data> ulocale::classicData()
{
    return std::make_shared<Data>(
        Data{addClassicFacets(std::locale::classic()), u"C"_us});
}

std::shared_ptr<ulocale::Data> ulocale::nativeData()
{
    const std::locale native("");
    const std::string full_name = native.name();
    const std::string_view bare_name = platform::bare_locale_name(full_name);
    ustring name = Charset::US_ASCII->decode({bare_name.data(), bare_name.size()});
    if (name.size() == 5 && name[2] == u'-')
        name[2] = u'_';
    if (!isValidLocaleName(name))
        name = u"*"_us;
    return std::make_shared<Data>(Data{addSpecificFacets(native), std::move(name)});
}

// Null if the platform does not know the locale.
std::shared_ptr<ulocale::Data> ulocale::namedData(const basic_string_ref<char16>& name)
{
    for (const std::string& platform_name :
         platform::locale_names(Charset::US_ASCII->encode(name))) {
        try {
            const std::locale locale(platform_name);
            if (locale.name() == platform_name)
                return std::make_shared<Data>(
                    Data{addSpecificFacets(locale), name.to_string()});
        } catch (const std::runtime_error&) {
            // Not installed under this name.
        }
    }
    return nullptr;
}

std::locale ulocale::addGenericFacets(std::locale locale)
{
    locale = std::locale(locale, new std::ctype<char16>);
    locale = std::locale(locale, new std::num_get<char16>);
    return std::locale(locale, new std::num_put<char16>);
}

std::locale ulocale::addClassicFacets(std::locale locale)
{
    return std::locale(addGenericFacets(std::move(locale)), new std::numpunct<char16>);
}

std::locale ulocale::addSpecificFacets(std::locale locale)
{
    const std::locale generic = addGenericFacets(std::move(locale));
    return std::locale(generic, new numpunct_from_wide(generic));
}

// --- The classic and the global locale -----------------------------------------

const ulocale& ulocale::classic()
{
    // Never destroyed: static objects may outlive any static of the library.
    alignas(ulocale) static unsigned char room[sizeof(ulocale)];
    static const ulocale& locale = *new (room) ulocale(classicData());
    return locale;
}

ulocale ulocale::global(const ulocale& locale)
{
    std::shared_ptr<Data> previous = std::atomic_exchange(&s_global.value, locale.data());
    return previous ? ulocale(std::move(previous)) : classic();
}

// --- Access --------------------------------------------------------------------

ustring ulocale::name() const
{
    return m_data->name;
}

ulocale::operator std::locale() const
{
    return m_data->locale;
}

bool ulocale::operator==(const ulocale& other) const noexcept
{
    return m_data->name == other.m_data->name;
}

}  // namespace kiv
