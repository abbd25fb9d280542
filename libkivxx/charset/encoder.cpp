#include <algorithm>
#include <iterator>
#include <limits>
#include <vector>

#include <kiv/character.h>
#include <kiv/charset.h>

#include "charset/coding_engine.h"

namespace kiv {

namespace {

struct EncoderNames {
    static constexpr char ILLEGAL_STATE[] = "CharsetEncoder::encode: illegal state";
    static constexpr char FLUSH_ILLEGAL_STATE[] = "CharsetEncoder::flush: illegal state";
    static constexpr char UNEXPECTED_OVERFLOW[] =
        "CharsetEncoder::encode: unexpected buffer overflow";
    static constexpr char UNEXPECTED_UNDERFLOW[] =
        "CharsetEncoder::encode: unexpected buffer underflow";
    static constexpr char ILLEGAL_LENGTH[] =
        "CharsetEncoder::encode: illegal length of a fault";
};

}  // namespace

CharsetEncoder::CharsetEncoder(const Charset* charset, float averageBytesPerChar,
                               unsigned maxBytesPerChar)
    : CharsetEncoder(charset, averageBytesPerChar, maxBytesPerChar, "?")
{
}

CharsetEncoder::CharsetEncoder(const Charset* charset, float averageBytesPerChar,
                               unsigned maxBytesPerChar,
                               basic_string_ref<char> replacement)
    : m_charset(const_cast<Charset*>(charset)),  // made by a const operation of it
      m_averageBytesPerChar(averageBytesPerChar),
      m_maxBytesPerChar(maxBytesPerChar),
      m_state(CodingEngine::RESET)
{
    // The charset is asked for a decoder at once, to check the replacement.
    if (charset == nullptr ||
        !CodingEngine::valid_ratio(averageBytesPerChar, maxBytesPerChar))
        throw std::invalid_argument("CharsetEncoder::CharsetEncoder");
    replaceWith(replacement);
}

CharsetEncoder::~CharsetEncoder() = default;

// --- What derived encoders may override ----------------------------------------

void CharsetEncoder::implReplaceWith(basic_string_ref<char>) {}
void CharsetEncoder::implOnMalformedInput(CodingErrorAction) {}
void CharsetEncoder::implOnUnmappableCharacter(CodingErrorAction) {}
void CharsetEncoder::implReset() {}

CoderResult CharsetEncoder::implFlush(Buffer<unsigned char>&)
{
    return CoderResult::underflow();
}

// --- Settings ------------------------------------------------------------------

CharsetEncoder& CharsetEncoder::replaceWith(basic_string_ref<char> replacement)
{
    if (replacement.empty() || replacement.size() > m_maxBytesPerChar ||
        !isLegalReplacement(replacement))
        throw std::invalid_argument("CharsetEncoder::replaceWith");
    m_replacement = replacement.to_string();
    // A constructor means its own: NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.*)
    implReplaceWith(m_replacement);
    return *this;
}

bool CharsetEncoder::isLegalReplacement(basic_string_ref<char> bytes)
{
    if (!m_replacementChecker) {
        auto checker = m_charset->newDecoder();
        if (!checker)
            throw std::logic_error("CharsetEncoder::isLegalReplacement: no decoder");
        checker->onMalformedInput(CodingErrorAction::REPORT);
        checker->onUnmappableCharacter(CodingErrorAction::REPORT);
        m_replacementChecker = std::move(checker);
    } else {
        m_replacementChecker->reset();
    }
    const std::size_t max_units = m_replacementChecker->maxCharsPerByte();
    if (bytes.size() > std::numeric_limits<std::size_t>::max() / max_units)
        throw std::length_error("CharsetEncoder::isLegalReplacement");
    std::vector<char16> scratch(bytes.size() * max_units);
    Buffer<const unsigned char> in(reinterpret_cast<const unsigned char*>(bytes.data()),
                                   bytes.size());
    Buffer<char16> out(scratch.data(), scratch.size());
    return !m_replacementChecker->decode(in, out, true).isError();
}

CharsetEncoder& CharsetEncoder::onMalformedInput(CodingErrorAction action)
{
    if (!CodingEngine::valid_action(action))
        throw std::invalid_argument("CharsetEncoder::onMalformedInput");
    m_malformedInputAction = action;
    implOnMalformedInput(action);
    return *this;
}

CharsetEncoder& CharsetEncoder::onUnmappableCharacter(CodingErrorAction action)
{
    if (!CodingEngine::valid_action(action))
        throw std::invalid_argument("CharsetEncoder::onUnmappableCharacter");
    m_unmappableCharacterAction = action;
    implOnUnmappableCharacter(action);
    return *this;
}

// --- Conversion ----------------------------------------------------------------

CoderResult CharsetEncoder::encode(Buffer<const char16>& in, Buffer<unsigned char>& out,
                                   bool endOfInput)
{
    return CodingEngine::convert<EncoderNames>(*this, in, out, endOfInput);
}

CoderResult CharsetEncoder::flush(Buffer<unsigned char>& out)
{
    return CodingEngine::flush<EncoderNames>(*this, out);
}

CharsetEncoder& CharsetEncoder::reset()
{
    m_state = CodingEngine::RESET;
    implReset();
    return *this;
}

std::string CharsetEncoder::encode(Buffer<const char16>& in)
{
    return CodingEngine::convert_all<EncoderNames, std::string, unsigned char>(
        *this, in, m_averageBytesPerChar);
}

std::string CharsetEncoder::encode(basic_string_ref<char16> text)
{
    Buffer<const char16> in(text.data(), text.size());
    return encode(in);
}

// --- Trials --------------------------------------------------------------------

bool CharsetEncoder::canEncode(basic_string_ref<char16> text)
{
    Buffer<const char16> in(text.data(), text.size());
    return canEncode(in);
}

bool CharsetEncoder::canEncode(char16 unit)
{
    Buffer<const char16> in(&unit, 1);
    return canEncode(in);
}

bool CharsetEncoder::canEncode(Buffer<const char16>& in)
{
    if (m_state == CodingEngine::FLUSHED)
        reset();
    else if (m_state != CodingEngine::RESET)
        throw std::logic_error("CharsetEncoder::canEncode: illegal state");

    // Hooks may throw, so they run after every field is as it must be left.
    const auto restore = [this, malformed = m_malformedInputAction,
                          unmappable = m_unmappableCharacterAction] {
        m_malformedInputAction = malformed;
        m_unmappableCharacterAction = unmappable;
        m_state = CodingEngine::RESET;
        implReset();
        implOnMalformedInput(malformed);
        implOnUnmappableCharacter(unmappable);
    };
    bool encodable = true;
    try {
        onMalformedInput(CodingErrorAction::REPORT);
        onUnmappableCharacter(CodingErrorAction::REPORT);
        encode(in);
    } catch (const CharacterCodingError&) {
        encodable = false;
    } catch (...) {
        restore();
        throw;
    }
    restore();
    return encodable;
}

// --- Help for conversion steps ---------------------------------------------------

char32_t CharsetEncoder::fetchSurrogatePair(char16 c, const char16*& p, const char16* end,
                                            CoderResult* result)
{
    if (Char16::isHighSurrogate(c)) {
        if (p == end)
            return 0;
        const char16 next = *p++;
        if (Char16::isLowSurrogate(next))
            return Char16::toCodePoint(c, next);
    }
    *result = CoderResult::malformed(1);
    return 0;
}

CoderResult CharsetEncoder::unmappableCodeUnit(const char16* p, const char16* end)
{
    if (!Char16::isSurrogate(*p))
        return CoderResult::unmappable(1);
    if (Char16::isHighSurrogate(*p)) {
        if (p + 1 == end)
            return CoderResult::underflow();
        if (Char16::isLowSurrogate(p[1]))
            return CoderResult::unmappable(2);
    }
    return CoderResult::malformed(1);
}

// The property Default_Ignorable_Code_Point of Unicode.
bool CharsetEncoder::isDefaultIgnorable(char32_t cp)
{
    struct Range {
        char32_t first;
        char32_t last;
    };
    static constexpr Range RANGES[] = {
        {0x00AD, 0x00AD},   {0x034F, 0x034F}, {0x061C, 0x061C},   {0x115F, 0x1160},
        {0x17B4, 0x17B5},   {0x180B, 0x180E}, {0x200B, 0x200F},   {0x202A, 0x202E},
        {0x2060, 0x206F},   {0x3164, 0x3164}, {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},
        {0xFFA0, 0xFFA0},   {0xFFF0, 0xFFF8}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
        {0xE0000, 0xE0FFF},
    };
    const auto* range =
        std::lower_bound(std::begin(RANGES), std::end(RANGES), cp,
                         [](const Range& r, char32_t value) { return r.last < value; });
    return range != std::end(RANGES) && cp >= range->first;
}

}  // namespace kiv
