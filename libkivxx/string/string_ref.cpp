#include <ostream>
#include <string_view>

#include <kiv/string_ref.h>

namespace kiv {

template class basic_string_ref<char>;
template class basic_string_ref<char16>;
template class basic_string_ref<char16_t>;
template class basic_string_ref<wchar_t>;

// The standard inserter of string views pads, writes in one block and resets
// the width exactly as the one of strings does.

std::ostream& operator<<(std::ostream& os, basic_string_ref<char> text)
{
    return os << std::string_view(text.data(), text.size());
}

std::wostream& operator<<(std::wostream& os, basic_string_ref<wchar_t> text)
{
    return os << std::wstring_view(text.data(), text.size());
}

}  // namespace kiv
