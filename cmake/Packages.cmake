# Packages by CPack: for Debian one for each component, for Windows an installer.
set(CPACK_PACKAGE_NAME KIVInterface)
set(CPACK_PACKAGE_VENDOR KIVInterface)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Orientation of KIV sensors from their raw readings")
set(KIV_MAINTAINER "KIVInterface maintainers <kivinterface@users.noreply.invalid>" CACHE STRING
    "Whom the packages name as their maintainer")
set(CPACK_PACKAGE_CONTACT ${KIV_MAINTAINER})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
    set(CPACK_GENERATOR NSIS)
    set(CPACK_MONOLITHIC_INSTALL ON)
    set(CPACK_PACKAGE_FILE_NAME KIVInterface-${PROJECT_VERSION}-windows-x86_64)
    set(CPACK_PACKAGE_INSTALL_DIRECTORY KIVInterface)
    set(CPACK_PACKAGE_INSTALL_REGISTRY_KEY KIVInterface)
    set(CPACK_NSIS_DISPLAY_NAME KIVInterface)
    set(CPACK_NSIS_PACKAGE_NAME KIVInterface)
    set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
    set(CPACK_NSIS_MODIFY_PATH ON)
    set(CPACK_NSIS_ENABLE_UNINSTALL_BEFORE_INSTALL ON)
    set(CPACK_NSIS_DEFINES "Target amd64-unicode
        SetDateSave off") # the same bytes whenever it is made
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_DEB_COMPONENT_INSTALL ON)
    set(CPACK_COMPONENTS_GROUPING IGNORE)
    set(CPACK_COMPONENTS_ALL classes c development tool python)
    set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/documents.cmake)
    set(CPACK_KIV_SOURCE_DIR ${PROJECT_SOURCE_DIR})
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
    set(CPACK_DEBIAN_PACKAGE_SECTION science)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    set(description "A KIV sensor is a target that a tracking instrument measures. From its
raw readings and its calibration parameters follow a rotation matrix
and three rotation angles.")
    set(this "(= ${PROJECT_VERSION}-1)")

    # kiv_debian_package(COMPONENT NAME SECTION SUMMARY [DEPENDS])
    macro(kiv_debian_package component name section summary)
        string(TOUPPER ${component} upper)
        set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
        set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
        set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${description}")
        set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${ARGN}")
        set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA "")
    endmacro()
    kiv_debian_package(classes libkivinterface1 libs "orientation of KIV sensors, C++ classes")
    kiv_debian_package(c libkiv1 libs "orientation of KIV sensors, C functions")
    kiv_debian_package(development libkivinterface-dev libdevel "orientation of KIV sensors, headers and pages"
        "libkivinterface1 ${this}, libkiv1 ${this}")
    kiv_debian_package(tool kiv science "orientation of KIV sensors, command-line tool")
    kiv_debian_package(python python3-kiv python "orientation of KIV sensors, Python package"
        "libkiv1 ${this}, python3, python3-numpy")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
    # kiv_debian_library(COMPONENT NAME PACKAGE): which package a program that is linked with the library needs.
    macro(kiv_debian_library component name package)
        file(WRITE ${PROJECT_BINARY_DIR}/debian/${component}/shlibs
            "${name} 1 ${package} (>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})\n")
        set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/${component}/shlibs
            ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
    endmacro()
    kiv_debian_library(CLASSES libKIVInterface libkivinterface1)
    kiv_debian_library(C libkiv libkiv1)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
        ${PROJECT_SOURCE_DIR}/packaging/debian/postinst ${PROJECT_SOURCE_DIR}/packaging/debian/prerm)
endif()
include(CPack)
