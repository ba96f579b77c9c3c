# What every target of ours is compiled with: warnings are errors, and floating point keeps to what is written
# (no contraction into fused operations), so that every compiler and processor gives the same bits.
add_library(vertana_options INTERFACE)
target_compile_options(vertana_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -ffp-contract=off)

if(VERTANA_SANITIZE)
  target_compile_options(vertana_options INTERFACE
    -fsanitize=${VERTANA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vertana_options INTERFACE -fsanitize=${VERTANA_SANITIZE})
endif()
if(VERTANA_COVERAGE)
  target_compile_options(vertana_options INTERFACE --coverage -O0)
  target_link_options(vertana_options INTERFACE --coverage)
endif()
# Without this GCC marks inline statics "unique", and a bundle that has one can never be unloaded again.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vertana_options INTERFACE -fno-gnu-unique)
endif()
# GCC 12 sees an overlap in "text" + std::string at -O3 that is not there (GCC bug 105651, mended in GCC 13).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(vertana_options INTERFACE -Wno-restrict)
endif()
