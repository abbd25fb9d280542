// A number from text, one character at a time.

#include "companion/decimal/entry.h"
#include "companion/decimal/rounding.h"

namespace kiv::companion {
namespace {

enum Phase : std::uint8_t {
    START,      // white space so far
    SIGN,       // and a sign
    INTEGER,    // digits
    SEPARATOR,  // a separator after them
    POINT,      // a point without digits before it
    FRACTION,   // a point, and digits on one side at least
    EXPONENT_LETTER,
    EXPONENT_SIGN,
    EXPONENT,
    INFINITY_WORD,  // `digits` letters of a word
    NAN_WORD,
    ENDED,
};

enum Flag : std::uint8_t {
    NEGATIVE = 1,
    NEGATIVE_EXPONENT = 2,
    HAS_DIGITS = 4,
    HAS_DROPPED = 8,  // a digit that `dropped` tells of
    IS_INFINITY = 16,
};

// What is below the last digit that was kept.
enum Dropped : std::uint8_t { NOTHING, BELOW_HALF, HALF, ABOVE_HALF };

// Answers of a step.
constexpr int INCOMPLETE = 0;
constexpr int COMPLETE = 1;
constexpr int ENDED_BEFORE = 2;
constexpr int ENDED_WITH = 3;

constexpr bool is_digit(std::int32_t c) noexcept
{
    return c >= '0' && c <= '9';
}

constexpr bool is_space(std::int32_t c) noexcept
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr std::int32_t to_lower(std::int32_t c) noexcept
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

constexpr bool may_stand_in_number(std::int32_t c) noexcept
{
    return is_digit(c) || c == '+' || c == '-' ||
           (to_lower(c) >= 'a' && to_lower(c) <= 'z');
}

int end(DecParseState* state) noexcept
{
    state->phase = ENDED;
    return ENDED_BEFORE;
}

int go_to(DecParseState* state, Phase phase, int answer) noexcept
{
    state->phase = phase;
    return answer;
}

void add_digit(DecParseState* state, int digit, bool fraction) noexcept
{
    state->flags |= HAS_DIGITS;
    if (state->digits < state->max_digits) {
        if (digit != 0 || state->digits != 0)
            ++state->digits;
        uint128 coefficient =
            uint128{state->coefficient_high} << 64 | state->coefficient_low;
        coefficient = coefficient * 10 + static_cast<unsigned>(digit);
        state->coefficient_low = low_word(coefficient);
        state->coefficient_high = high_word(coefficient);
        state->scale -= fraction ? 1 : 0;
        return;
    }
    state->scale += fraction ? 0 : 1;
    if ((state->flags & HAS_DROPPED) == 0) {
        state->flags |= HAS_DROPPED;
        state->dropped = digit == 0   ? NOTHING
                         : digit < 5  ? BELOW_HALF
                         : digit == 5 ? HALF
                                      : ABOVE_HALF;
    } else if (digit != 0) {
        state->dropped |= BELOW_HALF;  // nothing becomes this, a half ABOVE_HALF
    }
}

int add_exponent_digit(DecParseState* state, int digit) noexcept
{
    constexpr std::int32_t LIMIT =
        100'000'000;  // digits that bring it back would fill 100 MB
    if (state->exponent < LIMIT)
        state->exponent = state->exponent * 10 + digit;
    return go_to(state, EXPONENT, COMPLETE);
}

// At the start of a number, or after its sign.
int begin(DecParseState* state, std::int32_t c) noexcept
{
    state->digits = 1;  // of a word
    switch (to_lower(c)) {
    case 'i':
        return go_to(state, INFINITY_WORD, INCOMPLETE);
    case 'n':
        return go_to(state, NAN_WORD, INCOMPLETE);
    default:
        break;
    }
    state->digits = 0;
    if (c == state->decimal_point)
        return go_to(state, POINT, INCOMPLETE);
    if (!is_digit(c))
        return end(state);
    add_digit(state, c - '0', false);
    return go_to(state, INTEGER, COMPLETE);
}

// "inf" may go on to "infinity".
int add_letter(DecParseState* state, const char* word, int length,
               std::int32_t c) noexcept
{
    if (to_lower(c) != word[state->digits])
        return end(state);
    ++state->digits;
    if (state->phase == INFINITY_WORD && state->digits == 3)
        state->flags |= IS_INFINITY;
    if (state->digits == length)
        return go_to(state, ENDED, ENDED_WITH);
    return state->digits == 3 ? COMPLETE : INCOMPLETE;
}

int add_to_number(DecParseState* state, std::int32_t c) noexcept
{
    const bool fraction = state->phase == POINT || state->phase == FRACTION;
    if (is_digit(c)) {
        add_digit(state, c - '0', fraction);
        return go_to(state, fraction ? FRACTION : INTEGER, COMPLETE);
    }
    if (state->phase == SEPARATOR || state->phase == POINT)
        return end(state);
    if (c == 'e' || c == 'E')
        return go_to(state, EXPONENT_LETTER, INCOMPLETE);
    if (!fraction && c == state->decimal_point)
        return go_to(state, FRACTION, COMPLETE);
    if (!fraction && c == state->thousands_sep)
        return go_to(state, SEPARATOR, INCOMPLETE);
    return end(state);
}

int next(DecParseState* state, std::int32_t c) noexcept
{
    switch (state->phase) {
    case START:
        if (is_space(c))
            return INCOMPLETE;
        if (c == '+' || c == '-') {
            state->flags |= c == '-' ? NEGATIVE : 0;
            return go_to(state, SIGN, INCOMPLETE);
        }
        return begin(state, c);
    case SIGN:
        return begin(state, c);
    case EXPONENT_LETTER:
        if (c == '+' || c == '-') {
            state->flags |= c == '-' ? NEGATIVE_EXPONENT : 0;
            return go_to(state, EXPONENT_SIGN, INCOMPLETE);
        }
        [[fallthrough]];
    case EXPONENT_SIGN:
    case EXPONENT:
        return is_digit(c) ? add_exponent_digit(state, c - '0') : end(state);
    case INFINITY_WORD:
        return add_letter(state, "infinity", 8, c);
    case NAN_WORD:
        return add_letter(state, "nan", 3, c);
    case ENDED:
        return ENDED_BEFORE;
    default:
        return add_to_number(state, c);
    }
}

template <class F>
typename F::Bits parsed_value(const DecParseState& state) noexcept
{
    const auto sign = (state.flags & NEGATIVE) != 0 ? F::SIGN : 0;
    if ((state.flags & IS_INFINITY) != 0)
        return sign | F::INFINITY_BITS;
    if ((state.flags & HAS_DIGITS) == 0)
        return F::NAN_BITS;
    // One digit stands for all that were dropped.
    static constexpr unsigned DIGIT[] = {0, 1, 5, 6};
    uint256 digits = uint128{state.coefficient_high} << 64 | state.coefficient_low;
    std::int64_t exponent = state.scale;
    exponent += (state.flags & NEGATIVE_EXPONENT) != 0 ? -std::int64_t{state.exponent}
                                                       : std::int64_t{state.exponent};
    if (state.dropped != NOTHING) {
        digits = product(digits, uint128{10}) + uint256(DIGIT[state.dropped]);
        --exponent;
    }
    constexpr std::int64_t FAR = 2 * (F::MAX_EXPONENT + F::DIGITS);
    return finish<F>(sign, F::BIAS + static_cast<int>(std::clamp(exponent, -FAR, FAR)),
                     digits);
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

int kivDecParseInit(kiv::DecParseState* state, int digits, std::int32_t decimal_point,
                    std::int32_t thousands_sep, int syntax)
{
    using namespace kiv::companion;
    if (syntax != 1 || (digits != 7 && digits != 16 && digits != 34))
        return -1;
    if (decimal_point <= 0 || decimal_point > 0xFF || thousands_sep < 0 ||
        thousands_sep > 0xFF)
        return -1;
    if (may_stand_in_number(decimal_point) || may_stand_in_number(thousands_sep))
        return -1;
    *state = {};
    state->decimal_point = static_cast<std::int16_t>(decimal_point);
    state->thousands_sep = -1;
    if (thousands_sep != 0 && thousands_sep != decimal_point)
        state->thousands_sep = static_cast<std::int16_t>(thousands_sep);
    state->max_digits = static_cast<std::uint8_t>(digits);
    return 0;
}

int kivDecParseNextChar(kiv::DecParseState* state, std::int32_t c)
{
    return kiv::companion::next(state, c);
}

#define KIV_DECIMAL_PARSED(W, Name, function)                         \
    kiv::KDecimal##W kivDec##W##Name(const kiv::DecParseState* state) \
    {                                                                 \
        using namespace kiv::companion;                               \
        return value_of(function<Format##W>(*state));                 \
    }
KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_PARSED, ParseGetValue, parsed_value)

}  // extern "C"
