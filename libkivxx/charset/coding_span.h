// charset/coding_span.h - the arrays that a conversion step works on.

#ifndef KIV_CHARSET_CODING_SPAN_H
#define KIV_CHARSET_CODING_SPAN_H

#include <cstddef>

#include <kiv/charset.h>

namespace kiv {

// Raw pointers from the positions to the limits of both buffers. A step moves
// `in` and `out` and hands its result to finish(), which stores both positions
// once.
template <class In, class Out>
class CodingSpan {
public:
    CodingSpan(Buffer<const In>& from, Buffer<Out>& to)
        : in(from.data() + from.position()),
          in_end(from.data() + from.limit()),
          out(to.data() + to.position()),
          out_end(to.data() + to.limit()),
          m_from(from),
          m_to(to)
    {
    }

    std::size_t in_left() const noexcept { return static_cast<std::size_t>(in_end - in); }
    std::size_t out_left() const noexcept
    {
        return static_cast<std::size_t>(out_end - out);
    }

    // Runs a kernel over what is left, or over the front part of it.
    template <class Kernel>
    void run(Kernel kernel)
    {
        run(kernel, in_end);
    }
    template <class Kernel>
    void run(Kernel kernel, const In* part_end)
    {
        const auto progress = kernel(in, part_end, out, out_end);
        in = progress.in;
        out = progress.out;
    }

    CoderResult finish(CoderResult result)
    {
        m_from.position(static_cast<std::size_t>(in - m_from.data()));
        m_to.position(static_cast<std::size_t>(out - m_to.data()));
        return result;
    }

    const In* in;
    const In* in_end;
    Out* out;
    Out* out_end;

private:
    Buffer<const In>& m_from;
    Buffer<Out>& m_to;
};

using DecodeSpan = CodingSpan<unsigned char, char16>;
using EncodeSpan = CodingSpan<char16, unsigned char>;

}  // namespace kiv

#endif
