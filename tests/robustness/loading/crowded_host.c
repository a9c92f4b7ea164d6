/*
 * A host that loads many other libraries beside the report library.
 *
 * Arguments: library, folder, order ("first", "last": when the library is loaded; "full": last,
 * after the others have used up what the system has for static thread storage), the other
 * libraries.
 *
 * SPDX-License-Identifier: MIT
 */
#include <dlfcn.h>
#include <pthread.h>
#include <string.h>

#include "robustness/loading/loaded_library.h"

enum { most_libraries = 512 };

static struct loaded_library library;
static const char* folder;
static void* crowd[most_libraries];
static int crowd_count;

/* The number of libraries that were loaded. */
static int load_crowd(int count, char** paths) {
    while (crowd_count < count && crowd_count < most_libraries) {
        crowd[crowd_count] = dlopen(paths[crowd_count], RTLD_NOW | RTLD_LOCAL);
        if (crowd[crowd_count] == NULL) break;
        ++crowd_count;
    }
    return crowd_count;
}

static int crowd_works(void) {
    for (int number = 0; number < crowd_count; ++number) {
        void* found = dlsym(crowd[number], "use_crowd_library");
        int (*use)(void) = NULL;
        memcpy(&use, &found, sizeof found);
        if (use == NULL || !use()) return 0;
    }
    return 1;
}

static void* use_all(void* is_right) {
    *(int*)is_right = crowd_works() && report_is_right(&library, folder) && crowd_works();
    return NULL;
}

static int works_on_another_thread(void) {
    int is_right = 0;
    pthread_t thread;
    if (pthread_create(&thread, NULL, use_all, &is_right) != 0) return 0;
    pthread_join(thread, NULL);
    return is_right;
}

int main(int count, char** arguments) {
    if (count < 5) return 2;
    folder = arguments[2];
    const int others = count - 4;
    const int is_first = strcmp(arguments[3], "first") == 0;
    if (is_first && !load_library(arguments[1], &library)) return 3;
    const int loaded = load_crowd(others, arguments + 4);
    const int is_full = strcmp(arguments[3], "full") == 0;
    if (is_full ? loaded == others : loaded != others) return 4;
    if (!is_first && !load_library(arguments[1], &library)) return 5;
    int is_right = 0;
    use_all(&is_right);
    if (!is_right) return 6;
    return works_on_another_thread() ? 0 : 7;
}
