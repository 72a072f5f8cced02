# Locates the Subversion and APR installation under TESSERA_SVN_PREFIX.
#
# TesseraSubversion::headers  include directories only (what the library uses)
# TesseraSubversion::libraries the libraries a backend links

find_path(TESSERA_SVN_INCLUDE_DIR svn_client.h
  PATHS ${TESSERA_SVN_PREFIX}/include/subversion-1 NO_DEFAULT_PATH REQUIRED)
find_path(TESSERA_APR_INCLUDE_DIR apr_pools.h
  PATHS ${TESSERA_SVN_PREFIX}/include/apr-1.0 ${TESSERA_SVN_PREFIX}/include/apr-1 NO_DEFAULT_PATH REQUIRED)

add_library(TesseraSubversion_headers INTERFACE)
target_include_directories(TesseraSubversion_headers SYSTEM INTERFACE ${TESSERA_SVN_INCLUDE_DIR} ${TESSERA_APR_INCLUDE_DIR})
target_compile_definitions(TesseraSubversion_headers INTERFACE LINUX _REENTRANT _GNU_SOURCE)
add_library(TesseraSubversion::headers ALIAS TesseraSubversion_headers)

set(_tessera_svn_libdirs ${TESSERA_SVN_PREFIX}/${CMAKE_INSTALL_LIBDIR} ${TESSERA_SVN_PREFIX}/lib)
if(CMAKE_LIBRARY_ARCHITECTURE)
  list(PREPEND _tessera_svn_libdirs ${TESSERA_SVN_PREFIX}/lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
set(_tessera_svn_libs)
foreach(_lib svn_client-1 svn_wc-1 svn_repos-1 svn_diff-1 svn_subr-1 apr-1)
  string(MAKE_C_IDENTIFIER "TESSERA_LIB_${_lib}" _var)
  find_library(${_var} NAMES ${_lib} PATHS ${_tessera_svn_libdirs} NO_DEFAULT_PATH REQUIRED)
  list(APPEND _tessera_svn_libs ${${_var}})
endforeach()
add_library(TesseraSubversion_libraries INTERFACE)
target_link_libraries(TesseraSubversion_libraries INTERFACE TesseraSubversion::headers ${_tessera_svn_libs})
add_library(TesseraSubversion::libraries ALIAS TesseraSubversion_libraries)
