#include "stream_converter.h"

#include "errors.h"
#include "replacement.h"

namespace kivconv {
namespace {

// Large enough that calls of the system do not count, small enough that a
// block stays in the processor's cache from the read to the write.
constexpr std::size_t BLOCK_BYTES = std::size_t{64} * 1024;
constexpr std::size_t BLOCK_UNITS = BLOCK_BYTES;

}  // namespace

StreamConverter::StreamConverter(const Options& options, Output& output,
                                 Progress& progress)
    : m_options(options),
      m_output(output),
      m_progress(progress),
      m_decoder(options.from->newDecoder()),
      m_locator(options.from->newDecoder()),
      m_encoder(options.to->newEncoder()),
      m_input_bytes(BLOCK_BYTES),
      m_unit_storage(BLOCK_UNITS),
      m_scratch_units(BLOCK_UNITS),
      m_output_bytes(BLOCK_BYTES),
      m_in(m_input_bytes.data(), m_input_bytes.size()),
      m_units(m_unit_storage.data(), m_unit_storage.size()),
      m_out(m_output_bytes.data(), m_output_bytes.size())
{
    if (options.on_fault == OnFault::REPLACE)
        m_replacement = replacement_bytes(*options.to, options.replacement);
}

Tally StreamConverter::convert(Input& input)
{
    input.refuse_to_feed(m_output.descriptor());
    m_input_name = input.name();
    m_tally = {};
    m_decoder->reset();
    m_encoder->reset();
    m_in.clear();
    m_block_offset = 0;

    bool last = false;
    while (!last) {
        last = !fill(input);
        convert_block(last);
        m_block_offset += m_in.position();
        m_in.compact();
    }
    finish();
    return m_tally;
}

// Reads behind what is left of the block before; false at the end of the input.
bool StreamConverter::fill(Input& input)
{
    const std::size_t begin = m_in.position();
    const std::size_t n = input.read(m_in.data() + begin, m_in.remaining());
    m_in.position(begin + n);
    m_in.flip();
    m_progress.advance(n);
    return n != 0;
}

void StreamConverter::convert_block(bool last)
{
    for (;;) {
        const std::size_t begin = m_in.position();
        m_units.clear();
        const kiv::CoderResult result = m_decoder->decode(m_in, m_units, last);
        m_units.flip();

        // A high surrogate before a fault or the end will not be completed.
        const bool complete = result.isError() || (last && result.isUnderflow());
        encode_units({begin, m_in.position()}, complete);
        if (result.isError())
            on_undecodable(result);
        else if (result.isUnderflow())
            break;
    }
    write_output();
}

// Lets coders that keep a state write what they held back.
void StreamConverter::finish()
{
    kiv::CoderResult result;
    do {
        m_units.clear();
        result = m_decoder->flush(m_units);
        m_units.flip();
        encode_units({m_in.position(), m_in.position()}, true);
    } while (result.isOverflow());
    while (m_encoder->flush(m_out).isOverflow())
        write_output();
    write_output();
}

// complete: the units that follow, if any, do not belong to the last of these.
void StreamConverter::encode_units(Span source, bool complete)
{
    for (;;) {
        const kiv::CoderResult result = m_encoder->encode(m_units, m_out, complete);
        if (result.isOverflow())
            write_output();
        else if (result.isError())
            on_unencodable(result, source);
        else
            break;
    }
    if (complete)
        return;
    // Half a pair, as CESU-8 can leave: its bytes are decoded again, together
    // with those that follow.
    if (m_units.hasRemaining())
        m_in.position(byte_of_unit(source, m_units.position()));
}

void StreamConverter::write_output()
{
    m_output.write(m_out.data(), m_out.position());
    m_out.clear();
}

// --- Faults ------------------------------------------------------------------

void StreamConverter::on_undecodable(kiv::CoderResult fault)
{
    const std::size_t begin = m_in.position();
    const Bytes bytes(m_in.data() + begin, fault.length());
    if (m_tally.faults == 0) {
        const bool cut_short =
            begin + fault.length() == m_in.limit() && would_continue(bytes);
        on_fault(m_block_offset + begin,
                 describe_undecodable(*m_options.from, bytes, fault.kind(), cut_short));
    }
    ++m_tally.faults;
    m_in.position(begin + fault.length());
    write_replacement();
    m_encoder->reset();
}

void StreamConverter::on_unencodable(kiv::CoderResult fault, Span source)
{
    const std::size_t unit = m_units.position();
    if (m_tally.faults == 0) {
        const Span place = bytes_of_units(source, unit, fault.length());
        const Bytes bytes(m_in.data() + place.begin, place.end - place.begin);
        on_fault(
            m_block_offset + place.begin,
            describe_unencodable(*m_options.to, bytes,
                                 {m_units.data() + unit, fault.length()}, fault.kind()));
    }
    ++m_tally.faults;
    m_units.position(unit + fault.length());
    write_replacement();
}

// Ends the conversion or remembers the first fault.
void StreamConverter::on_fault(std::uint64_t offset, const std::string& description)
{
    const std::string text = "byte " + std::to_string(offset) + ": " + description;
    if (m_options.on_fault == OnFault::REPORT) {
        write_output();
        throw ConversionError(m_input_name + ": " + text);
    }
    m_tally.first = text;
}

void StreamConverter::write_replacement()
{
    if (m_out.remaining() < m_replacement.size())
        write_output();
    if (m_out.remaining() < m_replacement.size())
        m_output.write(m_replacement.data(), m_replacement.size());
    else
        for (const char byte : m_replacement)
            m_out.put(static_cast<unsigned char>(byte));
}

// --- Places ------------------------------------------------------------------

// Where the character that the unit belongs to begins: with room for only the
// units before it, a decoder stops there.
std::size_t StreamConverter::byte_of_unit(Span source, std::size_t unit)
{
    kiv::Buffer<const unsigned char> in(m_in.data(), source.end);
    in.position(source.begin);
    kiv::Buffer<kiv::char16> out(m_scratch_units.data(), unit);
    m_locator->reset().decode(in, out, false);
    return in.position();
}

StreamConverter::Span StreamConverter::bytes_of_units(Span source, std::size_t unit,
                                                      std::size_t n)
{
    const std::size_t begin = byte_of_unit(source, unit);
    std::size_t end = byte_of_unit(source, unit + n);
    // The unit may be the first of several from one sequence of bytes.
    for (; end == begin && end != source.end && unit + n < m_units.limit(); ++n)
        end = byte_of_unit(source, unit + n + 1);
    return {begin, end};
}

// Whether the bytes are a character without its end.
bool StreamConverter::would_continue(Bytes bytes)
{
    kiv::Buffer<const unsigned char> in(bytes.data(), bytes.size());
    kiv::Buffer<kiv::char16> out(m_scratch_units.data(), m_scratch_units.size());
    return m_locator->reset().decode(in, out, false).isUnderflow() && in.hasRemaining();
}

}  // namespace kivconv
