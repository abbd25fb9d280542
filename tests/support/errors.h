// The text of the exception that a call should throw.

#ifndef KIV_TESTS_SUPPORT_ERRORS_H
#define KIV_TESTS_SUPPORT_ERRORS_H

#include <string>

namespace kivtest {

// Exactly an Error or a type derived from it; anything else escapes.
template <class Error, class Call>
std::string what_of(Call call)
{
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing thrown";
}

}  // namespace kivtest

#endif
