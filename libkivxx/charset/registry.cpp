// The registry of charsets: what is built while the library is loaded, in
// written order, and the look-ups in it.

#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

#include <kiv/charset.h>

#include "charset/double_byte_charsets.h"
#include "charset/gb18030.h"
#include "charset/iso_8859_1.h"
#include "charset/name_less.h"
#include "charset/single_byte_charsets.h"
#include "charset/us_ascii.h"
#include "charset/utf_16.h"
#include "charset/utf_8.h"
#include "platform/code_page.h"

namespace kiv {

// --- What is built at load --------------------------------------------------------

namespace {

// Room for an object that is built at load and never destroyed, so that static
// objects of users may call in during their own construction and destruction.
// Its address is known before anything runs.
template <class T>
union Room {
    constexpr Room() noexcept : empty() {}
    constexpr ~Room() {}

    template <class... Args>
    T& build(Args&&... args)
    {
        return *new (&object) T(std::forward<Args>(args)...);
    }

    char empty;
    T object;
};

constinit Room<
    std::map<basic_string_ref<char16>, Charset*, NameLess<basic_string_ref<char16>>>>
    by_name, by_alias;
constinit Room<kiv::US_ASCII> us_ascii;
constinit Room<kiv::UTF_8> utf_8;
constinit Room<kiv::UTF_16BE> utf_16be;
constinit Room<kiv::UTF_16LE> utf_16le;
constinit Room<kiv::CESU_8> cesu_8;
constinit Room<kiv::ISO_8859_1> iso_8859_1;
constinit Room<kiv::ISO_8859_2> iso_8859_2;
constinit Room<kiv::ISO_8859_3> iso_8859_3;
constinit Room<kiv::ISO_8859_4> iso_8859_4;
constinit Room<kiv::ISO_8859_5> iso_8859_5;
constinit Room<kiv::ISO_8859_6> iso_8859_6;
constinit Room<kiv::ISO_8859_7> iso_8859_7;
constinit Room<kiv::ISO_8859_8> iso_8859_8;
constinit Room<kiv::ISO_8859_9> iso_8859_9;
constinit Room<kiv::ISO_8859_10> iso_8859_10;
constinit Room<kiv::ISO_8859_11> iso_8859_11;
constinit Room<kiv::ISO_8859_13> iso_8859_13;
constinit Room<kiv::ISO_8859_14> iso_8859_14;
constinit Room<kiv::ISO_8859_15> iso_8859_15;
constinit Room<kiv::ISO_8859_16> iso_8859_16;
constinit Room<kiv::Micsft_1250> micsft_1250;
constinit Room<kiv::Micsft_1251> micsft_1251;
constinit Room<kiv::Micsft_1252> micsft_1252;
constinit Room<kiv::Micsft_1253> micsft_1253;
constinit Room<kiv::Micsft_1254> micsft_1254;
constinit Room<kiv::Micsft_1255> micsft_1255;
constinit Room<kiv::Micsft_1256> micsft_1256;
constinit Room<kiv::Micsft_1257> micsft_1257;
constinit Room<kiv::Micsft_1258> micsft_1258;
constinit Room<kiv::Micsft_874> micsft_874;
constinit Room<kiv::Micsft_932> micsft_932;
constinit Room<kiv::Micsft_936> micsft_936;
constinit Room<kiv::Micsft_949> micsft_949;
constinit Room<kiv::Micsft_950> micsft_950;
constinit Room<kiv::KOI8_R> koi8_r;
constinit Room<kiv::KOI8_U> koi8_u;
constinit Room<kiv::Big5> big5;
constinit Room<kiv::Big5_HKSCS> big5_hkscs;
constinit Room<kiv::GBK> gbk;
constinit Room<kiv::GB18030> gb18030;
constinit Room<kiv::Shift_JIS> shift_jis;

}  // namespace

constinit Charset::NameMap& Charset::s_byName = by_name.object;
constinit Charset::NameMap& Charset::s_byAlias = by_alias.object;
constinit Charset* Charset::s_defaultCharset = nullptr;

constinit Charset* const Charset::US_ASCII = &us_ascii.object;
constinit Charset* const Charset::ISO_8859_1 = &iso_8859_1.object;
constinit Charset* const Charset::UTF_8 = &utf_8.object;
constinit Charset* const Charset::UTF_16BE = &utf_16be.object;
constinit Charset* const Charset::UTF_16LE = &utf_16le.object;
constinit Charset* const Charset::CESU_8 = &cesu_8.object;

struct CharsetRegistry {
    static void build()
    {
        by_name.build();
        by_alias.build();
        register_charsets();
        Charset::s_defaultCharset = choose_default();
    }

private:
    static void register_charsets()
    {
        us_ascii.build();
        utf_8.build();
        utf_16be.build();
        utf_16le.build();
        cesu_8.build();
        iso_8859_1.build();
        iso_8859_2.build();
        iso_8859_3.build();
        iso_8859_4.build();
        iso_8859_5.build();
        iso_8859_6.build();
        iso_8859_7.build();
        iso_8859_8.build();
        iso_8859_9.build();
        iso_8859_10.build();
        iso_8859_11.build();
        iso_8859_13.build();
        iso_8859_14.build();
        iso_8859_15.build();
        iso_8859_16.build();
        micsft_1250.build();
        micsft_1251.build();
        micsft_1252.build();
        micsft_1253.build();
        micsft_1254.build();
        micsft_1255.build();
        micsft_1256.build();
        micsft_1257.build();
        micsft_1258.build();
        micsft_874.build();
        micsft_932.build();
        micsft_936.build();
        micsft_949.build();
        micsft_950.build();
        koi8_r.build();
        koi8_u.build();
        big5.build();
        big5_hkscs.build();
        gbk.build();
        gb18030.build();
        shift_jis.build();
    }

