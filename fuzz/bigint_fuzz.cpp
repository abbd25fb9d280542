// Operations of big_uint, chosen by the input, beside GMP's: value, return value, and
// words behind the target that must stay as they are.
//
// The first byte of the input chooses the kernels; the rest is a program of operations on
// a few registers.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include <kiv/big_uint.h>

#include "bigint/gmp_model.h"
#include "bigint/kernels.h"
#include "fuzz_support.h"
#include "platform/cpu.h"

namespace {

using namespace kivfuzz;
using namespace kivtest;

void choose_kernels(unsigned choice)
{
    using namespace kiv::words;
    const Kernels* set = &portable_kernels;
#if defined(__x86_64__)
    if (choice % 3 == 1 && kiv::platform::cpu_has_adx())
        set = &adx_kernels;
    if (choice % 3 == 2 && kiv::platform::cpu_has_avx512_ifma())
        set = &ifma_kernels;
#endif
    use_kernels(*set);
}

mpz_class value_of_object(const big_uint& x)
{
    return value_of(Words(x.data(), x.data() + x.size()));
}

mpz_class modulus(unsigned words)
{
    return power(2, 32ul * words);
}

// Register t, of operands a and b.
class Machine {
public:
    explicit Machine(Bytes bytes) : m_bytes(bytes)
    {
        for (unsigned i = 0; i < m_registers.size(); ++i)
            put(i, {0});
    }

    void run()
    {
        for (int steps = 0; m_bytes.left() > 0 && steps < 200; ++steps) {
            const unsigned which = m_bytes.byte();
            const unsigned t = which % 4, a = which / 4 % 4, b = which / 16 % 4;
            step(m_bytes.below(15), t, a, b);
        }
    }

private:
    // Assignment of a short value leaves the guards behind.
    void put(unsigned t, const Words& words)
    {
        big_uint& x = m_registers[t] = guarded(words);
        std::fill(x.data() + x.size(), x.data() + x.reserved(), GUARD);
    }

    void load(unsigned t)
    {
        // Sizes up to those that the block kernels and the divisions of long values want.
        static constexpr std::uint32_t HARD[] = {0, 1, 0x80000000, 0xFFFFFFFF};
        const unsigned size = m_bytes.byte();
        Words words(1 + (size < 128 ? size % 8 : size));
        const unsigned fill = m_bytes.byte();
        for (std::uint32_t& w : words)
            w = m_bytes.left() > 0 && fill % 8 != 7 ? m_bytes.number(4)
                                                    : HARD[fill / 8 % 4];
        put(t, words);
    }

    // A target of n words, which may be an operand only if it has that size already.
    big_uint& target(unsigned t, unsigned n)
    {
        if (m_registers[t].size() != n)
            put(t, Words(n));
        return m_registers[t];
    }

    void expect(unsigned t, const mpz_class& value)
    {
        const big_uint& x = m_registers[t];
        require(holds(x, words_of(value, x.size())));
    }

    void step(unsigned operation, unsigned t, unsigned a, unsigned b)
    {
        if (operation < 6)
            of_one(operation, t);
        else
            of_two(operation, t, a, b);
    }

    void of_one(unsigned operation, unsigned t)
    {
        big_uint& x = m_registers[t];
        const mpz_class z = value_of_object(x), limit = modulus(x.size());
        const unsigned w = m_bytes.number(4);
        switch (operation) {
        case 0:
            load(t);
            break;
        case 1:
            require(x.add(w) == (z + w >= limit));
            expect(t, z + w);
            break;
        case 2:
            require(x.multiply(w) == mpz_class(z * w / limit));
            expect(t, z * w);
            break;
        case 3:
            if (w == 0)
                break;
            require(x.divide(w) == mpz_class(z % w));
            expect(t, z / w);
            break;
        case 4:
            check_text_and_bits(x, z);
            break;
        default:
            require(x.increment() == (z + 1 == limit));
            expect(t, z + 1);
        }
    }

