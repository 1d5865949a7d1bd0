/* A program built against the installed library, as an application would. */
#include <stdio.h>
#include <string.h>
#include <zevch.h>

int main(void) {
    const LibVersion* v = zevchGetLibVersion();
    const char* text = "needle in a haystack";
    int32_t index = -2, errOffset = 0, count = 1;
    if (zevsFindC_8u((const uint8_t*)text, 20, 'h', &index) != zevStatusOk || index != 12) return 1;
    RegExpState* re = NULL;
    RegExpFindEntry found[1];
    if (zevsRegExpInitAlloc("h\\w+", NULL, &re, &errOffset) != zevStatusOk) return 2;
    if (zevsRegExpFind_8u((const uint8_t*)text, 20, re, found, &count) != zevStatusOk || count != 1 ||
        found[0].length != 8)
        return 3;
    zevsRegExpFree(re);
    printf("zevch %s\n", v->versionText);
    return 0;
}
