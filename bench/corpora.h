// corpora.h - the texts that the benchmarks convert.
//
// Five kinds of text that take different paths through a UTF-8 coder. They are
// made from word lists by a seeded generator, so every run and every machine
// sees the same bytes.

#ifndef KIVXX_BENCH_CORPORA_H
#define KIVXX_BENCH_CORPORA_H

#include <cstddef>
#include <string>

namespace kivbench {

struct Corpus {
    const char* name;
    // Words and signs that stand alone, separated by single spaces.
    const char* vocabulary;
    // Between two words; empty where the script writes none.
    const char* separator;
    // Ends a sentence of 4 to 15 words.
    const char* full_stop;
    // Stands for one separator in eight; null for none.
    const char* comma = nullptr;
    // One word in eight is one of these; null for none. Where the script has no
    // separator, they stand between spaces.
    const char* ascii = nullptr;
};

// ascii, latin, cyrillic, cjk, emoji.
extern const Corpus corpora[5];

// UTF-8 text of `bytes` bytes; complete characters only, the last one or more
// bytes are 'x' where no character fits.
std::string make_text(const Corpus& corpus, std::size_t bytes);

// Latin text in ISO-8859-1, one byte per character, all values from 0xA0 on
// among them.
std::string make_latin1_text(std::size_t bytes);

// Well-formed UTF-8 as UTF-16.
std::u16string to_utf16(const std::string& utf8);

}  // namespace kivbench

#endif
