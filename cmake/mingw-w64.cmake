# Builds for 64-bit Windows with mingw-w64 and a static Qt (see packaging/windows/build-qt).
#   HTS_WINDOWS_QT  prefix of that Qt; also taken from the environment
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
# The compilers with POSIX threads: those with Windows's own have no std::thread.
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

if(NOT HTS_WINDOWS_QT)
    if(DEFINED ENV{HTS_WINDOWS_QT})
        set(HTS_WINDOWS_QT "$ENV{HTS_WINDOWS_QT}")
    else()
        set(HTS_WINDOWS_QT /opt/qt5-mingw)
    endif()
endif()
set(HTS_WINDOWS_QT "${HTS_WINDOWS_QT}" CACHE PATH "Prefix of a static Qt for mingw-w64")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES HTS_WINDOWS_QT)

set(CMAKE_FIND_ROOT_PATH "${HTS_WINDOWS_QT}" /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The programs need no file beside them, and say nothing of when they were built.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
