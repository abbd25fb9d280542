#include "stream/file_buffer.h"

#include <algorithm>
#include <locale>

namespace kiv::detail {

namespace {

using traits = std::char_traits<char16>;

// The file passes bytes on as they are, whatever the global locale says.
bool open_bytes(std::filebuf& file, const char* path, std::ios_base::openmode mode)
{
    file.pubimbue(std::locale::classic());
    return file.open(path, mode | std::ios_base::binary) != nullptr;
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
    m_last = m_finished = false;
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
    m_in.compact();
    if (std::char_traits<char>::eq_int_type(m_file.sgetc(),
                                            std::char_traits<char>::eof())) {
        m_last = true;
    } else {
        const auto room = static_cast<std::streamsize>(m_in.remaining());
        const std::streamsize n =
            m_file.sgetn(reinterpret_cast<char*>(m_bytes + m_in.position()),
                         std::min(room, m_file.in_avail()));
        m_in.position(m_in.position() + static_cast<std::size_t>(n));
    }
    m_in.flip();
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

    Buffer<char16> out(text, FILE_UNITS);
    while (!m_finished) {
        const CoderResult result = m_decoder->decode(m_in, out, m_last);
        if (result.isUnderflow() && m_last)
            m_finished = m_decoder->flush(out).isUnderflow();
        if (out.position() != 0)
            break;
        if (result.isError())
            result.throwException();
        if (!m_last)
            read_bytes();
    }
    setg(text - kept, text, text + out.position());
    return out.position() != 0 ? traits::to_int_type(*text) : traits::eof();
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
    m_encoder->onMalformedInput(faults).onUnmappableCharacter(faults);
    m_out.clear();
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
    bool written = false;
    try {
        written = encode(true) && flush_encoder();
    } catch (...) {
        setp(nullptr, nullptr);
        m_file.close();
        throw;
    }
    setp(nullptr, nullptr);
    return m_file.close() != nullptr && written;
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
    setp(m_units, m_units + FILE_UNITS);
    pbump(static_cast<int>(rest));
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
    if (!is_open() || !encode(false))
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
        if (pptr() == epptr() && !encode(false))
            break;
    }
    return done;
}

int file_writer::sync()
{
    return is_open() && encode(false) && m_file.pubsync() == 0 ? 0 : -1;
}

}  // namespace kiv::detail
