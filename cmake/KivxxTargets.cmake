# What every target of the project is compiled with.

# The strictness of the project's own code; users of the headers choose theirs.
add_library(kivxx_warnings INTERFACE)
target_compile_options(kivxx_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${KIVXX_WERROR}>:-Werror>)

if(KIVXX_SANITIZE)
    # A sanitizer must see the whole program, so it is not a target's property.
    add_compile_options(-fsanitize=${KIVXX_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KIVXX_SANITIZE})
endif()
