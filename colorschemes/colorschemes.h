/* Colour palettes: compact stop lists in, tables of RGBA colours out.
 *
 * A stop list is eight zero bytes, stops one after another, and eight zero bytes where the next stop would
 * begin. A stop is a byte of CS_STOP_ flags, a byte of position, a colour (R, G, B and, with CS_STOP_ALPHA,
 * A) and, with CS_STOP_END_COLOR, a second colour of the same form. A table has four bytes (R, G, B, A) per
 * entry; radar tables hold 512 entries in four sections of 128 (rain, snow, freezing rain, ice pellets),
 * where entry dBZ + 32 of a section shows that reflectivity; the other tables hold 256 entries.
 *
 * Functions answer 1 for done and 0 for failed, or a pointer and null. All of them may be called from any
 * thread; none keeps a pointer that it was passed.
 */
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* What a shared library of this offers; all else is hidden. */
#define CS_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

enum {
    CS_STOP_STORED = 0x01,    /* set in every stored stop; not examined */
    CS_STOP_HOLD = 0x02,      /* the colour holds up to the next stop instead of running towards it */
    CS_STOP_ALPHA = 0x04,     /* each colour has a fourth byte; without it alpha is 255 */
    CS_STOP_END_COLOR = 0x08, /* a second colour follows: what this segment runs towards */
};

/* One stop of a stop list, parsed. */
typedef struct ColorPaletteEntry {
    double position;
    bool hold;
    bool has_end_color;
    uint8_t color[4];
    uint8_t end_color[4]; /* all zero when absent */
} ColorPaletteEntry;

/* One section of a palette: where its stop list begins in NB_PALETTES, and how many colours it has.
 * A count of 0 means that the palette has no such section. */
typedef struct ColorPaletteSection {
    uint64_t offset;
    uint64_t count;
} ColorPaletteSection;

/* One palette. The tables belong to the library and live as long as the process; both are null until
 * alloc_color_schemes has built them. */
typedef struct ColorPaletteSource {
    uint32_t id;
    ColorPaletteSection sections[4];
    const uint8_t* colors;        /* smooth: gradients between the stops */
    const uint8_t* indexedColors; /* the smooth table in bands of five entries */
} ColorPaletteSource;

/* A table as the library owns it. */
typedef struct StaticColorScheme {
    uint32_t schemeNumber;
    size_t size;           /* bytes of the table: four per entry */
    const uint8_t* colors; /* borrowed; never freed */
} StaticColorScheme;

typedef enum ColorStopListFault {
    CS_STOP_LIST_SOUND,
    CS_STOP_LIST_MISSING,      /* the pointer is null */
    CS_STOP_LIST_HEADER,       /* one of the eight header bytes is absent or not zero */
    CS_STOP_LIST_EMPTY,        /* the terminator follows the header */
    CS_STOP_LIST_UNTERMINATED, /* the bytes end inside a stop or inside the terminator */
} ColorStopListFault;

/* All stop lists, followed by the records of the palettes in stored order: for each a 32-bit id, four zero
 * bytes and four pairs of 64-bit offset and count, least significant byte first. */
CS_EXPORT extern const uint8_t NB_PALETTES[];
CS_EXPORT extern const size_t nb_palettes_size;

/* The number of palettes, once the tables are built; 0 before. */
CS_EXPORT extern uint32_t nb_colors_palette_sources_count;

/* The tables of all palettes, 4096 bytes each (smooth, then banded); null until they are built. */
CS_EXPORT extern uint8_t* nb_colors_palette;

/* Writes to `out` the colour at `t` between `from` and `to`: each channel is from + (to - from) * t as one
 * fused multiply-add, truncated towards zero, of which the low eight bits are kept. A channel that is not
 * finite becomes 0. Does nothing when a pointer is null. */
CS_EXPORT void cs_interpolate_color(const uint8_t* from, const uint8_t* to, uint8_t* out, double t);

/* Parses the stop at `bytes` into `entry` and returns its size: 5, 6, 8 or 10; 0 when a pointer is null.
 * The whole stop must be readable. */
CS_EXPORT size_t cs_get_palette_entry(const uint8_t* bytes, ColorPaletteEntry* entry);

/* Looks over a stop list of at most `size` bytes that came from outside; nothing beyond them is read. Unless
 * `offset` is null it receives the byte at which the fault was found, or the size of a sound list with its
 * terminator. The other functions may be given every list that is sound. */
CS_EXPORT ColorStopListFault cs_check_stop_list(const uint8_t* stopList, size_t size, size_t* offset);

/* Renders the entries `start` ..< `count` of a smooth table to out[4 * start] ..< out[4 * count]; the entries
 * before are not touched. The first entry lies at position `from`, the last one at `to` (an only entry at
 * `from`). Positions before the first stop fade in from transparent black at `from`; after the last stop the
 * colour stays, or runs to its second colour at `to`.
 * The list must be terminated: see cs_check_stop_list. Answers 0, and writes nothing, when `out` is null or
 * the list is null, empty or has a header that is not zero; the first and the last are also reported on
 * standard error as "Invalid color palette header". */
CS_EXPORT int cs_render_pal_colors(uint8_t* out, const uint8_t* stopList, double from, double to,
                                   uint32_t start, uint32_t count);

/* Bands a table of firstCount + secondCount entries in place: in each of the two parts, entries 3 to 6 take
 * the colour of entry 2, 8 to 11 that of entry 7, and so on; entries 0 and 1 stay. Answers 0 when `colors` is
 * null. */
CS_EXPORT int cs_render_indexed_colors(uint8_t* colors, uint32_t firstCount, uint32_t secondCount);

/* Copies to `record` the palette of a scheme number. Numbering 2 is that of users' colour-scheme choices, 1
 * an older one; both send numbers that they do not know to the palette of raw values (0). Any other numbering
 * takes the number as the palette's id. Answers 0 when there is no such id (`record` then holds the first
 * palette, 255) or when `record` is null. */
CS_EXPORT int get_color_palette(uint32_t schemeNumber, uint32_t numbering, ColorPaletteSource* record);

/* Builds the tables of all palettes and returns the number of bytes allocated. Returns 0 when they are built
 * already, and when memory is short. Threads that call it at the same time wait for the one that builds. */
CS_EXPORT size_t alloc_color_schemes(void);

/* Tells where the table of a scheme is, smooth or (`smooth` = 0) banded. Answers as get_color_palette; the
 * table is null until alloc_color_schemes was called. */
CS_EXPORT int get_static_color_scheme(uint32_t schemeNumber, uint32_t numbering, StaticColorScheme* result,
                                      int smooth);

/* A copy of a scheme's table, to be freed by the caller with free(); null when there is no such scheme, when
 * the tables are not built or when memory is short. Without snow (`withSnow` = 0) every section takes the
 * colours of rain. The first `minimalIndex` entries of each section become transparent; from 128 on, all of a
 * section. */
CS_EXPORT uint8_t* get_color_scheme_bytes(uint32_t schemeNumber, uint32_t numbering, int smooth, int withSnow,
                                          uint32_t minimalIndex);

#ifdef __cplusplus
}
#endif
