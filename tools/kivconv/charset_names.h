// charset_names.h - finding charsets by what a user types.

#ifndef KIVCONV_CHARSET_NAMES_H
#define KIVCONV_CHARSET_NAMES_H

#include <string>

#include <kiv/charset.h>

namespace kivconv {

// A charset as -f and -t name it: a name or alias, an empty text for the
// default, and optionally a suffix as iconv has them.
struct CharsetChoice {
    kiv::Charset* charset;
    bool ignore_faults;  // the suffix //IGNORE was there
};

// Throws UsageError for an unknown name, with the names that come close, and
// for the suffix //TRANSLIT and unknown ones.
CharsetChoice choose_charset(const std::string& text);

// KIV_DEFAULT_CHARSET if it is set, else the charset of the locale. A locale
// that knows ASCII only, as "C" does, chooses UTF-8: ASCII text is UTF-8 text.
// Throws UsageError if that name is unknown.
kiv::Charset* default_charset();

std::string name_of(const kiv::Charset& charset);

// One line for each charset: name, MIBenum ("-" if it has none), aliases.
std::string charset_list();

}  // namespace kivconv

#endif
