// kiv/charset.h - conversion between byte encodings and UTF-16.
//
// A Charset is found by name and converts whole strings, replacing what is not
// legal or not mapped:
//
//     kiv::Charset* latin1 = kiv::Charset::forName(u"latin1"_usv);
//     kiv::ustring text = latin1->decode(bytes);
//     std::string utf8 = kiv::Charset::UTF_8->encode(text);
//
// Its coders convert streams piece by piece and let the caller choose what
// becomes of faults:
//
//     auto decoder = kiv::Charset::UTF_8->newDecoder();
//     decoder->onMalformedInput(kiv::CodingErrorAction::IGNORE);
//     do {
//         fill `in`, note whether that was the last of the input;
//         while (decoder->decode(in, out, last).isOverflow())
//             drain `out`;
//         in.compact();                // an unfinished sequence is kept
//     } while (!last);
//     while (decoder->flush(out).isOverflow())
//         drain `out`;
//
// Charsets live as long as the process; their functions may be called from any
// thread, apart from registering a charset of one's own while others look
// charsets up. A coder may not be used by two threads at once.

#ifndef KIV_CHARSET_H
#define KIV_CHARSET_H

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <ios>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <kiv/buffer.h>
#include <kiv/case_insensitive.h>
#include <kiv/char16.h>
#include <kiv/export.h>
#include <kiv/string_ref.h>

namespace kiv {

class Charset;
struct CodingEngine;  // what decoders and encoders share; internal
template <class T>
struct NameLess;  // the order in which names match; internal

// --- Errors ------------------------------------------------------------------

// what() is the message followed by the text of std::io_errc::stream.
class KIV_API CharacterCodingError : public std::ios_base::failure {
public:
    explicit CharacterCodingError(basic_string_ref<char> message);
    CharacterCodingError(const CharacterCodingError&);
    CharacterCodingError& operator=(const CharacterCodingError&);
    ~CharacterCodingError() override;
};

// The input is not legal in its encoding.
class KIV_API MalformedInputError : public CharacterCodingError {
public:
    explicit MalformedInputError(unsigned inputLength);
    MalformedInputError(const MalformedInputError&);
    MalformedInputError& operator=(const MalformedInputError&);
    ~MalformedInputError() override;

    // Input units of the faulty sequence: bytes when decoding, UTF-16 units
    // when encoding.
    unsigned getInputLength() const noexcept { return m_inputLength; }

private:
    unsigned m_inputLength;
};

// The input is legal but has no counterpart in the target.
class KIV_API UnmappableCharacterError : public CharacterCodingError {
public:
    explicit UnmappableCharacterError(unsigned inputLength);
    UnmappableCharacterError(const UnmappableCharacterError&);
    UnmappableCharacterError& operator=(const UnmappableCharacterError&);
    ~UnmappableCharacterError() override;

    unsigned getInputLength() const noexcept { return m_inputLength; }

private:
    unsigned m_inputLength;
};

// A coder broke the rules of a conversion step.
class KIV_API CoderMalfunctionError : public std::logic_error {
public:
    explicit CoderMalfunctionError(basic_string_ref<char> message);
    CoderMalfunctionError(const CoderMalfunctionError&) noexcept;
    CoderMalfunctionError& operator=(const CoderMalfunctionError&) noexcept;
    ~CoderMalfunctionError() override;
};

// --- Results and actions -------------------------------------------------------

// How a conversion step ended.
class KIV_API CoderResult {
public:
    enum Kind : std::uint32_t {
        UNDERFLOW,  // the input is used up, as far as it could be
        OVERFLOW,   // the output has no room for the next result
        MALFORMED,  // the input at the position is not legal in the encoding
        UNMAPPABLE  // the input is legal but has no counterpart in the target
    };

    constexpr CoderResult(Kind kind = UNDERFLOW, std::uint32_t length = 0) noexcept
        : m_kind(kind), m_length(length)
    {
    }
    static constexpr CoderResult underflow() noexcept { return UNDERFLOW; }
    static constexpr CoderResult overflow() noexcept { return OVERFLOW; }
    static constexpr CoderResult malformed(std::uint32_t length) noexcept
    {
        return {MALFORMED, length};
    }
    static constexpr CoderResult unmappable(std::uint32_t length) noexcept
    {
        return {UNMAPPABLE, length};
    }

    constexpr Kind kind() const noexcept { return static_cast<Kind>(m_kind); }
    // Input units of the faulty sequence, from the input's position; 0 unless
    // isError().
    constexpr std::uint32_t length() const noexcept { return m_length; }

    constexpr bool isUnderflow() const noexcept { return m_kind == UNDERFLOW; }
    constexpr bool isOverflow() const noexcept { return m_kind == OVERFLOW; }
    constexpr bool isMalformed() const noexcept { return m_kind == MALFORMED; }
    constexpr bool isUnmappable() const noexcept { return m_kind == UNMAPPABLE; }
    constexpr bool isError() const noexcept { return isMalformed() || isUnmappable(); }

