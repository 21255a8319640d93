# Headers that many sources include, parsed once for all of them. QUILLON_PRECOMPILE says for what: OFF, TESTS, or ALL for the
# layers' sources too. Every source includes what it needs all the same, and a build whose layers take no precompiled
# headers proves it. A compiler cache does not look into precompiled headers, and saves more.
#
#   quillon_precompiled_headers(NAME name LINKS targets... HEADERS ...)
#   quillon_precompile(target name): the target's sources start with the headers of that name, if there are any.
#
# A target that takes the headers must be compiled like the one that holds them: the same warnings, Qt or no Qt.
function(quillon_precompiled_headers)
  cmake_parse_arguments(PARSE_ARGV 0 headers "" "NAME" "LINKS;HEADERS")
  if(QUILLON_PRECOMPILE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${headers_NAME}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(${headers_NAME} OBJECT ${source})
    target_link_libraries(${headers_NAME} PRIVATE quillon_options ${headers_LINKS})
    target_precompile_headers(${headers_NAME} PRIVATE ${headers_HEADERS})
  endif()
endfunction()

function(quillon_precompile target name)
  if(TARGET ${name})
    target_precompile_headers(${target} REUSE_FROM ${name})
    # The headers alone are more than the heap at which GCC starts to look for garbage, which it would do again and again.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=1000000>)
  endif()
endfunction()
