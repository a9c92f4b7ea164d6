# SPDX-License-Identifier: MIT
# The only place that finds third-party code. All of it is static and comes from the folder that
# scripts/dependencies made for this flavour; cmake/versions.env states the releases.
#
# Gives the targets third_party::xslt (with libxml2), third_party::filesystem and third_party::gtest.

set(RGEN_FLAVOUR "" CACHE STRING "Flavour of the third-party libraries (see scripts/dependencies)")
set(RGEN_DEPENDENCIES "" CACHE PATH "Their folder; asked of scripts/dependencies when empty")

if(NOT RGEN_FLAVOUR)
    if(WIN32)
        set(RGEN_FLAVOUR windows)
    else()
        set(RGEN_FLAVOUR linux)
    endif()
endif()

set(rgen_third_party ${RGEN_DEPENDENCIES})
if(NOT rgen_third_party)
    execute_process(
        COMMAND ${PROJECT_SOURCE_DIR}/scripts/dependencies --print-prefix ${RGEN_FLAVOUR}
        OUTPUT_VARIABLE rgen_third_party OUTPUT_STRIP_TRAILING_WHITESPACE
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "The third-party libraries are missing (see above).")
    endif()
endif()

file(STRINGS ${rgen_third_party}/versions.env rgen_third_party_versions)
message(STATUS "Third-party libraries: ${rgen_third_party}")
foreach(line IN LISTS rgen_third_party_versions)
    message(STATUS "  ${line}")
endforeach()

add_compile_options(-ffile-prefix-map=${rgen_third_party}=third_party)

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

target_link_libraries(third_party::xml INTERFACE Threads::Threads)
target_link_libraries(third_party::xslt INTERFACE third_party::xml)
target_link_libraries(third_party::gtest INTERFACE Threads::Threads)
target_compile_definitions(third_party::filesystem INTERFACE BOOST_ALL_NO_LIB
                                                             BOOST_FILESYSTEM_STATIC_LINK=1)
if(WIN32)
    target_link_libraries(third_party::xml INTERFACE bcrypt)
    target_link_libraries(third_party::filesystem INTERFACE bcrypt)
    target_compile_definitions(third_party::xml INTERFACE LIBXML_STATIC LIBXML_STATIC_FOR_DLL)
    target_compile_definitions(third_party::xslt INTERFACE LIBXSLT_STATIC)
else()
    target_link_libraries(third_party::xml INTERFACE m)
endif()
