# Builds for Linux on arm64, on Debian with the libraries that packaging/test-arm64 unpacks. A program is run
# by what stands in its place, the emulator's launcher; it has .aarch64 at the end of its name itself.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(triplet aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

get_filename_component(arm64_folder "${CMAKE_CURRENT_LIST_DIR}/../build/arm64" ABSOLUTE)
set(CMAKE_SYSROOT "${arm64_folder}/sysroot")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

# Not what CMake links to look into it.
get_property(is_tried GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT is_tried)
    set(CMAKE_CXX_LINK_EXECUTABLE
        "<CMAKE_CXX_COMPILER> <FLAGS> <CMAKE_CXX_LINK_FLAGS> <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>"
        "mv <TARGET> <TARGET>.aarch64"
        "cp \"${arm64_folder}/emulate\" <TARGET>")
endif()
