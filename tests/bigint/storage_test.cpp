// Where the words of a big_uint live, what growth keeps, and what is refused.

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <kiv/big_uint.h>

#include "bigint/gmp_model.h"
#include "support/failing_new.h"

namespace {

using namespace kivtest;

static_assert(sizeof(void*) != 8 || sizeof(big_uint) == 48);
static_assert(std::is_nothrow_move_constructible_v<big_uint> &&
              std::is_nothrow_move_assignable_v<big_uint> &&
              std::is_nothrow_swappable_v<big_uint>);

constexpr std::uint32_t SOMEWHERE = 0;

struct State {
    void make_room(unsigned n)
    {
        if (n > capacity)
            *this = {words, n, &SOMEWHERE};
    }

    bool operator==(const State&) const = default;

    Words words;  // empty: one, whose value is open
    unsigned capacity = 8;
    const std::uint32_t* block = nullptr;  // null: inside the object
};

// Of as many words, with nothing to spare.
State exact(const Words& words)
{
    State s{words};
    s.make_room(static_cast<unsigned>(words.size()));
    return s;
}

State state_of(const big_uint& x)
{
    const void *const words = x.data(), *const object = &x;
    const bool inside = words > object && words < &x + 1;
    EXPECT_EQ(x.is_local(), inside);
    return {{x.data(), x.data() + x.size()}, x.reserved(), inside ? nullptr : x.data()};
}

// What the model leaves open becomes what it is.
template <class S>
bool matches(const big_uint& x, S&& model)
{
    const State s = state_of(x);
    if (model.words.empty())
        model.words = {x[0]};
    if (model.block == &SOMEWHERE && !x.is_local())
        model.block = s.block;
    return s == model;
}

void move(State& to, State& from)
{
    if (from.block == nullptr)
        to.words = from.words;
    else if (to.block == nullptr)
        to = std::exchange(from, {});
    else
        std::swap(to, from);
}

// x and y may be the same.
void expect_step(big_uint& x, State& s, big_uint& y, State& u, Random& random)
{
    static constexpr unsigned SIZES[] = {1, 2, 7, 8, 9, 10, 20, 37};
    const unsigned n = SIZES[random.below(8)];
    const unsigned operation = random.below(10);
    if (operation == 0) {
        x.reserve(n);
        s.make_room(n);
    } else if (operation == 1) {
        const std::uint32_t* const words = x.set_size(n);
        EXPECT_EQ(words, x.data());
        s.make_room(n);
        s.words.resize(n);
    } else if (operation == 2) {
        x.prepend(n % 2);
        s.words.push_back(n % 2);
        s.make_room(static_cast<unsigned>(s.words.size()));
    } else if (operation == 3) {
        x.trim();
        s.words.resize(significant(value_of(s.words)));
    } else if (operation == 4) {
        x = std::as_const(y);
        s.make_room(static_cast<unsigned>(u.words.size()));
        s.words = u.words;
    } else if (operation == 5) {
        x = std::move(y);
        move(s, u);
    } else if (operation == 6) {
        swap(x, y);
        std::swap(s, u);
    } else if (operation == 7) {
        EXPECT_TRUE(matches(big_uint(y), exact(u.words)));
    } else if (operation == 8) {
        big_uint moved = std::move(y);
        State v = u.block == nullptr ? u : std::exchange(u, {});
        EXPECT_TRUE(matches(moved, v) && matches(y, u));
        y = std::move(moved);
        move(u, v);
    } else {
        const unsigned spare = random.below(4);
        std::destroy_at(&x);
        std::construct_at(&x, big_uint::make_uninitialized(n, n + spare));
        s = exact(random.words(n));
        s.make_room(n + spare);
        std::copy(s.words.begin(), s.words.end(), x.data());
    }
    EXPECT_TRUE(matches(x, s) && matches(y, u)) << "operation " << operation;
}

TEST(Storage, FollowsModel)
{
    Random random;
    big_uint x[3];
    State s[3] = {{{0}}, {{0}}, {{0}}};
    for (int step = 0; step < 100000 && !HasFailure(); ++step) {
        const unsigned i = random.below(3), j = random.below(3);
        expect_step(x[i], s[i], x[j], s[j], random);
    }
}

TEST(Storage, Construction)
{
    EXPECT_TRUE(matches({}, exact({0})));
    for (const big_uint& x :
         {big_uint(~0U), big_uint(0xFFFFFFFFUL), big_uint(0xFFFFFFFFULL)})
        EXPECT_TRUE(matches(x, exact({0xFFFFFFFF})));
    for (const big_uint& x :
         {big_uint(5UL << 32), big_uint(5ULL << 32), big_uint(5LL << 32)})
        EXPECT_TRUE(matches(x, exact({0, 5})));
    for (const big_uint& x :
         {big_uint(5), big_uint(5U), big_uint(5ULL), big_uint(std::uint16_t{5})})
        EXPECT_TRUE(matches(x, exact({5})));
    EXPECT_TRUE(matches({5U, 0U, 0U}, exact({5, 0, 0})));
    EXPECT_TRUE(
        matches({1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U}, exact({1, 2, 3, 4, 5, 6, 7, 8})));
    EXPECT_TRUE(matches({1U, 0U, 0U, 0U, 0U, 0U, 0U, 0U, 9U},
                        exact({1, 0, 0, 0, 0, 0, 0, 0, 9})));
}

TEST(Storage, Refusals)
{
    const std::string invalid = "std::invalid_argument: big_uint",
                      make = "::make_uninitialized: ";
    const std::string length = "std::length_error: big_uint";
    const std::string growth = length + "::max_size() exceeded";
    big_uint x = {1U, 2U}, largest = x;
    largest.set_size(65535);
    largest.set_bit(32 * 65534);
    const std::pair<std::string, std::function<void()>> cases[] = {
        {invalid + "::set_size: new size must not be zero", [&] { x.set_size(0); }},
        {growth, [&] { x.set_size(65536); }},
        {growth, [&] { x.set_size(65539); }},  // not 3
        {growth, [&] { x.set_size(0xFFFFFFFF); }},
        {growth, [&] { x.reserve(65536 + 8); }},
        {growth, [&] { largest.prepend(1); }},
        {growth, [&] { largest.divide(largest, x); }},
        {length + ": size > max_size()", [] { big_uint::make_uninitialized(65536); }},
        {length + ": size > max_size()", [] { big_uint::make_uninitialized(3, 65544); }},
        {invalid + make + "size == 0", [] { big_uint::make_uninitialized(0); }},
        {invalid + make + "size == 0", [] { big_uint::make_uninitialized(0, 65536); }},
        {invalid + make + "capacity < size", [] { big_uint::make_uninitialized(5, 0); }},
        {invalid + make + "capacity < size",
         [] { big_uint::make_uninitialized(70000, 65536); }},
        {invalid, [] { big_uint(-1); }},
        {invalid, [] { big_uint(std::initializer_list<unsigned>()); }},
    };
    for (const auto& [error, run] : cases) {
        EXPECT_TRUE(error_of(run).starts_with(error))
            << error_of(run) << ", not " << error;
        EXPECT_TRUE(matches(x, exact({1, 2})));
        EXPECT_TRUE(largest.reserved() == 65535 &&
                    largest.highest_set_bit() == 32 * 65534);
    }
}

// An allocation that fails changes no object and loses no memory.
TEST(Storage, FailedAllocations)
{
    if (failing_new::live == 0)
        GTEST_SKIP() << "the allocation functions are not the test's own";
    void (*const operations[])(big_uint & x, big_uint & y) = {
        [](auto& x, auto&) { x.reserve(500); },
        [](auto& x, auto&) { x.set_size(500); },
        [](auto& x, auto&) { x.prepend(1); },
        [](auto& x, auto& y) { x = std::as_const(y); },
        [](auto& x, auto& y) { y.divide(y, x); },
        [](auto&, auto& y) { big_uint copy(y); },
        [](auto&, auto&) { big_uint{1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U}; },
        [](auto&, auto& y) { y.to_string(), y.to_ustring(); },
        [](auto& x, auto&) { big_uint::pow5(1000, &x); },
        [](auto& x, auto&) { big_uint::pow10(1000, &x); },
    };
    big_uint first;
    big_uint::pow5(1000, &first);  // makes factors that stay
    for (const auto& run : operations)
        for (const unsigned n : {8U, 9U}) {
            bool failed = true;
            for (int allowed = 0; failed; ++allowed) {
                big_uint x = big_uint::make_uninitialized(n), y;
                std::fill(x.data(), x.data() + n, 1U);
                y.set_size(600)[599] = 1;
                const State before[] = {state_of(x), state_of(y)};
                const long live = failing_new::live;
                failing_new::remaining = allowed;
                try {
                    run(x, y);
                    failed = false;
                } catch (const std::bad_alloc&) {
                }
                failing_new::remaining = -1;
                EXPECT_TRUE(!failed ||
                            (failing_new::live == live && state_of(x) == before[0] &&
                             state_of(y) == before[1]));
                EXPECT_TRUE(failed || allowed > 0) << "nothing to fail";
            }
        }
}

}  // namespace
