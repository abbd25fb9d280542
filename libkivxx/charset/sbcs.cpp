#include "charset/sbcs.h"

#include <algorithm>

#include "charset/table_kernels.h"

namespace kiv {

namespace {

// How many characters the plain loops look up before they try for a run of
// ASCII again: often enough to find one, seldom enough to pay in other text.
constexpr std::size_t PLAIN_RUN = 16;

template <class Span>
std::size_t plain_run(const Span& span) noexcept
{
    return std::min({span.in_left(), span.out_left(), PLAIN_RUN});
}

constexpr int NO_BYTE = -1;
constexpr unsigned NO_BLOCK = 0xFFFF;

// byte_of: the byte of a unit, or NO_BYTE. Stops at a unit without a byte, at a
// full output or at the end.
template <class ByteOf>
void encode_plain(EncodeSpan& span, ByteOf byte_of)
{
    while (span.in_left() != 0 && span.out_left() != 0) {
        span.run(kernels().encode_ascii);
        for (std::size_t n = plain_run(span); n != 0; --n) {
            const int byte = byte_of(static_cast<char16_t>(*span.in));
            if (byte == NO_BYTE)
                return;
            *span.out++ = static_cast<unsigned char>(byte);
            ++span.in;
        }
    }
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
    while (span.in_left() != 0 && span.out_left() != 0) {
        span.run(kernels().decode_ascii);
        for (std::size_t n = plain_run(span); n != 0; --n) {
            const char16_t unit = m_table[*span.in];
            if (unit == UNMAPPABLE)
                return;
            *span.out++ = unit;
            ++span.in;
        }
    }
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
    encode_plain(span, byte_of);
    if (span.in == span.in_end)
        return span.finish(CoderResult::underflow());
    if (byte_of(static_cast<char16_t>(*span.in)) == NO_BYTE)
        return span.finish(unmappableCodeUnit(span.in, span.in_end));
    return span.finish(CoderResult::overflow());
}

CoderResult SBCSEncoder::encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out)
{
    return encode(EncodeSpan(in, out),
                  [this](unsigned u) { return u <= m_highest ? m_table[u] : NO_BYTE; });
}

template <unsigned N>
CoderResult SBCSSparseEncoder<N>::encodeLoop(Buffer<const char16>& in,
                                             Buffer<unsigned char>& out)
{
    constexpr unsigned in_block = (1U << N) - 1;
    return encode(EncodeSpan(in, out), [this](unsigned u) -> int {
        if (u > m_highest)
            return NO_BYTE;
        const unsigned block = m_index[u >> N];
        return block == NO_BLOCK ? NO_BYTE : m_data[block | (u & in_block)];
    });
}

template class SBCSDecoder<false>;
template class SBCSDecoder<true>;
template class SBCSSparseEncoder<5>;
template class SBCSSparseEncoder<6>;
template class SBCSSparseEncoder<7>;

}  // namespace kiv
