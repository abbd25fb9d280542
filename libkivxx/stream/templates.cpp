// The standard templates of char16, once for everybody.

#include <kiv/locale.h>
#include <kiv/stream.h>

#if defined(__GLIBCXX__)
// Where a digit stands in "0123456789abcdefABCDEF", of which the first len units
// count. libstdc++ has this short cut for the built-in character types; without it
// every digit is searched for, at twice the cost of the rest of the extraction.
template <>
template <>
inline int std::num_get<kiv::char16>::_M_find(const kiv::char16*, std::size_t len,
                                              kiv::char16 c) const
{
    const unsigned unit = static_cast<char16_t>(c);
    if (unit - u'0' < 10)
        return unit - u'0' < len ? static_cast<int>(unit - u'0') : -1;
    const unsigned letter = (unit | 0x20U) - u'a';
    return len > 10 && letter < 6 ? static_cast<int>(letter + 10) : -1;
}
#endif

template class std::num_get<kiv::char16>;
template class std::num_put<kiv::char16>;
template class std::basic_streambuf<kiv::char16>;
template class std::basic_ios<kiv::char16>;
template class std::basic_istream<kiv::char16>;
template class std::basic_ostream<kiv::char16>;
template class std::basic_stringbuf<kiv::char16>;
