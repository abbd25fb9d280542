// charset/multi_byte_loop.h - how the coders of multi-byte charsets take turns
// with their kernels.
//
// one(stop) converts one sequence and is true, or sets `stop` to why it cannot.

#ifndef KIV_CHARSET_MULTI_BYTE_LOOP_H
#define KIV_CHARSET_MULTI_BYTE_LOOP_H

#include <kiv/charset.h>

#include "charset/table_kernels.h"

namespace kiv {

// With a kernel for all that is common: what it stops at is an exception.
template <class Span, class Kernel, class One>
CoderResult convert_by_kernel(Span& span, Kernel kernel, One one)
{
    for (;;) {
        span.run(kernel);
        CoderResult stop;
        if (!one(stop))
            return span.finish(stop);
    }
}

// With a kernel for ASCII only: text that has left ASCII tends to stay outside
// for a while.
template <class Span, class AsciiKernel, class One>
CoderResult convert_plainly(Span& span, AsciiKernel ascii, One one)
{
    const auto is_ascii = [](auto unit) { return static_cast<char16_t>(unit) < 0x80; };
    for (;;) {
        span.run(ascii);
        CoderResult stop;
        do {
            if (!one(stop))
                return span.finish(stop);
        } while (span.in != span.in_end && !is_ascii(*span.in));
    }
}

}  // namespace kiv

#endif
