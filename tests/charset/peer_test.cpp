// The charsets with tables against other converters: ICU's, or glibc's where they are
// nearer. Editions differ in places; peer_differences.txt says where and why, and
// these must be all.

#include <gtest/gtest.h>

#if defined(KIV_TEST_ICU) && defined(__linux__)

    #include <iconv.h>
    #include <kiv/charset.h>
    #include <unicode/ucnv.h>

    #include <fstream>
    #include <functional>
    #include <map>
    #include <memory>
    #include <sstream>
    #include <stdexcept>
    #include <string>
    #include <vector>

    #include "charset/charset_model.h"
    #include "charset/unicode_model.h"

namespace {

// --- Converters -------------------------------------------------------------------

// Converts one sequence or character; empty if there is none.
struct Converter {
    std::function<std::u16string(const std::string&)> decode;
    std::function<std::string(const std::u16string&)> encode;
};

// U+FFFD stands for a fault, as "?" does: it has one sequence, of four bytes.
Converter own(const kiv::Charset* charset)
{
    return {[=](const std::string& bytes) {
                std::u16string text;
                for (const kiv::char16 unit : charset->decode(bytes))
                    text += static_cast<char16_t>(unit);
                return text.find(u'\uFFFD') == text.npos ? text : std::u16string();
            },
            [=](const std::u16string& text) {
                const std::string bytes =
                    charset->encode(kiv::ustring(text.begin(), text.end()));
                return bytes != "?" || text == u"?" ? bytes : std::string();
            }};
}

// call(from, to) writes to `to` in either direction and returns the size, 0 for a fault.
template <class Call>
Converter both_ways(Call call)
{
    const auto convert = [=](const auto& from, auto to) {
        to.resize(16);
        to.resize(static_cast<std::size_t>(call(from, to)));
        return to;
    };
    return {[=](const std::string& from) { return convert(from, std::u16string()); },
            [=](const std::u16string& from) { return convert(from, std::string()); }};
}

// Without mappings that are only alike.
Converter icu(const std::string& name)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::shared_ptr<UConverter> owner(ucnv_open(name.c_str(), &error), ucnv_close);
    UConverter* const c = owner.get();
    ucnv_setToUCallBack(c, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(c, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &error);
    if (U_FAILURE(error))
        throw std::runtime_error("no converter " + name);
    ucnv_setFallback(c, false);
    return both_ways([c, owner](const auto& from, auto& to) {
        UErrorCode failure = U_ZERO_ERROR;
        const auto n = static_cast<std::int32_t>(from.size());
        std::int32_t size = 0;
        if constexpr (sizeof(from[0]) == 1)
            size = ucnv_toUChars(c, to.data(), 16, from.data(), n, &failure);
        else
            size = ucnv_fromUChars(c, to.data(), 16, from.data(), n, &failure);
        return U_FAILURE(failure) ? 0 : size;
    });
}

Converter glibc(const std::string& name)
{
    const auto open = [&](const std::string& to, const std::string& from) {
        const iconv_t state = iconv_open(to.c_str(), from.c_str());
        if (state == iconv_t(-1))
            throw std::runtime_error("no converter " + name);
        return std::shared_ptr<void>(state, iconv_close);
    };
    const auto decoder = open("UTF-16LE", name);
    const auto encoder = open(name, "UTF-16LE");
    return both_ways([=](auto from, auto& to) {
        const iconv_t state = (sizeof(from[0]) == 1 ? decoder : encoder).get();
        auto* in = reinterpret_cast<char*>(from.data());
        auto* out = reinterpret_cast<char*>(to.data());
        std::size_t in_bytes = from.size() * sizeof(from[0]);
        std::size_t room = to.size() * sizeof(to[0]);
        iconv(state, nullptr, nullptr, nullptr, nullptr);
        const bool done = iconv(state, &in, &in_bytes, &out, &room) == 0 &&
                          iconv(state, nullptr, nullptr, &out, &room) == 0;
        return done ? to.size() - room / sizeof(to[0]) : 0;
    });
}

// --- Differences ------------------------------------------------------------------

constexpr std::uint32_t NONE = 0xFFFFFFFF;

std::uint32_t number_of(const std::string& bytes)
{
    return bytes.empty() ? NONE : model::sequence_of(bytes);
}

std::uint32_t number_of(const std::u16string& text)
{
    const bool one = text.size() == 1 || (text.size() == 2 && model::is_high(text[0]));
    return one ? model::code_point(text) : NONE;
}

// Writes lines "what first..last: own values, peer's values", the values in the order
// of what is converted.
class Differences {
public:
    void compare(const char* what, std::uint32_t key, std::uint32_t own,
                 std::uint32_t peer)
    {
        if (own == peer)
            return;
        const bool follows = !m_own.empty() && key == m_key + m_own.size();
        if (!follows || !(continues(m_own, own) && continues(m_peer, peer)))
            ++m_parts;
        if (!follows || m_parts > 10) {
            finish();
            m_what = what, m_key = key, m_parts = 1;
        }
        m_own.push_back(own);
        m_peer.push_back(peer);
    }

