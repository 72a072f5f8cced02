# cmake -DNM=<nm> -DMODULE=<shared object> -P CheckBundleExports.cmake
# Fails unless the shared object defines exactly one dynamic symbol, the factory.
execute_process(COMMAND ${NM} -D --defined-only ${MODULE}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${MODULE}")
endif()
string(REGEX REPLACE "[0-9a-fA-F]+ [A-Za-z] " "" names "${symbols}")
string(STRIP "${names}" names)
if(NOT names STREQUAL "LuSVNBundleCreatePrincipalObject")
  message(FATAL_ERROR "${MODULE} exports more than the factory:\n${symbols}")
endif()
