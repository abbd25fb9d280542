#include "support/coder_check.h"

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>
#include <kiv/character.h>

#include "support/guarded_array.h"

namespace support {

namespace {

using kiv::CoderResult;
using kiv::CodingErrorAction;

// --- What differs between the directions -----------------------------------------

struct Decoding {
    using Item = DecodeItem;
    using In = std::string;
    using Out = std::u16string;
    using InUnit = unsigned char;
    using OutUnit = kiv::char16;

    explicit Decoding(const kiv::Charset* charset) : coder(charset->newDecoder()) {}
    CoderResult step(kiv::Buffer<const InUnit>& in, kiv::Buffer<OutUnit>& out, bool end)
    {
        return coder->decode(in, out, end);
    }
    Out replacement() const { return u"\uFFFD"; }
    static bool dropped(const Item&) { return false; }
    static InUnit to_in(char c) { return static_cast<unsigned char>(c); }
    static char16_t to_out(OutUnit c) { return kiv::Char16::toCodeUnit(c); }
    // ASCII as this charset writes it.
    static Item ascii(const kiv::Charset* charset, char16_t c)
    {
        return {charset->encode(kiv::char16(c)), Out(1, c)};
    }

    std::unique_ptr<kiv::CharsetDecoder> coder;
};

struct Encoding {
    using Item = EncodeItem;
    using In = std::u16string;
    using Out = std::string;
    using InUnit = kiv::char16;
    using OutUnit = unsigned char;

    explicit Encoding(const kiv::Charset* charset) : coder(charset->newEncoder()) {}
    CoderResult step(kiv::Buffer<const InUnit>& in, kiv::Buffer<OutUnit>& out, bool end)
    {
        return coder->encode(in, out, end);
    }
    Out replacement() const { return coder->replacement(); }
    static bool dropped(const Item& item) { return item.dropped; }
    static InUnit to_in(char16_t c) { return c; }
    static char to_out(OutUnit c) { return static_cast<char>(c); }
    static Item ascii(const kiv::Charset* charset, char16_t c)
    {
        return {In(1, c), charset->encode(kiv::char16(c))};
    }

    std::unique_ptr<kiv::CharsetEncoder> coder;
};

// --- One conversion under fixed conditions ---------------------------------------

template <class Way>
class Run {
    using Item = typename Way::Item;
    using In = typename Way::In;
    using Out = typename Way::Out;

public:
    Run(const kiv::Charset* charset, CodingErrorAction action, std::size_t capacity)
        : m_way(charset), m_action(action), m_capacity(capacity)
    {
        m_way.coder->onMalformedInput(action);
        m_way.coder->onUnmappableCharacter(action);
    }

    // Feeds the items' input in pieces that end at the given cuts.
    void convert(const std::vector<Item>& items, std::vector<std::size_t> cuts)
    {
        In input;
        for (const Item& item : items) {
            input += item.in;
            expect(item);
        }
        cuts.push_back(input.size());
        std::size_t from = 0;
        In kept;  // the coder leaves the start of a sequence in its input
        for (const std::size_t cut : cuts) {
            kept += input.substr(from, cut - from);
            from = cut;
            kept.erase(0, feed(kept, cut == input.size()));
            if (testing::Test::HasFailure())
                return;
        }
        EXPECT_TRUE(kept.empty());
        EXPECT_EQ(m_output, m_expected);
        EXPECT_EQ(m_reported, m_faults);
        kiv::Buffer<typename Way::OutUnit> none(nullptr, 0);
        EXPECT_TRUE(m_way.coder->flush(none).isUnderflow());
    }

private:
    void expect(const Item& item)
    {
        m_expected += item.out;
        if (!item.fault.isError() || Way::dropped(item))
            return;
        if (m_action == CodingErrorAction::REPLACE)
            m_expected += m_way.replacement();
        if (m_action == CodingErrorAction::REPORT)
            m_faults.emplace_back(item.fault.kind(), item.fault.length());
    }

