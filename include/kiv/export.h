// kiv/export.h - visibility of the library's symbols.
//
// The library is compiled with hidden visibility: what users may link against
// is marked KIV_API, everything else stays inside.

#ifndef KIV_EXPORT_H
#define KIV_EXPORT_H

#if defined(__GNUC__)
    #define KIV_API __attribute__((visibility("default")))
#else
    #define KIV_API
#endif

#endif
