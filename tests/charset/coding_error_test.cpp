// The errors of coders and the results that throw them.

#include <ios>
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

static_assert(sizeof(CoderResult) == 8 && std::is_trivially_copyable_v<CoderResult>);

template <class Error>
void expect_error(Error error, const Error& other, const std::string& message)
{
    EXPECT_EQ(error.what(), message);
    EXPECT_EQ(Error(error).what(), message);
    error = other;
    EXPECT_STREQ(error.what(), other.what());
    if constexpr (requires { error.getInputLength(); }) {
        EXPECT_EQ(Error(error).getInputLength(), 4294967295u);
        EXPECT_EQ(error.code(), std::io_errc::stream);
    }
}

// The text is the message and what the stream category adds to it.
TEST(CodingErrors, MessagesAndCopies)
{
    const std::string tail = ": " + std::make_error_code(std::io_errc::stream).message();
    expect_error(CharacterCodingError("a\0b"), CharacterCodingError("b"), "a" + tail);
    expect_error(MalformedInputError(1), MalformedInputError(~0u),
                 "malformed input" + tail);
    expect_error(UnmappableCharacterError(1), UnmappableCharacterError(~0u),
                 "unmappable character" + tail);
    expect_error(CoderMalfunctionError("a"), CoderMalfunctionError("b"), "a");
}

TEST(CoderResult, ThrowsItsError)
{
    EXPECT_THROW(CoderResult::underflow().throwException(), kiv::BufferUnderflowError);
    EXPECT_THROW(CoderResult::overflow().throwException(), kiv::BufferOverflowError);
    EXPECT_THROW(CoderResult::malformed(1).throwException(), MalformedInputError);
    EXPECT_THROW(CoderResult::unmappable(2).throwException(), UnmappableCharacterError);
}

}  // namespace
