# Compiler settings that every target of the project shares.
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(rovescio_settings INTERFACE)
target_compile_options(rovescio_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 takes the joining of strings for an overlapping copy (its bug 105651).
  target_compile_options(rovescio_settings INTERFACE -Wno-restrict)
endif()
if(ROVESCIO_SANITIZE)
  target_compile_options(rovescio_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(rovescio_settings INTERFACE -fsanitize=address,undefined)
endif()
include(cmake/Hardening.cmake)
if(ROVESCIO_FUZZ)
  target_compile_options(rovescio_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
