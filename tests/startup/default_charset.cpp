// Prints the canonical name of the charset that the argument names, "-" if there is
// none, then that of the default charset.

#include <cstdio>
#include <cstdlib>

#include <kiv/charset.h>

int main(int, char** argv)
{
    using kiv::Charset;
    const Charset* const charset = Charset::defaultCharset();
    const Charset* const named = Charset::forName(Charset::US_ASCII->decode(argv[1]));
    for (const Charset* c : {named, charset})
        std::puts(c != nullptr ? Charset::US_ASCII->encode(c->name()).c_str() : "-");

    // The choice was made for good when the library was loaded.
    for (const char* name : {"UTF-16LE", "UTF-16BE"}) {
        setenv("KIV_DEFAULT_CHARSET", name, 1);
        if (Charset::defaultCharset() != charset)
            return 1;
    }
    return kiv::cvtstr<std::string>(charset->name()) != charset->encode(charset->name());
}