    static Charset* choose_default()
    {
        const char* name = std::getenv("KIV_DEFAULT_CHARSET");
        Charset* charset = name != nullptr && *name != '\0'
                               ? Charset::forName(Charset::US_ASCII->decode(name))
                               : Charset::forName(code_page_name(platform::code_page()));
        return charset != nullptr ? charset : Charset::US_ASCII;
    }

    static basic_string_ref<char16> code_page_name(unsigned code_page)
    {
        switch (code_page) {
        case 874:
            return u"windows-874"_usv;
        case 932:
            return u"Windows-31J"_usv;
        case 936:
            return u"x-mswin-936"_usv;
        case 949:
            return u"x-windows-949"_usv;
        case 950:
            return u"Big5"_usv;
        case 1250:
            return u"windows-1250"_usv;
        case 1251:
            return u"windows-1251"_usv;
        case 1252:
            return u"windows-1252"_usv;
        case 1253:
            return u"windows-1253"_usv;
        case 1254:
            return u"windows-1254"_usv;
        case 1255:
            return u"windows-1255"_usv;
        case 1256:
            return u"windows-1256"_usv;
        case 1257:
            return u"windows-1257"_usv;
        case 1258:
            return u"windows-1258"_usv;
        default:
            return u"US-ASCII"_usv;
        }
    }
};

namespace {

// Ahead of every static object of default priority, in the static library too,
// where the linker orders the initialisers of the library after the program's.
[[gnu::constructor(101)]] void build_registry()
{
    CharsetRegistry::build();
}

}  // namespace

// --- Registration -------------------------------------------------------------------

bool Charset::isLetter(char16 c) noexcept
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

bool Charset::isDigit(char16 c) noexcept
{
    return c >= u'0' && c <= u'9';
}

bool Charset::isSpecial(char16 c) noexcept
{
    return u"+-.:_"_usv.find(c) != NameView::npos;
}

const Charset::NameView& Charset::checkCharsetName(const NameView& name)
{
    bool legal = !name.empty() && !isSpecial(name.front());
    for (const char16 c : name)
        legal = legal && (isLetter(c) || isDigit(c) || isSpecial(c));
    if (!legal)
        throw std::invalid_argument("invalid charset name: " + cvtstr<std::string>(name));
    return name;
}

Charset::AliasSet Charset::makeAliasSet(std::initializer_list<NameView> aliases)
{
    AliasSet set;
    for (const NameView& alias : aliases)
        if (!set.insert(checkCharsetName(alias)).second)
            throw std::invalid_argument("duplicate alias");
    return set;
}

Charset::Charset(int mib, const NameView& name, std::initializer_list<NameView> aliases)
    : m_mibEnum(mib), m_name(checkCharsetName(name)), m_aliases(makeAliasSet(aliases))
{
    if (s_byName.contains(m_name))
        throw std::logic_error("ambiguous charset names");

    // Whatever may fail comes first; merging maps neither allocates nor throws.
    NameMap own_name;
    NameMap own_aliases;
    own_name.emplace(m_name, this);
    for (const NameView& alias : m_aliases)
        own_aliases.emplace(alias, this);

    s_byName.merge(own_name);
    s_byAlias.merge(own_aliases);
    for (const auto& claimed : own_aliases)
        s_byAlias.find(claimed.first)->second = nullptr;
}

// Only a charset that should never have been destroyed comes here: at least no
// look-up finds it afterwards.
Charset::~Charset() noexcept(false)  // NOLINT(bugprone-exception-escape)
{
    delete m_defaultDecoder.load();
    delete m_defaultEncoder.load();
    const auto is_own = [this](const auto& entry) { return entry.second == this; };
    std::erase_if(s_byName, is_own);
    std::erase_if(s_byAlias, is_own);

    // A derived constructor that throws must not end the process.
    if (std::uncaught_exceptions() == 0)
        throw std::logic_error("Charset::~Charset");
}

// --- Look-up --------------------------------------------------------------------------

Charset* Charset::forName(const NameView& name)
{
    if (const auto it = s_byName.find(name); it != s_byName.end())
        return it->second;
    const auto it = s_byAlias.find(name);
    return it != s_byAlias.end() ? it->second : nullptr;
}

bool Charset::isSupported(const ustring& name)
{
    return s_byName.contains(name) || s_byAlias.contains(name);
}

std::vector<Charset*> Charset::availableCharsets()
{
    std::vector<Charset*> charsets;
    charsets.reserve(s_byName.size());
    for (const auto& entry : s_byName)
        charsets.push_back(entry.second);
    return charsets;
}

Charset* Charset::defaultCharset() noexcept
{
    return s_defaultCharset;
}

}  // namespace kiv
