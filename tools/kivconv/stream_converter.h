// stream_converter.h - conversion of a stream of any length in fixed memory.

#ifndef KIVCONV_STREAM_CONVERTER_H
#define KIVCONV_STREAM_CONVERTER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kiv/buffer.h>
#include <kiv/charset.h>

#include "fault.h"
#include "input.h"
#include "options.h"
#include "output.h"
#include "progress.h"

namespace kivconv {

// What was skipped or replaced in one input.
struct Tally {
    std::uint64_t faults = 0;
    std::string first;  // "byte 17: E2 28 is not UTF-8: ..."
};

// Bytes are decoded a block at a time, the units of a block are encoded at
// once, and what that gives is written at once: nothing waits for more input
// but an unfinished character.
//
// The coders report every fault and the converter itself skips or replaces,
// so that a replacement may have any length. The place of a character that
// cannot be encoded is found by decoding the bytes of its block again, up to
// that character.
class StreamConverter {
public:
    StreamConverter(const Options& options, Output& output, Progress& progress);

    // Converts one input from its start to its end. Throws ConversionError,
    // with everything before the fault written, and FileError.
    Tally convert(Input& input);

private:
    // Bytes of the block at hand that made the units at hand.
    struct Span {
        std::size_t begin;
        std::size_t end;
    };

    bool fill(Input& input);
    void convert_block(bool last);
    void finish();
    void encode_units(Span source, bool complete);
    void write_output();

    void on_undecodable(kiv::CoderResult fault);
    void on_unencodable(kiv::CoderResult fault, Span source);
    void on_fault(std::uint64_t offset, const std::string& description);
    void write_replacement();

    std::size_t byte_of_unit(Span source, std::size_t unit);
    Span bytes_of_units(Span source, std::size_t unit, std::size_t n);
    bool would_continue(Bytes bytes);

    const Options& m_options;
    Output& m_output;
    Progress& m_progress;
    std::string m_replacement;
    std::string m_input_name;
    Tally m_tally;

    std::unique_ptr<kiv::CharsetDecoder> m_decoder;
    std::unique_ptr<kiv::CharsetDecoder> m_locator;  // decodes again to find a place
    std::unique_ptr<kiv::CharsetEncoder> m_encoder;

    std::vector<unsigned char> m_input_bytes;
    std::vector<kiv::char16> m_unit_storage;
    std::vector<kiv::char16> m_scratch_units;
    std::vector<unsigned char> m_output_bytes;
    kiv::Buffer<unsigned char> m_in;
    kiv::Buffer<kiv::char16> m_units;
    kiv::Buffer<unsigned char> m_out;
    std::uint64_t m_block_offset = 0;  // in the input, of the first byte in m_in
};

}  // namespace kivconv

#endif
