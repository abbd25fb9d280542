// The charsets with tables against the model, with the plain loops and all
// kernels. Names that begin with Slow are exhaustive sweeps.

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "charset/charset_model.h"
#include "charset/table_kernels.h"
#include "charset/unicode_model.h"
#include "platform/cpu.h"
#include "support/coder_check.h"
#include "support/guarded_array.h"

namespace {

using kiv::Charset;
using kiv::CoderResult;
using model::CharsetModel;
using model::Form;
using support::DecodeItem;
using support::DecodeItems;
using support::EncodeItem;
using support::EncodeItems;
using Random = std::mt19937;

// --- The check --------------------------------------------------------------------

template <class Item>
bool dropped(const Item& item)
{
    if constexpr (requires { item.dropped; })
        return item.dropped;
    return false;
}

// Converts the items' input, going on behind every fault, up to a full output. The
// loops do not know whether more may follow, so they meet both edges of memory.
template <class Item, class Coder>
void check(Coder& coder, const std::vector<Item>& items, std::size_t room,
           bool end_of_input = true)
{
    constexpr bool DECODES = std::is_same_v<Item, DecodeItem>;
    using In = std::conditional_t<DECODES, unsigned char, kiv::char16>;
    using Out = std::conditional_t<DECODES, kiv::char16, unsigned char>;
    decltype(Item::in) input;
    for (const Item& item : items)
        input += item.in;
    static support::GuardedArray<In> in_memory;
    static support::GuardedArray<Out> out_memory;
    const support::Edge edge = end_of_input ? support::Edge::END : support::Edge::START;
    In* const in_array = in_memory.make(input.size(), edge);
    Out* const out_array = out_memory.make(room, edge);
    std::copy(input.begin(), input.end(), in_array);
    kiv::Buffer<const In> in(in_array, input.size());
    kiv::Buffer<Out> out(out_array, room);
    coder.reset();

    std::size_t read = 0;
    std::size_t written = 0;
    for (auto item = items.begin();; ++item) {
        CoderResult result;
        if constexpr (DECODES)
            result = coder.decode(in, out, end_of_input);
        else
            result = coder.encode(in, out, end_of_input);
        const bool untouched =
            out_memory.untouched(out_array + out.position(), out.remaining());
        CoderResult stop;
        bool same = true;
        for (; item != items.end(); ++item) {
            if (!dropped(*item) && item->out.empty())
                stop = item->fault;  // none if it is unfinished
            else if (item->out.size() > room - written)
                stop = CoderResult::overflow();
            if (stop != CoderResult() || (item->out.empty() && !dropped(*item)))
                break;
            for (const auto unit : item->out)
                same = same && out_array[written++] == static_cast<Out>(unit);
            read += item->in.size();
        }
        if (!same || !untouched || result != stop || in.position() != read ||
            out.position() != written) {
            ADD_FAILURE() << "result " << result.kind() << ", read " << in.position()
                          << ", written " << out.position() << ", expected "
                          << stop.kind() << ' ' << read << ' ' << written
                          << (same ? "" : ", wrong text")
                          << (untouched ? "" : ", output touched behind its position")
                          << ", room " << room << ": " << testing::PrintToString(input);
            return;
        }
        if (!stop.isError())
            return;
        read += item->in.size();
        in.position(read);
    }
}

// The sets that the machine has, the best one last.
std::vector<const kiv::TableKernels*> kernel_sets()
{
    std::vector<const kiv::TableKernels*> sets = {&kiv::portable_table_kernels};
#if defined(__x86_64__)
    if (kiv::platform::cpu_has_avx2())
        sets.push_back(&kiv::avx2_table_kernels);
    if (kiv::platform::cpu_has_avx512_vbmi2())
        sets.push_back(&kiv::avx512_table_kernels);
#endif
    return sets;
}

TEST(TableKernels, MachineChoosesUnlessSwitched)
{
    const auto sets = kernel_sets();
    for (const kiv::TableKernels* set : sets) {
        EXPECT_EQ(&kiv::table_kernels(), sets.back());
        kiv::use_table_kernels(set);
        EXPECT_EQ(&kiv::table_kernels(), set);
        kiv::use_table_kernels(nullptr);
    }
    EXPECT_EQ(&kiv::table_kernels(), sets.back());
}

class TableCharset : public testing::TestWithParam<const char*> {
protected:
    TableCharset()
    {
#if defined(__x86_64__)
        if (model.form() != Form::SINGLE_BYTE)  // for which AVX2 has no kernels
            std::erase(kernels, &kiv::avx2_table_kernels);
#endif
    }

    // Calls f with the plain loops and with all kernels that there are, up to the
    // first failure.
    template <class F>
    void with_all_kernels(F f) const
    {
        struct Use {
            explicit Use(const kiv::TableKernels* set) { kiv::use_table_kernels(set); }
            ~Use() { kiv::use_table_kernels(nullptr); }
        };
        for (std::size_t i = 0; i < kernels.size() && !HasFailure(); ++i) {
            const Use use(kernels[i]);
            SCOPED_TRACE("kernels " + std::to_string(i));
            f();
        }
    }

