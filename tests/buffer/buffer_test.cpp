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

namespace {

using kiv::BasicBuffer;
using kiv::Buffer;
using kiv::BufferBase;
using kiv::char16;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

template <class B>
concept Writable = requires(B b, typename B::value_type v)
{
    b.put(v);
    b.put(&v, std::size_t{});
    b.compact();
};

template <class T>
constexpr bool class_tree_is_right =
    std::is_base_of_v<BufferBase, BasicBuffer<T>>&&
        std::is_base_of_v<BasicBuffer<T>, Buffer<const T>>&&
            std::is_convertible_v<Buffer<T>&, Buffer<const T>&>&& Writable<Buffer<T>> &&
    !Writable<Buffer<const T>> && !std::is_copy_constructible_v<BasicBuffer<T>> &&
    std::has_virtual_destructor_v<BufferBase> &&
    // Three indices and a pointer behind the table of virtual functions.
    sizeof(Buffer<T>) == 5 * sizeof(void*) &&
    std::is_same_v<decltype(std::declval<Buffer<const T>&>().data()), const T*> &&
    std::is_same_v<decltype(std::declval<Buffer<T>&>().data()), T*>;
static_assert(class_tree_is_right<unsigned char> && class_tree_is_right<char16>);

template <class T>
T element(std::size_t value)
{
    if constexpr (std::is_same_v<T, char16>)
        return static_cast<char16_t>(value * 257);  // both bytes count
    else
        return static_cast<unsigned char>(value);
}

constexpr const char* OVERFLOW = "overflow: buffer overflow";
constexpr const char* UNDERFLOW = "underflow: buffer underflow";
constexpr const char* INDEX = "range: index + num_bytes > limit()";
constexpr const char* POSITION = "argument: new_position > limit()";
constexpr const char* LIMIT = "argument: new_limit > capacity()";

// Runs the operation; its error's type and text, "" if none.
template <class Operation>
std::string error_of(Operation operation)
{
    try {
        operation();
    } catch (const kiv::BufferOverflowError& error) {
        return std::string("overflow: ") + error.what();
    } catch (const kiv::BufferUnderflowError& error) {
        return std::string("underflow: ") + error.what();
    } catch (const std::invalid_argument& error) {
        return std::string("argument: ") + error.what();
    } catch (const std::out_of_range& error) {
        return std::string("range: ") + error.what();
    } catch (const char* model_error) {
        return model_error;
    }
    return {};
}

using Indices = std::vector<std::size_t>;

Indices indices(const BufferBase& b)
{
    EXPECT_EQ(b.remaining(), b.limit() - b.position());
    EXPECT_EQ(b.hasRemaining(), b.position() < b.limit());
    return {b.position(), b.limit(), b.capacity()};
}

template <class T>
class BufferOf : public testing::Test {
};

using ElementTypes = testing::Types<unsigned char, char16>;
TYPED_TEST_SUITE(BufferOf, ElementTypes);

// --- Random operations beside a model ------------------------------------------

constexpr std::size_t GUARD = 8;  // elements around a buffer's array

// Follows the rules of each operation over an array of its own, guards included.
template <class T>
struct Model {
    Model(std::vector<T> whole, std::size_t size)
        : array(std::move(whole)), at_limit(size), capacity(size)
    {
    }
    T* data() { return array.data() + GUARD; }
    std::size_t remaining() const { return at_limit - at; }
    void require(bool holds, const char* error) const
    {
        if (!holds)
            throw error;
    }

    T get()
    {
        T value;
        get(&value, 1);
        return value;
    }
    T get(std::size_t index)
    {
        require(index < at_limit, INDEX);
        return data()[index];
    }
    void get(T* dst, std::size_t n)
    {
        require(n <= remaining(), UNDERFLOW);
        std::vector<T> copy(data() + at, data() + at + n);
        std::copy(copy.begin(), copy.end(), dst);
        at += n;
    }
    void put(T value) { put(&value, 1); }
    void put(std::size_t index, T value)
    {
        require(index < at_limit, INDEX);
        data()[index] = value;
    }
    void put(const T* src, std::size_t n)
    {
        require(n <= remaining(), OVERFLOW);
        std::vector<T> copy(src, src + n);
        std::copy(copy.begin(), copy.end(), data() + at);
        at += n;
    }
    // Its own source too: what is read follows what is being written.
    void put(Model& src, std::size_t n = NPOS)
    {
        n = std::min(n, src.remaining());
        require(n <= remaining(), OVERFLOW);
        T* const to = data() + at;
        at += n;
        if (n > src.remaining()) {
            at -= n;
            throw UNDERFLOW;
        }
        src.get(to, n);
    }
    void compact()
    {
        std::vector<T> rest(data() + at, data() + at_limit);
        std::copy(rest.begin(), rest.end(), data());
        at = rest.size();
        at_limit = capacity;
    }
    void flip() { at_limit = std::exchange(at, 0); }
    void clear()
    {
        at = 0;
        at_limit = capacity;
    }
    void rewind() { at = 0; }
    void limit(std::size_t n)
    {
        require(n <= capacity, LIMIT);
        at_limit = n;
        at = std::min(at, n);
    }
    void position(std::size_t n)
    {
        require(n <= at_limit, POSITION);
        at = n;
    }

