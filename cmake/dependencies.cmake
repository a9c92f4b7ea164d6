# SPDX-License-Identifier: MIT
# The only place that finds third-party code. The libraries are static and come from the folder that
# scripts/dependencies made for this flavour; the header-only ones of the command-line host are the
# system's packages. cmake/versions.env states the releases.
#
# Gives the targets third_party::xslt (with libxml2), third_party::filesystem, third_party::gtest and
# third_party::benchmark, and for the command-line host third_party::cli11,
# third_party::json and third_party::httplib.

set(RGEN_FLAVOUR "" CACHE STRING "Flavour of the third-party libraries (see scripts/dependencies)")
set(RGEN_DEPENDENCIES "" CACHE PATH "Their folder; made by scripts/dependencies when empty")

if(NOT RGEN_FLAVOUR)
    if(WIN32)
        set(RGEN_FLAVOUR windows)
    else()
        set(RGEN_FLAVOUR linux)
    endif()
endif()

set(rgen_third_party ${RGEN_DEPENDENCIES})
if(NOT rgen_third_party)
    set(print_prefix ${PROJECT_SOURCE_DIR}/scripts/dependencies --print-prefix ${RGEN_FLAVOUR})
    execute_process(COMMAND ${print_prefix} OUTPUT_VARIABLE rgen_third_party
                    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(NOT rgen_third_party)
        # Not in the cache yet. Building them takes a minute and no special rights.
        execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/dependencies ${RGEN_FLAVOUR}
                        OUTPUT_QUIET RESULT_VARIABLE result)
        if(NOT result EQUAL 0)
            message(FATAL_ERROR "The third-party libraries cannot be built (see above).")
        endif()
        execute_process(COMMAND ${print_prefix} OUTPUT_VARIABLE rgen_third_party
                        OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    endif()
endif()

file(STRINGS ${rgen_third_party}/versions.env rgen_third_party_versions)
message(STATUS "Third-party libraries: ${rgen_third_party}")
foreach(line IN LISTS rgen_third_party_versions)
    message(STATUS "  ${line}")
endforeach()

# gcovr has to find the headers, and nothing else uses a build that counts coverage.
if(NOT RGEN_COVERAGE)
    add_compile_options(-ffile-prefix-map=${rgen_third_party}=/third_party)
endif()

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# rgen_third_party_library(NAME ARCHIVE): target third_party::NAME for one static archive.
function(rgen_third_party_library name archive)
    add_library(third_party::${name} STATIC IMPORTED GLOBAL)
    set_target_properties(
        third_party::${name}
        PROPERTIES IMPORTED_LOCATION ${rgen_third_party}/lib/${archive}
                   INTERFACE_INCLUDE_DIRECTORIES ${rgen_third_party}/include)
endfunction()

rgen_third_party_library(xml libxml2.a)
rgen_third_party_library(xslt libxslt.a)
rgen_third_party_library(filesystem libboost_filesystem.a)
rgen_third_party_library(gtest libgtest.a)
rgen_third_party_library(benchmark libbenchmark.a)

target_link_libraries(third_party::xml INTERFACE Threads::Threads)
target_link_libraries(third_party::xslt INTERFACE third_party::xml)
target_link_libraries(third_party::gtest INTERFACE Threads::Threads)
target_link_libraries(third_party::benchmark INTERFACE Threads::Threads)
target_compile_definitions(third_party::benchmark INTERFACE BENCHMARK_STATIC_DEFINE)
target_compile_definitions(third_party::filesystem INTERFACE BOOST_ALL_NO_LIB
                                                             BOOST_FILESYSTEM_STATIC_LINK=1)
if(WIN32)
    target_link_libraries(third_party::xml INTERFACE bcrypt)
    target_link_libraries(third_party::filesystem INTERFACE bcrypt)
    target_link_libraries(third_party::benchmark INTERFACE shlwapi)
    target_compile_definitions(third_party::xml INTERFACE LIBXML_STATIC LIBXML_STATIC_FOR_DLL)
    target_compile_definitions(third_party::xslt INTERFACE LIBXSLT_STATIC)
else()
    target_link_libraries(third_party::xml INTERFACE m)
endif()

# rgen_header_library(NAME FOLDER VERSION_HEADER PREFIX MINIMUM): target third_party::NAME for headers
# that the system has. They are reached through a folder that holds nothing else, so that a cross
# compiler sees them without the system's other headers. VERSION_HEADER defines PREFIX_VERSION_MAJOR,
# _MINOR and _PATCH.
function(rgen_header_library name folder version_header prefix minimum)
    find_path(RGEN_${name}_INCLUDE ${version_header} NO_CMAKE_FIND_ROOT_PATH
              DOC "Folder of the headers of ${name}")
    if(NOT RGEN_${name}_INCLUDE)
        message(FATAL_ERROR "The headers of ${name} are missing; \"scripts/setup linux\" installs them.")
    endif()
    set(version "")
    foreach(part MAJOR MINOR PATCH)
        file(STRINGS ${RGEN_${name}_INCLUDE}/${version_header} line
             REGEX "^#define ${prefix}_VERSION_${part} +[0-9]+")
        string(REGEX MATCH "[0-9]+ *(//.*)?$" number "${line}")
        string(REGEX MATCH "^[0-9]+" number "${number}")
        list(APPEND version ${number})
    endforeach()
    list(JOIN version "." version)
    if(version VERSION_LESS minimum)
        message(FATAL_ERROR "${name} ${version} is too old, ${minimum} is needed.")
    endif()
    message(STATUS "  ${name} ${version}")
    set(headers ${PROJECT_BINARY_DIR}/third_party_headers/${name})
    file(MAKE_DIRECTORY ${headers})
    file(CREATE_LINK ${RGEN_${name}_INCLUDE}/${folder} ${headers}/${folder} SYMBOLIC)
    add_library(third_party::${name} INTERFACE IMPORTED GLOBAL)
    set_target_properties(third_party::${name} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${headers})
endfunction()

if(RGEN_BUILD_TOOLS)
    # A single header, which calls Winsock.
    add_library(third_party::httplib INTERFACE IMPORTED GLOBAL)
    set_target_properties(third_party::httplib PROPERTIES INTERFACE_INCLUDE_DIRECTORIES
                                                          ${rgen_third_party}/include)
    target_link_libraries(third_party::httplib INTERFACE Threads::Threads)
    if(WIN32)
        target_link_libraries(third_party::httplib INTERFACE ws2_32)
    endif()
    rgen_header_library(cli11 CLI CLI/Version.hpp CLI11 ${RGEN_CLI11_MINIMUM})
    rgen_header_library(json nlohmann nlohmann/detail/abi_macros.hpp NLOHMANN_JSON
                        ${RGEN_NLOHMANN_JSON_MINIMUM})
endif()
