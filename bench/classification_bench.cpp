// Classification of single units, and the look-up of charsets by name, beside
// ICU and the C library.

#include <benchmark/benchmark.h>
#include <kiv/character.h>
#include <kiv/charset.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>

#include <cstdint>
#include <cwctype>
#include <string>

#include "corpora.h"

namespace {

using namespace kiv::literals;

// All the texts one after another: ASCII, accents, Cyrillic, Han, surrogates.
const std::u16string& text()
{
    static const std::u16string all = [] {
        std::string utf8;
        for (const kivbench::Corpus& corpus : kivbench::corpora)
            utf8 += kivbench::make_text(corpus, 4096);
        return kivbench::to_utf16(utf8);
    }();
    return all;
}

template <class Classify>
void classify(benchmark::State& state, Classify is)
{
    for (auto _ : state) {
        std::size_t n = 0;
        for (const char16_t unit : text())
            n += is(unit) ? 1 : 0;
        benchmark::DoNotOptimize(n);
    }
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(text().size()));
}

template <class Ours, class Icu, class C>
void add(const char* name, Ours ours, Icu icu, C c)
{
    const std::string subject(name);
    const auto add_one = [&](const char* peer, auto is) {
        benchmark::RegisterBenchmark(
            (subject + '/' + peer + "/all/" + std::to_string(text().size())).c_str(),
            [is](benchmark::State& state) { classify(state, is); });
    };
    add_one("kivxx", [ours](char16_t u) { return ours(kiv::char16_int(u)); });
    add_one("icu", [icu](char16_t u) { return icu(static_cast<UChar32>(u)); });
    add_one("libc", [c](char16_t u) { return c(static_cast<std::wint_t>(u)); });
}

// Names as programs write them, not all of them canonical.
void names_kivxx(benchmark::State& state)
{
    for (auto _ : state)
        for (const auto& name : {u"utf-8"_usv, u"ISO-8859-1"_usv, u"latin1"_usv,
                                 u"US-ASCII"_usv, u"UTF-16LE"_usv, u"utf8"_usv})
            benchmark::DoNotOptimize(kiv::Charset::forName(name));
}

void names_icu(benchmark::State& state)
{
    for (auto _ : state)
        for (const char* name :
             {"utf-8", "ISO-8859-1", "latin1", "US-ASCII", "UTF-16LE", "utf8"}) {
            UErrorCode error = U_ZERO_ERROR;
            benchmark::DoNotOptimize(ucnv_getAlias(name, 0, &error));
        }
}

[[maybe_unused]] const bool added = [] {
    using kiv::char16_int;
    add(
        "isualpha", [](char16_int c) { return kiv::isualpha(c); }, u_isalpha,
        std::iswalpha);
    add(
        "isualnum", [](char16_int c) { return kiv::isualnum(c); }, u_isalnum,
        std::iswalnum);
    add(
        "isudigit", [](char16_int c) { return kiv::isudigit(c); }, u_isdigit,
        std::iswdigit);
    add(
        "isuspace", [](char16_int c) { return kiv::isuspace(c); }, u_isspace,
        std::iswspace);
    add(
        "isuupper", [](char16_int c) { return kiv::isuupper(c); }, u_isupper,
        std::iswupper);
    add(
        "isupunct", [](char16_int c) { return kiv::isupunct(c); }, u_ispunct,
        std::iswpunct);
    add(
        "toulower", [](char16_int c) { return kiv::toulower(c) != c; },
        [](UChar32 c) { return u_tolower(c) != c; },
        [](std::wint_t c) { return std::towlower(c) != c; });
    benchmark::RegisterBenchmark("forName/kivxx/names/6", names_kivxx);
    benchmark::RegisterBenchmark("forName/icu/names/6", names_icu);
    return true;
}();

}  // namespace
