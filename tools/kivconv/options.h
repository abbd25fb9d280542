// options.h - the command line.

#ifndef KIVCONV_OPTIONS_H
#define KIVCONV_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include <kiv/charset.h>

namespace kivconv {

// What becomes of input that does not convert.
enum class OnFault { REPORT, REPLACE, SKIP };

struct Options {
    kiv::Charset* from = nullptr;
    kiv::Charset* to = nullptr;
    std::vector<std::string> inputs;  // at least one; "-" is standard input
    std::string output = "-";         // "-" is standard output
    OnFault on_fault = OnFault::REPORT;
    std::optional<std::string> replacement;  // UTF-8 text
    bool progress = false;                   // even if nobody seems to watch
    bool silent = false;
};

// A text that was asked for instead of a conversion: help, version, list.
struct Answer {
    std::string text;
};

// Fills the options, or returns the answer to give. Throws UsageError.
std::optional<Answer> read_options(int argc, char** argv, Options& options);

}  // namespace kivconv

#endif
