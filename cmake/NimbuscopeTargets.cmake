# How this project declares its targets: one function for libraries, one for programs.

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

find_package(Threads REQUIRED)

add_library(nimbuscope_options INTERFACE)
target_compile_options(nimbuscope_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # A designated initialiser leaves the others at their defaults on purpose.
  -Wno-missing-field-initializers
  # g++ 12 sees unset texts inside absent optionals.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  # clang sees that stable sorting of libstdc++ 12 calls what libstdc++ itself deprecates.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-deprecated-declarations>
  $<$<BOOL:${NIMBUSCOPE_WARNINGS_AS_ERRORS}>:-Werror>
  -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
  # Fused multiply-add only where the code asks for it: results must not depend on the processor.
  -ffp-contract=off)
# Libraries that nothing refers to stay out of a program's load list.
target_link_options(nimbuscope_options INTERFACE -Wl,--as-needed)

# nimbuscope_library(NAME SOURCES … EXPOSES DIR… [LINKS …] [PRIVATE_LINKS …])
#
# EXPOSES names directories, relative to the top of the tree, whose headers those who link the library may
# include by their path from the top ("Platform/Core/Result.hpp"). Each library has an include root of its own
# that holds links to just these directories: including what was not linked does not compile.
function(nimbuscope_library NAME)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;EXPOSES;LINKS;PRIVATE_LINKS")
  set(root ${CMAKE_BINARY_DIR}/include/${NAME})
  file(REMOVE_RECURSE ${root})
  foreach(directory IN LISTS ARG_EXPOSES)
    get_filename_component(parent ${root}/${directory} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${directory} ${root}/${directory} SYMBOLIC)
  endforeach()
  if(ARG_SOURCES)
    add_library(${NAME} STATIC ${ARG_SOURCES})
    target_include_directories(${NAME} PUBLIC ${root})
    target_link_libraries(${NAME} PUBLIC ${ARG_LINKS} PRIVATE nimbuscope_options ${ARG_PRIVATE_LINKS})
  else()
    add_library(${NAME} INTERFACE)
    target_include_directories(${NAME} INTERFACE ${root})
    target_link_libraries(${NAME} INTERFACE ${ARG_LINKS})
  endif()
endfunction()

# nimbuscope_program(NAME SOURCES … LINKS …)
function(nimbuscope_program NAME)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LINKS")
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE nimbuscope_options ${ARG_LINKS})
endfunction()
