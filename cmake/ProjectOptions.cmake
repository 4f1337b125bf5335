# What every target of this project is compiled with.
#   project_options   language level, toolkit definitions, sanitizers, coverage
#   project_warnings  warnings, as errors on demand; own code links it, foreign code does not

# What differs between systems is in one file for each system, such as console_unix.cpp and
# console_win.cpp; the build takes NAME_${HTS_SYSTEM}.cpp.
if(WIN32)
    set(HTS_SYSTEM win)
else()
    set(HTS_SYSTEM unix)
endif()

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_17)
target_include_directories(project_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(project_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)

if(WIN32)
    # The interfaces of Windows 7 on, texts in wide characters, without what few programs need.
    target_compile_definitions(project_options INTERFACE
        _WIN32_WINNT=0x0601 UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
endif()

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

# hts_precompile(NAME HEADERS...) compiles headers once for all targets that are then given to
# hts_use_precompiled(NAME TARGET); both have the options of project_options. Without GCC it does
# nothing: Clang refuses precompiled headers when one definition more is on the command line. The
# preset asan builds without them, so that a missing #include is noticed.
function(hts_precompile name)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        return()
    endif()
    file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp" "")
    add_library(${name} OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    target_link_libraries(${name} PRIVATE project_options project_warnings Qt::Core)
    target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

function(hts_use_precompiled name target)
    if(TARGET ${name})
        target_precompile_headers(${target} REUSE_FROM ${name})
    endif()
endfunction()

hts_precompile(headers
    <algorithm> <vector> <QByteArray> <QDateTime> <QFile> <QString> <QStringList> <QVector>)

# hts_add_library(NAME SOURCES... ) makes one static library of this project's own code.
function(hts_add_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC project_options PRIVATE project_warnings)
    hts_use_precompiled(headers ${name})
endfunction()

# hts_describe_program(TARGET DESCRIPTION WINDOWED|CONSOLE) gives a program its version, its icon, its
# manifest and its subsystem where programs have such things, which is on Windows.
function(hts_describe_program target description kind)
    if(NOT WIN32)
        return()
    endif()
    set(PROGRAM_NAME "${target}")
    set(PROGRAM_DESCRIPTION "${description}")
    file(STRINGS "${PROJECT_SOURCE_DIR}/LICENSE" PROGRAM_COPYRIGHT REGEX "^Copyright")
    string(REGEX REPLACE "^Copyright [^ ]+ [^ ]+ " "" PROGRAM_COMPANY "${PROGRAM_COPYRIGHT}")
    configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in"
        "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" @ONLY)
    enable_language(RC)
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
    if(kind STREQUAL WINDOWED)
        set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
    endif()
endfunction()
