#include <cstdint>
#include <type_traits>

#include <kiv/charset.h>
#include <kiv/locale.h>

namespace kiv::detail {

namespace {

char16 one_unit(wchar_t c, char16_t otherwise) noexcept
{
    const auto value = static_cast<std::make_unsigned_t<wchar_t>>(c);
    return value <= 0xFFFF ? static_cast<char16_t>(value) : otherwise;
}

}  // namespace

numeric_punctuation numeric_punctuation::from_wide(const std::numpunct<wchar_t>& wide)
{
    return {one_unit(wide.decimal_point(), u'.'), one_unit(wide.thousands_sep(), u','),
            wide.grouping(), cvtstr<ustring>(wide.truename()),
            cvtstr<ustring>(wide.falsename())};
}

}  // namespace kiv::detail

namespace std {

using kiv::char16;
using kiv::ustring;
using namespace kiv::literals;

locale::id numpunct<char16>::id;

numpunct<char16>::~numpunct() = default;

char16 numpunct<char16>::do_decimal_point() const
{
    return u'.';
}

char16 numpunct<char16>::do_thousands_sep() const
{
    return u',';
}

string numpunct<char16>::do_grouping() const
{
    return {};
}

ustring numpunct<char16>::do_truename() const
{
    return u"true"_us;
}

ustring numpunct<char16>::do_falsename() const
{
    return u"false"_us;
}

numpunct_byname<char16>::numpunct_byname(const char* name, size_t refs)
    : numpunct<char16>(refs)
{
    init(name);
}

numpunct_byname<char16>::numpunct_byname(const string& name, size_t refs)
    : numpunct_byname(name.c_str(), refs)
{
}

numpunct_byname<char16>::~numpunct_byname() = default;

void numpunct_byname<char16>::init(const char* name)
{
    struct wnumpunct_byname : numpunct_byname<wchar_t> {
        using numpunct_byname<wchar_t>::numpunct_byname;
    };
    m_punctuation = kiv::detail::numeric_punctuation::from_wide(wnumpunct_byname(name));
}

}  // namespace std
