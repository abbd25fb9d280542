#include "corpora.h"

#include <cstdint>
#include <sstream>
#include <vector>

namespace kivbench {

// The columns of emoji differ from tool to tool.
// clang-format off
const Corpus corpora[5] = {
    {"ascii",
     "the of and a in that it is was for on with as had by at which from this his but "
     "not were are or have an they one would there been their we him when more will "
     "market station weather question business between government development "
     "understanding Wednesday London 1984 42 3.14 don't well-known (see note)",
     " ", ". "},
    {"latin",
     "le la les où été déjà à voilà élève être après même fenêtre garçon français "
     "naïve cœur août hôtel théâtre mais pour avec une dans der die das über für "
     "schön Straße Mädchen größer können müssen täglich natürlich und nicht auch "
     "Wetter Zeit Haus einer eine wieder gegen jour temps monde maison plusieurs "
     "gouvernement développement Gesellschaft Äpfel Öl Übung 1789 27",
     " ", ". "},
    {"cyrillic",
     "и в не на я быть он с что а по это она этот к но они мы весь который из у то "
     "за свой человек время дело жизнь первый день рука другой раз вопрос работа "
     "большой город страна правительство государство необходимость возможность "
     "развитие стол окно дом улица Москва июля 1961 12",
     " ", ". "},
    {"cjk",
     "的 一 是 不 了 人 我 在 有 他 这 中 大 来 上 国 时间 问题 工作 社会 发展 经济 "
     "政府 学生 老师 朋友 今天 明天 因为 所以 科学技术 日本語 です ます こと もの "
     "という している コンピュータ データ 東京 昨日 新聞 電車 한국 사람 시간 나라 "
     "그리고 대한민국 2024 ， 、",
     "", "。"},
    {"emoji",
     "😀 😂 🎉🎉 ❤️ 👍🏽 👩‍💻 🇫🇷 🚀 🌍🌎🌏 🔥🔥🔥 🙏 😭😭 🥳 🤔 ☀️ 🍕 🎂🎁 "
     "👨‍👩‍👧 "
     "ok "
     "great happy lol see you tonight thanks yes love it 10 🐶🐱🐭🐹🐰🦊 😎 "
     "💯 "
     "✨",
     " ", "! "},
};
// clang-format on

namespace {

// A multiplicative generator (Park and Miller's minimal standard): the same
// numbers everywhere, which the standard distributions do not promise.
class Random {
public:
    std::size_t below(std::size_t n)
    {
        m_state = m_state * 48271 % 2147483647;
        return static_cast<std::size_t>(m_state % n);
    }

    const std::string& pick(const std::vector<std::string>& words)
    {
        return words[below(words.size())];
    }

private:
    std::uint64_t m_state = 20240229;
};

std::vector<std::string> split(const char* words)
{
    std::istringstream stream(words);
    std::vector<std::string> result;
    for (std::string word; stream >> word;)
        result.push_back(word);
    return result;
}

}  // namespace

std::string make_text(const Corpus& corpus, std::size_t bytes)
{
    const std::vector<std::string> words = split(corpus.vocabulary);
    const std::vector<std::string> ascii_words =
        split(corpus.ascii != nullptr ? corpus.ascii : "");
    const bool spaced = *corpus.separator == '\0';
    Random random;
    std::string text;
    while (text.size() < bytes) {
        for (std::size_t left = 4 + random.below(12); left != 0; --left) {
            const bool ascii = !ascii_words.empty() && random.below(8) == 0;
            if (ascii && spaced && !text.ends_with(' ') && !text.ends_with('\n'))
                text += ' ';
            text += random.pick(ascii ? ascii_words : words);
            if (left == 1)
                text += corpus.full_stop;
            else if (corpus.comma != nullptr && random.below(8) == 0)
                text += corpus.comma;
            else
                text += ascii && spaced ? " " : corpus.separator;
        }
        if (random.below(8) == 0)
            text += '\n';
    }
    std::size_t end = bytes;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
    text.resize(bytes, 'x');
    return text;
}

std::string make_latin1_text(std::size_t bytes)
{
    Random random;
    std::string text;
    while (text.size() < bytes)
        text += static_cast<char>(random.below(8) == 0 ? 0xA0 + random.below(96)
                                                       : 'a' + random.below(26));
    return text;
}

std::u16string to_utf16(const std::string& utf8)
{
    std::u16string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t value = bytes == 1 ? lead : lead & (0x7Fu >> bytes);
        for (std::size_t k = 1; k < bytes; ++k)
            value = value << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3Fu);
        if (value < 0x10000) {
            text += static_cast<char16_t>(value);
        } else {
            text += static_cast<char16_t>(0xD7C0 + (value >> 10));
            text += static_cast<char16_t>(0xDC00 | (value & 0x3FF));
        }
        i += bytes;
    }
    return text;
}

}  // namespace kivbench
