# Warnings are errors everywhere; a target takes them by linking quillon_options.
add_library(quillon_options INTERFACE)
target_compile_options(quillon_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(QUILLON_SANITIZE)
  # Options of the folder, which a folder below can take back in part.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(QUILLON_FUZZERS)
  # libFuzzer is led by the coverage of all code; the fuzz targets alone link its main.
  target_compile_options(quillon_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
