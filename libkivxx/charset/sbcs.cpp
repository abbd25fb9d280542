#include "charset/sbcs.h"

#include <algorithm>

#include "charset/table_kernels.h"

namespace kiv {

namespace {

constexpr int NO_BYTE = -1;

// The plain loops look up this many characters before they try for a run of ASCII
// again: often enough to find one, seldom enough to pay in other text.
constexpr std::size_t PLAIN_RUN = 16;

// Runs the kernel for ASCII and look_up(in, out), which is false where it stops, by
// turns, until that stops or an end is reached.
template <class Span, class Kernel, class LookUp>
void convert_plainly(Span& span, Kernel ascii, LookUp look_up)
{
    auto in = span.in;
    auto out = span.out;
    bool goes_on = true;
    while (goes_on && in != span.in_end && out != span.out_end) {
        const auto progress = ascii(in, span.in_end, out, span.out_end);
        in = progress.in;
        out = progress.out;
        std::size_t n = common_size(in, span.in_end, out, span.out_end);
        for (n = std::min(n, PLAIN_RUN); n != 0 && goes_on; --n) {
            goes_on = look_up(*in, *out);
            in += goes_on;
            out += goes_on;
        }
    }
    span.in = in;
    span.out = out;
}

void encode_fast(EncodeSpan& span, const unsigned char* pages)
{
    if (const SbcsEncodeKernel kernel = table_kernels().encode_sbcs)
        span.run([=](auto... range) { return kernel(pages, range...); });
}

}  // namespace

template <bool COMPLETE>
void SBCSDecoder<COMPLETE>::decode_plain(DecodeSpan& span) const
{
    if constexpr (COMPLETE) {
        const std::size_t n = std::min(span.in_left(), span.out_left());
        for (std::size_t i = 0; i < n; ++i)
            span.out[i] = m_table[span.in[i]];
        span.in += n;
        span.out += n;
        return;
    }
    const char16_t* const table = m_table;
    convert_plainly(span, kernels().decode_ascii,
                    [table](unsigned char byte, char16& unit) {
                        const char16_t found = table[byte];
                        if (found == UNMAPPABLE)
                            return false;
                        unit = found;
                        return true;
                    });
}

template <bool COMPLETE>
CoderResult SBCSDecoder<COMPLETE>::decodeLoop(Buffer<const unsigned char>& in,
                                              Buffer<char16>& out)
{
    DecodeSpan span(in, out);
    const TableKernels& fast = table_kernels();
    if (const auto kernel = COMPLETE ? fast.decode_sbcs_complete : fast.decode_sbcs)
        span.run([=, this](auto... range) { return kernel(m_table, range...); });
    decode_plain(span);
    if (span.in == span.in_end)
        return span.finish(CoderResult::underflow());
    const bool unmappable = !COMPLETE && m_table[*span.in] == UNMAPPABLE;
    return span.finish(unmappable ? CoderResult::unmappable(1) : CoderResult::overflow());
}

template <class ByteOf>
CoderResult SBCSEncoderBase::encode(EncodeSpan span, ByteOf byte_of)
{
    encode_fast(span, m_pages);
    convert_plainly(span, kernels().encode_ascii, [&](char16 unit, unsigned char& byte) {
        const int found = byte_of(static_cast<char16_t>(unit));
        if (found == NO_BYTE)
            return false;
        byte = static_cast<unsigned char>(found);
        return true;
    });
    if (span.in == span.in_end)
        return span.finish(CoderResult::underflow());
    if (byte_of(static_cast<char16_t>(*span.in)) == NO_BYTE)
        return span.finish(unmappableCodeUnit(span.in, span.in_end));
    return span.finish(CoderResult::overflow());
}

CoderResult SBCSEncoder::encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out)
{
    return encode(EncodeSpan(in, out),
                  [highest = m_highest, table = m_table](unsigned u) {
                      return u <= highest ? table[u] : NO_BYTE;
                  });
}

template <unsigned N>
CoderResult SBCSSparseEncoder<N>::encodeLoop(Buffer<const char16>& in,
                                             Buffer<unsigned char>& out)
{
    constexpr unsigned in_block = (1U << N) - 1;
    const auto byte_of = [highest = m_highest, index = m_index,
                          data = m_data](unsigned u) -> int {
        if (u > highest)
            return NO_BYTE;
        const unsigned block = index[u >> N];
        return block == tables::NO_BLOCK ? NO_BYTE : data[block | (u & in_block)];
    };
    return encode(EncodeSpan(in, out), byte_of);
}

template class SBCSDecoder<false>;
template class SBCSDecoder<true>;
template class SBCSSparseEncoder<5>;
template class SBCSSparseEncoder<6>;
template class SBCSSparseEncoder<7>;

}  // namespace kiv
