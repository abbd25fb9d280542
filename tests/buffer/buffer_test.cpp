#include <kiv/buffer.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/errors.h"

namespace {

using kiv::BasicBuffer;
using kiv::Buffer;
using kiv::BufferBase;
using kiv::char16;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

template <class B>
concept Writable = requires(B b)
{
    b.compact();
};

static_assert(Writable<Buffer<char16>> && !Writable<Buffer<const char16>>);
static_assert(std::is_convertible_v<Buffer<char16>&, Buffer<const char16>&>);
static_assert(!std::is_copy_constructible_v<BasicBuffer<char16>>);
// Three indices and a pointer behind the table of virtual functions.
static_assert(sizeof(Buffer<char16>) == 5 * sizeof(void*));

constexpr const char* OVERFLOW = "buffer overflow";
constexpr const char* UNDERFLOW = "buffer underflow";
constexpr const char* INDEX = "index + num_bytes > limit()";
constexpr const char* POSITION = "new_position > limit()";
constexpr const char* LIMIT = "new_limit > capacity()";

template <class Operation>
std::string error_of(Operation operation)
{
    return kivtest::what_of<std::exception>(operation);
}

using Indices = std::vector<std::size_t>;

Indices indices(const BufferBase& b)
{
    EXPECT_EQ(b.remaining(), b.limit() - b.position());
    EXPECT_EQ(b.hasRemaining(), b.position() < b.limit());
    return {b.position(), b.limit(), b.capacity()};
}

// --- Random operations beside a model ------------------------------------------

constexpr std::size_t GUARD = 8;  // elements around a buffer's array

template <class T>
struct Model {
    T* data() { return array.data() + GUARD; }
    T& element(std::size_t index)
    {
        require(index < limit, INDEX);
        return data()[index];
    }
    // The elements that n steps from the position pass.
    T* advance(std::size_t n, const char* error)
    {
        require(n <= limit - at, error);
        return data() + std::exchange(at, at + n);
    }
    static void require(bool holds, const char* error)
    {
        if (!holds)
            throw std::logic_error(error);
    }