    // BufferUnderflowError, BufferOverflowError, MalformedInputError or
    // UnmappableCharacterError, by the kind.
    [[noreturn]] void throwException() const;

    friend constexpr bool operator==(CoderResult, CoderResult) noexcept = default;

private:
    std::uint32_t m_kind;
    std::uint32_t m_length;
};

// What a coder does about malformed or unmappable input.
enum class CodingErrorAction : unsigned {
    IGNORE = 0,   // skip it
    REPLACE = 1,  // skip it and write the coder's replacement
    REPORT = 2    // return the result, leaving the input at the fault
};

// --- Decoder -------------------------------------------------------------------

// Turns bytes into UTF-16. Starts with both actions REPORT and the replacement
// U+FFFD.
class KIV_API CharsetDecoder {
public:
    virtual ~CharsetDecoder();
    virtual CodingErrorAction malformedInputAction() const;
    virtual CodingErrorAction unmappableCharacterAction() const;
    virtual bool isAutoDetecting() const;      // false
    virtual bool isCharsetDetected() const;    // throws std::logic_error
    virtual Charset* detectedCharset() const;  // throws std::logic_error

protected:
    // Hooks for derived coders; they do nothing, implFlush returns UNDERFLOW.
    virtual void implReplaceWith(basic_string_ref<char16> replacement);
    virtual void implOnMalformedInput(CodingErrorAction action);
    virtual void implOnUnmappableCharacter(CodingErrorAction action);
    virtual CoderResult implFlush(Buffer<char16>& out);
    virtual void implReset();

    // One conversion step: consumes complete sequences whose whole result fits
    // and stops before anything else, faults included. A sequence that needs
    // more input than there is stays in `in`, with UNDERFLOW.
    virtual CoderResult decodeLoop(Buffer<const unsigned char>& in,
                                   Buffer<char16>& out) = 0;

public:
    CharsetDecoder(const CharsetDecoder&) = delete;
    CharsetDecoder& operator=(const CharsetDecoder&) = delete;

    Charset* charset() const noexcept { return m_charset; }
    // Expected, and highest possible, number of units for one byte.
    float averageCharsPerByte() const noexcept { return m_averageCharsPerByte; }
    unsigned maxCharsPerByte() const noexcept { return m_maxCharsPerByte; }

    const ustring& replacement() const noexcept { return m_replacement; }
    // Throws std::invalid_argument if the text is empty or longer than
    // maxCharsPerByte().
    CharsetDecoder& replaceWith(basic_string_ref<char16> replacement);

    // Throw std::invalid_argument for a value that is none of the three.
    CharsetDecoder& onMalformedInput(CodingErrorAction action);
    CharsetDecoder& onUnmappableCharacter(CodingErrorAction action);

    // Converts until the input is used up (UNDERFLOW), the output is full
    // (OVERFLOW: drain it and call again) or a fault is reported. With
    // endOfInput, what is left of a sequence is MALFORMED. Throws
    // std::logic_error after flush(), and without endOfInput after a call with
    // it; CoderMalfunctionError if the step leaks a buffer error.
    CoderResult decode(Buffer<const unsigned char>& in, Buffer<char16>& out,
                       bool endOfInput);

    // Finishes a conversion; call until it returns UNDERFLOW. Throws
    // std::logic_error unless the last decode() had endOfInput.
    CoderResult flush(Buffer<char16>& out);

    // Makes the coder ready for a new conversion, whatever its state.
    CharsetDecoder& reset();

    // Converts the whole input: reset, decode, flush. A fault that is to be
    // reported throws MalformedInputError or UnmappableCharacterError; `in`
    // then stands at the fault.
    ustring decode(Buffer<const unsigned char>& in);
    ustring decode(basic_string_ref<char> bytes);

protected:
    // Throws std::invalid_argument unless 0 < average <= max.
    CharsetDecoder(const Charset* charset, float averageCharsPerByte,
                   unsigned maxCharsPerByte);

    // What decode tables hold for bytes without a character: a lone low
    // surrogate, which no single byte sequence decodes to.
    static constexpr char16_t UNMAPPABLE = 0xDFFF;

private:
    friend struct CodingEngine;