    std::vector<T> array;
    std::size_t at = 0, at_limit, capacity;
};

constexpr std::size_t OPERATIONS = 17;

struct Step {
    std::size_t operation, n, few, value;
};

// Applies one step to a buffer or a model; returns what was read.
template <class T, class B>
std::vector<T> apply(const Step& step, B& b, B& other, std::size_t capacity)
{
    const T value = element<T>(step.value);
    const std::vector<T> values(step.few, value);
    std::vector<T> got(step.n <= capacity ? step.n : 0);
    const std::size_t from = std::min(step.n, capacity);  // within its own array
    const std::size_t count = std::min(step.few, capacity - from);
    const std::function<void()> operations[] = {
        [&] { got.assign(1, b.get()); },
        [&] { got.assign(1, b.get(step.n)); },
        [&] { b.get(got.data(), step.n); },
        [&] { b.get(b.data() + from, count); },
        [&] { b.put(value); },
        [&] { b.put(step.n, value); },
        [&] { b.put(values.data(), values.size()); },
        [&] { b.put(b.data() + from, count); },
        [&] { b.put(other, step.n); },
        [&] { b.put(other); },
        [&] { b.put(b, step.n); },
        [&] { b.compact(); },
        [&] { b.flip(); },
        [&] { b.clear(); },
        [&] { b.rewind(); },
        [&] { b.limit(step.n); },
        [&] { b.position(step.n); },
    };
    static_assert(std::size(operations) == OPERATIONS);
    operations[step.operation]();
    return got;
}

TYPED_TEST(BufferOf, RandomOperations)
{
    using T = TypeParam;
    std::mt19937 random(31);
    const auto below = [&](std::size_t n) {
        return static_cast<std::size_t>(random() % n);
    };

    for (int round = 0; round < 400; ++round) {
        const std::size_t capacity = below(12);
        std::vector<T> array(capacity + 2 * GUARD);
        for (std::size_t i = 0; i < array.size(); ++i)
            array[i] = element<T>(i + 100);
        std::vector<T> source_array = array;
        Model<T> model(array, capacity);
        Model<T> source_model(array, capacity);
        Buffer<T> buffer(array.data() + GUARD, capacity);
        Buffer<T> source(source_array.data() + GUARD, capacity);

        for (int i = 0; i < 60; ++i) {
            // Mostly sizes near the capacity, at times ones whose sum wraps.
            const std::size_t near = below(capacity + 3);
            const Step step{below(OPERATIONS), below(8) == 0 ? NPOS - below(8) : near,
                            below(5), below(90)};
            SCOPED_TRACE(testing::Message() << step.operation << ' ' << step.n);
            std::vector<T> got;
            std::vector<T> want;
            const std::string want_error =
                error_of([&] { want = apply<T>(step, model, source_model, capacity); });
            ASSERT_EQ(error_of([&] { got = apply<T>(step, buffer, source, capacity); }),
                      want_error);
            ASSERT_TRUE(got == want);
            ASSERT_EQ(indices(buffer), (Indices{model.at, model.at_limit, capacity}));
            ASSERT_TRUE(array == model.array) << "elements or guards";
            ASSERT_EQ(source.position(), source_model.at);
            ASSERT_TRUE(source_array == source_model.array);
            if (!source.hasRemaining()) {
                source.rewind();
                source_model.rewind();
            }
        }
    }
}

TYPED_TEST(BufferOf, WrittenOutRows)
{
    using T = TypeParam;
    T array[16];
    for (std::size_t i = 0; i < 16; ++i)
        array[i] = element<T>(i);
    Buffer<T> buffer(array, 16);
    buffer.limit(10).position(3);
    EXPECT_EQ(&buffer.compact(), &buffer);
    EXPECT_EQ(indices(buffer), (Indices{7, 16, 16}));
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_TRUE(array[i] == element<T>(i < 7 ? i + 3 : i)) << i;

    buffer.limit(4);
    EXPECT_EQ(indices(buffer), (Indices{4, 4, 16})) << "no position beyond the limit";
    EXPECT_EQ(error_of([&] { buffer.get(4); }), INDEX) << "not the capacity";

    // Full: nothing to transfer is no error.
    Buffer<const T> source(array, 16);
    EXPECT_EQ(&buffer.put(source, 0), &buffer);
    source.position(16);
    EXPECT_EQ(&buffer.put(source), &buffer);
    EXPECT_EQ(&buffer.put(static_cast<const T*>(nullptr), 0), &buffer);
    EXPECT_EQ(&buffer.get(nullptr, 0), &buffer);
    source.rewind();
    EXPECT_EQ(error_of([&] { buffer.put(source); }), OVERFLOW);
    Buffer<const T> none(nullptr, 0);
    EXPECT_EQ(&none.get(nullptr, 0), &none);
    EXPECT_EQ(error_of([&] { none.get(); }), UNDERFLOW);

    Buffer<T> copy = buffer;  // shares the array, has its own position
    copy.clear();
    copy.put(element<T>(99)).put(1, element<T>(2)).put(2u, element<T>(3));
    EXPECT_TRUE(array[0] == element<T>(99) && array[1] == element<T>(2) &&
                array[2] == element<T>(3));
    EXPECT_EQ(indices(buffer), (Indices{4, 4, 16}));
    EXPECT_EQ(error_of([&] { copy.put(-1, element<T>(1)); }), INDEX);
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
    struct Case {
        std::size_t position, limit, capacity;
        const char* error;
    };
    static constexpr Case cases[] = {
        {0, 0, 0, ""},
        {1, 2, 3, ""},
        {NPOS, NPOS, NPOS, ""},
        {5, 4, 3, "argument: position > limit"},  // the first of two faults
        {1, 0, 3, "argument: position > limit"},
        {0, 4, 3, "argument: limit > capacity"},
        {0, NPOS, NPOS - 1, "argument: limit > capacity"},
    };
    char16 array[4];
    char16 elsewhere[1];
    for (const Case& c : cases) {
        const bool valid = *c.error == '\0';
        EXPECT_EQ(error_of([&] { Open(array, c.position, c.limit, c.capacity); }),
                  c.error);
        Open open(array, 1, 2, 4);
        EXPECT_EQ(
            error_of([&] { open.init(elsewhere, c.position, c.limit, c.capacity); }),
            c.error);
        EXPECT_EQ(open.data(), valid ? elsewhere : array) << "unchanged on failure";
        EXPECT_EQ(indices(open), valid ? (Indices{c.position, c.limit, c.capacity})
                                       : (Indices{1, 2, 4}));
        open.init(elsewhere, 1);
        EXPECT_EQ(indices(open), (Indices{0, 1, 1}));
    }
}

TEST(BufferDerived, Indices)
{
    struct Case {
        std::size_t index, n;
        bool valid;
        const char* why;
    };
    static constexpr Case cases[] = {
        {0, 4, true, "all"},
        {3, 0, true, "none of the last"},
        {4, 0, false, "the index itself must be below the limit"},
        {3, 2, false, "too many"},
        {1, NPOS, false, "the sum wraps to 0"},
        {NPOS, 1, false, "the sum wraps to 0"},
    };
    char16 array[8];
    Open open(array, 1, 4, 8);
    for (const Case& c : cases)
        EXPECT_EQ(error_of([&] { EXPECT_EQ(open.check_index(c.index, c.n), c.index); }),
                  c.valid ? "" : INDEX)
            << c.why;
    EXPECT_EQ(open.next_get_index(2), 1u);
    EXPECT_EQ(open.next_put_index(0), 3u);
    EXPECT_EQ(error_of([&] { open.next_get_index(NPOS); }), UNDERFLOW)
        << "no wrapping sum";
    EXPECT_EQ(error_of([&] { open.next_put_index(NPOS - 1); }), OVERFLOW);
    EXPECT_EQ(indices(open), (Indices{3, 4, 8}));
}

// Fetches or hands on one element per call of a hook.
struct Pipe : Buffer<unsigned char> {
    Pipe() : Buffer(window, 4) {}
    void underflow() override
    {
        ++calls;
        if (next == 9)
            return Buffer::underflow();
        compact();
        put(static_cast<unsigned char>(++next));
        flip();
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
    unsigned char window[4] = {};
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

// The destination's hook takes the elements away from the source: what
// remained when the transfer was sized is gone when it is read.
TEST(BufferDerived, SourceThatThrows)
{
    struct Thief : Buffer<unsigned char> {
        Thief(unsigned char* p, Buffer<const unsigned char>& from)
            : Buffer(p, 8), source(from)
        {
            limit(2).position(1);
        }
        void overflow() override
        {
            limit(capacity());
            source.position(source.limit() - 1);
        }
        Buffer<const unsigned char>& source;
    };
    const unsigned char text[] = {1, 2, 3, 4};
    unsigned char array[8] = {};
    Buffer<const unsigned char> source(text, 4);
    Thief thief(array, source);
    EXPECT_EQ(error_of([&] { thief.put(source); }), UNDERFLOW);
    EXPECT_EQ(indices(thief), (Indices{1, 8, 8})) << "back where the transfer began";
    EXPECT_EQ(indices(source), (Indices{3, 4, 4}));
    EXPECT_TRUE(std::all_of(array, array + 8, [](int c) { return c == 0; }));
}

}  // namespace
