/* The check macro of the C host and the channel tests: counts, and prints
   each failure with its line. */
#ifndef HOSTC_CHECK_H
#define HOSTC_CHECK_H

#include <stdio.h>

static int passed, failed;

#define CHECK(cond)                                                    \
    do {                                                               \
        if (cond) {                                                    \
            ++passed;                                                  \
        } else {                                                       \
            ++failed;                                                  \
            printf("FAILED %s:%d: %s\n", __FILE__, __LINE__, #cond);   \
        }                                                              \
    } while (0)

#endif