    Charset* m_charset;
    float m_averageCharsPerByte;
    unsigned m_maxCharsPerByte;
    CodingErrorAction m_malformedInputAction = CodingErrorAction::REPORT;
    CodingErrorAction m_unmappableCharacterAction = CodingErrorAction::REPORT;
    ustring m_replacement;
    unsigned m_state;
};

// --- Encoder -------------------------------------------------------------------

// Turns UTF-16 into bytes. Starts with both actions REPORT. Default-ignorable
// characters that the charset lacks are dropped without asking the action.
class KIV_API CharsetEncoder {
public:
    virtual ~CharsetEncoder();
    // Whether the text, or one unit by itself, can be encoded. Throws
    // std::logic_error in the midst of a conversion; leaves the coder reset
    // and its actions as they were.
    virtual bool canEncode(basic_string_ref<char16> text);
    virtual bool canEncode(char16 unit);

protected:
    // As the decoder's.
    virtual void implReplaceWith(basic_string_ref<char> replacement);
    virtual void implOnMalformedInput(CodingErrorAction action);
    virtual void implOnUnmappableCharacter(CodingErrorAction action);
    virtual CoderResult implFlush(Buffer<unsigned char>& out);
    virtual void implReset();
    virtual CoderResult encodeLoop(Buffer<const char16>& in,
                                   Buffer<unsigned char>& out) = 0;

public:
    CharsetEncoder(const CharsetEncoder&) = delete;
    CharsetEncoder& operator=(const CharsetEncoder&) = delete;

    Charset* charset() const noexcept { return m_charset; }
    // Expected, and highest possible, number of bytes for one unit.
    float averageBytesPerChar() const noexcept { return m_averageBytesPerChar; }
    unsigned maxBytesPerChar() const noexcept { return m_maxBytesPerChar; }

    const std::string& replacement() const noexcept { return m_replacement; }
    // Throws std::invalid_argument if the bytes are empty, longer than
    // maxBytesPerChar() or do not decode in the charset.
    CharsetEncoder& replaceWith(basic_string_ref<char> replacement);
    bool isLegalReplacement(basic_string_ref<char> bytes);

    CodingErrorAction malformedInputAction() const noexcept
    {
        return m_malformedInputAction;
    }
    CodingErrorAction unmappableCharacterAction() const noexcept
    {
        return m_unmappableCharacterAction;
    }
    CharsetEncoder& onMalformedInput(CodingErrorAction action);
    CharsetEncoder& onUnmappableCharacter(CodingErrorAction action);

    // As the decoder's.
    CoderResult encode(Buffer<const char16>& in, Buffer<unsigned char>& out,
                       bool endOfInput);
    CoderResult flush(Buffer<unsigned char>& out);
    CharsetEncoder& reset();
    std::string encode(Buffer<const char16>& in);
    std::string encode(basic_string_ref<char16> text);

protected:
    // The replacement is "?" unless given. Throws std::invalid_argument unless
    // 0 < average <= max and the replacement is legal, which the charset's
    // decoder is asked for.
    CharsetEncoder(const Charset* charset, float averageBytesPerChar,
                   unsigned maxBytesPerChar);
    CharsetEncoder(const Charset* charset, float averageBytesPerChar,
                   unsigned maxBytesPerChar, basic_string_ref<char> replacement);

    // For a step that has read the unit c and stands at p: the code point of
    // the pair, advancing p past its second unit; 0 if c is a high surrogate
    // at the end of the input; 0 and *result MALFORMED, length 1, for a lone
    // surrogate (p may have moved).
    static char32_t fetchSurrogatePair(char16 c, const char16*& p, const char16* end,
                                       CoderResult* result);

    // What a step returns for the unit at p that it cannot map: UNMAPPABLE for
    // a unit or a pair, UNDERFLOW for a high surrogate at the end, MALFORMED
    // for a lone surrogate.
    static CoderResult unmappableCodeUnit(const char16* p, const char16* end);

private:
    friend struct CodingEngine;

    bool canEncode(Buffer<const char16>& in);
    static bool isDefaultIgnorable(char32_t cp);

    Charset* m_charset;
    float m_averageBytesPerChar;
    unsigned m_maxBytesPerChar;
    std::string m_replacement;
    CodingErrorAction m_malformedInputAction = CodingErrorAction::REPORT;
    CodingErrorAction m_unmappableCharacterAction = CodingErrorAction::REPORT;
    unsigned m_state;
    std::unique_ptr<CharsetDecoder> m_replacementChecker;
};

// --- Charset -------------------------------------------------------------------

// A named encoding, registered for the life of the process. A class derived
// from it registers its own; create it with new and never destroy it.
//
// Names match loosely: case, punctuation and leading zeros of numbers do not
// count, so "utf8", "UTF_8" and "Utf-08" are one name.
class KIV_API Charset {
public:
    virtual std::unique_ptr<CharsetDecoder> newDecoder() const = 0;
    virtual std::unique_ptr<CharsetEncoder> newEncoder() const = 0;

