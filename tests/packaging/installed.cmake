# cmake -DBUILD=folder -DPREFIX=folder -DVERSION=version -DEXPECTED=file -P installed.cmake
# Installs the programs and runs them from there, by their links: they must find all they need, the
# help page beside them.
cmake_minimum_required(VERSION 3.16)
file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}"
    OUTPUT_QUIET RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "not installed: ${result}")
endif()

# expect_output(TEXT PROGRAM ARGUMENTS...)
function(expect_output expected)
    execute_process(COMMAND ${ARGN}
        OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
    if(NOT result EQUAL 0 OR NOT output STREQUAL expected OR errors)
        message(FATAL_ERROR "${ARGN} printed '${output}' '${errors}' (${result})")
    endif()
endfunction()
expect_output("HtsAnnualizer version 1.0\n\n" "${PREFIX}/bin/HtsAnnualizer" -v)
expect_output("htstool ${VERSION}\n" "${PREFIX}/bin/htstool" --version)

foreach(program HtsAnnualizer htstool)
    file(READ_SYMLINK "${PREFIX}/bin/${program}" target)
    if(NOT target STREQUAL "../lib/htsannualizer/${program}")
        message(FATAL_ERROR "bin/${program} leads to ${target}")
    endif()
endforeach()

# The documents and examples are not listed: they come as they are.
set(documents "${PREFIX}/share/doc/htsannualizer")
file(GLOB_RECURSE files RELATIVE "${PREFIX}" "${PREFIX}/*")
list(FILTER files EXCLUDE REGEX "^share/doc/htsannualizer/")
list(SORT files)
list(JOIN files "\n" files)
file(READ "${EXPECTED}" expected)
if(NOT "${files}\n" STREQUAL expected)
    message(FATAL_ERROR "these files are installed:\n${files}")
endif()

file(GLOB_RECURSE texts "${documents}/*.md")
if(NOT texts)
    message(FATAL_ERROR "no documents are installed")
endif()
foreach(text ${texts})
    get_filename_component(folder "${text}" DIRECTORY)
    file(READ "${text}" content)
    string(REPLACE "](" "<link>" content "${content}") # brackets would hold a list's items together
    string(REGEX MATCHALL "<link>[^)#: ]+" links "${content}")
    foreach(link ${links})
        string(REPLACE "<link>" "" link "${link}")
        if(NOT EXISTS "${folder}/${link}")
            message(FATAL_ERROR "${text} links ${link}, which is not installed")
        endif()
    endforeach()
endforeach()
