// numconv/inline.h - for the common paths of parsing: a cursor that is passed on by
// reference stays in registers only if every function on the way is inlined.

#ifndef KIV_NUMCONV_INLINE_H
#define KIV_NUMCONV_INLINE_H

#define KIV_INLINE [[gnu::always_inline]] inline

#endif
