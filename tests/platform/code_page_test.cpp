#include "platform/code_page.h"

#include <clocale>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using kiv::platform::code_page;
using kiv::platform::code_page_of;

TEST(CodePage, OfCodesets)
{
    struct Case {
        std::string_view codeset;
        unsigned number;
    };
    static constexpr Case cases[] = {
        {"ANSI_X3.4-1968", 20127},
        {"UTF-8", 65001},
        {"utf8", 65001},
        {"TIS-620", 874},
        {"SHIFT_JIS", 932},
        {"SJIS", 932},
        {"Windows-31J", 932},
        {"GBK", 936},
        {"GB2312", 936},
        {"EUC-KR", 949},
        {"UHC", 949},
        {"BIG5", 950},
        {"Big5-HKSCS", 951},
        {"CP1250", 1250},
        {"windows-1251", 1251},
        {"cp1252", 1252},
        {"CP1253", 1253},
        {"CP1254", 1254},
        {"CP1255", 1255},
        {"CP1256", 1256},
        {"CP1257", 1257},
        {"CP1258", 1258},
        {"TCVN5712-1", 1258},
        {"KOI8-R", 20866},
        {"KOI8-U", 21866},
        {"ISO-8859-1", 28591},
        {"ISO-8859-15", 28605},
        {"GB18030", 54936},
        {"", 0},
        {"-", 0},
        {"CP125", 0},
        {"CP12520", 0},
        {"CP437", 0},
        {"ISO-8859-1\xE9", 28591},
    };
    for (const Case& c : cases)
        EXPECT_EQ(code_page_of(c.codeset), c.number) << c.codeset;
}

// One variable of the environment for the length of a test.
class Variable {
public:
    explicit Variable(const char* name) : m_name(name)
    {
        if (const char* value = std::getenv(name))
            m_before = value;
        unsetenv(name);
    }
    ~Variable()
    {
        if (m_before)
            setenv(m_name, m_before->c_str(), 1);
        else
            unsetenv(m_name);
    }
    Variable(const Variable&) = delete;

    void set(const std::string& value) { setenv(m_name, value.c_str(), 1); }
    void unset() { unsetenv(m_name); }

private:
    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(CodePage, OfTheEnvironment)
{
    Variable all("LC_ALL");
    Variable ctype("LC_CTYPE");
    Variable lang("LANG");
    EXPECT_EQ(code_page(), 20127u);  // the locale is "C"

    // No such locales: the name itself tells.
    struct Case {
        const char* name;
        unsigned number;
    };
    static constexpr Case cases[] = {{"xx_XX.CP1252", 1252},
                                     {"xx_XX.cp1251@latin", 1251},
                                     {"xx.GBK", 936},
                                     {"xx_XX", 0},
                                     {"xx_XX@cp1252", 0},
                                     {"xx_XX.", 0},
                                     {".@", 0},
                                     {"xx_XX.CP1252.CP1251", 0},
                                     {"xx/../../etc.CP1252", 0}};
    for (const Case& c : cases) {
        lang.set(c.name);
        EXPECT_EQ(code_page(), c.number) << c.name;
    }
    lang.set("xx_XX.CP1250");
    ctype.set("");
    EXPECT_EQ(code_page(), 1250u);
    ctype.set("xx_XX.CP1251");
    EXPECT_EQ(code_page(), 1251u);
    all.set("xx_XX.CP1252");
    EXPECT_EQ(code_page(), 1252u);
    all.set("POSIX");
    EXPECT_EQ(code_page(), 20127u);
    all.set("xx_XX.CP1257" + std::string(100'000, '@'));
    EXPECT_EQ(code_page(), 1257u);
}

// The locale of the process is neither asked nor changed.
TEST(CodePage, LeavesTheLocaleAlone)
{
    Variable all("LC_ALL");
    const std::string before = std::setlocale(LC_ALL, nullptr);
    all.set("C.UTF-8");
    EXPECT_EQ(code_page(), 65001u);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

}  // namespace
