#include <kiv/stream.h>

#include "stream/buffer_fault.h"
#include "stream/file_buffer.h"

namespace kiv {

// --- uifstream -----------------------------------------------------------------

uifstream::uifstream()
    : uistream(nullptr), m_file(std::make_unique<detail::file_reader>())
{
    rdbuf(m_file.get());
    m_file->pubimbue(getloc());
}

uifstream::uifstream(const char* path, const Charset* charset, CodingErrorAction faults)
    : uifstream()
{
    open(path, charset, faults);
}

uifstream::uifstream(uifstream&& other) : uifstream()
{
    swap(other);
}

uifstream& uifstream::operator=(uifstream&& other)
{
    if (this != &other) {
        uifstream().swap(*this);  // closes the file
        swap(other);
    }
    return *this;
}

uifstream::~uifstream() = default;

void uifstream::swap(uifstream& other)
{
    uistream::swap(other);
    m_file.swap(other.m_file);
    set_rdbuf(m_file.get());
    other.set_rdbuf(other.m_file.get());
}

void uifstream::open(const char* path, const Charset* charset, CodingErrorAction faults)
{
    if (charset && m_file->open(path, *charset, faults))
        clear();
    else
        setstate(failbit);
}

bool uifstream::is_open() const
{
    return m_file->is_open();
}

void uifstream::close()
{
    if (!m_file->close())
        setstate(failbit);
}

void uifstream::onFault(CodingErrorAction action)
{
    m_file->on_fault(action);
}

// --- uofstream -----------------------------------------------------------------

uofstream::uofstream()
    : uostream(nullptr), m_file(std::make_unique<detail::file_writer>())
{
    rdbuf(m_file.get());
    m_file->pubimbue(getloc());
    m_file->serve(*this);
}

uofstream::uofstream(const char* path, const Charset* charset, CodingErrorAction faults,
                     std::ios_base::openmode mode)
    : uofstream()
{
    open(path, charset, faults, mode);
}

uofstream::uofstream(uofstream&& other) : uofstream()
{
    swap(other);
}

uofstream& uofstream::operator=(uofstream&& other)
{
    if (this != &other) {
        uofstream().swap(*this);  // closes the file
        swap(other);
    }
    return *this;
}

uofstream::~uofstream() = default;

void uofstream::swap(uofstream& other)
{
    uostream::swap(other);
    m_file.swap(other.m_file);
    set_rdbuf(m_file.get());
    other.set_rdbuf(other.m_file.get());
    m_file->serve(*this);
    other.m_file->serve(other);
}

void uofstream::open(const char* path, const Charset* charset, CodingErrorAction faults,
                     std::ios_base::openmode mode)
{
    if (charset && m_file->open(path, *charset, faults, mode))
        clear();
    else
        setstate(failbit);
}

bool uofstream::is_open() const
{
    return m_file->is_open();
}

void uofstream::close()
{
    bool closed = true;
    report_buffer_fault(*this, [&] { closed = m_file->close(); });
    if (!closed)
        setstate(failbit);
}

void uofstream::onFault(CodingErrorAction action)
{
    m_file->on_fault(action);
}

}  // namespace kiv
