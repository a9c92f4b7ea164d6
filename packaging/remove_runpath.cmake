# SPDX-License-Identifier: MIT
# Removes the run path of a program or library. Usage: cmake -DBINARY=FILE -P <this>

file(RPATH_REMOVE FILE ${BINARY})
