// companion/decimal/entry.h - the exported functions of each width, from one template.

#ifndef KIV_COMPANION_DECIMAL_ENTRY_H
#define KIV_COMPANION_DECIMAL_ENTRY_H

#include "char/companion_decimal.h"
#include "companion/decimal/format.h"

// What follows the name: KIV_DECIMAL_BINARY(Add, add) defines kivDec32Add and its
// siblings by kiv::companion::add<Format32> and so on.

#define KIV_DECIMAL_EACH_WIDTH(define, Name, function) \
    define(32, Name, function) define(64, Name, function) define(128, Name, function)

#define KIV_DECIMAL_UNARY_OF(W, Name, function)           \
    kiv::KDecimal##W kivDec##W##Name(kiv::KDecimal##W x)  \
    {                                                     \
        using namespace kiv::companion;                   \
        return value_of(function<Format##W>(bits_of(x))); \
    }
#define KIV_DECIMAL_BINARY_OF(W, Name, function)                             \
    kiv::KDecimal##W kivDec##W##Name(kiv::KDecimal##W x, kiv::KDecimal##W y) \
    {                                                                        \
        using namespace kiv::companion;                                      \
        return value_of(function<Format##W>(bits_of(x), bits_of(y)));        \
    }
#define KIV_DECIMAL_WITH_INT_OF(W, Name, function)              \
    kiv::KDecimal##W kivDec##W##Name(kiv::KDecimal##W x, int n) \
    {                                                           \
        using namespace kiv::companion;                         \
        return value_of(function<Format##W>(bits_of(x), n));    \
    }
#define KIV_DECIMAL_QUERY_OF(W, Name, function) \
    int kivDec##W##Name(kiv::KDecimal##W x)     \
    {                                           \
        using namespace kiv::companion;         \
        return function<Format##W>(bits_of(x)); \
    }
#define KIV_DECIMAL_RELATION_OF(W, Name, function)              \
    int kivDec##W##Name(kiv::KDecimal##W x, kiv::KDecimal##W y) \
    {                                                           \
        using namespace kiv::companion;                         \
        return function<Format##W>(bits_of(x), bits_of(y));     \
    }

#define KIV_DECIMAL_UNARY(Name, function) \
    KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_UNARY_OF, Name, function)
#define KIV_DECIMAL_BINARY(Name, function) \
    KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_BINARY_OF, Name, function)
#define KIV_DECIMAL_WITH_INT(Name, function) \
    KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_WITH_INT_OF, Name, function)
#define KIV_DECIMAL_QUERY(Name, function) \
    KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_QUERY_OF, Name, function)
#define KIV_DECIMAL_RELATION(Name, function) \
    KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_RELATION_OF, Name, function)

#endif
