// convert_stream - converts standard input piece by piece.
//
//     convert_stream latin1 utf-8 < old.txt > new.txt
//
// What does not convert is replaced. Memory use does not depend on how much
// there is to convert.

#include <cstddef>
#include <iostream>
#include <string>

#include <kiv/buffer.h>
#include <kiv/charset.h>

namespace {

constexpr std::size_t BLOCK = 4096;

unsigned char in_bytes[BLOCK];
kiv::char16 units[BLOCK];
unsigned char out_bytes[BLOCK];

kiv::Charset* find(const char* name)
{
    // Charset names are UTF-16 text, as all text of the library.
    kiv::Charset* charset = kiv::Charset::forName(kiv::Charset::UTF_8->decode(name));
    if (!charset)
        std::cerr << "no charset is known as " << name << '\n';
    return charset;
}

void drain(kiv::Buffer<unsigned char>& out)
{
    std::cout.write(reinterpret_cast<const char*>(out.data()),
                    static_cast<std::streamsize>(out.position()));
    out.clear();
}

// Encodes what has been decoded. Half a surrogate pair may stay for next time.
void encode(kiv::CharsetEncoder& encoder, kiv::Buffer<kiv::char16>& text,
            kiv::Buffer<unsigned char>& out, bool last)
{
    text.flip();
    while (encoder.encode(text, out, last).isOverflow())
        drain(out);
    text.compact();
}

void convert(const kiv::Charset& from, const kiv::Charset& to)
{
    const auto decoder = from.newDecoder();
    const auto encoder = to.newEncoder();
    decoder->onMalformedInput(kiv::CodingErrorAction::REPLACE)
        .onUnmappableCharacter(kiv::CodingErrorAction::REPLACE);
    encoder->onMalformedInput(kiv::CodingErrorAction::REPLACE)
        .onUnmappableCharacter(kiv::CodingErrorAction::REPLACE);

    kiv::Buffer<unsigned char> in(in_bytes, BLOCK);
    kiv::Buffer<kiv::char16> text(units, BLOCK);
    kiv::Buffer<unsigned char> out(out_bytes, BLOCK);
    bool last = false;
    while (!last) {
        std::cin.read(reinterpret_cast<char*>(in.data() + in.position()),
                      static_cast<std::streamsize>(in.remaining()));
        in.position(in.position() + static_cast<std::size_t>(std::cin.gcount()));
        last = std::cin.eof();

        in.flip();
        while (decoder->decode(in, text, last).isOverflow())
            encode(*encoder, text, out, false);
        in.compact();  // an unfinished sequence is kept
        if (!last)
            encode(*encoder, text, out, false);
    }
    while (decoder->flush(text).isOverflow())
        encode(*encoder, text, out, false);
    encode(*encoder, text, out, true);
    while (encoder->flush(out).isOverflow())
        drain(out);
    drain(out);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: convert_stream FROM TO\n";
        return 2;
    }
    const kiv::Charset* from = find(argv[1]);
    const kiv::Charset* to = find(argv[2]);
    if (!from || !to)
        return 2;
    convert(*from, *to);
    return std::cout.flush() ? 0 : 1;
}
