# What other projects find the components by: the headers, a package of CMake with the targets Nimbuscope::COMPONENT,
# and a module of pkg-config for each component. Comes after all targets.

include(CMakePackageConfigHelpers)
get_property(libraries GLOBAL PROPERTY NIMBUSCOPE_COMPONENTS)
get_property(exposed GLOBAL PROPERTY NIMBUSCOPE_EXPOSED)
get_property(internal GLOBAL PROPERTY NIMBUSCOPE_INTERNAL)

# Libraries of others that components link: the target, how find_package finds it, and its module of pkg-config.
set(foreign
  "CURL::libcurl|CURL|libcurl"
  "ICU::i18n|ICU COMPONENTS i18n uc|icu-i18n"
  "ICU::uc|ICU COMPONENTS i18n uc|icu-uc"
  "OpenSSL::Crypto|OpenSSL|libcrypto"
  "OpenSSL::SSL|OpenSSL|libssl"
  "SDBusCpp::sdbus-c++|sdbus-c++|sdbus-c++"
  "SQLite::SQLite3|SQLite3|sqlite3"
  "Threads::Threads|Threads|"
  "ZLIB::ZLIB|ZLIB|zlib"
  "nlohmann_json::nlohmann_json|nlohmann_json|nlohmann_json"
  "simdjson::simdjson|simdjson|simdjson"
  "spng||spng")

# nimbuscope_needs(PACKAGES MODULES LINK…): the arguments of find_package by which all of these are found, with what
# components among them need in turn; and the modules of pkg-config of the links themselves.
function(nimbuscope_needs PACKAGES MODULES)
  set(packages)
  set(modules)
  foreach(link IN LISTS ARGN)
    if(link IN_LIST libraries)
      list(APPEND packages ${packagesOf_${link}})
      get_target_property(module ${link} OUTPUT_NAME)
    else()
      string(REPLACE + [+] pattern ${link})
      set(row ${foreign})
      list(FILTER row INCLUDE REGEX "^${pattern}[|]")
      if(NOT row MATCHES "^[^|]+[|]([^|]*)[|]([^|]*)$")
        message(FATAL_ERROR "${CMAKE_CURRENT_FUNCTION_LIST_FILE} does not say how others find ${link}")
      endif()
      list(APPEND packages ${CMAKE_MATCH_1})
      set(module ${CMAKE_MATCH_2})
    endif()
    list(APPEND modules ${module})
  endforeach()
  list(REMOVE_DUPLICATES packages)
  set(${PACKAGES} ${packages} PARENT_SCOPE)
  set(${MODULES} ${modules} PARENT_SCOPE)
endfunction()

set(configDirectory ${CMAKE_INSTALL_LIBDIR}/cmake/Nimbuscope)
set(moduleDirectory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
string(REGEX REPLACE "[^/]+" ".." toPrefix ${moduleDirectory})
set(components)
set(packagesOfComponents)
foreach(library IN LISTS libraries)  # each after those that it links
  get_target_property(component ${library} EXPORT_NAME)
  get_target_property(name ${library} OUTPUT_NAME)
  get_target_property(links ${library} NIMBUSCOPE_LINKS)
  get_target_property(privateLinks ${library} NIMBUSCOPE_PRIVATE_LINKS)
  get_target_property(definitions ${library} INTERFACE_COMPILE_DEFINITIONS)
  set(privateLibraries -lstdc++ -lm)
  if(BUILD_SHARED_LIBS)  # what a shared library alone uses is no concern of others
    set(privateLinks)
    set(privateLibraries)
  endif()
  nimbuscope_needs(packages modules ${links})
  nimbuscope_needs(privatePackages privateModules ${privateLinks})
  set(packagesOf_${library} ${packages} ${privatePackages})
  list(REMOVE_DUPLICATES packagesOf_${library})

  list(APPEND components ${component})
  string(APPEND packagesOfComponents "set(_nimbuscope_packages_${component} \"${packagesOf_${library}}\")\n")
  list(FILTER definitions EXCLUDE REGEX NOTFOUND)
  list(TRANSFORM definitions PREPEND -D)
  foreach(list definitions modules privateModules privateLibraries)
    string(JOIN " " ${list} ${${list}})
  endforeach()
  configure_file(cmake/component.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${moduleDirectory} COMPONENT development)
endforeach()

configure_package_config_file(cmake/NimbuscopeConfig.cmake.in NimbuscopeConfig.cmake
  INSTALL_DESTINATION ${configDirectory} NO_CHECK_REQUIRED_COMPONENTS_MACRO NO_SET_AND_CHECK_MACRO)
# Until 1.0 a minor version may change what it offers.
write_basic_package_version_file(NimbuscopeConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/NimbuscopeConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/NimbuscopeConfigVersion.cmake
  DESTINATION ${configDirectory} COMPONENT development)
install(EXPORT NimbuscopeTargets NAMESPACE Nimbuscope:: DESTINATION ${configDirectory} COMPONENT development)

list(REMOVE_DUPLICATES exposed)
foreach(directory IN LISTS exposed)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${directory}/*.h ${directory}/*.hpp)
  list(REMOVE_ITEM headers ${internal})
  foreach(header IN LISTS headers)
    file(RELATIVE_PATH path ${CMAKE_SOURCE_DIR} ${header})
    get_filename_component(path ${path} DIRECTORY)
    install(FILES ${header} DESTINATION ${NIMBUSCOPE_INCLUDE_DIRECTORY}/${path} COMPONENT development)
  endforeach()
endforeach()
