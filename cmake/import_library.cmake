# SPDX-License-Identifier: MIT
# Makes the import library for Microsoft-compatible linkers from the list of exports. They expect
# the short import format; the library that MinGW makes has another one.

find_program(
    RGEN_DLLTOOL
    NAMES llvm-dlltool-${RGEN_CLANG_FUZZER_VERSION} llvm-dlltool-${RGEN_CLANG_TOOLS_VERSION}
          llvm-dlltool
    DOC "Makes the import library strata_repgenlib.lib")

if(NOT RGEN_DLLTOOL)
    # The build continues without it, but an installation would be incomplete.
    message(WARNING "llvm-dlltool is missing, so this build cannot be installed; scripts/setup "
                    "package installs it.")
    install(CODE "message(FATAL_ERROR \"strata_repgenlib.lib was not made, since llvm-dlltool was \
missing when the build was configured. Run scripts/setup package, then configure and build again.\")"
            COMPONENT development)
    set(import_library "")
    return()
endif()

set(definitions ${PROJECT_SOURCE_DIR}/src/api/exports.def)
set(import_library ${PROJECT_BINARY_DIR}/lib/strata_repgenlib.lib)
add_custom_command(
    OUTPUT ${import_library}
    COMMAND ${RGEN_DLLTOOL} --machine i386:x86-64 --input-def ${definitions}
            --dllname strata_repgenlib.dll --output-lib ${import_library}
    DEPENDS ${definitions}
    COMMENT "Making the import library for other compilers"
    VERBATIM)
add_custom_target(strata_repgenlib_import_library ALL DEPENDS ${import_library})
