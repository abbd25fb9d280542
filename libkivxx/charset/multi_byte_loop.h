// charset/multi_byte_loop.h - how the coders of multi-byte charsets take turns
// with their kernels.

#ifndef KIV_CHARSET_MULTI_BYTE_LOOP_H
#define KIV_CHARSET_MULTI_BYTE_LOOP_H

#include <kiv/charset.h>

#include "charset/table_kernels.h"

namespace kiv {

// one(stop) converts what the kernel stopped at, one sequence, and is true, or sets
// `stop` to why it cannot.
template <class Span, class Kernel, class One>
CoderResult convert_runs(Span& span, Kernel kernel, One one)
{
    for (;;) {
        span.run(kernel);
        CoderResult stop;
        if (!one(stop))
            return span.finish(stop);
    }
}

}  // namespace kiv

#endif
