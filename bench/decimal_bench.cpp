// Decimal arithmetic beside GCC's own decimal types.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "char/companion_decimal.h"

namespace {

constexpr std::size_t COUNT = 1000;

using Peer = void (*)(const void* x, const void* y, void* results, std::size_t n);

#define KIV_BENCH_PEERS(W)                                                              \
    extern "C" void kivbench_add##W(const void*, const void*, void*, std::size_t);      \
    extern "C" void kivbench_multiply##W(const void*, const void*, void*, std::size_t); \
    extern "C" void kivbench_divide##W(const void*, const void*, void*, std::size_t);   \
    extern "C" void kivbench_compare##W(const void*, const void*, void*, std::size_t);
KIV_BENCH_PEERS(64)
KIV_BENCH_PEERS(128)
#undef KIV_BENCH_PEERS

kiv::KDecimal64 decimal(std::uint64_t high, std::uint64_t low, int exponent,
                        kiv::KDecimal64*)
{
    return kivDec64ScaleB(kivDec64FromUInt64(high * 100'000'000 + low), exponent);
}

kiv::KDecimal128 decimal(std::uint64_t high, std::uint64_t low, int exponent,
                         kiv::KDecimal128*)
{
    const auto scaled = kivDec128ScaleB(kivDec128FromUInt64(high), 17);
    const auto digits = kivDec128Add(scaled, kivDec128FromUInt64(low));
    return kivDec128ScaleB(digits, exponent);
}

enum class Kind {
    PRICES,   // amounts of up to seven digits, two of them after the point
    FACTORS,  // such an amount and a quantity or rate of up to five digits
    FULL,     // all digits of the type, exponents a few apart
};

template <class Value>
struct Operands {
    std::vector<Value> x;
    std::vector<Value> y;

    explicit Operands(Kind kind)
    {
        constexpr std::uint64_t HALF =
            sizeof(Value) == 8 ? 100'000'000 : 100'000'000'000'000'000;
        std::mt19937_64 random(7);
        const auto full = [&] {
            return decimal(HALF / 10 + random() % (HALF / 10 * 9), random() % HALF,
                           static_cast<int>(random() % 8) - 20,
                           static_cast<Value*>(nullptr));
        };
        const auto few = [&](std::uint64_t limit, int exponent) {
            return decimal(0, 1 + random() % limit, exponent,
                           static_cast<Value*>(nullptr));
        };
        for (std::size_t i = 0; i < COUNT; ++i) {
            x.push_back(kind == Kind::FULL ? full() : few(9'999'999, -2));
            y.push_back(kind == Kind::FULL ? full()
                        : kind == Kind::PRICES
                            ? few(9'999'999, -2)
                            : few(99'999, -static_cast<int>(random() % 5)));
        }
    }
};

template <class Value, class Result, Result (*FUNCTION)(Value, Value)>
void ours(const void* px, const void* py, void* results, std::size_t n)
{
    const auto* x = static_cast<const Value*>(px);
    const auto* y = static_cast<const Value*>(py);
    auto* r = static_cast<Result*>(results);
    for (std::size_t i = 0; i < n; ++i)
        r[i] = FUNCTION(x[i], y[i]);
}

// Both give the same patterns, or nothing is measured.
template <class Value, class Result>
void add_row(const std::string& name, Kind kind, const char* kind_name, Peer our,
             Peer peer)
{
    const auto run = [kind](benchmark::State& state, Peer loop, Peer other) {
        const Operands<Value> operands(kind);
        std::vector<Result> got(COUNT);
        std::vector<Result> want(COUNT);
        loop(operands.x.data(), operands.y.data(), got.data(), COUNT);
        other(operands.x.data(), operands.y.data(), want.data(), COUNT);
        if (std::memcmp(got.data(), want.data(), COUNT * sizeof(Result)) != 0) {
            state.SkipWithError("the results differ");
            return;
        }
        for (auto _ : state) {
            loop(operands.x.data(), operands.y.data(), got.data(), COUNT);
            benchmark::DoNotOptimize(got.data());
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(COUNT));
    };
    const std::string end = std::string("/") + kind_name + "/" + std::to_string(COUNT);
    benchmark::RegisterBenchmark((name + "/kivxx" + end).c_str(), run, our, peer);
    benchmark::RegisterBenchmark((name + "/libgcc" + end).c_str(), run, peer, our);
}

#define KIV_BENCH_ROW(W, Function, function, Result, kind) \
    add_row<kiv::KDecimal##W, Result>(                     \
        "decimal" #W " " #function, Kind::kind, #kind,     \
        ours<kiv::KDecimal##W, Result, kivDec##W##Function>, kivbench_##function##W);

#define KIV_BENCH_WIDTH(W)                                          \
    KIV_BENCH_ROW(W, Add, add, kiv::KDecimal##W, PRICES)            \
    KIV_BENCH_ROW(W, Add, add, kiv::KDecimal##W, FACTORS)           \
    KIV_BENCH_ROW(W, Add, add, kiv::KDecimal##W, FULL)              \
    KIV_BENCH_ROW(W, Multiply, multiply, kiv::KDecimal##W, FACTORS) \
    KIV_BENCH_ROW(W, Multiply, multiply, kiv::KDecimal##W, FULL)    \
    KIV_BENCH_ROW(W, Divide, divide, kiv::KDecimal##W, PRICES)      \
    KIV_BENCH_ROW(W, Divide, divide, kiv::KDecimal##W, FACTORS)     \
    KIV_BENCH_ROW(W, Divide, divide, kiv::KDecimal##W, FULL)        \
    KIV_BENCH_ROW(W, Compare, compare, int, PRICES)                 \
    KIV_BENCH_ROW(W, Compare, compare, int, FACTORS)                \
    KIV_BENCH_ROW(W, Compare, compare, int, FULL)

const bool registered = [] {
    KIV_BENCH_WIDTH(64)
    KIV_BENCH_WIDTH(128)
    return true;
}();

}  // namespace
