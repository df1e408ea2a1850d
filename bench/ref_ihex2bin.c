/* A minimal hand-written Intel HEX to binary decoder, as a reference point for the
 * benchmark: data, end-of-file and extended address records, checksums checked, no
 * messages beyond the first error. Output runs from address 0 to the highest byte,
 * gaps 0xFF.  usage: ref_ihex2bin IN.hex OUT.bin */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static signed char nib[256];

static int byteAt(const unsigned char *p)
{
    return nib[p[0]] < 0 || nib[p[1]] < 0 ? -1 : nib[p[0]] << 4 | nib[p[1]];
}

int main(int argc, char **argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: ref_ihex2bin IN.hex OUT.bin\n");
        return 2;
    }
    memset(nib, -1, sizeof nib);
    for (int i = 0; i < 10; ++i)
        nib['0' + i] = (signed char)i;
    for (int i = 0; i < 6; ++i)
        nib['A' + i] = nib['a' + i] = (signed char)(10 + i);

    FILE *f = fopen(argv[1], "rb");
    if (!f)
        return perror(argv[1]), 1;
    fseek(f, 0, SEEK_END);
    long size = ftell(f);
    fseek(f, 0, SEEK_SET);
    unsigned char *text = malloc((size_t)size + 1);
    if (!text || fread(text, 1, (size_t)size, f) != (size_t)size)
        return fprintf(stderr, "%s: read error\n", argv[1]), 1;
    fclose(f);
    text[size] = 0;

    size_t cap = 1 << 20, high = 0;
    unsigned char *img = malloc(cap);
    memset(img, 0xFF, cap);
    uint32_t base = 0;
    long line = 0;
    const unsigned char *p = text, *end = text + size;
    while (p < end) {
        while (p < end && (*p == '\r' || *p == '\n'))
            ++p;
        if (p >= end)
            break;
        ++line;
        if (*p++ != ':')
            return fprintf(stderr, "%s:%ld: no ':'\n", argv[1], line), 1;
        unsigned char rec[260];
        int n = byteAt(p);
        if (n < 0 || end - p < 2 * (n + 5))
            return fprintf(stderr, "%s:%ld: bad record\n", argv[1], line), 1;
        unsigned sum = 0;
        for (int i = 0; i < n + 5; ++i, p += 2) {
            int b = byteAt(p);
            if (b < 0)
                return fprintf(stderr, "%s:%ld: bad digit\n", argv[1], line), 1;
            rec[i] = (unsigned char)b;
            sum += (unsigned)b;
        }
        if (sum & 0xFF)
            return fprintf(stderr, "%s:%ld: checksum\n", argv[1], line), 1;
        uint32_t off = (uint32_t)rec[1] << 8 | rec[2];
        if (rec[3] == 0) {
            size_t a = (size_t)base + off;
            if (a + (size_t)n > cap) {
                size_t ncap = cap;
                while (a + (size_t)n > ncap)
                    ncap *= 2;
                img = realloc(img, ncap);
                memset(img + cap, 0xFF, ncap - cap);
                cap = ncap;
            }
            memcpy(img + a, rec + 4, (size_t)n);
            if (a + (size_t)n > high)
                high = a + (size_t)n;
        } else if (rec[3] == 1) {
            break;
        } else if (rec[3] == 2) {
            base = ((uint32_t)rec[4] << 8 | rec[5]) << 4;
        } else if (rec[3] == 4) {
            base = ((uint32_t)rec[4] << 8 | rec[5]) << 16;
        }
    }
    FILE *o = fopen(argv[2], "wb");
    if (!o || fwrite(img, 1, high, o) != high || fclose(o) != 0)
        return perror(argv[2]), 1;
    return 0;
}
