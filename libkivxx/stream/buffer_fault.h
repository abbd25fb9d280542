// stream/buffer_fault.h - what a stream does about exceptions of its buffer.

#ifndef KIV_STREAM_BUFFER_FAULT_H
#define KIV_STREAM_BUFFER_FAULT_H

#include <ios>
#if defined(__GLIBCXX__)
    #include <cxxabi.h>
#endif

#include <kiv/char16.h>
#include <kiv/stream.h>

namespace kiv {

// What unwinds the stack of a cancelled thread: a handler that does not pass it
// on ends the process.
#if defined(__GLIBCXX__)
using forced_unwind = abi::__forced_unwind;
#else
class forced_unwind {};  // never thrown
#endif

// For a handler. setstate() would put an exception of its own in the place of
// the one that is handled.
inline void set_bad(std::basic_ios<char16>& stream)
{
    try {
        stream.setstate(std::ios_base::badbit);
    } catch (const std::ios_base::failure&) {
        // The state is set.
    }
}

// Runs what may throw. An exception sets the badbit and is passed on if the
// exception mask has that.
template <class Step>
void report_buffer_fault(std::basic_ios<char16>& stream, Step step)
{
    try {
        step();
    } catch (forced_unwind&) {
        set_bad(stream);
        throw;
    } catch (...) {
        set_bad(stream);
        if ((stream.exceptions() & std::ios_base::badbit) != 0)
            throw;
    }
}

}  // namespace kiv

#endif
