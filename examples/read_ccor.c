/* Reads a coefficient file (.ccor) in plain C, for makers of devices: prints terms and the three rows.
 *   read_ccor camera.ccor
 * All numbers are little-endian; docs/file-formats.md tells the layout. Nothing is trusted before it was checked. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

enum { kHead = 84, kMostTerms = 10, kFloatFormat = 17 };

static uint32_t u32(const unsigned char* p) {
    return (uint32_t)p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16 | (uint32_t)p[3] << 24;
}

static float f32(const unsigned char* p) {
    const uint32_t bits = u32(p);
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

/* Three rows (red, green, blue) of as many coefficients as the answer says; 0 for a file that is none. */
static int read_ccor(FILE* file, float rows[3][kMostTerms]) {
    unsigned char head[kHead], value[4];
    if (fread(head, 1, kHead, file) != kHead) return 0;
    if (strncmp((const char*)head, "CTivTonewrightDC_XForm", 32) != 0) return 0;
    if (strncmp((const char*)head + 40, "CTivVector", 32) != 0) return 0;
    const uint32_t version = u32(head + 32), terms = u32(head + 36);
    if (version != 7300 && version != 7301) return 0;
    if (terms != 4 && terms != 7 && terms != 10) return 0;
    if (u32(head + 76) != 3 * terms || u32(head + 80) != kFloatFormat) return 0;
    for (uint32_t row = 0; row < 3; ++row) {
        for (uint32_t term = 0; term < terms; ++term) {
            if (fread(value, 1, sizeof value, file) != sizeof value) return 0;
            rows[row][term] = f32(value);
        }
    }
    return (int)terms;
}

int main(int argc, char** argv) {
    float rows[3][kMostTerms];
    FILE* const file = argc == 2 ? fopen(argv[1], "rb") : NULL;
    if (!file) {
        fprintf(stderr, "usage: read_ccor FILE.ccor\n");
        return 2;
    }
    const int terms = read_ccor(file, rows);
    fclose(file);
    if (!terms) {
        fprintf(stderr, "%s: no coefficient file, or a broken one\n", argv[1]);
        return 1;
    }
    printf("%d terms\n", terms);
    for (int row = 0; row < 3; ++row) {
        for (int term = 0; term < terms; ++term) printf("%s%.9g", term ? " " : "", (double)rows[row][term]);
        printf("\n");
    }
    return 0;
}
