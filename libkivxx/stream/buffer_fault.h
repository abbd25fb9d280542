// stream/buffer_fault.h - what a stream does about exceptions of its buffer.

#ifndef KIV_STREAM_BUFFER_FAULT_H
#define KIV_STREAM_BUFFER_FAULT_H

#include <ios>

#include <kiv/char16.h>
#include <kiv/stream.h>

namespace kiv {

// For a handler: sets the badbit and, if the exception mask has it, passes the
// exception on. setstate() would put one of its own in the place of that.
inline void report_buffer_fault(std::basic_ios<char16>& stream)
{
    try {
        stream.setstate(std::ios_base::badbit);
    } catch (const std::ios_base::failure&) {
        // The state is set; what is thrown follows.
    }
    if ((stream.exceptions() & std::ios_base::badbit) != 0)
        throw;
}

}  // namespace kiv

#endif
