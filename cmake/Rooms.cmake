# A room is a folder below src/ and one static library. Its headers are included as "room/Header.h" through an
# include folder that holds this room alone, so that a header of a room that the link list does not name is
# not found: the directions of dependency are the compiler's to keep.
#
#   murmelon_room(engine SOURCES A.cpp B.cpp DEPENDS other_room... PRIVATE library...)

add_library(murmelon_warnings INTERFACE)
target_compile_options(murmelon_warnings INTERFACE
  "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion>")

function(murmelon_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;DEPENDS;PRIVATE" ${ARGN})
  set(include_dir ${CMAKE_BINARY_DIR}/rooms/${name})
  file(MAKE_DIRECTORY ${include_dir})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_dir}/${name} SYMBOLIC)

  list(TRANSFORM ROOM_DEPENDS PREPEND murmelon_)
  if(NOT ROOM_SOURCES) # headers alone
    add_library(murmelon_${name} INTERFACE)
    target_include_directories(murmelon_${name} INTERFACE ${include_dir})
    target_link_libraries(murmelon_${name} INTERFACE ${ROOM_DEPENDS})
    return()
  endif()
  add_library(murmelon_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(murmelon_${name} PUBLIC ${include_dir})
  target_link_libraries(murmelon_${name} PUBLIC ${ROOM_DEPENDS} PRIVATE murmelon_warnings ${ROOM_PRIVATE})
endfunction()
