// The header must serve C as it stands.
#include "colorschemes/colorschemes.h"

int table_size_in_c(void);

int table_size_in_c(void) {
    StaticColorScheme scheme;
    return get_static_color_scheme(1, 2, &scheme, 1) ? (int)scheme.size : -1;
}
