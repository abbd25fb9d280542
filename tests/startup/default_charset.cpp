// Prints the name of the default charset, then the canonical name of each
// argument, "-" for one that no charset bears.

#include <cstdio>
#include <cstdlib>
#include <string>

#include <kiv/charset.h>

namespace {

void print(const kiv::Charset* charset)
{
    std::string line =
        charset != nullptr ? kiv::Charset::US_ASCII->encode(charset->name()) : "-";
    std::puts(line.c_str());
}

}  // namespace

int main(int argc, char** argv)
{
    const kiv::Charset* const charset = kiv::Charset::defaultCharset();
    print(charset);
    for (int i = 1; i < argc; ++i)
        print(kiv::Charset::forName(kiv::Charset::US_ASCII->decode(argv[i])));

    // The choice was made for good when the library was loaded.
    for (const char* name : {"UTF-16LE", "UTF-16BE"}) {
        setenv("KIV_DEFAULT_CHARSET", name, 1);
        if (kiv::Charset::defaultCharset() != charset)
            return 1;
    }
    return kiv::cvtstr<std::string>(charset->name()) == charset->encode(charset->name())
               ? 0
               : 1;
}
