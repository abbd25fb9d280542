// national_corpora.h - texts in the languages that the national charsets serve.

#ifndef KIVXX_BENCH_NATIONAL_CORPORA_H
#define KIVXX_BENCH_NATIONAL_CORPORA_H

#include "corpora.h"

namespace kivbench {

// Each has ASCII words and numbers for about one word in eight. A charset of the
// language holds all characters of the list: where the charsets of a language
// differ (quotation marks, dashes), the list keeps to what they share.
namespace national {

extern const Corpus polish, czech;
extern const Corpus maltese, baltic, welsh, romanian, nordic, lithuanian;
extern const Corpus french, turkish, vietnamese;
extern const Corpus russian, ukrainian;
extern const Corpus greek, arabic, hebrew, thai;
extern const Corpus japanese, korean, cantonese;
extern const Corpus simplified, traditional;  // Chinese
extern const Corpus gb18030;  // and some words whose characters take four bytes there

}  // namespace national

}  // namespace kivbench

#endif
