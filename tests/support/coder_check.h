// support/coder_check.h - one check for the coders of every charset.
//
// A case is a list of items, each a piece of input with what must become of
// it. The check feeds the input whole, cut in two at every place and unit by
// unit, into outputs of every size from 0 up, after paddings of ASCII that
// move it across the alignments of wide loops, repeated, and under every error
// action. Input and output are arrays of their exact size at the edges of
// inaccessible memory.

#ifndef SUPPORT_CODER_CHECK_H
#define SUPPORT_CODER_CHECK_H

#include <string>
#include <vector>

#include <kiv/charset.h>

namespace support {

// A piece of input that is converted to output as a whole, or is one fault.
struct DecodeItem {
    std::string in;
    std::u16string out;
    kiv::CoderResult fault = kiv::CoderResult::underflow();  // an error: `in` is it
};

struct EncodeItem {
    std::u16string in;
    std::string out;
    kiv::CoderResult fault = kiv::CoderResult::underflow();
    bool dropped = false;  // a default-ignorable character without a mapping
};

using DecodeItems = std::vector<DecodeItem>;
using EncodeItems = std::vector<EncodeItem>;

// How much is tried: everything is quadratic in the size of the case, so long
// cases are converted whole, with a few cuts and capacities only.
enum class Effort { QUICK, FULL };

// Adds the failures to the running test.
void check_decoder(const kiv::Charset* charset, const DecodeItems& items,
                   Effort effort = Effort::FULL);
void check_encoder(const kiv::Charset* charset, const EncodeItems& items,
                   Effort effort = Effort::FULL);

}  // namespace support

#endif
