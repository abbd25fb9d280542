// Whole-string conversion with cached coders, from one thread and from many.

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "charset/toy_charset.h"

namespace {

using namespace kiv::literals;
using kiv::Charset;
using kiv::ustring;

// --- The cache ------------------------------------------------------------------------

TEST(CachedCoders, ReplaceFaultsAndAreReused)
{
    const auto* charset = new toy::ToyCharset(u"x-cached-1"_usv);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(charset->decode("a!#"), u"a\uFFFD\uFFFD"_us);
    EXPECT_EQ(charset->decode('#'), u"\uFFFD"_us);
    EXPECT_EQ(charset->decoders, 1);
    EXPECT_EQ(charset->last_decoder.load()->log,
              "malformed1 unmappable1 reset reset reset reset ");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(charset->encode(u"a!#"_usv), "a??");
    EXPECT_EQ(charset->encode(u'#'), "?");
    EXPECT_EQ(charset->encoders, 1);
    EXPECT_EQ(charset->live(), 3);  // the encoder has a decoder for its replacement
}

TEST(CachedCoders, OneThatThrewIsDropped)
{
    auto* charset = new toy::ToyCharset(u"x-cached-2"_usv);
    charset->encode(charset->decode("ab"));
    charset->on_step = [] { throw 42; };
    EXPECT_THROW(charset->decode("a"), int);
    EXPECT_EQ(charset->live(), 2);
    EXPECT_THROW(charset->encode(u"a"_usv), int);
    EXPECT_EQ(charset->live(), 0);
}

// A charset for one direction, or for none.
TEST(CachedCoders, CharsetWithoutCoders)
{
    struct Mute : Charset {
        Mute() : Charset(0, u"x-mute"_usv, {}) {}
        std::unique_ptr<kiv::CharsetDecoder> newDecoder() const override { return {}; }
        std::unique_ptr<kiv::CharsetEncoder> newEncoder() const override { return {}; }
    };
    const auto* mute = new Mute;
    EXPECT_THROW(mute->decode("a"), std::logic_error);
    EXPECT_THROW(mute->encode(u"a"_usv), std::logic_error);
    // It cannot check its replacement.
    EXPECT_THROW(toy::ToyEncoder{mute}, std::logic_error);
}

// A step that converts with its own charset meets an empty cache, never itself.
TEST(CachedCoders, Recursion)
{
    auto* charset = new toy::ToyCharset(u"x-cached-3"_usv);
    int depth = 0;
    charset->on_step = [&] {
        EXPECT_LE(charset->live(), depth + 2);  // at work, and one that is cached
        if (depth == 3)
            return;
        ++depth;
        EXPECT_EQ(charset->decode("ab!"), u"ab\uFFFD"_us);
        --depth;
    };
    EXPECT_EQ(charset->decode("a"), u"a"_us);
    EXPECT_EQ(charset->live(), 1);
}

// --- Many threads ---------------------------------------------------------------------

// Runs it 300 times in each of four threads; it returns its faults.
void expect_no_faults(const std::function<int(std::size_t)>& run)
{
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (std::size_t i = 0; i < 300; ++i)
                faults += run(i + 4 * t);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(faults, 0);
}

TEST(Concurrency, WholeStringsAndLookUps)
{
    const Charset* const used[] = {Charset::UTF_8, Charset::CESU_8, Charset::UTF_16BE,
                                   Charset::UTF_16LE, Charset::ISO_8859_1};
    const auto charsets = Charset::availableCharsets();
    expect_no_faults([&](std::size_t i) {
        const Charset* const charset = used[i % std::size(used)];
        const ustring text(1 + i * i % 1000, i % 2 == 0 ? u'\u00E9' : u'e');
        return (charset->decode(charset->encode(text)) != text) +
               (Charset::forName(charset->name()) != charset) +
               (Charset::forName(*charset->aliases().begin()) != charset) +
               !Charset::isSupported(u"latin-1"_us) +
               (Charset::availableCharsets() != charsets) +
               (kiv::cvtstr<ustring>(kiv::cvtstr<std::string>(u"a"_usv)) != u"a"_us);
    });
}

// At most one coder stays cached, however many were at work at once.
TEST(Concurrency, OneCoderIsCached)
{
    auto* charset = new toy::ToyCharset(u"x-cached-4"_usv);
    charset->on_step = [] { std::this_thread::yield(); };
    expect_no_faults([&](std::size_t) { return charset->decode("a!") != u"a\uFFFD"_us; });
    EXPECT_EQ(charset->live(), 1);
}

}  // namespace