    // Whole strings, with a cached coder whose actions are REPLACE: faults
    // become U+FFFD, or the encoder's replacement. Safe from any thread.
    virtual ustring decode(basic_string_ref<char> bytes) const;
    virtual std::string encode(basic_string_ref<char16> text) const;

protected:
    // Throws std::logic_error: charsets are not meant to die.
    virtual ~Charset() noexcept(false);  // NOLINT(bugprone-exception-escape)

public:
    Charset(const Charset&) = delete;
    Charset& operator=(const Charset&) = delete;

    static Charset* const US_ASCII;
    static Charset* const ISO_8859_1;
    static Charset* const UTF_8;
    static Charset* const UTF_16BE;
    static Charset* const UTF_16LE;
    static Charset* const CESU_8;

    using NameView = basic_string_ref<char16>;
    using AliasSet = std::set<NameView, case_insensitive_less<NameView>>;

    const NameView& name() const noexcept { return m_name; }
    const AliasSet& aliases() const noexcept { return m_aliases; }
    int MIBenum() const noexcept { return m_mibEnum; }  // 0 if IANA gave none

    ustring decode(char byte) const;
    std::string encode(char16 unit) const;

    // The charset of that canonical name, else of that alias; null if there is
    // none or if two charsets claim the alias.
    static Charset* forName(const NameView& name);
    // Whether a charset has that name or alias, even one that two claim.
    static bool isSupported(const ustring& name);
    // Every charset, sorted by canonical name as names are matched.
    static std::vector<Charset*> availableCharsets();
    // Chosen when the library is loaded: the charset that the environment
    // variable KIV_DEFAULT_CHARSET names, else that of the process's locale.
    static Charset* defaultCharset() noexcept;

protected:
    // Registers the charset. The texts must be static: they are not copied.
    // Throws, leaving nothing registered: std::invalid_argument for a name or
    // alias that is not made of ASCII letters, digits and "+-.:_" beginning
    // with a letter or digit, or for an alias given twice; std::logic_error if
    // the name matches that of a registered charset. Not safe while other
    // threads use the registry.
    Charset(int mib, const NameView& name, std::initializer_list<NameView> aliases);

private:
    using NameMap = std::map<NameView, Charset*, NameLess<NameView>>;
    friend struct CharsetRegistry;  // builds what is built at load

    static const NameView& checkCharsetName(const NameView& name);
    static bool isLetter(char16 c) noexcept;
    static bool isDigit(char16 c) noexcept;
    static bool isSpecial(char16 c) noexcept;
    static AliasSet makeAliasSet(std::initializer_list<NameView> aliases);

    std::unique_ptr<CharsetDecoder> acquireDefaultDecoder() const;
    void releaseDefaultDecoder(std::unique_ptr<CharsetDecoder> decoder) const noexcept;
    std::unique_ptr<CharsetEncoder> acquireDefaultEncoder() const;
    void releaseDefaultEncoder(std::unique_ptr<CharsetEncoder> encoder) const noexcept;

    static NameMap& s_byName;
    static NameMap& s_byAlias;  // null: claimed by more than one charset
    static Charset* s_defaultCharset;

    int m_mibEnum;
    NameView m_name;
    AliasSet m_aliases;
    mutable std::atomic<CharsetDecoder*> m_defaultDecoder{nullptr};  // owned
    mutable std::atomic<CharsetEncoder*> m_defaultEncoder{nullptr};  // owned
};

// --- Whole strings of other types ------------------------------------------------
//
// cvtstr<Result>(text) converts between char, char16 and wchar_t; it never
// throws for bad input. Bytes and UTF-16 convert by the default charset, bytes
// and wide characters by mbrtowc and wcrtomb under the current C locale. UTF-16
// pairs become one wide character where wchar_t has 32 bits, and back; lone
// surrogates pass through, values above 0x10FFFF become U+FFFD.

template <class Result>
requires std::same_as<Result, ustring> || std::same_as<Result, std::wstring> Result
cvtstr(basic_string_ref<char> bytes);

template <class Result>
requires std::same_as<Result, std::string> || std::same_as<Result, std::wstring> Result
cvtstr(basic_string_ref<char16> text);

template <class Result>
requires std::same_as<Result, std::string> || std::same_as<Result, ustring> Result
cvtstr(basic_string_ref<wchar_t> text);

template <>
KIV_API ustring cvtstr<ustring>(basic_string_ref<char> bytes);
template <>
KIV_API std::wstring cvtstr<std::wstring>(basic_string_ref<char> bytes);
template <>
KIV_API std::string cvtstr<std::string>(basic_string_ref<char16> text);
template <>
KIV_API std::wstring cvtstr<std::wstring>(basic_string_ref<char16> text);
template <>
KIV_API std::string cvtstr<std::string>(basic_string_ref<wchar_t> text);
template <>
KIV_API ustring cvtstr<ustring>(basic_string_ref<wchar_t> text);

}  // namespace kiv

#endif
