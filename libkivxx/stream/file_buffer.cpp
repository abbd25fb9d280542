#include "stream/file_buffer.h"

#include <algorithm>
#include <exception>
#include <locale>
#include <utility>

namespace kiv::detail {

namespace {

using traits = std::char_traits<char16>;

// The file passes bytes on as they are, whatever the global locale says.
bool open_bytes(std::filebuf& file, const char* path, std::ios_base::openmode mode)
{
    file.pubimbue(std::locale::classic());
    return file.open(path, mode | std::ios_base::binary) != nullptr;
}

bool at_end(std::filebuf& file)
{
    using byte_traits = std::char_traits<char>;
    return byte_traits::eq_int_type(file.sgetc(), byte_traits::eof());
}

}  // namespace

// --- Reading -------------------------------------------------------------------

bool file_reader::open(const char* path, const Charset& charset, CodingErrorAction faults)
{
    if (is_open())
        return false;
    m_decoder = charset.newDecoder();
    on_fault(faults);
    m_in.position(0).limit(0);
    m_last = m_finished = m_told = false;
    setg(nullptr, nullptr, nullptr);
    return open_bytes(m_file, path, std::ios_base::in);
}

bool file_reader::close()
{
    setg(nullptr, nullptr, nullptr);
    return m_file.close() != nullptr;
}

void file_reader::on_fault(CodingErrorAction action)
{
    if (m_decoder)
        m_decoder->onMalformedInput(action).onUnmappableCharacter(action);
}

// Takes what one read of the file gives, so that a pipe is read as it fills.
void file_reader::read_bytes()
{
    if (at_end(m_file)) {  // throws before anything is moved
        m_last = true;
        return;
    }
    m_in.compact();
    const auto room = static_cast<std::streamsize>(m_in.remaining());
    const std::streamsize n =
        m_file.sgetn(reinterpret_cast<char*>(m_bytes + m_in.position()),
                     std::min(room, m_file.in_avail()));
    m_in.position(m_in.position() + static_cast<std::size_t>(n));
    m_in.flip();
}

// Files grow: who asks again after the end gets what has been added. No charset
// of this library has a state that goes on from there.
void file_reader::look_for_more()
{
    if (at_end(m_file))
        return;
    m_decoder->reset();
    m_last = m_finished = m_told = false;
}

file_reader::int_type file_reader::underflow()
{
    if (gptr() < egptr())
        return traits::to_int_type(*gptr());
    if (!is_open())
        return traits::eof();

    const auto kept = std::min(KEPT, static_cast<std::size_t>(gptr() - eback()));
    char16* const text = m_units + KEPT;
    traits::move(text - kept, gptr() - kept, kept);
    setg(text - kept, text, text);
    if (m_told)
        look_for_more();

    Buffer<char16> out(text, FILE_UNITS);
    while (!m_finished) {
        const CoderResult result = m_decoder->decode(m_in, out, m_last);
        if (result.isUnderflow() && m_last)
            m_finished = m_decoder->flush(out).isUnderflow();
        if (out.position() != 0)
            break;
        if (result.isError()) {
            m_told = m_last;
            result.throwException();
        }
        if (!m_last)
            read_bytes();
    }
    setg(text - kept, text, text + out.position());
    if (out.position() != 0)
        return traits::to_int_type(*text);
    m_told = true;
    return traits::eof();
}

// --- Writing -------------------------------------------------------------------

file_writer::~file_writer()
{
    try {
        if (is_open())
            close();
    } catch (...) {
        // Nobody is left to be told.
    }
}

bool file_writer::open(const char* path, const Charset& charset, CodingErrorAction faults,
                       std::ios_base::openmode mode)
{
    if (is_open())
        return false;
    m_encoder = charset.newEncoder();
    on_fault(faults);
    m_out.clear();
    m_untold = false;
    m_file.pubsetbuf(nullptr, 0);  // m_bytes is buffer enough
    if (!open_bytes(m_file, path, mode | std::ios_base::out))
        return false;
    setp(m_units, m_units + FILE_UNITS);
    return true;
}

bool file_writer::close()
{
    if (!is_open())
        return false;
    bool written = !m_untold;
    try {
        written = encode(true) && flush_encoder() && written;
    } catch (...) {
        setp(nullptr, nullptr);
        m_file.close();
        throw;
    }
    setp(nullptr, nullptr);
    return m_file.close() != nullptr && written;
}

void file_writer::set_array(std::size_t used, std::size_t end)
{
    setp(m_units, m_units + end);
    pbump(static_cast<int>(used));
}

void file_writer::on_fault(CodingErrorAction action)
{
    if (m_encoder)
        m_encoder->onMalformedInput(action).onUnmappableCharacter(action);
}

bool file_writer::write_bytes()
{
    const auto n = static_cast<std::streamsize>(m_out.position());
    m_out.clear();
    return m_file.sputn(reinterpret_cast<const char*>(m_bytes), n) == n;
}

// Encodes what is in the array. What cannot be encoded moves to its front: a
// high surrogate at the end, or a fault and all behind it.
bool file_writer::encode(bool last)
{
    Buffer<const char16> in(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    CoderResult result;
    bool written = true;
    do {
        result = m_encoder->encode(in, m_out, last);
        written = write_bytes() && written;
    } while (result.isOverflow());

    const std::size_t rest = in.remaining();
    traits::move(m_units, in.data() + in.position(), rest);
    set_array(rest, result.isError() ? rest : FILE_UNITS);
    if (result.isError())
        result.throwException();
    return written;
}

bool file_writer::flush_encoder()
{
    bool written = true;
    CoderResult result;
    do {
        result = m_encoder->flush(m_out);
        written = write_bytes() && written;
    } while (result.isOverflow());
    return written;
}

file_writer::int_type file_writer::overflow(int_type unit)
{
    if (!is_open() || std::exchange(m_untold, false) || !encode(false))
        return traits::eof();
    if (!traits::eq_int_type(unit, traits::eof()))
        sputc(traits::to_char_type(unit));
    return traits::not_eof(unit);
}

std::streamsize file_writer::xsputn(const char16* units, std::streamsize n)
{
    std::streamsize done = 0;
    while (is_open() && done < n) {
        const std::streamsize run = std::min<std::streamsize>(n - done, epptr() - pptr());
        traits::copy(pptr(), units + done, static_cast<std::size_t>(run));
        pbump(static_cast<int>(run));
        done += run;
        if (pptr() == epptr() &&
            traits::eq_int_type(overflow(traits::eof()), traits::eof()))
            break;
    }
    return done;
}

bool file_writer::write_out()
{
    return is_open() && !std::exchange(m_untold, false) && encode(false) &&
           m_file.pubsync() == 0;
}

int file_writer::sync()
{
    if ((m_stream->flags() & std::ios_base::unitbuf) == 0)
        return write_out() ? 0 : -1;

    const bool would_throw = (m_stream->exceptions() & std::ios_base::badbit) != 0;
    try {
        if (write_out())
            return 0;
        m_untold = would_throw;
    } catch (const CharacterCodingError&) {
        // It stays in the array.
    } catch (const std::exception&) {
        m_untold = would_throw;
    }
    const auto used = static_cast<std::size_t>(pptr() - pbase());
    if (m_untold)
        set_array(used, used);
    return would_throw ? 0 : -1;
}

}  // namespace kiv::detail
