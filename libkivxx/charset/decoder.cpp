#include <kiv/charset.h>

#include "charset/coding_engine.h"

namespace kiv {

namespace {

struct DecoderNames {
    static constexpr char ILLEGAL_STATE[] = "CharsetDecoder::decode: illegal state";
    static constexpr char FLUSH_ILLEGAL_STATE[] = "CharsetDecoder::flush: illegal state";
    static constexpr char UNEXPECTED_OVERFLOW[] =
        "CharsetDecoder::decode: unexpected buffer overflow";
    static constexpr char UNEXPECTED_UNDERFLOW[] =
        "CharsetDecoder::decode: unexpected buffer underflow";
    static constexpr char ILLEGAL_LENGTH[] =
        "CharsetDecoder::decode: illegal length of a fault";
};

}  // namespace

CharsetDecoder::CharsetDecoder(const Charset* charset, float averageCharsPerByte,
                               unsigned maxCharsPerByte)
    : m_charset(const_cast<Charset*>(charset)),  // made by a const operation of it
      m_averageCharsPerByte(averageCharsPerByte),
      m_maxCharsPerByte(maxCharsPerByte),
      m_replacement(1, u'\uFFFD'),
      m_state(CodingEngine::RESET)
{
    if (!CodingEngine::valid_ratio(averageCharsPerByte, maxCharsPerByte))
        throw std::invalid_argument("CharsetDecoder::CharsetDecoder");
}

CharsetDecoder::~CharsetDecoder() = default;

// --- What derived decoders may override ----------------------------------------

CodingErrorAction CharsetDecoder::malformedInputAction() const
{
    return m_malformedInputAction;
}

CodingErrorAction CharsetDecoder::unmappableCharacterAction() const
{
    return m_unmappableCharacterAction;
}

bool CharsetDecoder::isAutoDetecting() const
{
    return false;
}

bool CharsetDecoder::isCharsetDetected() const
{
    throw std::logic_error("CharsetDecoder::isCharsetDetected");
}

Charset* CharsetDecoder::detectedCharset() const
{
    throw std::logic_error("CharsetDecoder::detectedCharset");
}

void CharsetDecoder::implReplaceWith(basic_string_ref<char16>) {}
void CharsetDecoder::implOnMalformedInput(CodingErrorAction) {}
void CharsetDecoder::implOnUnmappableCharacter(CodingErrorAction) {}
void CharsetDecoder::implReset() {}

CoderResult CharsetDecoder::implFlush(Buffer<char16>&)
{
    return CoderResult::underflow();
}

// --- Settings ------------------------------------------------------------------

CharsetDecoder& CharsetDecoder::replaceWith(basic_string_ref<char16> replacement)
{
    if (replacement.empty() || replacement.size() > m_maxCharsPerByte)
        throw std::invalid_argument("CharsetDecoder::replaceWith");
    m_replacement = replacement.to_string();
    implReplaceWith(m_replacement);
    return *this;
}

CharsetDecoder& CharsetDecoder::onMalformedInput(CodingErrorAction action)
{
    if (!CodingEngine::valid_action(action))
        throw std::invalid_argument("CharsetDecoder::onMalformedInput");
    m_malformedInputAction = action;
    implOnMalformedInput(action);
    return *this;
}

CharsetDecoder& CharsetDecoder::onUnmappableCharacter(CodingErrorAction action)
{
    if (!CodingEngine::valid_action(action))
        throw std::invalid_argument("CharsetDecoder::onUnmappableCharacter");
    m_unmappableCharacterAction = action;
    implOnUnmappableCharacter(action);
    return *this;
}

// --- Conversion ----------------------------------------------------------------

CoderResult CharsetDecoder::decode(Buffer<const unsigned char>& in, Buffer<char16>& out,
                                   bool endOfInput)
{
    return CodingEngine::convert<DecoderNames>(*this, in, out, endOfInput);
}

CoderResult CharsetDecoder::flush(Buffer<char16>& out)
{
    return CodingEngine::flush<DecoderNames>(*this, out);
}

CharsetDecoder& CharsetDecoder::reset()
{
    m_state = CodingEngine::RESET;
    implReset();
    return *this;
}

ustring CharsetDecoder::decode(Buffer<const unsigned char>& in)
{
    return CodingEngine::convert_all<DecoderNames, ustring, char16>(
        *this, in, m_averageCharsPerByte);
}

ustring CharsetDecoder::decode(basic_string_ref<char> bytes)
{
    Buffer<const unsigned char> in(reinterpret_cast<const unsigned char*>(bytes.data()),
                                   bytes.size());
    return decode(in);
}

}  // namespace kiv
