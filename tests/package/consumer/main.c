#include <quillon/Quillon.h>
#include <stdio.h>

int main(void) {
    char rest[4096];
    float status = GetString("abcdefgh", 2.0, rest, sizeof rest, NULL, 0, NULL);
    printf("%g %g %s\n", Version(NULL, 0.0, NULL, 0, NULL, 0, NULL), status, rest);
    return 0;
}
