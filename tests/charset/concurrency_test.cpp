// Whole-string conversion with cached coders, from one thread and from many.

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

namespace {

using namespace kiv::literals;
using kiv::Buffer;
using kiv::char16;
using kiv::Charset;
using kiv::CoderResult;
using kiv::CodingErrorAction;
using kiv::ustring;

// --- The cache ------------------------------------------------------------------------

// Counts its coders. The decoder runs a hook of the test and then hands out a
// replacement for every byte; the encoder fails on 'x'.
class CountingCharset : public Charset {
public:
    explicit CountingCharset(const NameView& name) : Charset(0, name, {}) {}

    struct Counted {
        explicit Counted(std::atomic<int>& live) : m_live(live) { ++m_live; }
        ~Counted() { --m_live; }
        Counted(const Counted&) = delete;

    private:
        std::atomic<int>& m_live;
    };

    class Decoder : public kiv::CharsetDecoder, Counted {
    public:
        explicit Decoder(const CountingCharset* charset)
            : CharsetDecoder(charset, 1, 1), Counted(charset->live), m_charset(charset)
        {
            ++charset->made;
        }

    private:
        void implOnMalformedInput(CodingErrorAction action) override
        {
            m_charset->told += action == CodingErrorAction::REPLACE;
        }
        void implOnUnmappableCharacter(CodingErrorAction action) override
        {
            m_charset->told += action == CodingErrorAction::REPLACE;
        }
        CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>&) override
        {
            if (m_charset->hook)
                m_charset->hook();
            return in.hasRemaining() ? CoderResult::unmappable(1)
                                     : CoderResult::underflow();
        }

        const CountingCharset* m_charset;
    };

    class Encoder : public kiv::CharsetEncoder, Counted {
    public:
        explicit Encoder(const CountingCharset* charset)
            : CharsetEncoder(charset, 1, 1), Counted(charset->live)
        {
            ++charset->made;
        }

    private:
        CoderResult encodeLoop(Buffer<const char16>& in,
                               Buffer<unsigned char>& out) override
        {
            while (in.hasRemaining()) {
                if (in.get(in.position()) == u'x')
                    throw std::runtime_error("x");
                if (!out.hasRemaining())
                    return CoderResult::overflow();
                out.put(static_cast<unsigned char>(static_cast<char16_t>(in.get())));
            }
            return CoderResult::underflow();
        }
    };

    // The encoder's replacement is checked by a decoder that knows every byte.
    std::unique_ptr<kiv::CharsetDecoder> newDecoder() const override
    {
        if (checking)
            return ISO_8859_1->newDecoder();
        return std::make_unique<Decoder>(this);
    }
    std::unique_ptr<kiv::CharsetEncoder> newEncoder() const override
    {
        checking = true;
        auto encoder = std::make_unique<Encoder>(this);
        checking = false;
        return encoder;
    }

    mutable std::atomic<int> live{0};
    mutable std::atomic<int> made{0};
    mutable std::atomic<int> told{0};
    mutable bool checking = false;
    std::function<void()> hook;
};

TEST(CachedCoders, AreReused)
{
    auto* const charset = new CountingCharset(u"x-counting-1"_usv);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(charset->decode("ab"), u"\uFFFD\uFFFD"_us);
    EXPECT_EQ(charset->decode('a'), u"\uFFFD"_us);
    EXPECT_EQ(charset->decode(""), u""_us);
    EXPECT_EQ(charset->made, 1);
    EXPECT_EQ(charset->told, 2);  // once for each action, when it was made
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(charset->encode(u"ab"_usv), "ab");
    EXPECT_EQ(charset->encode(u'a'), "a");
    EXPECT_EQ(charset->made, 2);
    EXPECT_EQ(charset->live, 2);
}

TEST(CachedCoders, OneThatThrewIsDropped)
{
    auto* const charset = new CountingCharset(u"x-counting-2"_usv);
    EXPECT_EQ(charset->encode(u"a"_usv), "a");
    EXPECT_THROW(charset->encode(u"ax"_usv), std::runtime_error);
    EXPECT_EQ(charset->live, 0);
    EXPECT_EQ(charset->encode(u"a"_usv), "a");
    EXPECT_EQ(charset->made, 2);

    charset->hook = [] { throw 42; };
    EXPECT_THROW(charset->decode("a"), int);
    EXPECT_EQ(charset->live, 1);
}

