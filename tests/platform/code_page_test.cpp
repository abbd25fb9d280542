#include "platform/code_page.h"

#include <clocale>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace {

using kiv::platform::code_page;
using kiv::platform::code_page_of;

TEST(CodePage, OfCodesets)
{
    static constexpr std::pair<std::string_view, unsigned> cases[] = {
        {"ANSI_X3.4-1968", 20127},
        {"UTF-8", 65001},
        {"TIS-620", 874},
        {"Shift_JIS", 932},
        {"Windows-31J", 932},
        {"GBK", 936},
        {"EUC-KR", 949},
        {"BIG5", 950},
        {"Big5-HKSCS", 951},
        {"TCVN5712-1", 1258},
        {"KOI8-R", 20866},
        {"ISO-8859-1", 28591},
        {"ISO-8859-15", 28605},
        {"ISO-8859-1\xE9", 28591},
        {"", 0},
        {"CP125", 0},
        {"CP12520", 0},
    };
    for (const auto& [codeset, number] : cases)
        EXPECT_EQ(code_page_of(codeset), number) << codeset;
    for (unsigned number = 1250; number <= 1258; ++number) {
        EXPECT_EQ(code_page_of("cp" + std::to_string(number)), number);
        EXPECT_EQ(code_page_of("Windows-" + std::to_string(number)), number);
    }
}

TEST(CodePage, OfTheEnvironment)
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        unsetenv(name);
    EXPECT_EQ(code_page(), 20127u);  // the locale is "C"
    const auto expect = [](const char* variable, const std::string& name,
                           unsigned number) {
        setenv(variable, name.c_str(), 1);
        EXPECT_EQ(code_page(), number) << name;
    };
    // No such locales: the name itself tells.
    expect("LANG", "xx_XX.cp1251@latin", 1251);
    for (const char* name : {"xx_XX", "xx_XX@cp1252", "xx_XX@a.cp1252", "xx_XX.", ".@",
                             "xx_XX.CP1252.CP1251"})
        expect("LANG", name, 0);
    expect("LANG", "xx_XX.CP1250", 1250);
    expect("LC_CTYPE", "", 1250);
    expect("LC_CTYPE", "xx_XX.CP1251", 1251);
    expect("LC_ALL", "xx_XX.CP1252", 1252);
    expect("LC_ALL", "xx_XX.CP1257" + std::string(100'000, '@'), 1257);
    expect("LC_ALL", "POSIX", 20127);
    // The locale of the process is neither asked nor changed.
    expect("LC_ALL", "C.UTF-8", 65001);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    unsetenv("LC_ALL");
}

}  // namespace
