// stream/file_buffer.h - stream buffers between the bytes of a file and UTF-16.
//
// Each has one array of bytes and one of units. A coding error is thrown from
// the buffer's virtual functions: the stream turns it into its badbit. The text
// in front of the fault has been passed on by then, and what is behind it waits.
// A writer that stands at a fault has no room, so that the next write meets it.

#ifndef KIV_STREAM_FILE_BUFFER_H
#define KIV_STREAM_FILE_BUFFER_H

#include <cstddef>
#include <fstream>
#include <ios>
#include <memory>
#include <streambuf>

#include <kiv/buffer.h>
#include <kiv/char16.h>
#include <kiv/charset.h>
#include <kiv/stream.h>  // where the templates of char16 are declared extern

namespace kiv::detail {

constexpr std::size_t FILE_BYTES = 8192;
constexpr std::size_t FILE_UNITS = 4096;

class file_reader final : public std::basic_streambuf<char16> {
public:
    file_reader() = default;

    // False if the file cannot be opened, or if one is open.
    bool open(const char* path, const Charset& charset, CodingErrorAction faults);
    bool is_open() const { return m_file.is_open(); }
    bool close();
    void on_fault(CodingErrorAction action);

protected:
    int_type underflow() override;

private:
    // Units in front of what is read, for unget().
    static constexpr std::size_t KEPT = 4;

    void read_bytes();
    void look_for_more();

    std::filebuf m_file;
    std::unique_ptr<CharsetDecoder> m_decoder;
    bool m_last = false;      // no bytes follow those in m_in
    bool m_finished = false;  // the decoder has been flushed
    bool m_told = false;      // the reader knows of the end
    unsigned char m_bytes[FILE_BYTES];
    char16 m_units[KEPT + FILE_UNITS];
    Buffer<unsigned char> m_in{m_bytes, FILE_BYTES};  // drained, unless reading
};

class file_writer final : public std::basic_streambuf<char16> {
public:
    file_writer() = default;
    ~file_writer() override;

    // The stream whose flags sync() asks; before anything is written.
    void serve(const std::basic_ios<char16>& stream) { m_stream = &stream; }

    bool open(const char* path, const Charset& charset, CodingErrorAction faults,
              std::ios_base::openmode mode);
    bool is_open() const { return m_file.is_open(); }
    // Closes the file even if it throws the fault of what was left to write.
    bool close();
    void on_fault(CodingErrorAction action);

protected:
    int_type overflow(int_type unit) override;
    // In blocks, U+FFFF is a unit like any other.
    std::streamsize xsputn(const char16* units, std::streamsize n) override;
    // With unitbuf it is the destructor of a sentry that calls: nothing is thrown
    // then, and where the stream itself would throw, no failure returned either.
    // The next write and close() meet what was wrong.
    int sync() override;

private:
    bool write_out();
    void set_array(std::size_t used, std::size_t end);
    bool encode(bool last);
    bool flush_encoder();
    bool write_bytes();

    const std::basic_ios<char16>* m_stream = nullptr;
    bool m_untold = false;  // bytes were lost in a sync() that could not tell
    std::filebuf m_file;
    std::unique_ptr<CharsetEncoder> m_encoder;
    char16 m_units[FILE_UNITS];
    unsigned char m_bytes[FILE_BYTES];
    Buffer<unsigned char> m_out{m_bytes, FILE_BYTES};
};

}  // namespace kiv::detail

#endif
