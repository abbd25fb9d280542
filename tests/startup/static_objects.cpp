// Uses the library from the constructor and the destructor of a static object:
// it must be ready before the one and still be there for the other. Prints each
// phase that went well.

#include <cstdio>
#include <string>

#include <kiv/big_uint.h>
#include <kiv/charset.h>
#include <kiv/numconv.h>

namespace {

using namespace kiv::literals;
using kiv::Charset;

class OwnCharset : public Charset {
public:
    OwnCharset() : Charset(0, u"x-static"_usv, {u"x-static-alias"_usv}) {}
    std::unique_ptr<kiv::CharsetDecoder> newDecoder() const override
    {
        return UTF_8->newDecoder();
    }
    std::unique_ptr<kiv::CharsetEncoder> newEncoder() const override
    {
        return UTF_8->newEncoder();
    }
};

void use(const char* phase)
{
    bool good = Charset::forName(u"csutf8"_usv) == Charset::UTF_8 &&
                Charset::defaultCharset() != nullptr &&
                kiv::cvtstr<std::string>(u"a"_usv) == "a" &&
                Charset::forName(u"x-static-alias"_usv) != nullptr;
    kiv::big_uint power;
    good = good &&
           kiv::make_double(false, -300, kiv::big_uint::pow10(300, &power)) == 1 &&
           kiv::big_uint::pow5(100, &power).to_string() ==
               "7888609052210118054117285652827862296732064351090230047702789306640625";

    for (const Charset* charset : Charset::availableCharsets())
        good = good && charset->decode(charset->encode(u"text"_usv)) == u"text"_us;
    try {
        Charset::UTF_8->newDecoder()->decode("\xFF");
        good = false;
    } catch (const std::ios_base::failure& e) {
        good = good && e.code() == std::io_errc::stream;
    }
    std::puts(good ? phase : "fault");
    std::fflush(stdout);
}

struct User {
    User()
    {
        new OwnCharset;
        use("constructed");
    }
    ~User() { use("destroyed"); }
} user;

}  // namespace

int main()
{
    use("main");
}
