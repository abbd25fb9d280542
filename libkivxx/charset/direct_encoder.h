// charset/direct_encoder.h - the encoder of charsets whose bytes are the first
// code points.

#ifndef KIV_CHARSET_DIRECT_ENCODER_H
#define KIV_CHARSET_DIRECT_ENCODER_H

#include <kiv/charset.h>

#include "charset/coding_span.h"
#include "charset/kernels.h"

namespace kiv {

// MAPPED: the number of units that are their own byte; KERNEL takes just these.
template <unsigned MAPPED, EncodeKernel Kernels::*KERNEL>
class DirectEncoder : public CharsetEncoder {
public:
    explicit DirectEncoder(const Charset* charset) : CharsetEncoder(charset, 1.0F, 1) {}

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        for (;;) {
            span.run(kernels().*KERNEL);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            const unsigned unit = static_cast<char16_t>(*span.in);
            if (unit >= MAPPED)
                return span.finish(unmappableCodeUnit(span.in, span.in_end));
            if (span.out == span.out_end)
                return span.finish(CoderResult::overflow());
            *span.out++ = static_cast<unsigned char>(unit);
            ++span.in;
        }
    }
};

}  // namespace kiv

#endif
