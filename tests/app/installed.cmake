# cmake -DBUILD=folder -DPREFIX=folder -P installed.cmake
# Installs the program and runs it from there: it must find all it needs, the help page beside it.
file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}"
    OUTPUT_QUIET RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "not installed: ${result}")
endif()
execute_process(COMMAND "${PREFIX}/bin/HtsAnnualizer" -v
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT output STREQUAL "HtsAnnualizer version 1.0\n\n" OR errors)
    message(FATAL_ERROR "the installed program said '${output}' '${errors}' (${result})")
endif()
if(NOT EXISTS "${PREFIX}/bin/Help/HtsAnnualizerHelp.html")
    message(FATAL_ERROR "no help page beside the installed program")
endif()