    // Whether more may follow or not.
    void decode(const std::string& bytes, std::size_t room = AMPLE) const
    {
        for (const bool end : {false, true})
            check(*decoder, model.decode(bytes, end), room, end);
    }
    void encode(const std::u16string& units, std::size_t room = AMPLE) const
    {
        for (const bool end : {false, true})
            check(*encoder, model.encode(units, end), room, end);
    }

    static constexpr std::size_t AMPLE = 2000;
    const std::string name = GetParam();
    const Charset* const charset =
        Charset::forName(kiv::ustring(name.begin(), name.end()));
    const CharsetModel model{name};
    const std::unique_ptr<kiv::CharsetDecoder> decoder = charset->newDecoder();
    const std::unique_ptr<kiv::CharsetEncoder> encoder = charset->newEncoder();
    std::vector<const kiv::TableKernels*> kernels = kernel_sets();
};

// --- Sweeps -----------------------------------------------------------------------

TEST_P(TableCharset, Parameters)
{
    const Form form = model.form();
    const bool single = form == Form::SINGLE_BYTE;
    const bool gb18030 = form == Form::GB18030;
    EXPECT_EQ(decoder->averageCharsPerByte(), single || gb18030 ? 1.0F : 0.5F);
    EXPECT_EQ(decoder->maxCharsPerByte(), 1u);
    EXPECT_EQ(decoder->replacement(), kiv::ustring(1, u'\uFFFD'));
    EXPECT_EQ(encoder->averageBytesPerChar(), single ? 1.0F : 2.0F);
    EXPECT_EQ(encoder->maxBytesPerChar(), single ? 1u : gb18030 ? 4u : 2u);
    EXPECT_EQ(encoder->replacement(), "?");
}

TEST_P(TableCharset, SlowEveryByteAndPair)
{
    with_all_kernels([&] {
        for (unsigned first = 0; first < 0x100 && !HasFailure(); ++first) {
            std::string bytes(1, static_cast<char>(first));
            decode(bytes, 1);
            for (unsigned second = 0; second < 0x100; ++second)
                decode(bytes + static_cast<char>(second), 2);
        }
    });
}

TEST_P(TableCharset, SlowEveryCodePointAndSurrogate)
{
    for (char32_t first = 0; first < 0x110000 && !HasFailure(); first += 0x100) {
        std::u16string units;
        for (char32_t cp = first; cp < first + 0x100; ++cp)
            units += model::utf16(cp);
        const EncodeItems items = model.encode(units);
        with_all_kernels([&] { check(*encoder, items, AMPLE); });
    }
    for (const char16_t high : u"\xD800\xD83D\xDBFF")
        encode({high});  // unfinished if more may follow
}

// In one long text; characters that only decode or only encode left out.
TEST_P(TableCharset, EveryCharacterRoundTrips)
{
    kiv::ustring units;
    for (const auto& [sequence, cp] : model.characters())
        if (model.encodings().count(cp) != 0 && model.encodings().at(cp) == sequence)
            for (const char16_t unit : model::utf16(cp))
                units += unit;
    with_all_kernels(
        [&] { EXPECT_TRUE(charset->decode(charset->encode(units)) == units); });
}

class Gb18030 : public TableCharset {};

TEST_P(Gb18030, SlowEveryFourByteForm)
{
    with_all_kernels([&] {
        std::string bytes(4, '0');
        for (unsigned first = 0x81; first <= 0xFE && !HasFailure(); ++first)
            for (bytes[0] = static_cast<char>(first), bytes[1] = '0'; bytes[1] <= '9';
                 ++bytes[1]) {
                for (unsigned third = 0; third < 0x100; ++third) {
                    bytes[2] = static_cast<char>(third);
                    decode(bytes.substr(0, 3), 2);
                    if (third < 0x81 || third == 0xFF)
                        continue;
                    for (bytes[3] = '0'; bytes[3] <= '9'; ++bytes[3])
                        check(*decoder, model.decode(bytes), 2);
                }
                bytes[2] = static_cast<char>(0x81 + first % 0x7E);
                for (unsigned fourth = 0; fourth < 0x100; ++fourth)
                    decode(bytes.substr(0, 3) + static_cast<char>(fourth), 4);
            }
    });
}

// --- Texts ------------------------------------------------------------------------

// Pieces of text, in groups: by the sizes of input and output, ASCII apart, and by
// the fault.
template <class Item>
struct Pieces {
    using Text = decltype(Item::in);
    using Groups =
        std::map<std::tuple<std::size_t, std::size_t, bool>, std::vector<Text>>;

    void add(const Text& text, const std::vector<Item>& items)
    {
        const Item& item = items.front();
        const bool ascii = text[0] >= 0 && text[0] < 0x80;
        if (item.out.empty())
            faulty[{item.in.size(), item.fault.kind(), dropped(item)}].push_back(text);
        else if (items.size() == 1)
            good[{item.in.size(), item.out.size(), ascii}].push_back(text);
    }

