# What every target of this project is compiled with.
#   project_options   language level, toolkit definitions, sanitizers, coverage
#   project_warnings  warnings, as errors on demand; own code links it, foreign code does not

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_17)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(project_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)

if(HTS_SANITIZE)
    set(sanitizer_flags -fsanitize=address,undefined,float-cast-overflow
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(project_options INTERFACE ${sanitizer_flags})
    target_compile_definitions(project_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(project_options INTERFACE ${sanitizer_flags})
endif()
if(HTS_COVERAGE)
    target_compile_options(project_options INTERFACE --coverage -fprofile-abs-path)
    target_link_options(project_options INTERFACE --coverage)
endif()

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    $<$<BOOL:${WARNINGS_AS_ERRORS}>:-Werror>)

# hts_add_library(NAME SOURCES... ) makes one static library of this project's own code.
function(hts_add_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC project_options PRIVATE project_warnings)
endfunction()