    void check_text_and_bits(const big_uint& x, const mpz_class& z)
    {
        const std::string text = x.to_string();
        require(text == z.get_str());
        require(x.to_ustring() == kiv::ustring(text.begin(), text.end()));
        big_uint back = big_uint::make_uninitialized(x.size());
        std::fill_n(back.data(), back.size(), 0);
        for (const char digit : text)
            require(back.multiply_by_10() == 0 &&
                    !back.add(static_cast<unsigned>(digit - '0')));
        require(back == x);
        require(z == 0 ? x.highest_set_bit() == -1
                       : x.bit_length() == mpz_sizeinbase(z.get_mpz_t(), 2));
        require(x.bit_count() == mpz_popcount(z.get_mpz_t()));
        require(x.ilog10() == (z == 0 ? -1 : static_cast<int>(text.size()) - 1));
        const unsigned k = m_bytes.number(2) % (32 * x.size() + 40);
        const mpz_class rest = z % power(2, k), half = power(2, k) / 2;
        require(x.compute_rounding_info(k) ==
                (k == 0 ? 0U : (rest >= half ? 2U : 0U) + (rest % half != 0 ? 1U : 0U)));
    }

    void of_two(unsigned operation, unsigned t, unsigned a, unsigned b)
    {
        const mpz_class za = value_of_object(m_registers[a]);
        const mpz_class zb = value_of_object(m_registers[b]);
        const unsigned na = m_registers[a].size(), nb = m_registers[b].size();
        const mpz_class limit = modulus(m_registers[t].size());
        const unsigned k = m_bytes.number(2) % (32 * na + 40);
        big_uint &x = m_registers[t], &p = m_registers[a], &q = m_registers[b];
        switch (operation) {
        case 6:
            require(x.add(p, q) == (za + zb >= limit));
            return expect(t, za + zb);
        case 7: {
            mpz_class above;
            mpz_fdiv_q(above.get_mpz_t(), mpz_class(za - zb).get_mpz_t(),
                       limit.get_mpz_t());
            const long clamped = above < -2 ? -2 : above > 2 ? 2 : above.get_si();
            require(x.subtract(p, q) == clamped);
            return expect(t, za - zb);
        }
        case 8:
            if (t == a || t == b || na + nb > 300)
                return;
            target(t, na + nb + k % 3).multiply(p, q);
            return expect(t, za * zb);
        case 9:
            return divide(t, a, b, za, zb);
        case 10:
            x.shift_left(p, k);
            return expect(t, za << k);
        case 11:
            x.shift_right(p, k);
            return expect(t, za >> k);
        case 12:
            require(p.compare(q) == (za > zb) - (za < zb));
            require((p == q) == (za == zb) && (p < q) == (za < zb));
            return;
        case 13:
            if (std::min(na, nb) < x.size())
                return;
            x.bit_and(p, q);
            return expect(t, za & zb);
        default:
            x = p;
            require(x == p && x.size() == na);
            put(t, words_of(za, na));
        }
    }

    void divide(unsigned t, unsigned a, unsigned b, const mpz_class& za,
                const mpz_class& zb)
    {
        const big_uint dividend = m_registers[a], divisor = m_registers[b];
        const unsigned r = (t + 1) % 4;
        big_uint& quotient = target(t, dividend.size());
        big_uint& remainder = target(r, divisor.size());
        if (zb == 0) {
            try {
                quotient.divide(dividend, divisor, remainder);
                require(false);
            } catch (const std::overflow_error&) {
            }
            return;
        }
        quotient.divide(dividend, divisor, remainder);
        expect(t, za / zb);
        expect(r, za % zb);
        quotient.divide(dividend, divisor);
        expect(t, za / zb);
    }

    Bytes m_bytes;
    std::array<big_uint, 4> m_registers;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    Bytes bytes(data, size);
    choose_kernels(bytes.byte());
    Machine(bytes).run();
    return 0;
}
