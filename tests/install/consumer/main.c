/* A program built against the installed library, as an application would. */
#include <stdio.h>
#include <zevch.h>

int main(void) {
    const LibVersion* v = zevchGetLibVersion();
    printf("zevch %s\n", v->versionText);
    return v->major == 6 ? 0 : 2;
}
