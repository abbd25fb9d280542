// Any bytes through any charset, and any units back: a conversion in random pieces, with
// another set of kernels, must give what the conversion at once gives, however faults are
// dealt with; and what was encoded must decode and encode to the same bytes again.
//
// The first bytes of the input choose the charset (by its place among the available
// ones), the action, the kernels and the sizes of pieces and outputs; the rest is the
// text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kiv/charset.h>

#include "charset/kernels.h"
#include "charset/table_kernels.h"
#include "fuzz_support.h"
#include "platform/cpu.h"

namespace {

using namespace kivfuzz;
using kiv::Charset;
using kiv::CodingErrorAction;

constexpr auto convert_step = [](auto& coder, auto& in, auto& out, bool end) {
    if constexpr (requires { coder.decode(in, out, end); })
        return coder.decode(in, out, end);
    else
        return coder.encode(in, out, end);
};

// Sizes that differ from step to step.
class Sizes {
public:
    Sizes(unsigned seed, unsigned most) : m_state(seed), m_most(most) {}
    std::size_t next()
    {
        m_state = m_state * 1664525 + 1013904223;  // Numerical Recipes, ranqd1
        return 1 + (m_state >> 16) % m_most;
    }

private:
    std::uint32_t m_state;
    unsigned m_most;
};

template <class Out>
struct Converted {
    std::vector<Out> output;
    std::vector<std::size_t> faults;  // their places in the input
};

// Runs a coder over pieces of the input, in arrays of their exact sizes. Faults that the
// coder reports are replaced, or skipped if there is no replacement.
template <class Out, class Coder, class In>
Converted<Out> in_pieces(Coder& coder, const std::vector<In>& input, Sizes pieces,
                         Sizes rooms, const std::vector<Out>& replacement)
{
    Converted<Out> converted;
    std::size_t from = 0, to = 0;
    const auto append = [&converted](const auto& units, std::size_t n) {
        converted.output.insert(converted.output.end(), &units[0], &units[0] + n);
    };
    do {
        to = std::min(input.size(), to + pieces.next());
        const bool last = to == input.size();
        const auto array = exact_copy(input.data() + from, to - from);
        kiv::Buffer<const In> in(array.get(), to - from);
        for (kiv::CoderResult result = kiv::CoderResult::OVERFLOW;
             !result.isUnderflow();) {
            const std::size_t room = 5 + rooms.next();  // six: the largest single result
            const auto units = std::make_unique<Out[]>(room);
            kiv::Buffer<Out> out(units.get(), room);
            result = convert_step(coder, in, out, last);
            append(units, out.position());
            require(!result.isOverflow() || out.position() > 0);
            if (!result.isError())
                continue;
            require(result.length() > 0 && result.length() <= in.remaining());
            converted.faults.push_back(from + in.position());
            in.position(in.position() + result.length());
            if (!replacement.empty())
                append(replacement, replacement.size());
        }
        from += in.position();
    } while (to < input.size());
    require(from == input.size());
    const auto units = std::make_unique<Out[]>(8);
    kiv::Buffer<Out> out(units.get(), 8);
    require(coder.flush(out).isUnderflow());
    append(units, out.position());
    return converted;
}

// Null is the best set of the machine.
const kiv::TableKernels* kernel_set(unsigned choice)
{
#if defined(__x86_64__)
    if (choice % 4 == 2 && kiv::platform::cpu_has_avx2())
        return &kiv::avx2_table_kernels;
#endif
    return choice % 4 == 1 ? &kiv::portable_table_kernels : nullptr;
}

// How an input is to be converted.
struct Plan {
    const Charset* charset;
    CodingErrorAction action;  // ignore or replace
    const kiv::TableKernels* at_once;
    const kiv::TableKernels* in_pieces;  // every set must give the same
    bool by_hand;                        // in pieces by what is reported, else by action
    Sizes pieces, rooms;

