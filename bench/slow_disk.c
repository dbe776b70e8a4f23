/* A disk for the benchmarks: preloaded into a program, makes every flush of a file take a given time.
     LD_PRELOAD=libslow_disk.so BENCH_FLUSH_MS=6 PROGRAM ...
   Flushes really happen, and then wait until the time is over. With BENCH_FLUSH_MS=none they do nothing.
   At the end BENCH_FLUSH_COUNT, if set, is the file to which the number of flushes is written. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static atomic_long flushes;

static int flush(int file, const char* name) {
    const char* setting = getenv("BENCH_FLUSH_MS");
    atomic_fetch_add(&flushes, 1);
    if (setting && strcmp(setting, "none") == 0)
        return 0;
    struct timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    int (*real)(int) = (int (*)(int))dlsym(RTLD_NEXT, name);
    const int result = real(file);
    const long long nanoseconds = end.tv_nsec + (long long)((setting ? atof(setting) : 0) * 1e6);
    end.tv_sec += nanoseconds / 1000000000;
    end.tv_nsec = nanoseconds % 1000000000;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, NULL) != 0) {
    }
    return result;
}

int fsync(int file) { return flush(file, "fsync"); }
int fdatasync(int file) { return flush(file, "fdatasync"); }

__attribute__((destructor)) static void report(void) {
    const char* file = getenv("BENCH_FLUSH_COUNT");
    FILE* out = file ? fopen(file, "w") : NULL;
    if (out) {
        fprintf(out, "%ld\n", (long)flushes);
        fclose(out);
    }
}
