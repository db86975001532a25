# What others need to build against the installed tree: CMake package, pkg-config files, one version everywhere.

# Installed programs and libraries find the libraries beside them wherever the tree is put.
set(CMAKE_INSTALL_RPATH $ORIGIN $ORIGIN/../${CMAKE_INSTALL_LIBDIR})

# pkg-config files name the prefix relative to themselves, so that `cmake --install --prefix` may choose it.
file(RELATIVE_PATH QRA_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

# qra_install_pkgconfig(NAME DESCRIPTION INCLUDEDIR [LIBRARY])
#
# Installs the pkg-config file NAME.pc for the library NAME, or LIBRARY, whose headers are in INCLUDEDIR below the
# prefix.
function(qra_install_pkgconfig name description include_dir)
    set(QRA_PC_NAME ${name})
    set(QRA_PC_LIBRARY ${name})
    if(ARGC GREATER 3)
        set(QRA_PC_LIBRARY ${ARGV3})
    endif()
    set(QRA_PC_DESCRIPTION ${description})
    set(QRA_PC_INCLUDEDIR ${include_dir})
    set(pc_file ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${pc_file} @ONLY)
    install(FILES ${pc_file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

# qra_install_cmake_package()
#
# Installs what makes find_package(qra-content-agent) give the target qra::content-agent.
function(qra_install_cmake_package)
    include(CMakePackageConfigHelpers)
    set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qra-content-agent)
    configure_package_config_file(
        ${PROJECT_SOURCE_DIR}/cmake/qra-content-agent-config.cmake.in
        ${PROJECT_BINARY_DIR}/qra-content-agent-config.cmake
        INSTALL_DESTINATION ${package_dir}
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(
        ${PROJECT_BINARY_DIR}/qra-content-agent-config-version.cmake COMPATIBILITY SameMajorVersion)
    install(FILES
        ${PROJECT_BINARY_DIR}/qra-content-agent-config.cmake
        ${PROJECT_BINARY_DIR}/qra-content-agent-config-version.cmake
        DESTINATION ${package_dir})
    install(EXPORT qra-content-agent
        FILE qra-content-agent-targets.cmake NAMESPACE qra:: DESTINATION ${package_dir})
endfunction()

# qra_check_header_version(HEADER)
#
# Stops if the version macros of the public header are not the project's version.
function(qra_check_header_version header)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
    foreach(part MAJOR MINOR PATCH)
        file(STRINGS ${header} line REGEX "#define QRA_CONTENT_AGENT_VERSION_${part} ")
        string(REGEX MATCH " ([0-9]+)" number "${line}")
        if(NOT "${CMAKE_MATCH_1}" STREQUAL "${PROJECT_VERSION_${part}}")
            message(FATAL_ERROR "${header}: QRA_CONTENT_AGENT_VERSION_${part} is not that of ${PROJECT_VERSION}")
        endif()
    endforeach()
endfunction()
