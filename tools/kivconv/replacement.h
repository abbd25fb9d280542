// replacement.h - what is written in place of what does not convert.

#ifndef KIVCONV_REPLACEMENT_H
#define KIVCONV_REPLACEMENT_H

#include <optional>
#include <string>

#include <kiv/charset.h>

namespace kivconv {

// The text's bytes in the target charset; without a text U+FFFD, or the
// encoder's own replacement where the charset lacks that. Throws UsageError if
// the text is not UTF-8 or has a character that the charset lacks.
std::string replacement_bytes(const kiv::Charset& to,
                              const std::optional<std::string>& utf8_text);

}  // namespace kivconv

#endif
