# Which Qt everything is built with: QT_VERSION_MAJOR becomes 5 or 6. Targets are named without it, such
# as Qt::Core.
set(HTS_QT "" CACHE STRING "Major version of Qt, 5 or 6; empty takes 5 where it is installed, else 6")
set_property(CACHE HTS_QT PROPERTY STRINGS "" 5 6)

set(QT_VERSION_MAJOR 5)
if(HTS_QT)
    set(QT_VERSION_MAJOR ${HTS_QT})
else()
    find_package(Qt5 5.15 QUIET COMPONENTS Core)
    if(NOT Qt5_FOUND)
        find_package(Qt6 QUIET COMPONENTS Core)
        if(Qt6_FOUND)
            set(QT_VERSION_MAJOR 6)
        endif()
    endif()
endif()