    Groups good;
    Groups faulty;
};

Pieces<DecodeItem> pieces_to_decode(const CharsetModel& model)
{
    Pieces<DecodeItem> pieces;
    const auto add = [&](const std::string& text) {
        pieces.add(text, model.decode(text));
    };
    for (model::Sequence sequence = 0; sequence < 0x10000; ++sequence)
        add(model::bytes_of(sequence));
    for (const auto& [sequence, cp] : model.characters())
        add(model::bytes_of(sequence));
    if (model.form() == Form::GB18030)
        for (const model::Sequence sequence :
             {0x90308130, 0x9439FC36, 0xE3329A35, 0x8431A530, 0xFE39FE39, 0x813020U,
              0x813081U, 0x813081FF})
            add(model::bytes_of(sequence));
    return pieces;
}

Pieces<EncodeItem> pieces_to_encode(const CharsetModel& model)
{
    Pieces<EncodeItem> pieces;
    const auto add = [&](char32_t cp) {
        pieces.add(model::utf16(cp), model.encode(model::utf16(cp)));
    };
    for (const auto& [cp, sequence] : model.encodings())
        add(cp);
    for (char32_t cp = 0x80; cp < 0x110000; cp += 37)
        if (cp > 0xFFFF || model.encodings().count(cp) == 0)
            add(cp);
    add(U'\u200B');
    return pieces;
}

// That many pieces, in runs out of one group.
template <class Item>
decltype(Item::in) mixed_text(const Pieces<Item>& pieces, bool faults, std::size_t size,
                              unsigned longest_run, Random& random)
{
    decltype(Item::in) text;
    while (size != 0) {
        const bool fault = faults && !pieces.faulty.empty() && random() % 4 == 0;
        const auto& groups = fault ? pieces.faulty : pieces.good;
        const auto chosen = static_cast<std::ptrdiff_t>(random() % groups.size());
        const auto& group = std::next(groups.begin(), chosen)->second;
        const std::size_t run = fault ? 1 : 1 + random() % longest_run;
        for (std::size_t n = std::min(run, size); n != 0; --n, --size)
            text += group[random() % group.size()];
    }
    return text;
}

// Every place for a fault in text that is otherwise good, every size of input and of
// output.
template <class Item, class Convert>
void sweep_stops(const Pieces<Item>& pieces, Convert convert)
{
    Random random(1);
    for (const unsigned longest_run : {1U, 40U}) {
        const auto mix = [&](std::size_t size, bool faults) {
            return mixed_text(pieces, faults, size, longest_run, random);
        };
        for (std::size_t n = 0; n <= 200 && !testing::Test::HasFailure(); ++n) {
            const auto before = mix(n, false);
            for (const auto& [key, group] : pieces.faulty)
                convert(before + group[random() % group.size()] + mix(70, false));
            const auto text = mix(200, n % 2 == 1);
            convert(text.substr(0, n));
            convert(text, n);
        }
    }
}

// Long ones in one step, short ones in all ways.
template <class Item, class Convert, class CheckAll>
void mix_texts(const Pieces<Item>& pieces, Convert convert, CheckAll check_all)
{
    constexpr std::size_t ROOM = 20000;  // for four bytes of every unit
    Random random(2);
    for (const unsigned longest_run : {1U, 4U, 40U})
        for (const bool faults : {false, true}) {
            convert(mixed_text(pieces, faults, 5000, longest_run, random), ROOM);
            check_all(mixed_text(pieces, faults, 12, longest_run, random));
        }
}

TEST_P(TableCharset, DecodesTexts)
{
    const auto pieces = pieces_to_decode(model);
    const auto convert = [this](auto... text_and_room) { decode(text_and_room...); };
    with_all_kernels([&] {
        sweep_stops(pieces, convert);
        mix_texts(pieces, convert, [&](const std::string& bytes) {
            support::check_decoder(charset, model.decode(bytes));
        });
    });
}

TEST_P(TableCharset, EncodesTexts)
{
    const auto pieces = pieces_to_encode(model);
    const auto convert = [this](auto... text_and_room) { encode(text_and_room...); };
    with_all_kernels([&] {
        sweep_stops(pieces, convert);
        mix_texts(pieces, convert, [&](const std::u16string& units) {
            support::check_encoder(charset, model.encode(units));
        });
    });
}

std::string test_name(const testing::TestParamInfo<const char*>& name)
{
    std::string identifier = name.param;
    std::replace(identifier.begin(), identifier.end(), '-', '_');
    return identifier;
}

INSTANTIATE_TEST_SUITE_P(All, TableCharset, testing::ValuesIn(model::NAMES), test_name);
INSTANTIATE_TEST_SUITE_P(All, Gb18030, testing::Values("GB18030"), test_name);

}  // namespace
