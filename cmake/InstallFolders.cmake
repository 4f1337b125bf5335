# Where an installation puts things: the usual folders, and one for the programs.

set(CMAKE_INSTALL_DOCDIR share/doc/htsannualizer CACHE PATH "Documents and examples")
include(GNUInstallDirs)

# The programs, with what they look for beside themselves. The same under every prefix, whatever the
# system calls its folder of libraries.
if(WIN32)
    set(HTS_PROGRAM_FOLDER bin)
else()
    set(HTS_PROGRAM_FOLDER lib/htsannualizer)
endif()
