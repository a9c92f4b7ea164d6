# SPDX-License-Identifier: MIT
# Makes the import libraries for Microsoft-compatible linkers from the lists of exports. They expect
# the short import format; the libraries that MinGW makes have another one.

find_program(
    RGEN_DLLTOOL
    NAMES llvm-dlltool-${RGEN_CLANG_FUZZER_VERSION} llvm-dlltool-${RGEN_CLANG_TOOLS_VERSION}
          llvm-dlltool
    DOC "Makes the import libraries for Microsoft-compatible linkers")

set(import_libraries "")
if(NOT RGEN_DLLTOOL)
    # The build continues without it, but an installation would be incomplete.
    message(WARNING "llvm-dlltool is missing, so this build cannot be installed; scripts/setup "
                    "package installs it.")
    install(CODE "message(FATAL_ERROR \"strata_repgenlib.lib was not made, since llvm-dlltool was \
missing when the build was configured. Run scripts/setup package, then configure and build again.\")"
            COMPONENT development)
    return()
endif()

# rgen_add_import_library(TARGET DEFINITIONS): appends the file to import_libraries.
function(rgen_add_import_library target definitions)
    set(library ${PROJECT_BINARY_DIR}/lib/${target}.lib)
    add_custom_command(
        OUTPUT ${library}
        COMMAND ${RGEN_DLLTOOL} --machine i386:x86-64 --input-def ${definitions}
                --dllname ${target}.dll --output-lib ${library}
        DEPENDS ${definitions}
        COMMENT "Making the import library of ${target} for other compilers"
        VERBATIM)
    add_custom_target(${target}_import_library ALL DEPENDS ${library})
    set(import_libraries ${import_libraries} ${library} PARENT_SCOPE)
endfunction()

rgen_add_import_library(strata_repgenlib ${PROJECT_SOURCE_DIR}/src/api/exports.def)
rgen_add_import_library(strata_repgenlib_host ${PROJECT_SOURCE_DIR}/host/api/exports.def)
