// Numbers from text beside the standard library, the C library, fast_float and
// double-conversion: the same texts for all, each result compared once.

#include <benchmark/benchmark.h>
#include <double-conversion/double-conversion.h>
#include <fast_float/fast_float.h>
#include <kiv/numconv.h>

#include <charconv>
#include <cmath>
#include <memory>
#include <string>
#include <type_traits>

#include "numconv_samples.h"

namespace {

using namespace kivbench;
using kiv::char16;

template <class T, class CharT>
T view(const CharT* first, const CharT* last)
{
    const kiv::basic_string_ref<CharT> text(first,
                                            static_cast<std::size_t>(last - first));
    if constexpr (std::is_same_v<T, float>)
        return kiv::stof_c(text);
    else if constexpr (std::is_same_v<T, double>)
        return kiv::stod_c(text);
    else if constexpr (std::is_same_v<T, int>)
        return kiv::stoi_c(text);
    else
        return kiv::stoll_c(text);
}

template <class T, class CharT>
T pointer(const CharT* first, const CharT*)
{
    if constexpr (std::is_same_v<T, float>)
        return kiv::strtof_c(first);
    else if constexpr (std::is_same_v<T, double>)
        return kiv::strtod_c(first);
    else if constexpr (std::is_same_v<T, int>)
        return kiv::strtoi_c(first);
    else
        return kiv::strtoll_c(first);
}

template <class T, class CharT>
T kivxx(const CharT* first, const CharT* last)
{
    T value{};
    kiv::from_chars_c(first, last, value);
    return value;
}

template <class T>
T fast_float_parse(const char* first, const char* last)
{
    T value{};
    fast_float::from_chars(first, last, value);
    return value;
}

template <class T>
T double_conversion_parse(const char* first, const char* last)
{
    static const double_conversion::StringToDoubleConverter converter(0, 0, 0, "inf",
                                                                      "nan");
    int used;
    if constexpr (std::is_same_v<T, float>)
        return converter.StringToFloat(first, static_cast<int>(last - first), &used);
    else
        return converter.StringToDouble(first, static_cast<int>(last - first), &used);
}

template <class T>
T standard(const char* first, const char* last)
{
    T value{};
    std::from_chars(first, last, value);
    return value;
}

// `view` and `pointer` round 25 digits to 20 first, and next to a tie that may show in
// the last bit.
template <class T>
bool is_right(T value, T right, bool rounds_twice)
{
    if constexpr (std::is_floating_point_v<T>)
        return value == right || (rounds_twice && std::nextafter(value, right) == right);
    else
        return value == right;
}

template <class T>
void add_parsers(const std::string& type)
{
    for (const Kind& kind : KINDS<T>) {
        const auto sample = std::make_shared<const Sample<T>>(kind);
        std::string subject = "parse " + type;
        const auto parser = [&](const char* peer, auto parse, bool rounds_twice = false) {
            constexpr bool NARROW =
                std::is_invocable_v<decltype(parse), const char*, const char*>;
            using CharT = std::conditional_t<NARROW, char, char16>;
            add(
                subject, peer, kind,
                [=, text = sample->template text_as<CharT>()](unsigned i) {
                    const std::size_t* const start = &sample->starts[i];
                    return parse(text + start[0], text + start[1] - 1);
                },
                [=](unsigned i, T value) {
                    return is_right(value, sample->values[i], rounds_twice);
                });
        };
        parser("kivxx", direct<kivxx<T, char>>);
        parser("view", direct<view<T, char>>, true);
        parser("pointer", direct<pointer<T, char>>, true);
        parser("std", direct<standard<T>>);
        parser("libc", direct<c_library<T>>);
        if constexpr (std::is_floating_point_v<T>) {
            parser("fastfloat", direct<fast_float_parse<T>>);
            parser("dblconv", direct<double_conversion_parse<T>>);
        }
        subject += ", UTF-16";
        parser("kivxx", direct<kivxx<T, char16>>);
        parser("view", direct<view<T, char16>>, true);
        parser("pointer", direct<pointer<T, char16>>, true);
        parser("char", direct<kivxx<T, char>>);
    }
}

[[maybe_unused]] const bool added = [] {
    add_parsers<double>("double");
    add_parsers<float>("float");
    add_parsers<int>("int");
    add_parsers<long long>("long long");
    return true;
}();

}  // namespace
