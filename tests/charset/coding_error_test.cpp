// The errors of coders and the results that throw them.

#include <ios>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <kiv/charset.h>

namespace {

using kiv::CharacterCodingError;
using kiv::CoderMalfunctionError;
using kiv::CoderResult;
using kiv::MalformedInputError;
using kiv::UnmappableCharacterError;

static_assert(std::is_base_of_v<std::ios_base::failure, CharacterCodingError> &&
              std::is_base_of_v<CharacterCodingError, MalformedInputError> &&
              std::is_base_of_v<CharacterCodingError, UnmappableCharacterError> &&
              std::is_base_of_v<std::logic_error, CoderMalfunctionError>);

// What a thrown failure says: its message and what the stream category adds.
template <class Error>
void expect_failure(void (*raise)(), const std::string& message)
{
    try {
        raise();
        ADD_FAILURE() << message;
    } catch (const std::ios_base::failure& e) {
        EXPECT_NE(dynamic_cast<const Error*>(&e), nullptr);
        EXPECT_EQ(e.code(), std::io_errc::stream);
        EXPECT_EQ(e.what(), message + ": " + e.code().message());
    }
}

TEST(CodingErrors, AreStreamFailures)
{
    expect_failure<CharacterCodingError>([] { throw CharacterCodingError("a\0b"); }, "a");
    expect_failure<MalformedInputError>([] { throw MalformedInputError(1); },
                                        "malformed input");
    expect_failure<UnmappableCharacterError>([] { throw UnmappableCharacterError(1); },
                                             "unmappable character");
    EXPECT_STREQ(CoderMalfunctionError("broken").what(), "broken");
}

template <class Error>
void expect_copies(Error a, const Error& b)
{
    const Error copy(a);
    EXPECT_STREQ(copy.what(), a.what());
    a = b;
    EXPECT_STREQ(a.what(), b.what());
    if constexpr (requires { a.getInputLength(); }) {
        EXPECT_EQ(copy.getInputLength(), 1u);
        EXPECT_EQ(a.getInputLength(), 4294967295u);
    }
}

TEST(CodingErrors, Copy)
{
    expect_copies(CharacterCodingError("one"), CharacterCodingError("two"));
    expect_copies(MalformedInputError(1), MalformedInputError(~0u));
    expect_copies(UnmappableCharacterError(1), UnmappableCharacterError(~0u));
    expect_copies(CoderMalfunctionError("one"), CoderMalfunctionError("two"));
}

TEST(CoderResult, ThrowsItsError)
{
    EXPECT_THROW(CoderResult::underflow().throwException(), kiv::BufferUnderflowError);
    EXPECT_THROW(CoderResult::overflow().throwException(), kiv::BufferOverflowError);
    try {
        CoderResult::malformed(3).throwException();
    } catch (const MalformedInputError& e) {
        EXPECT_EQ(e.getInputLength(), 3u);
    }
    try {
        CoderResult::unmappable(2).throwException();
    } catch (const UnmappableCharacterError& e) {
        EXPECT_EQ(e.getInputLength(), 2u);
    }
}

}  // namespace
