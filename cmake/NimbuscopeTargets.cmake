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

# A shared library shows what is marked for it, and is bound to its own functions as a static one is. No library
# uses the shared instances, which programs define: so whatever it leaves undefined is a link that is missing.
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
add_library(nimbuscope_shared_options INTERFACE)
target_compile_options(nimbuscope_shared_options INTERFACE -fno-semantic-interposition)
target_link_options(nimbuscope_shared_options INTERFACE -Wl,-z,defs)

set(NIMBUSCOPE_LIBRARY_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

# Programs keep to the libraries of one such version.
set(NIMBUSCOPE_ABI ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

# nimbuscope_library(NAME [COMPONENT COMPONENT] SOURCES … EXPOSES DIR… [INTERNAL HEADER…] [LINKS …] [PRIVATE_LINKS …])
#
# EXPOSES names directories, relative to the top of the tree, whose headers those who link the library may
# include by their path from the top ("Platform/Core/Result.hpp"). Each library has an include root of its own
# that holds links to just these directories: including what was not linked does not compile.
#
# A library with a COMPONENT is installed under that name, shared or static as BUILD_SHARED_LIBS says, with the
# headers that it exposes, save those that are INTERNAL. The others are always static.
function(nimbuscope_library NAME)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "COMPONENT" "SOURCES;EXPOSES;INTERNAL;LINKS;PRIVATE_LINKS")
  set(root ${CMAKE_BINARY_DIR}/include/${NAME})
  file(REMOVE_RECURSE ${root})
  foreach(directory IN LISTS ARG_EXPOSES)
    get_filename_component(parent ${root}/${directory} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${directory} ${root}/${directory} SYMBOLIC)
  endforeach()
  if(ARG_COMPONENT)
    add_library(${NAME} ${ARG_SOURCES})
    nimbuscope_component(${NAME})
  elseif(ARG_SOURCES)
    add_library(${NAME} STATIC ${ARG_SOURCES})
  else()
    add_library(${NAME} INTERFACE)
    target_include_directories(${NAME} INTERFACE ${root})
    target_link_libraries(${NAME} INTERFACE ${ARG_LINKS})
    return()
  endif()
  target_include_directories(${NAME} PUBLIC $<BUILD_INTERFACE:${root}>)
  target_link_libraries(${NAME} PUBLIC ${ARG_LINKS}
    PRIVATE $<BUILD_INTERFACE:nimbuscope_options> ${ARG_PRIVATE_LINKS})
endfunction()

add_custom_target(libraries)

# What nimbuscope_library does for a component, from its arguments. cmake/NimbuscopeInstall.cmake does the rest.
function(nimbuscope_component NAME)
  string(TOLOWER nimbuscope-${ARG_COMPONENT} library)
  string(REPLACE . - library ${library})
  set_target_properties(${NAME} PROPERTIES
    EXPORT_NAME ${ARG_COMPONENT}
    OUTPUT_NAME ${library}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${NIMBUSCOPE_ABI}
    LIBRARY_OUTPUT_DIRECTORY ${NIMBUSCOPE_LIBRARY_DIRECTORY}
    NIMBUSCOPE_LINKS "${ARG_LINKS}"
    NIMBUSCOPE_PRIVATE_LINKS "${ARG_PRIVATE_LINKS}")
  target_include_directories(${NAME} PUBLIC $<INSTALL_INTERFACE:${NIMBUSCOPE_INCLUDE_DIRECTORY}>)
  if(BUILD_SHARED_LIBS)
    target_link_libraries(${NAME} PRIVATE $<BUILD_INTERFACE:nimbuscope_shared_options>)
  endif()
  add_dependencies(libraries ${NAME})
  install(TARGETS ${NAME} EXPORT NimbuscopeTargets
    LIBRARY COMPONENT libraries NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)

  list(TRANSFORM ARG_INTERNAL PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_property(GLOBAL APPEND PROPERTY NIMBUSCOPE_COMPONENTS ${NAME})
  set_property(GLOBAL APPEND PROPERTY NIMBUSCOPE_EXPOSED ${ARG_EXPOSES})
  set_property(GLOBAL APPEND PROPERTY NIMBUSCOPE_INTERNAL ${ARG_INTERNAL})
endfunction()

# nimbuscope_program(NAME SOURCES … LINKS …)
function(nimbuscope_program NAME)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LINKS")
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE nimbuscope_options ${ARG_LINKS})
endfunction()