    std::string finish()
    {
        if (!m_own.empty())
            m_lines += m_what + ' ' + hex(m_key) +
                       (m_own.size() == 1 ? "" : ".." + hex(m_key + m_own.size() - 1)) +
                       ':' + list(m_own) + ',' + list(m_peer) + '\n';
        m_own.clear();
        m_peer.clear();
        return m_lines;
    }

private:
    using Values = std::vector<std::size_t>;

    static bool continues(const Values& values, std::size_t value)
    {
        return value == (values.back() == NONE ? NONE : values.back() + 1);
    }
    static std::string hex(std::size_t number)
    {
        char text[20];
        std::snprintf(text, sizeof text, number > 0xFF ? "%04zX" : "%02zX", number);
        return number == NONE ? "none" : text;
    }
    static std::string list(const Values& values)
    {
        std::string text;
        for (std::size_t i = 0, first = 0; i < values.size(); ++i)
            if (i + 1 == values.size() || !continues({values[i]}, values[i + 1])) {
                const bool range = i != first && values[i] != NONE;
                text += ' ' + hex(values[first]) + (range ? ".." + hex(values[i]) : "");
                first = i + 1;
            }
        return text;
    }

    std::string m_lines;
    std::string m_what;
    std::size_t m_key = 0;
    unsigned m_parts = 0;
    Values m_own, m_peer;
};

// Of a four-byte form.
bool is_half(model::Sequence pair)
{
    const model::Sequence lead = pair >> 8;
    const model::Sequence digit = pair & 0xFF;
    return lead >= 0x81 && lead <= 0xFE && digit >= 0x30 && digit <= 0x39;
}

// With `all`, every four-byte form of GB18030 too and every code point.
std::string differences(const Converter& own, const Converter& peer, bool all)
{
    Differences list;
    const auto decode = [&](model::Sequence sequence) {
        const std::string bytes = model::bytes_of(sequence);
        list.compare("decode", sequence, number_of(own.decode(bytes)),
                     number_of(peer.decode(bytes)));
    };
    for (model::Sequence sequence = 0; sequence < 0x100; ++sequence)
        decode(sequence);
    for (model::Sequence sequence = 0x8000; sequence < 0x10000; ++sequence)
        decode(sequence);
    for (model::Sequence pair = 0x8130; all && pair <= 0xFE39; ++pair)
        for (model::Sequence second = 0x8130; is_half(pair) && second <= 0xFE39; ++second)
            if (is_half(second))
                decode(pair << 16 | second);
    for (char32_t cp = 0; cp < (all ? 0x110000U : 0x30000U); ++cp) {
        const std::u16string text = model::utf16(cp);
        if (!model::is_high(cp) && !model::is_low(cp))
            list.compare("encode", cp, number_of(own.encode(text)),
                         number_of(peer.encode(text)));
    }
    return list.finish();
}

// Older editions of the character set had private-use characters: as code page 950 has
// them, at the codes that the edition of today assigns.
Converter with_older_editions(const Converter& hkscs, const Converter& cp950)
{
    return {hkscs.decode, [=](const std::u16string& text) {
                std::string bytes = hkscs.encode(text);
                if (bytes.empty() && text[0] >= 0xE000 && text[0] <= 0xF8FF)
                    bytes = cp950.encode(text);
                return hkscs.decode(bytes).empty() ? std::string() : bytes;
            }};
}

Converter peer_of(const std::string& charset, const std::string& peer)
{
    std::istringstream words(peer);
    std::string library, name;
    words >> library >> name;
    const Converter converter = library == "ICU" ? icu(name) : glibc(name);
    if (charset == "Big5-HKSCS")
        return with_older_editions(converter, icu("windows-950-2000"));
    return converter;
}

// The file has "[charset] library converter", then the differences.
TEST(Peers, SlowDifferencesAreThoseInTheFile)
{
    std::ifstream file(KIV_DATA_DIR "/../tests/charset/peer_differences.txt");
    std::map<std::string, std::string> peers, expected;
    std::string charset;
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '[') {
            charset = line.substr(1, line.find(']') - 1);
            peers[charset] = line.substr(line.find(']') + 2);
        } else if (!line.empty() && line[0] != '#') {
            expected[charset] += line + '\n';
        }
    }
    EXPECT_EQ(peers.size(), 35U);
    for (const auto& [name, peer] : peers) {
        SCOPED_TRACE(name);
        const auto* found = kiv::Charset::forName(kiv::ustring(name.begin(), name.end()));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(differences(own(found), peer_of(name, peer), name == "GB18030"),
                  expected[name]);
    }
}

}  // namespace

#else

TEST(Peers, SlowDifferencesAreThoseInTheFile)
{
    GTEST_SKIP() << "built without ICU's converters";
}

#endif
