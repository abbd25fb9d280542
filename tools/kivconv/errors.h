// errors.h - what ends a run early, and the exit status that each leaves.

#ifndef KIVCONV_ERRORS_H
#define KIVCONV_ERRORS_H

#include <stdexcept>
#include <string>
#include <system_error>

namespace kivconv {

constexpr int EXIT_CONVERTED = 0;
constexpr int EXIT_NOT_CONVERTED = 1;  // something in the input does not convert
constexpr int EXIT_TROUBLE = 2;        // wrong usage, or files that fail

class UsageError : public std::runtime_error {
    using runtime_error::runtime_error;
};

class ConversionError : public std::runtime_error {
    using runtime_error::runtime_error;
};

class FileError : public std::runtime_error {
    using runtime_error::runtime_error;

public:
    // "<what>: <the text of the errno value>"
    FileError(const std::string& what, int error)
        : runtime_error(what + ": " + std::generic_category().message(error))
    {
    }
};

}  // namespace kivconv

#endif
