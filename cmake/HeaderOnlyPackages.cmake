# kiv_header_only_package(TARGET FOLDER [PATH...]): an interface library for a header-only package
# whose headers lie in one folder of the system, in one of the paths or where headers are as a rule. The
# folder is linked into the build tree, so that a cross-build sees these headers and no others of the host
# system.
function(kiv_header_only_package target folder)
    find_path(${target}_SYSTEM_DIR NAMES ${folder} PATHS ${ARGN} /usr/include /usr/local/include
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(include_dir ${CMAKE_BINARY_DIR}/headers/${target})
    file(MAKE_DIRECTORY ${include_dir})
    file(CREATE_LINK ${${target}_SYSTEM_DIR}/${folder} ${include_dir}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${include_dir})
endfunction()
