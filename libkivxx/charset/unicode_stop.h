// charset/unicode_stop.h - why a step of the Unicode coders cannot go on.

#ifndef KIV_CHARSET_UNICODE_STOP_H
#define KIV_CHARSET_UNICODE_STOP_H

#include <kiv/character.h>
#include <kiv/charset.h>

#include "charset/coding_span.h"

namespace kiv {

// For a span whose first character could not be encoded into an encoding that
// has every character: it is half a pair, or does not fit.
inline CoderResult encode_stop(const EncodeSpan& span)
{
    const char16 unit = *span.in;
    if (!Char16::isSurrogate(unit))
        return CoderResult::overflow();
    if (Char16::isLowSurrogate(unit))
        return CoderResult::malformed(1);
    if (span.in_left() == 1)
        return CoderResult::underflow();
    return Char16::isLowSurrogate(span.in[1]) ? CoderResult::overflow()
                                              : CoderResult::malformed(1);
}

}  // namespace kiv

#endif
