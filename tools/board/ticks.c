/* Prints how many thousand times a second this machine's time stamp counter ticks, which is what the
   emulated processor's counter does too. Told to the board's kernel: its own measuring goes wrong by half
   and more where the emulator is kept waiting meanwhile, and then its clock does. */
#include <stdint.h>
#include <stdio.h>
#include <time.h>
#include <x86intrin.h>

enum { LOOKS = 200, PAUSE_NS = 100000000 };

struct moment {
    int64_t ns;
    uint64_t ticks;
};

static int64_t now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC_RAW, &time);
    return time.tv_sec * INT64_C(1000000000) + time.tv_nsec;
}

/* Both at the same moment: of many looks the quickest, which nothing has come between. */
static struct moment look(void)
{
    struct moment best = {0, 0};
    int64_t quickest = INT64_MAX;
    for (int i = 0; i < LOOKS; ++i) {
        const int64_t before = now();
        const uint64_t ticks = __rdtsc();
        const int64_t took = now() - before;
        if (took < quickest) {
            quickest = took;
            best = (struct moment){before + took / 2, ticks};
        }
    }
    return best;
}

int main(void)
{
    const struct moment first = look();
    const struct timespec pause = {0, PAUSE_NS};
    nanosleep(&pause, NULL);
    const struct moment last = look();
    printf("%llu\n", (unsigned long long)((last.ticks - first.ticks) * UINT64_C(1000000) /
                                          (uint64_t)(last.ns - first.ns)));
    return 0;
}
