# SPDX-License-Identifier: MIT
# Removes the folders where a program looks for libraries. Usage: cmake -DPROGRAM=FILE -P <this>

file(RPATH_REMOVE FILE ${PROGRAM})
