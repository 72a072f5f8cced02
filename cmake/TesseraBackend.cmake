# Building backend bundles.
#
# A bundle is a directory NAME.bundle holding Info.json and one shared object
# that exports only the factory. All bundles are built from the sources in
# backends/svn against the Subversion under TESSERA_SVN_PREFIX; the release a
# bundle declares decides which slots of its table are filled, so one
# installation can stand in for older releases.
#
#   tessera_add_backend(<target> VERSION <x.y.z> FORMAT <wc format>
#                       OUTPUT_DIRECTORY <dir> [NAME <name>] [INSTALL]
#                       [INTERFACE_VERSION <n>] [INFO_FILE <file> | WITHOUT_INFO])
#
# builds <dir>/<name>.bundle (name defaults to svn-<x.y>). INFO_FILE copies a
# ready-made Info.json instead of writing one, WITHOUT_INFO leaves it out;
# both exist for the loader's tests. INSTALL installs the bundle into
# ${CMAKE_INSTALL_LIBDIR}/${TESSERA_BUNDLE_SUBDIR}.
#
#   tessera_write_bundle_info(<file> VERSION <x.y.z> FORMAT <n>
#                             EXECUTABLE <file name> [INTERFACE_VERSION <n>])
#
# writes an Info.json.

set(TESSERA_BACKEND_SOURCES
  ${PROJECT_SOURCE_DIR}/backends/svn/LuSVNSubversionBundle.cpp
  ${PROJECT_SOURCE_DIR}/backends/svn/LuSVNKeyringProviders.cpp)
# Only the factory leaves the shared object; hidden visibility alone would
# still export the standard library's template instances.
set(TESSERA_BACKEND_EXPORTS ${PROJECT_SOURCE_DIR}/backends/svn/LuSVNSubversionBundle.map)

function(tessera_write_bundle_info file)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "VERSION;FORMAT;EXECUTABLE;INTERFACE_VERSION" "")
  if(NOT DEFINED arg_INTERFACE_VERSION)
    set(arg_INTERFACE_VERSION 1)
  endif()
  file(CONFIGURE OUTPUT ${file} @ONLY CONTENT [[{
    "CFBundleVersion": "@arg_VERSION@",
    "LuSVNWorkingCopyFormatVersion": @arg_FORMAT@,
    "LuSVNBundleExecutable": "@arg_EXECUTABLE@",
    "LuSVNBundleInterfaceVersion": @arg_INTERFACE_VERSION@
}
]])
endfunction()

# The backend code compiled for one declared release, shared by all bundles
# declaring that major.minor.
function(_tessera_backend_objects out major minor)
  set(objects tessera_backend_objects_${major}_${minor})
  if(NOT TARGET ${objects})
    add_library(${objects} OBJECT ${TESSERA_BACKEND_SOURCES})
    target_compile_definitions(${objects} PRIVATE
      TESSERA_BACKEND_SVN_MAJOR=${major} TESSERA_BACKEND_SVN_MINOR=${minor})
    target_compile_options(${objects} PRIVATE ${TESSERA_WARNINGS})
    target_include_directories(${objects} PRIVATE
      ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src/private)
    target_link_libraries(${objects} PRIVATE TesseraSubversion::headers)
  endif()
  set(${out} ${objects} PARENT_SCOPE)
endfunction()

function(tessera_add_backend target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "INSTALL;WITHOUT_INFO"
    "VERSION;FORMAT;OUTPUT_DIRECTORY;NAME;INTERFACE_VERSION;INFO_FILE" "")
  if(NOT arg_VERSION MATCHES "^([0-9]+)\\.([0-9]+)\\.[0-9]+$")
    message(FATAL_ERROR "tessera_add_backend(${target}): VERSION must be x.y.z, not '${arg_VERSION}'")
  endif()
  set(major ${CMAKE_MATCH_1})
  set(minor ${CMAKE_MATCH_2})
  if(NOT arg_FORMAT MATCHES "^[1-9][0-9]*$" OR NOT arg_OUTPUT_DIRECTORY)
    message(FATAL_ERROR "tessera_add_backend(${target}): FORMAT and OUTPUT_DIRECTORY are required")
  endif()
  if(NOT arg_NAME)
    set(arg_NAME svn-${major}.${minor})
  endif()
  set(bundle ${arg_OUTPUT_DIRECTORY}/${arg_NAME}.bundle)
  set(executable ${arg_NAME}${CMAKE_SHARED_MODULE_SUFFIX})

  _tessera_backend_objects(objects ${major} ${minor})
  add_library(${target} MODULE)
  target_link_libraries(${target} PRIVATE ${objects} TesseraSubversion::libraries)
  set_target_properties(${target} PROPERTIES
    PREFIX ""
    OUTPUT_NAME ${arg_NAME}
    SUFFIX ${CMAKE_SHARED_MODULE_SUFFIX}
    LIBRARY_OUTPUT_DIRECTORY ${bundle}
    INSTALL_RPATH_USE_LINK_PATH ON
    LINK_DEPENDS ${TESSERA_BACKEND_EXPORTS})
  target_link_options(${target} PRIVATE LINKER:--version-script=${TESSERA_BACKEND_EXPORTS})
  if(NOT TESSERA_SANITIZE)
    # A function missing from the installed Subversion fails here, not at dlopen.
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()

  if(arg_INFO_FILE)
    configure_file(${arg_INFO_FILE} ${bundle}/Info.json COPYONLY)
  elseif(NOT arg_WITHOUT_INFO)
    set(interface_version)
    if(DEFINED arg_INTERFACE_VERSION)
      set(interface_version INTERFACE_VERSION ${arg_INTERFACE_VERSION})
    endif()
    tessera_write_bundle_info(${bundle}/Info.json VERSION ${arg_VERSION} FORMAT ${arg_FORMAT}
      EXECUTABLE ${executable} ${interface_version})
  endif()

  if(arg_INSTALL)
    set(destination ${CMAKE_INSTALL_LIBDIR}/${TESSERA_BUNDLE_SUBDIR}/${arg_NAME}.bundle)
    install(TARGETS ${target} LIBRARY DESTINATION ${destination})
    if(NOT arg_WITHOUT_INFO)
      install(FILES ${bundle}/Info.json DESTINATION ${destination})
    endif()
  endif()
endfunction()
