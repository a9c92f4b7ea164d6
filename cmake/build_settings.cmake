# SPDX-License-Identifier: MIT
# Settings for all targets: language level, output folders, reproducible builds, warnings,
# sanitizers.

# Sets RGEN_<NAME> for each line of versions.env.
file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/versions.env version_settings REGEX "^[A-Z]")
foreach(line IN LISTS version_settings)
    string(REGEX MATCH "^([A-Z0-9_]+)=\"?([^\"]*)" matched "${line}")
    set(RGEN_${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
endforeach()

set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Programs and libraries are in one folder, since Windows looks there for a program's DLLs.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Binaries must not contain folders of the building machine.
add_compile_options(-ffile-prefix-map=${PROJECT_BINARY_DIR}=build
                    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

# Nor random names, which the compiler generates without a seed.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    foreach(language C CXX)
        string(REPLACE "<FLAGS>" "<FLAGS> -frandom-seed=<OBJECT>" CMAKE_${language}_COMPILE_OBJECT
                       "${CMAKE_${language}_COMPILE_OBJECT}")
    endforeach()
endif()

if(WIN32)
    add_compile_definitions(NOMINMAX WIN32_LEAN_AND_MEAN)
    add_link_options(LINKER:--no-insert-timestamp LINKER:--nxcompat LINKER:--dynamicbase
                     LINKER:--high-entropy-va)
else()
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()

# Objects and third-party archives contain machine code and the form for link-time optimisation.
# Only targets with the property RGEN_OPTIMISE_WHOLE are linked from the latter.
add_link_options($<$<NOT:$<BOOL:$<TARGET_PROPERTY:RGEN_OPTIMISE_WHOLE>>>:-fno-lto>)

# Instrumented code needs several times as much stack.
set(RGEN_SANITIZER_STACK_KIB 0)
if(RGEN_SANITIZER)
    set(RGEN_SANITIZER_STACK_KIB 1536)
    add_compile_options(-fsanitize=${RGEN_SANITIZER} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${RGEN_SANITIZER})
endif()

# Every symbol of a shared library must be defined. Clang adds the sanitizers' functions to programs only.
set(rgen_no_undefined LINKER:--no-undefined)
if(RGEN_SANITIZER AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(rgen_no_undefined "")
endif()

# rgen_harden(TARGET...): makes released binaries check stack frames, the sizes of copies and, where
# the processor supports it, return addresses. Linux only: with MinGW the stack guard comes from
# libssp, which loads the system's cryptography while the DLL is loaded, and GCC does not support
# Control Flow Guard. Builds with sanitizers do not need it.
function(rgen_harden)
    if(WIN32 OR RGEN_SANITIZER OR RGEN_COVERAGE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    foreach(target IN LISTS ARGV)
        target_compile_options(
            ${target} PRIVATE -fstack-protector-strong -fcf-protection=return
                              $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
        # The system's start files are not marked for the shadow stack, but work with it.
        target_link_options(${target} PRIVATE LINKER:-z,shstk)
    endforeach()
endfunction()

# rgen_optimise_whole(OBJECTS LIBRARY): optimises a shared library as a whole while linking, third-party
# archives included, without unused sections. The objects also contain machine code, for the tests.
# Linking compiles again, so it needs the prefix map, too.
function(rgen_optimise_whole objects library)
    if(NOT RGEN_WHOLE_LIBRARY OR RGEN_SANITIZER)
        return()
    endif()
    target_compile_options(${objects} PRIVATE -flto -ffat-lto-objects -ffunction-sections
                                              -fdata-sections)
    set_target_properties(${library} PROPERTIES RGEN_OPTIMISE_WHOLE ON)
    target_link_options(${library} PRIVATE -flto=auto LINKER:--gc-sections
                                           -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endfunction()

# rgen_count_coverage(OBJECTS LIBRARY): counts lines and branches, without optimisation. The counters
# are atomic, since the tests use threads. They are written to files beside the objects, whatever
# program the objects are linked into.
function(rgen_count_coverage objects library)
    if(NOT RGEN_COVERAGE)
        return()
    endif()
    foreach(target ${objects} ${library})
        target_compile_options(${target} PRIVATE -O0 --coverage -fprofile-update=atomic)
    endforeach()
    target_link_options(${objects} INTERFACE --coverage)
endfunction()

# The address sanitizer checks blocks of the C heap; it cannot see errors inside a pool.
set(RGEN_POOLS_ARE_USED true)
if(RGEN_SANITIZER MATCHES "address")
    set(RGEN_POOLS_ARE_USED false)
endif()

# Linked by all targets of the project; third-party headers are system headers, without warnings.
add_library(rgen_warnings INTERFACE)
target_compile_options(
    rgen_warnings
    INTERFACE
        -Wall
        -Wextra
        -Wpedantic
        -Wcast-align
        -Wcast-qual
        -Wconversion
        -Wdouble-promotion
        -Wformat=2
        -Wshadow
        -Wsign-conversion
        -Wundef
        -Wvla
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wduplicated-branches>
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wduplicated-cond>
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wlogical-op>
        $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
        $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
        $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
        $<$<COMPILE_LANGUAGE:CXX>:-Wredundant-decls>
        $<$<COMPILE_LANGUAGE:CXX>:-Wzero-as-null-pointer-constant>
        $<$<COMPILE_LANG_AND_ID:C,GNU>:-Wduplicated-branches>
        $<$<COMPILE_LANG_AND_ID:C,GNU>:-Wduplicated-cond>
        $<$<COMPILE_LANG_AND_ID:C,GNU>:-Wlogical-op>
        $<$<COMPILE_LANGUAGE:C>:-Wmissing-prototypes>
        $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
