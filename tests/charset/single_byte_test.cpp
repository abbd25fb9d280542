// US-ASCII and ISO-8859-1.

#include <string>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "support/coder_check.h"

namespace {

using kiv::Charset;
using kiv::CoderResult;
using support::DecodeItems;
using support::EncodeItems;

struct SingleByte {
    const Charset* charset;
    unsigned mapped;  // bytes and units below this map to each other
};

const SingleByte CHARSETS[] = {{Charset::US_ASCII, 0x80}, {Charset::ISO_8859_1, 0x100}};

TEST(SingleByte, EveryByte)
{
    for (const SingleByte& row : CHARSETS) {
        SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
        DecodeItems all;
        for (unsigned byte = 0; byte < 0x100; ++byte) {
            const std::string in(1, static_cast<char>(byte));
            if (byte < row.mapped)
                all.push_back({in, std::u16string(1, static_cast<char16_t>(byte))});
            else
                all.push_back({in, {}, CoderResult::malformed(1)});
        }
        support::check_decoder(row.charset, all, support::Effort::QUICK);
        for (unsigned byte = 0; byte < 0x100; byte += 17)
            support::check_decoder(row.charset, {all[byte], all['x'], all[255 - byte]});
    }
}

TEST(SingleByte, FaultsWhenEncoding)
{
    const auto u = [](std::uint32_t length) { return CoderResult::unmappable(length); };
    const auto m = [](std::uint32_t length) { return CoderResult::malformed(length); };
    const EncodeItems cases[] = {
        {{u"\u20AC", {}, u(1)}},
        {{u"a", "a"}, {u"\U0001F600", {}, u(2)}, {u"b", "b"}},
        {{u"\xD83D", {}, m(1)}, {u"a", "a"}},
        {{u"\xDE00", {}, m(1)}},
        {{u"ab", "ab"}, {u"\xD83D", {}, m(1)}},  // a high surrogate ends the input
        {{u"\u200B", {}, u(1), true}, {u"x", "x"}, {u"\u20AC", {}, u(1)}},
        {{u"\U000E0001", {}, u(2), true}, {u"y", "y"}},
        {{u"long run of ASCII text, ", "long run of ASCII text, "},
         {u"\uFFFD", {}, u(1)}},
    };
    for (const SingleByte& row : CHARSETS)
        for (const EncodeItems& items : cases) {
            SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
            support::check_encoder(row.charset, items);
        }
    support::check_encoder(Charset::ISO_8859_1,
                           {{u"\u00E9\u00FF\u0080", "\xE9\xFF\x80"},
                            {u"\u0100", {}, CoderResult::unmappable(1)}});
}

}  // namespace