    // One piece of input, in an array of its own; returns what was consumed.
    std::size_t feed(const In& piece, bool last)
    {
        static GuardedArray<typename Way::InUnit> memory;
        auto* const array = memory.make(piece.size(), m_edge);
        std::transform(piece.begin(), piece.end(), array, Way::to_in);
        kiv::Buffer<const typename Way::InUnit> in(array, piece.size());
        for (;;) {
            const std::size_t before = in.position();
            const CoderResult result = step(in, last);
            if (testing::Test::HasFailure())
                return in.position();
            if (result.isUnderflow())
                return in.position();
            if (result.isError()) {
                m_reported.emplace_back(result.kind(), result.length());
                if (result.length() > in.remaining()) {
                    ADD_FAILURE() << "a fault longer than the input";
                    return in.position();
                }
                in.position(in.position() + result.length());
            } else if (in.position() == before && m_last_written == 0) {
                // No room for even one result; the largest is six bytes.
                ++m_capacity;
                EXPECT_LE(m_capacity, 6u) << "OVERFLOW although there was room";
            }
        }
    }

    CoderResult step(kiv::Buffer<const typename Way::InUnit>& in, bool last)
    {
        static GuardedArray<typename Way::OutUnit> memory;
        auto* const array = memory.make(m_capacity, m_edge);
        kiv::Buffer<typename Way::OutUnit> out(array, m_capacity);
        const CoderResult result = m_way.step(in, out, last);
        m_last_written = out.position();
        std::transform(array, array + m_last_written, std::back_inserter(m_output),
                       Way::to_out);
        return result;
    }

    Way m_way;
    CodingErrorAction m_action;
    // The coder's own loop does not know the action, so it meets both edges.
    const Edge m_edge = m_action == CodingErrorAction::IGNORE ? Edge::START : Edge::END;
    std::size_t m_capacity;
    std::size_t m_last_written = 0;
    Out m_expected;
    Out m_output;
    std::vector<std::pair<CoderResult::Kind, std::uint32_t>> m_faults;
    std::vector<std::pair<CoderResult::Kind, std::uint32_t>> m_reported;
};

// --- The conditions ---------------------------------------------------------------

constexpr CodingErrorAction ACTIONS[] = {
    CodingErrorAction::IGNORE, CodingErrorAction::REPLACE, CodingErrorAction::REPORT};

template <class Way>
void run(const kiv::Charset* charset, const std::vector<typename Way::Item>& items,
         CodingErrorAction action, std::size_t capacity,
         const std::vector<std::size_t>& cuts)
{
    if (testing::Test::HasFailure())
        return;  // one report is enough
    Run<Way>(charset, action, capacity).convert(items, cuts);
    if (testing::Test::HasFailure())
        ADD_FAILURE() << "action " << static_cast<unsigned>(action) << ", capacity "
                      << capacity << ", first cut " << (cuts.empty() ? 0 : cuts.front());
}

template <class Way>
void check(const kiv::Charset* charset, const std::vector<typename Way::Item>& items,
           Effort effort)
{
    using Items = std::vector<typename Way::Item>;
    constexpr std::size_t AMPLE = 4096;
    std::size_t size = 0;
    for (const auto& item : items)
        size += item.in.size();
    std::vector<std::size_t> everywhere;
    for (std::size_t cut = 1; cut < size; ++cut)
        everywhere.push_back(cut);

    for (const CodingErrorAction action : ACTIONS) {
        run<Way>(charset, items, action, AMPLE, {});
        run<Way>(charset, items, action, 1, everywhere);
        if (effort == Effort::QUICK)
            continue;
        for (std::size_t cut = 1; cut < size; ++cut)
            run<Way>(charset, items, action, AMPLE, {cut});
        for (std::size_t capacity = 0; capacity <= size + 6; ++capacity)
            run<Way>(charset, items, action, capacity, {});

        Items padded;
        for (std::size_t padding = 1; padding < 32; ++padding) {
            padded.assign(padding, Way::ascii(charset, u'a'));
            padded.insert(padded.end(), items.begin(), items.end());
            for (const std::size_t capacity : {AMPLE, padding, padding + 1, padding + 2})
                run<Way>(charset, padded, action, capacity, {});
        }
        // A fault that is the end of the input cannot be repeated.
        if (items.empty() || items.back().fault.isError())
            continue;
        Items repeated;
        while (repeated.size() < 100)
            repeated.insert(repeated.end(), items.begin(), items.end());
        run<Way>(charset, repeated, action, AMPLE, {});
        run<Way>(charset, repeated, action, 7, {31, 64});
    }
}

}  // namespace

void check_decoder(const kiv::Charset* charset, const DecodeItems& items, Effort effort)
{
    check<Decoding>(charset, items, effort);
}

void check_encoder(const kiv::Charset* charset, const EncodeItems& items, Effort effort)
{
    check<Encoding>(charset, items, effort);
}

}  // namespace support
