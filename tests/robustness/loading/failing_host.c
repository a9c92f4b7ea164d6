/*
 * A host that loads the library and calls it once for each allocation of the call, which fails,
 * alone or with all later ones. Every attempt is the first use of a process of its own, which this
 * one forks. A host in C loads the C++ library along with the report library.
 *
 * Arguments: library, folder, call ("new", "report", "persist", "simulate"), thread ("main",
 * "other": on a thread that has not used the library yet), number of thread keys that are taken
 * before. Writes the number of attempts into the file "points" of the folder; the exit code is 0
 * when all were right.
 *
 * SPDX-License-Identifier: MIT
 */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "robustness/loading/failing_malloc.h"
#include "robustness/loading/guarded_call.h"
#include "robustness/loading/loaded_library.h"

enum verdict { RIGHT, WRONG, NOT_REACHED, NOT_LOADED };

static struct loaded_library library;
static const char* library_path;
static const char* folder;
static const char* call_name;
static int on_other_thread;
static int taken_keys;
static size_t failing_number;
static int failing_all;

static RgenReportGenerator* generator;
static char simulated_path[4096];
static RgenGuid guid;
static int call_is_right = 1;

static void call_new(void) {
    RgenReportGenerator* made = library.new_generator();
    library.free_generator(made);
}

static void call_report(void) {
    RgenCVariant result = {0};
    make_report(&library, generator, &result);
    library.free_value(&result);
}

static void call_persist(void) {
    RgenCAnsiStringPairSet pairs = {NULL, NULL, 77};
    library.get_persistent(generator, &guid, &pairs);
    if (pairs.keys == NULL && pairs.count != 77) call_is_right = 0;
    library.free_pairs(&pairs);
}

static void call_simulate(void) {
    RgenCVariantSet values = {NULL, 77};
    const int was_read = library.simulate(generator, simulated_path, &values);
    if (!was_read && values.count != 77) call_is_right = 0;
    library.free_values(&values);
}

static void call_once(void) {
    if (strcmp(call_name, "new") == 0) call_new();
    if (strcmp(call_name, "report") == 0) call_report();
    if (strcmp(call_name, "persist") == 0) call_persist();
    if (strcmp(call_name, "simulate") == 0) call_simulate();
}

/* What never needs memory, or says that it has none. */
static int needs_no_memory(void) {
    RgenAnsiString text = {0, NULL};
    fail_allocation(1, 1);
    const char* described = library.describe((const RgenReportGenerator*)folder, RGEN_CANCELED);
    const int created = library.create_text("text", &text);
    const size_t count = stop_failing();
    return strcmp(described, "Canceled by request") == 0 && created == 0 && count == 1;
}

static void* attempt(void* verdict) {
    fail_allocation(failing_number, failing_all);
    guarded_call(call_once);
    const size_t count = stop_failing();
    const int is_right = call_is_right && needs_no_memory() && report_is_right(&library, folder);
    *(int*)verdict = count < failing_number ? NOT_REACHED : is_right ? RIGHT : WRONG;
    return NULL;
}

static void take_keys(void) {
    for (int number = 0; number < taken_keys; ++number) {
        pthread_key_t key;
        pthread_key_create(&key, NULL);
    }
}

/* A generator is made beforehand for all calls but the one that makes it. */
static int run_attempt(void) {
    take_keys();
    if (!load_library(library_path, &library)) return NOT_LOADED;
    if (strcmp(call_name, "new") != 0) {
        generator = library.new_generator();
        if (library.set_data_dir(generator, folder) != RGEN_OK) return WRONG;
    }
    int verdict = WRONG;
    pthread_t thread;
    if (!on_other_thread) {
        attempt(&verdict);
    } else {
        pthread_create(&thread, NULL, attempt, &verdict);
        pthread_join(thread, NULL);
    }
    return verdict;
}

/* The verdict of a child; any other number when it was ended. */
static int verdict_of_child(void) {
    const pid_t child = fork();
    if (child == 0) _exit(run_attempt());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

static size_t sweep(int all_from) {
    failing_all = all_from;
    for (failing_number = 1;; ++failing_number) {
        const int verdict = verdict_of_child();
        if (verdict == NOT_REACHED) return failing_number - 1;
        if (verdict == RIGHT) continue;
        fprintf(stderr, "%s: %s %zu: %d\n", call_name, all_from ? "allocations from" : "allocation",
                failing_number, verdict);
        exit(1);
    }
}

int main(int count, char** arguments) {
    if (count != 6) return 2;
    library_path = arguments[1];
    folder = arguments[2];
    call_name = arguments[3];
    on_other_thread = strcmp(arguments[4], "other") == 0;
    taken_keys = atoi(arguments[5]);
    guid.data1 = 0xDEADBABEU;
    snprintf(simulated_path, sizeof simulated_path, "%s/in.xml", folder);
    const size_t points = sweep(0) + sweep(1);
    char path[4096];
    snprintf(path, sizeof path, "%s/points", folder);
    FILE* file = fopen(path, "w");
    if (file == NULL) return 3;
    fprintf(file, "%zu", points);
    return fclose(file) == 0 ? 0 : 3;
}
