# SPDX-License-Identifier: MIT
# Warnings for our own code; third-party headers come in as SYSTEM and are not judged.
add_library(kelvora_warnings INTERFACE)
target_compile_options(kelvora_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wnull-dereference -Wformat=2
    -Wimplicit-fallthrough)
if(KELVORA_WERROR)
    target_compile_options(kelvora_warnings INTERFACE -Werror)
endif()
