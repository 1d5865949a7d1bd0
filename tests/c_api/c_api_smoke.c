/* The public header compiled as C99 and linked against the shared library:
 * one call of every family, the way a C application makes it. */
#include <stdio.h>
#include <stdlib.h>
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

static void versionRecord(void) {
    const LibVersion* v = zevchGetLibVersion();
    CHECK(v != NULL);
    CHECK(v == zevchGetLibVersion());
    CHECK(v->major == 6 && v->minor == 1 && v->buildMajor == 137 && v->buildMinor == 742);
    CHECK(strcmp(v->targetCode, "px") == 0);
    CHECK(strcmp(v->fileName, "zevchpx-6.1.dll") == 0);
}

static void stringFamilies(void) {
    const uint8_t text[] = "  Hello, World  ";
    int32_t index = -2, result = 7, len = 0;
    uint32_t hash = 0;
    uint8_t out[32];
    uint16_t wide[32];
    uint32_t srcLen = 5, dstLen = 32;

    CHECK(zevsFindC_8u(text, 16, 'W', &index) == zevStatusOk && index == 9);
    CHECK(zevsFind_8u(text, 16, (const uint8_t*)"World", 5, &index) == zevStatusOk && index == 9);
    CHECK(zevsCompare_8u((const uint8_t*)"\xC8", (const uint8_t*)"d", 1, &result) == zevStatusOk &&
          result == 100);
    CHECK(zevsTrimC_8u(text, 16, ' ', out, &len) == zevStatusOk && len == 12 &&
          memcmp(out, "Hello, World", 12) == 0);
    CHECK(zevsUppercaseLatin_8u(out, out, len) == zevStatusOk && memcmp(out, "HELLO, WORLD", 12) == 0);
    CHECK(zevsHashSJ2_8u32u((const uint8_t*)"abc", 3, &hash) == zevStatusOk && hash == 96354u);
    CHECK(zevsConvertUTF_8u16u((const uint8_t*)"h\xC3\xA9!!", &srcLen, wide, &dstLen, 0) == zevStatusOk);
    CHECK(srcLen == 5 && dstLen == 4 && wide[1] == 0xE9);
    CHECK(zevsFindC_8u(NULL, -1, 'a', &index) == zevStatusNullPointer);
}

static void regularExpressions(void) {
    const char* subject = "id=42, id=7";
    RegExpState* re = NULL;
    int32_t errOffset = -1, size = 0, count = 4;
    RegExpFindEntry find[4];

    CHECK(zevsRegExpGetSize("id=(\\d+)", &size) == zevStatusOk && size == 40052 + 20 * 8);
    CHECK(zevsRegExpInitAlloc("id=(\\d+)", "g", &re, &errOffset) == zevStatusOk);
    CHECK(zevsRegExpFind_8u((const uint8_t*)subject, (int32_t)strlen(subject), re, find, &count) ==
          zevStatusOk);
    CHECK(count == 2 && find[0].length == 2 && find[1].length == 1);

    /* A caller-owned record, then a bad pattern with its offset. */
    RegExpState* own = (RegExpState*)malloc((size_t)size);
    CHECK(zevsRegExpInit("id=(\\d+)", NULL, own, &errOffset) == zevStatusOk);
    CHECK(zevsRegExpInit("a**", NULL, own, &errOffset) == zevStatusRegExpBadRepeat && errOffset == 2);
    free(own);

    /* Replacement of every match. */
    int32_t tsize = 0;
    CHECK(zevsRegExpReplaceGetSize("<$1>", &tsize) == zevStatusOk && tsize == 60);
    RegExpReplaceState* tpl = (RegExpReplaceState*)malloc((size_t)tsize);
    CHECK(zevsRegExpReplaceInit("<$1>", tpl) == zevStatusOk);
    uint8_t out[64];
    int32_t srcLen = (int32_t)strlen(subject), dstLen = (int32_t)sizeof out;
    count = 4;
    CHECK(zevsRegExpReplace_8u((const uint8_t*)subject, &srcLen, out, &dstLen, find, &count, re, tpl) ==
          zevStatusOk);
    CHECK(dstLen == 9 && memcmp(out, "<42>, <7>", 9) == 0);
    free(tpl);

    /* A set of one pattern. */
    RegExpMultiState* set = NULL;
    CHECK(zevsRegExpMultiInitAlloc(&set, 2) == zevStatusOk);
    CHECK(zevsRegExpMultiAdd(re, 9, set) == zevStatusOk);
    RegExpMultiResult results[2];
    memset(results, 0, sizeof results);
    results[0].findCount = 4;
    results[0].find = find;
    CHECK(zevsRegExpMultiFind_8u((const uint8_t*)subject, (int32_t)strlen(subject), results, set) ==
          zevStatusOk);
    CHECK(results[0].done == 1 && results[0].id == 9 && results[0].findCount == 2 && results[1].done == 0);
    zevsRegExpMultiFree(set);
    zevsRegExpFree(re);
}

int main(void) {
    versionRecord();
    stringFamilies();
    regularExpressions();
    if (failures == 0) printf("c api smoke: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
