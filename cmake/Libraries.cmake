# What is bought, each as one imported target. The plug-in links statically what Debian packs as
# position-independent code; the rest is on every desktop.

find_package(Threads REQUIRED)

function(murmelon_library target file)
  find_library(${target}_FILE ${file} REQUIRED)
  add_library(${target} UNKNOWN IMPORTED)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${${target}_FILE})
endfunction()

# The symbols of a static library stay inside: the host may carry its own copy with its own planner.
murmelon_library(murmelon_fftw libfftw3f.a)
murmelon_library(murmelon_zlib libz.a)
if(WIN32)
  murmelon_library(murmelon_png libpng.a)
else()
  murmelon_library(murmelon_png libpng16.so) # Debian's archive is not position-independent
endif()
target_link_libraries(murmelon_png INTERFACE murmelon_zlib m)

add_library(murmelon_fmt INTERFACE)
target_compile_definitions(murmelon_fmt INTERFACE FMT_HEADER_ONLY=1)

# Header templates alone, seen by the drawing room only. Their warnings are not ours.
find_path(AGG_INCLUDE_DIR agg_rasterizer_cells_aa.h PATH_SUFFIXES agg2 REQUIRED)
add_library(murmelon_agg INTERFACE)
target_include_directories(murmelon_agg SYSTEM INTERFACE ${AGG_INCLUDE_DIR})

# The command's own.
if(WIN32)
  # All of it static, from scripts/windows-libraries, whose include folder holds the header-only ones too.
  find_path(WINDOWS_INCLUDE_DIR fftw3.h REQUIRED)
  include_directories(SYSTEM ${WINDOWS_INCLUDE_DIR})
  foreach(library sndfile freetype harfbuzz)
    murmelon_library(murmelon_${library} lib${library}.a)
    add_library(PkgConfig::${library} ALIAS murmelon_${library})
  endforeach()
  foreach(codec FLAC opus vorbis ogg)
    murmelon_library(murmelon_${codec} lib${codec}.a)
    target_link_libraries(murmelon_sndfile INTERFACE murmelon_${codec})
  endforeach()
  target_link_libraries(murmelon_vorbis INTERFACE murmelon_ogg)
  target_include_directories(murmelon_freetype SYSTEM INTERFACE ${WINDOWS_INCLUDE_DIR}/freetype2)
  target_link_libraries(murmelon_freetype INTERFACE murmelon_zlib)
  target_include_directories(murmelon_harfbuzz SYSTEM INTERFACE ${WINDOWS_INCLUDE_DIR}/harfbuzz)
  target_link_libraries(murmelon_harfbuzz INTERFACE murmelon_freetype)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(sndfile REQUIRED IMPORTED_TARGET sndfile)
  pkg_check_modules(freetype REQUIRED IMPORTED_TARGET freetype2)
  pkg_check_modules(harfbuzz REQUIRED IMPORTED_TARGET harfbuzz)
endif()