    std::vector<T> array;  // guards included
    std::size_t at, limit, capacity;
};

// One random operation on both, with the same outcome.
template <class T, class Below>
void expect_same_step(Buffer<T>& b, Model<T>& m, Below below)
{
    // Mostly sizes near the capacity, at times ones whose sum wraps.
    const std::size_t n = below(8) == 0 ? NPOS - below(8) : below(m.capacity + 3);
    const std::size_t from = below(m.capacity + 1);  // within its own array
    const std::size_t few = std::min(below(5), m.capacity - from);
    const T value = m.array[below(m.array.size())];
    const std::vector<T> values(few, value);
    const std::size_t some = std::min(n, few);
    Buffer<const T> source(values.data(), few);
    std::vector<T> got(n <= m.capacity ? n : 0);
    std::vector<T> want = got;

    const auto move = [](const T* x, T* y, std::size_t size) {
        const std::vector<T> copy(x, x + size);
        std::copy(copy.begin(), copy.end(), y);
    };
    using Operation = std::function<void()>;
    const std::pair<Operation, Operation> operations[] = {
        {[&] { got = {b.get()}; }, [&] { want = {*m.advance(1, UNDERFLOW)}; }},
        {[&] { got = {b.get(n)}; }, [&] { want = {m.element(n)}; }},
        {[&] { b.get(got.data(), n); },
         [&] { move(m.advance(n, UNDERFLOW), want.data(), n); }},
        {[&] { b.get(b.data() + from, few); },
         [&] { move(m.advance(few, UNDERFLOW), m.data() + from, few); }},
        {[&] { b.put(value); }, [&] { *m.advance(1, OVERFLOW) = value; }},
        {[&] { b.put(n, value); }, [&] { m.element(n) = value; }},
        {[&] { b.put(values.data(), few); },
         [&] { move(values.data(), m.advance(few, OVERFLOW), few); }},
        {[&] { b.put(b.data() + from, few); },
         [&] { move(m.data() + from, m.advance(few, OVERFLOW), few); }},
        {[&] { b.put(source, n); },
         [&] { move(values.data(), m.advance(some, OVERFLOW), some); }},
        {[&] { b.compact(); },
         [&] {
             move(m.data() + m.at, m.data(), m.limit - m.at);
             m.at = m.limit - m.at;
             m.limit = m.capacity;
         }},
        {[&] { b.flip(); }, [&] { m.limit = std::exchange(m.at, 0); }},
        {[&] { b.clear(); },
         [&] {
             m.limit = m.capacity;
             m.at = 0;
         }},
        {[&] { b.rewind(); }, [&] { m.at = 0; }},
        {[&] { b.limit(n); },
         [&] {
             m.require(n <= m.capacity, LIMIT);
             m.limit = n;
             m.at = std::min(m.at, n);
         }},
        {[&] { b.position(n); },
         [&] {
             m.require(n <= m.limit, POSITION);
             m.at = n;
         }},
    };
    const auto& [real, modelled] = operations[below(std::size(operations))];
    ASSERT_EQ(error_of(real), error_of(modelled));
    ASSERT_EQ(indices(b), (Indices{m.at, m.limit, m.capacity}));
    ASSERT_TRUE(got == want);
    ASSERT_TRUE(std::equal(m.array.begin(), m.array.end(), b.data() - GUARD));
}

template <class T>
void expect_follows_model()
{
    std::mt19937 random(31);
    const auto below = [&](std::size_t n) {
        return static_cast<std::size_t>(random() % n);
    };
    using Unit = std::conditional_t<std::is_same_v<T, char16>, char16_t, T>;
    for (int round = 0; round < 400; ++round) {
        const std::size_t capacity = below(12);
        std::vector<T> array;
        for (std::size_t i = 0; i < capacity + 2 * GUARD; ++i)
            array.push_back(static_cast<Unit>((i + 100) * 257));  // both bytes
        Model<T> model{array, 0, capacity, capacity};
        Buffer<T> buffer(array.data() + GUARD, capacity);
        for (int step = 0; step < 60 && !testing::Test::HasFailure(); ++step)
            expect_same_step(buffer, model, below);
    }
}

TEST(Buffer, FollowsModel)
{
    expect_follows_model<unsigned char>();
    expect_follows_model<char16>();
}

TEST(Buffer, TransfersAndCopies)
{
    char16 array[4] = {u'a', u'b', u'c', u'd'};
    Buffer<char16> buffer(array, 4);
    Buffer<const char16> source(array, 4);
    buffer.position(4);
    EXPECT_THROW(buffer.put(source), kiv::BufferOverflowError);
    EXPECT_EQ(&buffer.put(source, 0), &buffer) << "full, but nothing to transfer";
    buffer.put(static_cast<const char16*>(nullptr), 0).get(nullptr, 0);
    EXPECT_THROW(buffer.get(), kiv::BufferUnderflowError);
    EXPECT_THROW(buffer.get(4), std::out_of_range);
    EXPECT_THROW(buffer.limit(5), std::invalid_argument);
    EXPECT_THROW(buffer.position(5), std::invalid_argument);

    Buffer<char16> copy = buffer;  // shares the array, has its own position
    copy.clear();
    copy.put(u'x').put(1, u'y').put(2u, 0x7A).put(0, u'w');
    EXPECT_TRUE(array[0] == u'w' && array[1] == u'y' && array[2] == u'z');
    EXPECT_EQ(error_of([&] { copy.put(-1, u'x'); }), INDEX);
    EXPECT_EQ(indices(buffer), (Indices{4, 4, 4}));
}

// --- What derived classes see --------------------------------------------------

struct Open : BasicBuffer<char16> {
    Open(char16* p, std::size_t position, std::size_t limit, std::size_t capacity)
        : BasicBuffer(p, position, limit, capacity)
    {
    }
    using BasicBuffer::data;
    using BasicBuffer::init;
    using BufferBase::check_index;
    using BufferBase::next_get_index;
    using BufferBase::next_put_index;
};

TEST(BufferDerived, Construction)
{
    const std::pair<Indices, std::string> cases[] = {
        {{1, 2, 3}, "nothing thrown"},
        {{NPOS, NPOS, NPOS}, "nothing thrown"},
        {{5, 4, 3}, "position > limit"},  // the first of two faults
        {{0, NPOS, NPOS - 1}, "limit > capacity"},
    };
    char16 array[4];
    for (const auto& c : cases) {
        const Indices& at = c.first;
        EXPECT_EQ(error_of([&] { Open(array, at[0], at[1], at[2]); }), c.second);
        Open open(nullptr, 0, 0, 0);
        EXPECT_EQ(error_of([&] { open.init(array, at[0], at[1], at[2]); }), c.second);
        const bool done = open.data() == array;  // all of it or nothing
        EXPECT_EQ(done, c.second == "nothing thrown");
        EXPECT_EQ(indices(open), done ? at : (Indices{0, 0, 0}));
        open.init(array, 1);
        EXPECT_EQ(indices(open), (Indices{0, 1, 1}));
    }
    EXPECT_THROW(Open(array, 1, 0, 3), std::invalid_argument);
}

TEST(BufferDerived, CheckedIndices)
{
    char16 array[8];
    Open open(array, 1, 4, 8);
    EXPECT_EQ(open.check_index(0, 4), 0u);
    EXPECT_EQ(open.check_index(3, 0), 3u);
    const std::pair<std::size_t, std::size_t> outside[] = {
        {4, 0}, {3, 2}, {1, NPOS}, {NPOS, 1}};  // the last two sums wrap
    for (const auto& [index, size] : outside)
        EXPECT_THROW(open.check_index(index, size), std::out_of_range) << index;
    EXPECT_EQ(open.next_get_index(2), 1u);
    EXPECT_EQ(open.next_put_index(0), 3u);
    EXPECT_THROW(open.next_get_index(NPOS), kiv::BufferUnderflowError);
    EXPECT_THROW(open.next_put_index(NPOS - 1), kiv::BufferOverflowError);
    EXPECT_EQ(indices(open), (Indices{3, 4, 8}));
}

// Fetches or hands on one element per call of a hook; after a fetch the
// elements are in another array.
struct Pipe : Buffer<unsigned char> {
    Pipe() : Buffer(windows[0], 4) {}
    void underflow() override
    {
        ++calls;
        if (next == 9)
            return Buffer::underflow();
        compact();
        put(static_cast<unsigned char>(++next));
        unsigned char* const other = data() == windows[0] ? windows[1] : windows[0];
        std::copy_n(data(), 4, other);
        std::fill_n(data(), 4, static_cast<unsigned char>(0));
        init(other, 0, position(), 4);
    }
    void overflow() override
    {
        ++calls;
        if (next == 5)
            return Buffer::overflow();
        flip();
        EXPECT_EQ(get(), ++next);
        compact();
    }
    unsigned char windows[2][4] = {};
    int next = 0;
    int calls = 0;
};

TEST(BufferDerived, HooksAreCalledUntilItSuffices)
{
    unsigned char text[9];
    Pipe in;
    in.limit(0);
    in.get(text, 3);
    EXPECT_EQ(in.calls, 3);
    text[3] = in.get();
    in.get(text + 4, 4).get(text, 0);
    EXPECT_EQ(in.calls, 8) << "nothing wanted, nothing fetched";
    EXPECT_EQ(error_of([&] { in.get(text + 8, 2); }), UNDERFLOW);
    EXPECT_EQ(in.remaining(), 1u) << "what was fetched stays";
    text[8] = in.get();
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(text[i], i + 1);

    Pipe out;  // checks the order of what it hands on
    out.put(text[0]).put(text + 1, 3);
    EXPECT_EQ(out.calls, 0);
    Buffer<const unsigned char> source(text + 4, 3);
    out.put(source).put(text[7]);
    EXPECT_EQ(out.calls, 4);
    EXPECT_EQ(error_of([&] { out.put(text, 4); }), OVERFLOW);
    EXPECT_EQ(out.position(), 3u) << "one more was handed on, none was written";
}

// The target's hook takes an element away from the source, so that the source
// cannot give what the transfer was sized for.
TEST(BufferDerived, SourceThatThrows)
{
    struct Target : Buffer<unsigned char> {
        using Buffer::Buffer;
        void overflow() override
        {
            limit(capacity());
            source->get();
        }
        Buffer<unsigned char>* source;
    };
    unsigned char text[] = {1, 2, 3, 4};
    unsigned char array[8] = {};
    Buffer<unsigned char> source(text, 4);
    Target target(array, 8);
    target.source = &source;
    target.limit(2).position(1);
    EXPECT_EQ(error_of([&] { target.put(source); }), UNDERFLOW);
    EXPECT_EQ(indices(target), (Indices{1, 8, 8}));
    EXPECT_EQ(indices(source), (Indices{1, 4, 4}));
    EXPECT_EQ(std::count(array, array + 8, 0), 8) << "nothing was written";
}

}  // namespace
