#include <kiv/stream.h>

namespace kiv {

namespace detail {

// The buffer is younger than the stream, which starts on none; setting it makes
// the state good.
template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
string_stream<Stream, IMPLIED, DEFAULT>::string_stream(const ustring& text,
                                                       std::ios_base::openmode mode)
    : Stream(nullptr), m_buffer(text, mode | IMPLIED)
{
    std::basic_ios<char16>::rdbuf(&m_buffer);
    m_buffer.pubimbue(this->getloc());
}

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
string_stream<Stream, IMPLIED, DEFAULT>::string_stream(std::ios_base::openmode mode)
    : string_stream(ustring(), mode)
{
}

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
string_stream<Stream, IMPLIED, DEFAULT>::~string_stream() = default;

// Each stream stays on its own buffer. Whether the locales of buffers go with
// their texts is not the same everywhere.
template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
void string_stream<Stream, IMPLIED, DEFAULT>::swap(string_stream& other)
{
    Stream::swap(other);
    m_buffer.swap(other.m_buffer);
    m_buffer.pubimbue(this->getloc());
    other.m_buffer.pubimbue(other.getloc());
}

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
auto string_stream<Stream, IMPLIED, DEFAULT>::rdbuf() const noexcept
    -> std::basic_stringbuf<char16>*
{
    return const_cast<std::basic_stringbuf<char16>*>(&m_buffer);
}

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
ustring string_stream<Stream, IMPLIED, DEFAULT>::str() const
{
    return m_buffer.str();
}

template <class Stream, std::ios_base::openmode IMPLIED, std::ios_base::openmode DEFAULT>
void string_stream<Stream, IMPLIED, DEFAULT>::str(const ustring& text)
{
    m_buffer.str(text);
}

template class string_stream<uistream, MODE_IN, MODE_IN>;
template class string_stream<uostream, MODE_OUT, MODE_OUT>;
template class string_stream<uiostream, std::ios_base::openmode{}, MODE_IN | MODE_OUT>;

}  // namespace detail

uistringstream::~uistringstream() = default;
uostringstream::~uostringstream() = default;
ustringstream::~ustringstream() = default;

}  // namespace kiv