// A step that converts with its own charset meets an empty cache, never itself.
TEST(CachedCoders, Recursion)
{
    auto* const charset = new CountingCharset(u"x-counting-3"_usv);
    int depth = 0;
    charset->hook = [&] {
        EXPECT_LE(charset->live, depth + 2);  // at work, and one that is cached
        if (depth == 3)
            return;
        ++depth;
        EXPECT_EQ(charset->decode("ab"), u"\uFFFD\uFFFD"_us);
        EXPECT_EQ(charset->decode("c"), u"\uFFFD"_us);
        --depth;
    };
    EXPECT_EQ(charset->decode("a"), u"\uFFFD"_us);
    EXPECT_EQ(charset->live, 1);
}

TEST(CachedCoders, ReplaceFaults)
{
    EXPECT_EQ(Charset::UTF_8->decode("A\xFF"
                                     "B"),
              u"A\uFFFDB"_us);
    EXPECT_EQ(Charset::UTF_8->decode('\xC3'), u"\uFFFD"_us);
    EXPECT_EQ(Charset::US_ASCII->encode(u"a\u20AC\xD800"_usv), "a??");
    EXPECT_EQ(Charset::UTF_8->encode(char16(u'\u20AC')), "\xE2\x82\xAC");
    EXPECT_EQ(Charset::UTF_16BE->encode(char16_t{0xDC00}), "\xFF\xFD");
    EXPECT_EQ(Charset::UTF_16LE->encode(char16_t{0xD800}), "\xFD\xFF");

    // A coder of one's own reports them.
    try {
        Charset::UTF_8->newDecoder()->decode(
            "A\xFF"
            "B");
        ADD_FAILURE();
    } catch (const kiv::MalformedInputError& e) {
        EXPECT_EQ(e.getInputLength(), 1u);
    }
}

// --- Many threads
// -----------------------------------------------------------------------

TEST(Concurrency, WholeStringsAndLookUps)
{
    struct Case {
        const Charset* charset;
        ustring text;
        std::string bytes;
    };
    std::vector<Case> cases;
    for (const Charset* charset : {Charset::UTF_8, Charset::CESU_8, Charset::UTF_16BE,
                                   Charset::UTF_16LE, Charset::ISO_8859_1})
        for (const std::size_t length : {1u, 40u, 1000u}) {
            ustring text;
            for (std::size_t i = 0; i < length; ++i)
                text += i % 3 == 0 ? u'\u00E9' : char16_t(u'a' + i % 26);
            cases.push_back({charset, text, charset->encode(text)});
        }
    const auto charsets = Charset::availableCharsets();
    std::atomic<bool> go{false};
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            while (!go)
                std::this_thread::yield();
            for (std::size_t i = 0; i < 300; ++i) {
                const Case& c = cases[(i + 4 * t) % cases.size()];
                faults += c.charset->encode(c.text) != c.bytes;
                faults += c.charset->decode(c.bytes) != c.text;
                faults += Charset::forName(c.charset->name()) != c.charset;
                faults += Charset::forName(*c.charset->aliases().begin()) != c.charset;
                faults += !Charset::isSupported(u"latin-1"_us);
                faults += Charset::availableCharsets() != charsets;
                faults += kiv::cvtstr<ustring>(kiv::cvtstr<std::string>(u"plain"_usv)) !=
                          u"plain"_us;
                faults += Charset::defaultCharset() == nullptr;
            }
        });
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(faults, 0);
}

// At most one coder stays cached, however many were at work at once.
TEST(Concurrency, OneCoderIsCached)
{
    auto* const charset = new CountingCharset(u"x-counting-4"_usv);
    charset->hook = [] { std::this_thread::yield(); };
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i)
                faults += charset->decode("ab") != u"\uFFFD\uFFFD"_us;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(charset->live, 1);
}

}  // namespace
