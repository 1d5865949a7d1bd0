/*
 * quickstart.c - compile a pattern, find its matches, replace them, and run
 * several patterns at once, on a short text built into the program.
 *
 *   cc quickstart.c $(pkg-config --cflags --libs zevch) -o quickstart
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zevch.h"

static const char text[] =
    "Order 1182 shipped 2026-03-14 to ana@example.org;\n"
    "order 1190 shipped 2026-03-16 to bo@example.net.\n";

static int fail(const char* what, zevStatus status) {
    fprintf(stderr, "quickstart: %s failed with status %d\n", what, (int)status);
    return 1;
}

int main(void) {
    const uint8_t* src = (const uint8_t*)text;
    const int32_t srcLen = (int32_t)strlen(text);
    RegExpState* dates = NULL;
    int32_t errOffset = 0;
    zevStatus st;

    printf("%s\n", text);

    /* 1. Every date, with its three parts as groups. A global search on a
     *    pattern with groups reports the groups of each match. */
    st = zevsRegExpInitAlloc("(\\d{4})-(\\d\\d)-(\\d\\d)", "g", &dates, &errOffset);
    if (st != zevStatusOk) return fail("compiling the date pattern", st);
    RegExpFindEntry find[32];
    int32_t findCount = 32;
    st = zevsRegExpFind_8u(src, srcLen, dates, find, &findCount);
    if (st != zevStatusOk) return fail("the search", st);
    for (int32_t k = 0; k + 3 <= findCount; k += 3) {
        printf("date: year %.*s, month %.*s, day %.*s\n", (int)find[k].length, (const char*)find[k].start,
               (int)find[k + 1].length, (const char*)find[k + 1].start, (int)find[k + 2].length,
               (const char*)find[k + 2].start);
    }

    /* 2. The same dates rewritten day first. The template is parsed once into
     *    a record the caller sizes; the output length is the caller's too. */
    int32_t size = 0;
    zevsRegExpReplaceGetSize("$3.$2.$1", &size);
    RegExpReplaceState* tmpl = (RegExpReplaceState*)malloc((size_t)size);
    if (tmpl == NULL) return 1;
    st = zevsRegExpReplaceInit("$3.$2.$1", tmpl);
    if (st != zevStatusOk) return fail("parsing the template", st);
    uint8_t out[256];
    int32_t inLen = srcLen;
    int32_t outLen = (int32_t)sizeof out;
    findCount = 32;
    st = zevsRegExpReplace_8u(src, &inLen, out, &outLen, find, &findCount, dates, tmpl);
    if (st != zevStatusOk) return fail("the replacement", st);
    printf("\nrewritten:\n%.*s\n", (int)outLen, (const char*)out);

    /* 3. Three patterns in one call. Each slot needs a compiled record of its
     *    own; record i of the results belongs to slot i. */
    const char* patterns[3] = {"\\w+@\\w+\\.\\w+", "\\b\\d{4}\\b", "(?i)order"};
    RegExpState* compiled[3] = {NULL, NULL, NULL};
    RegExpMultiState* set = NULL;
    st = zevsRegExpMultiInitAlloc(&set, 3);
    if (st != zevStatusOk) return fail("allocating the set", st);
    RegExpMultiResult results[3];
    RegExpFindEntry found[3][16];
    for (int i = 0; i < 3; ++i) {
        st = zevsRegExpInitAlloc(patterns[i], "g", &compiled[i], &errOffset);
        if (st != zevStatusOk) return fail("compiling a set pattern", st);
        zevsRegExpMultiAdd(compiled[i], (uint32_t)(i + 1), set);
        results[i].done = 0;
        results[i].findCount = 16;
        results[i].find = found[i];
    }
    st = zevsRegExpMultiFind_8u(src, srcLen, results, set);
    if (st != zevStatusOk) return fail("the multi-pattern search", st);
    printf("\n");
    for (int i = 0; i < 3; ++i) {
        printf("pattern %u %-16s %d match(es), status %d\n", (unsigned)results[i].id, patterns[i],
               (int)results[i].findCount, (int)results[i].status);
    }

    for (int i = 0; i < 3; ++i) zevsRegExpFree(compiled[i]);
    zevsRegExpMultiFree(set);
    free(tmpl);
    zevsRegExpFree(dates);
    return 0;
}
