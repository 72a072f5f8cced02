# cmake -DNM=<nm> -DMODULE=<shared object> -P CheckBundleExports.cmake
# Fails unless the shared object defines exactly two dynamic symbols: the
# factory and the function that hands over the extension table.
execute_process(COMMAND ${NM} -D --defined-only ${MODULE}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${MODULE}")
endif()
string(REGEX REPLACE "[0-9a-fA-F]+ [A-Za-z] " "" names "${symbols}")
string(STRIP "${names}" names)
string(REPLACE "\n" ";" names "${names}")
list(SORT names)
if(NOT names STREQUAL "LuSVNBundleCreatePrincipalObject;LuSVNBundleExtensionTable")
  message(FATAL_ERROR "${MODULE} exports more or less than the factory and the extension table:\n${symbols}")
endif()
