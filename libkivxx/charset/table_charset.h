// charset/table_charset.h - a charset whose coders work on given tables.

#ifndef KIV_CHARSET_TABLE_CHARSET_H
#define KIV_CHARSET_TABLE_CHARSET_H

#include <memory>

#include <kiv/charset.h>

namespace kiv {

template <class Tables, class Decoder, class Encoder>
class TableCharset : public Charset {
public:
    std::unique_ptr<CharsetDecoder> newDecoder() const final
    {
        return std::make_unique<Decoder>(this, m_tables);
    }
    std::unique_ptr<CharsetEncoder> newEncoder() const final
    {
        return std::make_unique<Encoder>(this, m_tables);
    }

protected:
    TableCharset(const Tables& tables, int mib, basic_string_ref<char16> name,
                 std::initializer_list<basic_string_ref<char16>> aliases)
        : Charset(mib, name, aliases), m_tables(tables)
    {
    }

private:
    const Tables& m_tables;
};

}  // namespace kiv

#endif
