// The tables of the charsets, entry for entry, against the model, in the layouts that
// the headers of the tables explain.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <type_traits>
#include <vector>

#include "charset/charset_model.h"
#include "charset/dbcs_traits.h"
#include "charset/tables/dbcs_tables.h"
#include "charset/tables/gb18030_tables.h"
#include "charset/tables/sbcs_tables.h"

namespace {

using namespace kiv::tables;
using model::CharsetModel;
using Numbers = std::vector<std::int64_t>;

template <class Values>
std::int64_t value(const Values& values, std::uint32_t key, std::int64_t none)
{
    const auto found = values.find(key);
    return found == values.end() ? none : found->second;
}

// Blocks of 2^bits keys. Each is in the data, in order, unless no key has a value or
// all values are their keys plus one of the offsets times the sign. Without an index,
// the data is an entry for each key.
template <class Values, class Entry>
void expect_blocks(const Values& values, std::uint32_t last, unsigned bits,
                   std::int64_t none, const std::uint16_t* index, const Entry* data,
                   const Numbers& offsets = {}, int sign = 1)
{
    std::int64_t size = 0;
    for (std::uint32_t first = 0, end = 0; first <= last; first = end) {
        end = index == nullptr ? last + 1 : first + (1U << bits);
        std::set<std::int64_t> apart;
        for (std::uint32_t key = first; key < end; ++key)
            apart.insert(sign * (value(values, key, none) - key));
        const auto same = std::find(offsets.begin(), offsets.end(), *apart.begin());
        std::int64_t entry = size;
        if (values.lower_bound(first) == values.lower_bound(end))
            entry = 0xFFFF;
        else if (apart.size() == 1 && same != offsets.end())
            entry = 0xFFFE - (same - offsets.begin());
        ASSERT_EQ(index == nullptr ? size : index[first >> bits], entry) << first;
        for (std::uint32_t key = first; entry == size && key < end; ++key)
            ASSERT_EQ(*data++, value(values, key, none)) << key;
        size += entry == size ? end - first : 0;
    }
    if (index != nullptr && !std::is_same_v<Entry, std::int16_t>) {  // for wide loads
        EXPECT_EQ(index[(last >> bits) + 1], 0);
        EXPECT_EQ(*data, Entry());
    }
}

TEST(TableLayouts, SingleByte)
{
    // In the order of the names.
    static constexpr const SbcsTables* all[] = {
        &iso_8859_2,  &iso_8859_3,  &iso_8859_4,  &iso_8859_5,  &iso_8859_6,
        &iso_8859_7,  &iso_8859_8,  &iso_8859_9,  &iso_8859_10, &iso_8859_11,
        &iso_8859_13, &iso_8859_14, &iso_8859_15, &iso_8859_16, &micsft_1250,
        &micsft_1251, &micsft_1252, &micsft_1253, &micsft_1254, &micsft_1255,
        &micsft_1256, &micsft_1257, &micsft_1258, &micsft_874,  &koi8_r,
        &koi8_u};
    static constexpr unsigned block_bits[] = {0, 0, 0, 7, 6, 6, 6, 0, 7, 6, 7, 7, 7,
                                              6, 6, 6, 5, 5, 5, 5, 5, 6, 5, 6, 7, 5};
    for (std::size_t i = 0; i < std::size(all); ++i) {
        const CharsetModel model(model::NAMES[i]);
        SCOPED_TRACE(model::NAMES[i]);
        const SbcsTables& tables = *all[i];
        expect_blocks(model.characters(), 0xFF, 0, 0xDFFF, nullptr, tables.decode);
        const auto& bytes = model.encodings();
        ASSERT_EQ(tables.highest, bytes.rbegin()->first);
        ASSERT_EQ(tables.index == nullptr, block_bits[i] == 0);
        expect_blocks(bytes, tables.highest, block_bits[i], -1, tables.index,
                      tables.encode);
        unsigned slots = 0;
        for (unsigned unit = 0; unit < PAGED_UNITS; ++unit) {
            const unsigned slot = tables.pages[unit / PAGE_SIZE];
            if (unit % PAGE_SIZE == 0) {
                const bool mapped =
                    bytes.lower_bound(unit) != bytes.lower_bound(unit + PAGE_SIZE);
                ASSERT_EQ(slot, unit > 0x7F && mapped ? ++slots : 0) << unit;
            }
            EXPECT_EQ(tables.pages[(1 + slot) * PAGE_SIZE + unit % PAGE_SIZE],
                      unit > 0x7F ? value(bytes, unit, 0) : 0)
                << unit;
        }
    }
}

template <class Traits, class Tables>
void expect_double_byte(const char* name, const Tables& tables)
{
    SCOPED_TRACE(name);
    const CharsetModel model(name);
    std::map<std::uint32_t, char32_t> characters;
    for (const auto& [code, cp] : model.characters())
        if (code >= 0x80)
            characters[code < 0x100 ? code : (code / 256 - 0x80) * 192 + code % 256] = cp;
    auto encodings = model.encodings();
    encodings.erase(encodings.begin(), encodings.lower_bound(0x80));
    const auto lead = Traits::LEAD.has_upper() ? Traits::LEAD.upper : Traits::LEAD.lower;
    expect_blocks(characters, (lead.last - 0x80U) * 192 + Traits::TRAIL.upper.last,
                  Traits::DECODE_BLOCK_BITS, 0xDFFF, tables.decode_index,
                  tables.decode_data);
    EXPECT_EQ(encodings.rbegin()->first, Traits::HIGHEST);
    expect_blocks(encodings, Traits::HIGHEST, Traits::ENCODE_BLOCK_BITS, 0xFFFF,
                  tables.encode_index, tables.encode_data);
}

TEST(TableLayouts, DoubleByte)
{
    expect_double_byte<kiv::Micsft_932_Traits>("Windows-31J", micsft_932);
    expect_double_byte<kiv::Shift_JIS_Traits>("Shift_JIS", shift_jis);
    expect_double_byte<kiv::Micsft_936_Traits>("x-mswin-936", micsft_936);
    expect_double_byte<kiv::GBK_Traits>("GBK", gbk);
    expect_double_byte<kiv::Micsft_949_Traits>("x-windows-949", micsft_949);
    expect_double_byte<kiv::Micsft_950_Traits>("x-windows-950", micsft_950);
    expect_double_byte<kiv::Big5_Traits>("Big5", big5);
    expect_double_byte<kiv::Big5_HKSCS_Traits>("Big5-HKSCS", big5_hkscs);
}

TEST(TableLayouts, Gb18030)
{
    const CharsetModel model("GB18030");
    std::map<std::uint32_t, std::uint32_t> units, keys;
    for (const auto& [code, unit] : model.characters()) {
        const std::uint32_t front = (code >> 24) * 10 + (code >> 16) % 256;
        const std::uint32_t back = code / 256 % 256 * 10 + code % 256;
        const std::uint32_t zero = 0x81 * 10 + '0';  // front and back of 81308130
        std::uint32_t key = 24322 + (front - zero) * 1260 + back - zero;
        if (code <= 0xFFFF)
            key = (code / 256 - 0x81) * 191 + code % 256 - 0x40 + 256;
        if (unit >= 0x80)
            units[key] = unit, keys[unit] = key;
    }
    const Numbers offsets = {24036, 23746, 23444, 23435, 23433, 23428, 23422,
                             23411, 2495,  -1621, -1642, -1794, 147786};
    EXPECT_EQ(Numbers(std::begin(gb18030_offsets), std::end(gb18030_offsets)), offsets);
    const Numbers in_index(offsets.begin(), offsets.begin() + 11);
    expect_blocks(units, 63743, 6, 0xDFFF, gb18030_decode_index, gb18030_decode_data,
                  in_index, -1);
    expect_blocks(keys, 0xFFFF, 6, 0, gb18030_encode_index, gb18030_encode_data,
                  in_index);
}

}  // namespace
