# qra_platform_service(NAME SOURCES file... [LINK library...] [LIBRARY name] [SOVERSION number] [EXPORTS map])
#
# Declares the platform service NAME, whose contract is the headers in platform/NAME/include. The target is
# qra-platform::NAME. With QRA_PLATFORM=host it is a shared library built from SOURCES; with
# QRA_PLATFORM=external it is what pkg-config knows as qra-platform-NAME, and SOURCES are not looked at. LIBRARY and
# SOVERSION are for a service whose library is known by a name of its own, EXPORTS is a version script.
function(qra_platform_service name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LIBRARY;SOVERSION;EXPORTS" "SOURCES;LINK")
    if(QRA_PLATFORM STREQUAL external)
        pkg_check_modules(qra-platform-${name} REQUIRED IMPORTED_TARGET GLOBAL qra-platform-${name})
        add_library(qra-platform::${name} ALIAS PkgConfig::qra-platform-${name})
        return()
    endif()
    set(target qra-platform-${name})
    if(NOT arg_LIBRARY)
        set(arg_LIBRARY ${target})
    endif()
    if(NOT arg_SOVERSION)
        set(arg_SOVERSION 0)
    endif()
    add_library(${target} SHARED ${arg_SOURCES})
    add_library(qra-platform::${name} ALIAS ${target})
    target_include_directories(${target}
        PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qra-platform>
        PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${target} PRIVATE ${arg_LINK})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${arg_LIBRARY} VERSION ${PROJECT_VERSION} SOVERSION ${arg_SOVERSION})
    if(arg_EXPORTS)
        set(exports ${CMAKE_CURRENT_SOURCE_DIR}/${arg_EXPORTS})
        target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
    endif()
    install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qra-platform)
    qra_install_pkgconfig(${target} "Platform service ${name} of the QRA content agent"
        ${CMAKE_INSTALL_INCLUDEDIR}/qra-platform ${arg_LIBRARY})
endfunction()
