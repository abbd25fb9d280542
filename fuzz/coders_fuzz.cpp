// Any bytes through any charset: a conversion in random pieces must give what
// the conversion at once gives, and encoded text must decode and encode to the
// same bytes again.
//
// The first bytes of the input choose the charset, the action, the sizes of the
// pieces and of the output; the rest is the text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <kiv/charset.h>

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

template <class Coder>
void set_actions(Coder& coder, CodingErrorAction action)
{
    coder.onMalformedInput(action);
    coder.onUnmappableCharacter(action);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    const auto charsets = Charset::availableCharsets();
    const Charset* charset = charsets[data[0] % charsets.size()];
    const auto action =
        data[1] % 2 == 0 ? CodingErrorAction::IGNORE : CodingErrorAction::REPLACE;
    const std::size_t piece = 1 + data[2] % 40;
    const std::size_t room = 6 + data[3] % 40;  // six: the largest single result
    const std::vector<unsigned char> bytes(data + 4, data + size);
    const kiv::basic_string_ref<char> view(reinterpret_cast<const char*>(bytes.data()),
                                           bytes.size());

    const auto decoder = charset->newDecoder();
    set_actions(*decoder, action);
    const kiv::ustring text = decoder->decode(view);
    decoder->reset();
    const auto pieces = in_pieces<kiv::CharsetDecoder, unsigned char, kiv::char16>(
        *decoder, bytes, piece, room, decode_step);
    require(text == kiv::ustring(pieces.begin(), pieces.end()));

    const auto encoder = charset->newEncoder();
    set_actions(*encoder, action);
    const std::string encoded = encoder->encode(text);
    encoder->reset();
    const std::vector<kiv::char16> units(text.begin(), text.end());
    const auto encoded_pieces =
        in_pieces<kiv::CharsetEncoder, kiv::char16, unsigned char>(*encoder, units, piece,
                                                                   room, encode_step);
    require(std::equal(
        encoded.begin(), encoded.end(), encoded_pieces.begin(), encoded_pieces.end(),
        [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }));
    // Text that came out of the charset goes back into it, and out again.
    encoder->reset();
    if (encoder->canEncode(text))
        require(charset->encode(charset->newDecoder()->decode(encoded)) == encoded);
    return 0;
}
