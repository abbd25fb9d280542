// Any bytes through any charset: a conversion in random pieces must give what
// the conversion at once gives, and encoded text must decode and encode to the
// same bytes again.
//
// The first bytes of the input choose the charset (by its place among the
// available ones), the action, the kernels, the sizes of the pieces and of the
// output; the rest is the text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <kiv/charset.h>

#include "charset/table_kernels.h"
#include "platform/cpu.h"

namespace {

using kiv::Charset;
using kiv::CodingErrorAction;

void require(bool ok)
{
    if (!ok)
        std::abort();
}

// Runs a coder over pieces of the input, through an output of `room` units, in
// arrays of their exact sizes.
template <class Coder, class In, class Out, class Step>
std::vector<Out> in_pieces(Coder& coder, const std::vector<In>& input, std::size_t piece,
                           std::size_t room, Step step)
{
    std::vector<Out> output;
    std::vector<In> held;
    for (std::size_t from = 0; from < input.size() || from == 0;) {
        const std::size_t to = std::min(input.size(), from + piece);
        held.insert(held.end(), input.begin() + static_cast<std::ptrdiff_t>(from),
                    input.begin() + static_cast<std::ptrdiff_t>(to));
        from = std::max<std::size_t>(to, 1);
        const auto array = std::make_unique<In[]>(held.size());
        std::copy(held.begin(), held.end(), array.get());
        kiv::Buffer<const In> in(array.get(), held.size());
        kiv::CoderResult result;
        do {
            const auto units = std::make_unique<Out[]>(room);
            kiv::Buffer<Out> out(units.get(), room);
            result = step(coder, in, out, to == input.size());
            require(!result.isError());
            output.insert(output.end(), units.get(), units.get() + out.position());
        } while (result.isOverflow());
        held.erase(held.begin(),
                   held.begin() + static_cast<std::ptrdiff_t>(in.position()));
    }
    require(held.empty());
    return output;
}

constexpr auto decode_step = [](auto& coder, auto& in, auto& out, bool end) {
    return coder.decode(in, out, end);
};
constexpr auto encode_step = [](auto& coder, auto& in, auto& out, bool end) {
    return coder.encode(in, out, end);
};

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
    CodingErrorAction action;
    const kiv::TableKernels* at_once;
    const kiv::TableKernels* in_pieces;  // every set must give the same
    std::size_t piece;
    std::size_t room;

    explicit Plan(const std::uint8_t* head)
        : action(head[1] % 2 == 0 ? CodingErrorAction::IGNORE
                                  : CodingErrorAction::REPLACE),
          at_once(kernel_set(head[1] / 2U)),
          in_pieces(kernel_set(head[1] / 8U)),
          piece(1 + head[2] % 40),
          room(6 + head[3] % 40)  // six: the largest single result
    {
        const auto charsets = Charset::availableCharsets();
        charset = charsets[head[0] % charsets.size()];
    }

    template <class Coder>
    void set_actions(Coder& coder) const
    {
        coder.onMalformedInput(action);
        coder.onUnmappableCharacter(action);
    }
};

kiv::ustring check_decoder(const Plan& plan, const std::vector<unsigned char>& bytes)
{
    const auto decoder = plan.charset->newDecoder();
    plan.set_actions(*decoder);
    kiv::use_table_kernels(plan.at_once);
    kiv::ustring text = decoder->decode(kiv::basic_string_ref<char>(
        reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    decoder->reset();
    kiv::use_table_kernels(plan.in_pieces);
    const auto pieces = in_pieces<kiv::CharsetDecoder, unsigned char, kiv::char16>(
        *decoder, bytes, plan.piece, plan.room, decode_step);
    require(text == kiv::ustring(pieces.begin(), pieces.end()));
    return text;
}

std::string check_encoder(const Plan& plan, const kiv::ustring& text)
{
    const auto encoder = plan.charset->newEncoder();
    plan.set_actions(*encoder);
    kiv::use_table_kernels(plan.at_once);
    std::string encoded = encoder->encode(text);
    encoder->reset();
    kiv::use_table_kernels(plan.in_pieces);
    const std::vector<kiv::char16> units(text.begin(), text.end());
    const auto pieces = in_pieces<kiv::CharsetEncoder, kiv::char16, unsigned char>(
        *encoder, units, plan.piece, plan.room, encode_step);
    require(encoded == std::string(pieces.begin(), pieces.end()));
    return encoded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    const Plan plan(data);
    const std::vector<unsigned char> bytes(data + 4, data + size);

    const kiv::ustring text = check_decoder(plan, bytes);
    const std::string encoded = check_encoder(plan, text);
    // Text that came out of the charset goes back into it, and out again.
    if (plan.charset->newEncoder()->canEncode(text))
        require(plan.charset->encode(plan.charset->decode(encoded)) == encoded);

    // The same bytes as any code units, most of which few charsets have.
    kiv::ustring units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    check_encoder(plan, units);
    return 0;
}
