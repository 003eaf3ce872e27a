/* palette SCHEME: prints what colours a scheme of numbering 2, that of users' choices, has for rain.
 *
 *     cc palette.c $(pkg-config --cflags --libs nimbuscope-colorschemes) -o palette
 */
#include <stdio.h>
#include <stdlib.h>

#include "colorschemes/colorschemes.h"

int main(int count, char** arguments) {
    StaticColorScheme scheme;
    const uint32_t number = count == 2 ? (uint32_t)strtoul(arguments[1], NULL, 10) : 1;
    const int users = 2;
    const int smooth = 1;

    alloc_color_schemes();
    if (!get_static_color_scheme(number, users, &scheme, smooth) || !scheme.colors) {
        fprintf(stderr, "palette: there is no scheme %u\n", (unsigned)number);
        return 1;
    }
    for (int dbz = 10; dbz <= 70; dbz += 10) {
        const uint8_t* color = scheme.colors + 4 * (dbz + 32);
        printf("%d dBZ #%02x%02x%02x\n", dbz, color[0], color[1], color[2]);
    }
    return 0;
}
