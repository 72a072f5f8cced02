# Fails when the SONAME of the installed library and the package version file
# disagree on which releases can replace each other: a release that
# find_package(Tessera) accepts for an older request must keep that request's
# SONAME, and one it refuses must not.
# usage: cmake -DLIBRARY=<installed libtessera.so> -DVERSION_FILE=<TesseraConfigVersion.cmake> -P CheckVersionRule.cmake
execute_process(COMMAND readelf -d ${LIBRARY} OUTPUT_VARIABLE dynamic RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT dynamic MATCHES "Library soname: \\[libtessera\\.so\\.([0-9.]+)\\]")
  message(FATAL_ERROR "no SONAME libtessera.so.<version> in ${LIBRARY}")
endif()
set(soname_version ${CMAKE_MATCH_1})
string(REPLACE "." ";" soname_components ${soname_version})
list(LENGTH soname_components soname_count)

include(${VERSION_FILE})
set(installed ${PACKAGE_VERSION})
string(REPLACE "." ";" installed_components ${installed})
if(NOT installed MATCHES "^${soname_version}(\\.|$)")
  message(FATAL_ERROR "SONAME libtessera.so.${soname_version} is not a prefix of the version ${installed}")
endif()

# For each component above 0: a request lower in that component alone. It can
# share the SONAME only when the SONAME stops before that component.
foreach(index RANGE 2)
  list(GET installed_components ${index} value)
  if(value EQUAL 0)
    continue()
  endif()
  set(requested_components ${installed_components})
  math(EXPR lower "${value} - 1")
  list(REMOVE_AT requested_components ${index})
  list(INSERT requested_components ${index} ${lower})
  list(GET requested_components 0 PACKAGE_FIND_VERSION_MAJOR)
  list(GET requested_components 1 PACKAGE_FIND_VERSION_MINOR)
  list(GET requested_components 2 PACKAGE_FIND_VERSION_PATCH)
  set(PACKAGE_FIND_VERSION ${PACKAGE_FIND_VERSION_MAJOR}.${PACKAGE_FIND_VERSION_MINOR}.${PACKAGE_FIND_VERSION_PATCH})
  set(PACKAGE_FIND_VERSION_COUNT 3)
  unset(PACKAGE_VERSION_COMPATIBLE)
  include(${VERSION_FILE})
  if(index LESS soname_count)
    set(shares_soname FALSE)
  else()
    set(shares_soname TRUE)
  endif()
  if(NOT PACKAGE_VERSION_COMPATIBLE STREQUAL shares_soname)
    message(FATAL_ERROR "the package version file answers ${PACKAGE_VERSION_COMPATIBLE} for a request of "
      "${PACKAGE_FIND_VERSION} against ${installed}, but the SONAME libtessera.so.${soname_version} says ${shares_soname}")
  endif()
  message(STATUS "request ${PACKAGE_FIND_VERSION}: compatible ${PACKAGE_VERSION_COMPATIBLE}, as the SONAME says")
endforeach()
