// Any text as the name of a charset: look-ups must find what a plain model of the
// matching rules finds, however a name is spelt.
//
// The first byte of the input says what the rest is: bytes, units, or changes to the
// spelling of a registered name.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include <kiv/charset.h>

#include "fuzz_support.h"
#include "platform/code_page.h"

namespace {

using namespace kivfuzz;
using kiv::Charset;
using kiv::ustring;

bool is_digit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// Letters in upper case and digits. Zeros in front of a number do not count, but of
// those that end a name one does.
std::string key_of(const ustring& name)
{
    std::string key;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto c = static_cast<char16_t>(name[i]);
        if (c == u'0' && (i == 0 || !is_digit(static_cast<char16_t>(name[i - 1])))) {
            const std::size_t last = name.find_first_not_of(u'0', i);
            if (last == name.npos)
                return key + '0';
            i = last - 1;
        } else if (is_digit(c) || (c >= u'A' && c <= u'Z')) {
            key += static_cast<char>(c);
        } else if (c >= u'a' && c <= u'z') {
            key += static_cast<char>(c - u'a' + u'A');
        }
    }
    return key;
}

struct Registry {
    std::map<std::string, Charset*> names, aliases;  // null: of more than one
    std::vector<ustring> spellings;

    Registry()
    {
        for (Charset* charset : Charset::availableCharsets()) {
            require(names.emplace(key_of(charset->name()), charset).second);
            spellings.push_back(charset->name());
            for (const auto& alias : charset->aliases()) {
                const auto [place, fresh] = aliases.emplace(key_of(alias), charset);
                if (!fresh && place->second != charset)
                    place->second = nullptr;
                spellings.push_back(alias);
            }
        }
    }
};

void check(const Registry& registry, const ustring& name)
{
    const std::string key = key_of(name);
    const auto named = registry.names.find(key);
    const auto alias = registry.aliases.find(key);
    const auto units = exact_copy(name, false);
    const Charset::NameView view(units.get(), name.size());
    Charset* const want = named != registry.names.end()     ? named->second
                          : alias != registry.aliases.end() ? alias->second
                                                            : nullptr;
    require(Charset::forName(view) == want);
    require(Charset::isSupported(name) ==
            (named != registry.names.end() || alias != registry.aliases.end()));
}

// A registered name with punctuation, zeros and other case put in.
ustring respelt(ustring name, Bytes& bytes)
{
    static constexpr char16_t BETWEEN[] = u"-_ .:+0\u00E9\uFF10\U0001F600";
    while (bytes.left() > 0) {
        const std::size_t at = bytes.below(static_cast<unsigned>(name.size()) + 1);
        const unsigned change = bytes.below(14);
        if (change < std::size(BETWEEN))
            name.insert(name.begin() + static_cast<std::ptrdiff_t>(at), BETWEEN[change]);
        else if (at < name.size())
            name[at] = static_cast<char16_t>(static_cast<char16_t>(name[at]) ^ 0x20);
    }
    return name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Registry registry;
    if (size == 0)
        return 0;
    Bytes bytes(data, size);
    switch (bytes.below(3)) {
    case 0: {
        const std::string text = bytes.rest();
        check(registry, ustring(text.begin(), text.end()));
        kiv::platform::code_page_of(text);
        break;
    }
    case 1:
        check(registry, units_of(bytes.rest()));
        break;
    default:
        const auto count = static_cast<unsigned>(registry.spellings.size());
        check(registry, respelt(registry.spellings[bytes.below(count)], bytes));
    }
    return 0;
}
