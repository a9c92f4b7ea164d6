/*
 * One of the many other libraries of a process. CROWD_KIND says what it has for each thread: 1 a
 * variable in static thread storage, of which a process has little; 2 a thread-local variable as a
 * compiler makes it; 3 a key.
 *
 * SPDX-License-Identifier: MIT
 */
#include <pthread.h>
#include <stddef.h>

extern int use_crowd_library(void);

#if CROWD_KIND == 1
static _Thread_local char room[16] __attribute__((tls_model("initial-exec")));

int use_crowd_library(void) {
    return ++room[7] > 0;
}
#elif CROWD_KIND == 2
static _Thread_local char room[64];

int use_crowd_library(void) {
    return ++room[7] > 0;
}
#else
static pthread_key_t key;

__attribute__((constructor)) static void make_key(void) {
    pthread_key_create(&key, NULL);
}

int use_crowd_library(void) {
    return pthread_setspecific(key, &key) == 0 && pthread_getspecific(key) == &key;
}
#endif