    // Braces, which keep the order.
    explicit Plan(Bytes& bytes) : Plan{bytes.byte(), bytes.byte(), bytes.number(2)} {}

private:
    Plan(unsigned place, unsigned how, unsigned sizes)
        : action(how % 2 == 0 ? CodingErrorAction::IGNORE : CodingErrorAction::REPLACE),
          at_once(kernel_set(how / 2)),
          in_pieces(kernel_set(how / 8)),
          by_hand(how / 32 % 2 != 0),
          pieces(sizes, 1 + sizes % 80),
          rooms(sizes / 256, 1 + sizes / 256 % 80)
    {
        const auto charsets = Charset::availableCharsets();
        charset = charsets[place % charsets.size()];
    }
};

template <class Coder>
void set_actions(Coder& coder, CodingErrorAction action)
{
    coder.onMalformedInput(action);
    coder.onUnmappableCharacter(action);
}

// What the whole-string conversion throws is the first fault.
void expect_report(auto& coder, const auto& input, const std::vector<std::size_t>& faults)
{
    set_actions(coder, CodingErrorAction::REPORT);
    kiv::Buffer in(input.data(), input.size());
    try {
        if constexpr (requires { coder.decode(in); })
            coder.decode(in);
        else
            coder.encode(in);
        require(faults.empty() && !in.hasRemaining());
    } catch (const kiv::CharacterCodingError&) {
        require(!faults.empty() && in.position() == faults[0]);
    }
}

// The result, as the type of the whole-string conversion.
template <class Result, class Out, class In>
Result convert(const Plan& plan, auto& coder, const std::vector<In>& input)
{
    const auto array = exact_copy(input.data(), input.size());
    kiv::Buffer<const In> in(array.get(), input.size());
    set_actions(coder, plan.action);
    kiv::use_table_kernels(plan.at_once);
    Result result;
    if constexpr (sizeof(In) == 1)
        result = coder.decode(in);
    else
        result = coder.encode(in);
    require(!in.hasRemaining());

    coder.reset();
    kiv::use_table_kernels(plan.in_pieces);
    set_actions(coder, plan.by_hand ? CodingErrorAction::REPORT : plan.action);
    std::vector<Out> replacement;
    if (plan.action == CodingErrorAction::REPLACE)
        replacement.assign(coder.replacement().begin(), coder.replacement().end());
    const auto converted =
        in_pieces<Out>(coder, input, plan.pieces, plan.rooms, replacement);
    require(result == Result(converted.output.begin(), converted.output.end()));
    require(plan.by_hand || converted.faults.empty());
    if (plan.by_hand)
        expect_report(coder, input, converted.faults);
    return result;
}

kiv::ustring check_decoder(const Plan& plan, const std::string& bytes)
{
    const auto decoder = plan.charset->newDecoder();
    return convert<kiv::ustring, kiv::char16>(
        plan, *decoder, std::vector<unsigned char>(bytes.begin(), bytes.end()));
}

std::string check_encoder(const Plan& plan, const kiv::ustring& text)
{
    const auto encoder = plan.charset->newEncoder();
    return convert<std::string, unsigned char>(
        plan, *encoder, std::vector<kiv::char16>(text.begin(), text.end()));
}

// One kernel may stop earlier than the other, but not do something else.
template <class Out, class In>
void expect_alike(auto kernel, auto other, const In* in, std::size_t n, std::size_t room)
{
    const auto array = exact_copy(in, n);
    std::vector<Out> output[2];
    std::size_t used[2];
    for (int i = 0; i < 2; ++i) {
        const auto units = std::make_unique<Out[]>(room);
        const auto end = (i == 0 ? kernel : other)(array.get(), array.get() + n,
                                                   units.get(), units.get() + room);
        output[i].assign(units.get(), end.out);
        used[i] = static_cast<std::size_t>(end.in - array.get());
    }
    const int less = output[0].size() <= output[1].size() ? 0 : 1;
    require(used[less] <= used[1 - less]);
    require(
        std::equal(output[less].begin(), output[less].end(), output[1 - less].begin()));
    // What both have used is all that the shorter output stands for.
    require(output[0].size() != output[1].size() || used[0] == used[1]);
}

// The kernels of the charsets without tables, of which only one set is ever in use.
void check_plain_kernels(const std::string& bytes, const kiv::ustring& units,
                         std::size_t room)
{
    const kiv::Kernels &best = kiv::kernels(), &plain = kiv::portable_kernels;
    for (const auto decode : {&kiv::Kernels::decode_ascii, &kiv::Kernels::decode_latin1,
                              &kiv::Kernels::decode_utf8, &kiv::Kernels::decode_utf16be,
                              &kiv::Kernels::decode_utf16le})
        expect_alike<kiv::char16>(best.*decode, plain.*decode,
                                  reinterpret_cast<const unsigned char*>(bytes.data()),
                                  bytes.size(), room);
    for (const auto encode : {&kiv::Kernels::encode_ascii, &kiv::Kernels::encode_latin1,
                              &kiv::Kernels::encode_utf8, &kiv::Kernels::encode_utf16be,
                              &kiv::Kernels::encode_utf16le})
        expect_alike<unsigned char>(best.*encode, plain.*encode, units.data(),
                                    units.size(), room);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    Bytes source(data, size);
    const Plan plan(source);
    const std::string bytes = source.rest();

    const kiv::ustring text = check_decoder(plan, bytes);
    const std::string encoded = check_encoder(plan, text);
    // Text that came out of the charset goes back into it, and out again.
    if (plan.charset->newEncoder()->canEncode(text))
        require(plan.charset->encode(plan.charset->decode(encoded)) == encoded);

    // The same bytes as any code units, most of which few charsets have.
    const kiv::ustring units = units_of(bytes);
    check_encoder(plan, units);
    Sizes rooms = plan.rooms;
    check_plain_kernels(bytes, units, 2 * rooms.next());
    check_plain_kernels(encoded, text, 2 * rooms.next());
    return 0;
}
