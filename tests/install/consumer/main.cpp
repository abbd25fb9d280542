// Uses something of each public header, as a program outside the project.

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <kiv/kiv.h>

using namespace kiv::literals;

namespace {

int failures = 0;

void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "consumer: %s\n", what);
        ++failures;
    }
}

// The registry must be there before a program's own static objects are built.
const bool early = kiv::Charset::forName(u"latin1"_usv) == kiv::Charset::ISO_8859_1 &&
                   kiv::Charset::UTF_8->decode("\xC3\xA9") == u"\u00E9"_us &&
                   kiv::big_uint::precomputed_pow10(3)->is_equal(1000);

template <class Error, class Action>
bool throws(Action action)
{
    try {
        action();
    } catch (const Error&) {
        return true;
    }
    return false;
}

}  // namespace

int main()
{
    check(early, "charsets and tables during static initialisation");
    check(kiv::Charset::UTF_8->encode(u"\U0001F600"_usv) == "\xF0\x9F\x98\x80", "encode");
    check(kiv::Charset::forName(u"sjis"_usv)->decode("\x82\xA0") == u"\u3042"_us,
          "decode");
    check(kiv::make_double(false, -1, 1) == 0.1 &&
              kiv::pack_decimal64(false, 0, 1).pattern().bits == 0x31C0000000000001,
          "assembly of values");
    check(kiv::stod_c("1e23") == 1e23 && kiv::stoi_c(u"-\u0661\u0662"_usv) == -12 &&
              kiv::to_string_c(0.1) == "0.1" && kiv::to_ustring_c(1e7) == u"1.0E7"_us,
          "numbers and text");
    const kiv::decimal::decimal64 total = kiv::stod64_c("19.99") * 3;
    check(kiv::to_string_c(total) == "59.97", "decimals");

    // Facets are found by the library and by the program alike.
    kiv::uostringstream uos;
    uos << 42 << ' ' << 1.5 << u" \u20AC"_usv;
    check(uos.str() == u"42 1.5 \u20AC"_us &&
              std::use_facet<std::ctype<kiv::char16>>(uos.getloc()).toupper(u'\u00E9') ==
                  kiv::char16(u'\u00C9'),
          "streams");
    check(kiv::Char16::isLetter(U'\u00E9') && kiv::isuspace(u' '), "classification");
    check(kiv::cvtstr<std::wstring>(u"\U0001F600"_usv).size() ==
              (sizeof(wchar_t) == 4 ? 1 : 2),
          "cvtstr");
    check(kiv::case_insensitive_equal_to<kiv::basic_string_ref<char>>()("Utf", "uTF"),
          "case");

    // Exceptions cross the library's border as their own types.
    check(throws<kiv::MalformedInputError>(
              [] { kiv::Charset::UTF_8->newDecoder()->decode("\xFF"); }),
          "MalformedInputError");
    check(throws<kiv::UnmappableCharacterError>(
              [] { kiv::Charset::US_ASCII->newEncoder()->encode(u"\u20AC"_usv); }),
          "UnmappableCharacterError");
    check(throws<kiv::BufferUnderflowError>(
              [] { kiv::Buffer<const unsigned char>(nullptr, 0).get(); }),
          "BufferUnderflowError");
    check(throws<std::out_of_range>([] { kiv::basic_string_ref<char>("x").at(1); }),
          "out_of_range");

    std::ostringstream os;
    os << kiv::basic_string_ref<char>(kiv::type_info_name(typeid(kiv::char16)));
    check(os.str() == "kiv::char16", "type_info_name");

    std::puts(failures == 0 ? "consumer: ok" : "consumer: FAILED");
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
