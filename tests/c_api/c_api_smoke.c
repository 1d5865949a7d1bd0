/* The public header compiled as C99 and linked against the shared library. */
#include <stdio.h>
#include <string.h>

#include "zevch.h"

static int failures = 0;
#define CHECK(cond)                                                      \
    do {                                                                 \
        if (!(cond)) {                                                   \
            fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
            ++failures;                                                  \
        }                                                                \
    } while (0)

int main(void) {
    const LibVersion* v = zevchGetLibVersion();
    CHECK(v != NULL);
    CHECK(v == zevchGetLibVersion());
    CHECK(v->major == 6 && v->minor == 1 && v->buildMajor == 137 && v->buildMinor == 742);
    CHECK(strcmp(v->targetCode, "px") == 0);
    CHECK(strcmp(v->fileName, "zevchpx-6.1.dll") == 0);
    CHECK(sizeof(RegExpFindEntry) == 2 * sizeof(void*));
    if (failures == 0) printf("c api smoke: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
