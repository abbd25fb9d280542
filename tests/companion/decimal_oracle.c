/* GCC's own decimal types, which C++ does not have: x op y, and the order of x and y. */
#define DEFINE(W, TYPE)                                                         \
    int kivtest_decimal##W(char op, const TYPE* x, const TYPE* y, TYPE* result) \
    {                                                                           \
        *result = op == '+'   ? *x + *y                                         \
                  : op == '-' ? *x - *y                                         \
                  : op == '*' ? *x * *y                                         \
                              : *x / *y;                                        \
        return *x < *y ? -1 : *x == *y ? 0 : *x > *y ? 1 : 2;                   \
    }
DEFINE(32, _Decimal32)
DEFINE(64, _Decimal64)
DEFINE(128, _Decimal128)
