# Layers: a folder of src/ is one target, and its headers are reachable only by targets that link it.
#
# All includes name the path below src/ ("jet/disk/pager.h"). If src/ itself were an include path, every folder could
# include every other. So each layer gets an include root of its own in the build tree that holds nothing but a link to
# the layer's folder, and passes that root on to those who link it. An include of a layer that is not linked fails.
#
#   quillon_layer(NAME target FOLDER path/below/src LINKS targets... HEADERS ... SOURCES ... [QT]
#                 [PRIVATE_LINKS targets...] [INTERNAL_HEADERS ...])
#
# QT turns on moc and uic. Paths of HEADERS and SOURCES are relative to the folder. INTERNAL_HEADERS are for the layer's
# own sources alone; tests that look inside link target_internals.
function(quillon_layer)
  cmake_parse_arguments(PARSE_ARGV 0 layer "QT" "NAME;FOLDER" "LINKS;PRIVATE_LINKS;HEADERS;INTERNAL_HEADERS;SOURCES")
  set(root ${PROJECT_BINARY_DIR}/layers/${layer_NAME})
  cmake_path(GET layer_FOLDER PARENT_PATH parent)
  file(MAKE_DIRECTORY ${root}/${parent})
  # A folder with subfolders that are layers themselves is linked file by file, so that they stay out of reach.
  file(MAKE_DIRECTORY ${root}/${layer_FOLDER})
  set(linked_headers "")
  set(unproved_headers "")
  foreach(header IN LISTS layer_HEADERS)
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${layer_FOLDER}/${header} ${root}/${layer_FOLDER}/${header} SYMBOLIC)
    list(APPEND linked_headers ${root}/${layer_FOLDER}/${header})
    quillon_source_proves_header(${header} proved)
    if(NOT proved)
      list(APPEND unproved_headers ${root}/${layer_FOLDER}/${header})
    endif()
  endforeach()

  if(layer_SOURCES)
    add_library(${layer_NAME} STATIC ${layer_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(${layer_NAME} PRIVATE quillon_options)
    if(layer_PRIVATE_LINKS)
      target_link_libraries(${layer_NAME} PRIVATE ${layer_PRIVATE_LINKS})
    endif()
    if(layer_QT)
      # moc reads the headers where they stand in the source tree, and not once more through the links.
      target_sources(${layer_NAME} PRIVATE ${layer_HEADERS})
      set_source_files_properties(${linked_headers} PROPERTIES SKIP_AUTOMOC ON)
      set_target_properties(${layer_NAME} PROPERTIES AUTOMOC ON AUTOUIC ON)
      quillon_precompile(${layer_NAME} window_layer_headers)
    elseif(layer_FOLDER MATCHES "^jet")
      quillon_precompile(${layer_NAME} engine_layer_headers)
    else()
      quillon_precompile(${layer_NAME} core_layer_headers)
    endif()
  else()
    add_library(${layer_NAME} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_sources(${layer_NAME} ${scope} FILE_SET HEADERS BASE_DIRS ${root} FILES ${unproved_headers})
  target_include_directories(${layer_NAME} ${scope} ${root})
  target_link_libraries(${layer_NAME} ${scope} ${layer_LINKS})

  if(layer_INTERNAL_HEADERS)
    set(internal_root ${root}_internals)
    file(MAKE_DIRECTORY ${internal_root}/${layer_FOLDER})
    foreach(header IN LISTS layer_INTERNAL_HEADERS)
      file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${layer_FOLDER}/${header} ${internal_root}/${layer_FOLDER}/${header} SYMBOLIC)
    endforeach()
    target_include_directories(${layer_NAME} PRIVATE ${internal_root})
    add_library(${layer_NAME}_internals INTERFACE)
    target_include_directories(${layer_NAME}_internals INTERFACE ${internal_root})
    target_link_libraries(${layer_NAME}_internals INTERFACE ${layer_NAME} ${layer_PRIVATE_LINKS})
  endif()
endfunction()

# Whether the compiler proves a header of the layer while it compiles the layer: a header that its own source includes
# first compiles alone, and need not be compiled once more for that. The links that only sources have would count as
# well, so a layer with PRIVATE_LINKS proves none this way. For quillon_layer, whose arguments it reads.
function(quillon_source_proves_header header result)
  set(${result} FALSE PARENT_SCOPE)
  cmake_path(REPLACE_EXTENSION header LAST_ONLY .cpp OUTPUT_VARIABLE source)
  if(source IN_LIST layer_SOURCES AND NOT layer_PRIVATE_LINKS)
    file(STRINGS ${PROJECT_SOURCE_DIR}/src/${layer_FOLDER}/${source} first_include REGEX "^#include" LIMIT_COUNT 1)
    if(first_include STREQUAL "#include \"${layer_FOLDER}/${header}\"")
      set(${result} TRUE PARENT_SCOPE)
    endif()
  endif()
endfunction()
