#include <kiv/charset.h>

namespace kiv {

CharacterCodingError::CharacterCodingError(basic_string_ref<char> message)
    : std::ios_base::failure(message.to_string(), std::io_errc::stream)
{
}
CharacterCodingError::CharacterCodingError(const CharacterCodingError&) = default;
CharacterCodingError& CharacterCodingError::operator=(const CharacterCodingError&) =
    default;
CharacterCodingError::~CharacterCodingError() = default;

MalformedInputError::MalformedInputError(unsigned inputLength)
    : CharacterCodingError("malformed input"), m_inputLength(inputLength)
{
}
MalformedInputError::MalformedInputError(const MalformedInputError&) = default;
MalformedInputError& MalformedInputError::operator=(const MalformedInputError&) = default;
MalformedInputError::~MalformedInputError() = default;

UnmappableCharacterError::UnmappableCharacterError(unsigned inputLength)
    : CharacterCodingError("unmappable character"), m_inputLength(inputLength)
{
}
UnmappableCharacterError::UnmappableCharacterError(const UnmappableCharacterError&) =
    default;
UnmappableCharacterError& UnmappableCharacterError::operator=(
    const UnmappableCharacterError&) = default;
UnmappableCharacterError::~UnmappableCharacterError() = default;

CoderMalfunctionError::CoderMalfunctionError(basic_string_ref<char> message)
    : std::logic_error(message.to_string())
{
}
CoderMalfunctionError::CoderMalfunctionError(const CoderMalfunctionError&) noexcept =
    default;
CoderMalfunctionError& CoderMalfunctionError::operator=(
    const CoderMalfunctionError&) noexcept = default;
CoderMalfunctionError::~CoderMalfunctionError() = default;

void CoderResult::throwException() const
{
    switch (kind()) {
    case UNDERFLOW:
        throw BufferUnderflowError();
    case OVERFLOW:
        throw BufferOverflowError();
    case MALFORMED:
        throw MalformedInputError(m_length);
    case UNMAPPABLE:
        break;
    }
    throw UnmappableCharacterError(m_length);
}

}  // namespace kiv
