#include <kiv/char16.h>

template class std::basic_string<kiv::char16>;
