// Whole-string conversion with the cached coders.

#include <stdexcept>
#include <utility>

#include <kiv/charset.h>

namespace kiv {

namespace {

// A coder of the cache, or a new one that replaces whatever is at fault.
template <class Coder, class Make>
std::unique_ptr<Coder> acquire(std::atomic<Coder*>& slot, Make make)
{
    std::unique_ptr<Coder> coder(slot.exchange(nullptr));
    if (!coder) {
        coder = make();
        if (!coder)
            throw std::logic_error("Charset: no coder");
        coder->onMalformedInput(CodingErrorAction::REPLACE);
        coder->onUnmappableCharacter(CodingErrorAction::REPLACE);
    }
    return coder;
}

template <class Coder>
void release(std::atomic<Coder*>& slot, std::unique_ptr<Coder> coder) noexcept
{
    coder.reset(slot.exchange(coder.release()));
}

}  // namespace

// A coder whose conversion threw is not put back: its state is anybody's guess.

ustring Charset::decode(basic_string_ref<char> bytes) const
{
    auto decoder = acquireDefaultDecoder();
    ustring text = decoder->decode(bytes);
    releaseDefaultDecoder(std::move(decoder));
    return text;
}

std::string Charset::encode(basic_string_ref<char16> text) const
{
    auto encoder = acquireDefaultEncoder();
    std::string bytes = encoder->encode(text);
    releaseDefaultEncoder(std::move(encoder));
    return bytes;
}

ustring Charset::decode(char byte) const
{
    return decode(basic_string_ref<char>(&byte, 1));
}

std::string Charset::encode(char16 unit) const
{
    return encode(basic_string_ref<char16>(&unit, 1));
}

std::unique_ptr<CharsetDecoder> Charset::acquireDefaultDecoder() const
{
    return acquire(m_defaultDecoder, [this] { return newDecoder(); });
}

void Charset::releaseDefaultDecoder(
    std::unique_ptr<CharsetDecoder> decoder) const noexcept
{
    release(m_defaultDecoder, std::move(decoder));
}

std::unique_ptr<CharsetEncoder> Charset::acquireDefaultEncoder() const
{
    return acquire(m_defaultEncoder, [this] { return newEncoder(); });
}

void Charset::releaseDefaultEncoder(
    std::unique_ptr<CharsetEncoder> encoder) const noexcept
{
    release(m_defaultEncoder, std::move(encoder));
}

}  // namespace kiv
