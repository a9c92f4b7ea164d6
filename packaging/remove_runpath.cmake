# SPDX-License-Identifier: MIT
# Removes the run path of a program. Usage: cmake -DPROGRAM=FILE -P <this>

file(RPATH_REMOVE FILE ${PROGRAM})
