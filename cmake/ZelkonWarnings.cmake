# Compile options shared by every target of the project.
add_library(zelkon_options INTERFACE)
target_compile_options(zelkon_options INTERFACE
    -Wall -Wextra -Wpedantic -Wsuggest-override -Wnon-virtual-dtor -Woverloaded-virtual)
if(ZELKON_WERROR)
    target_compile_options(zelkon_options INTERFACE -Werror)
endif()
target_compile_definitions(zelkon_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_USE_QSTRINGBUILDER)
if(ZELKON_SANITIZE)
    target_compile_options(zelkon_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(zelkon_options INTERFACE -fsanitize=address,undefined)
endif()
