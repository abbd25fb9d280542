/* GCC's own decimal types, which C++ does not have: loops over bit patterns. */

#include <stddef.h>

#define LOOP(name, W, TYPE, RESULT, expression)                                      \
    void kivbench_##name##W(const void* px, const void* py, void* results, size_t n) \
    {                                                                                \
        const TYPE* xs = px;                                                         \
        const TYPE* ys = py;                                                         \
        RESULT* r = results;                                                         \
        for (size_t i = 0; i < n; ++i) {                                             \
            const TYPE x = xs[i];                                                    \
            const TYPE y = ys[i];                                                    \
            r[i] = expression;                                                       \
        }                                                                            \
    }
#define LOOPS(W, TYPE)                  \
    LOOP(add, W, TYPE, TYPE, x + y)     \
    LOOP(multiply, W, TYPE, TYPE, x* y) \
    LOOP(divide, W, TYPE, TYPE, x / y)  \
    LOOP(compare, W, TYPE, int, x<y ? -1 : x> y)

LOOPS(64, _Decimal64)
LOOPS(128, _Decimal128)
