#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <optional>

#include "colorschemes/colorschemes.h"

uint32_t nb_colors_palette_sources_count = 0;
uint8_t* nb_colors_palette = nullptr;

namespace {

constexpr std::size_t sourceCount = 33;
constexpr std::size_t recordSize = 8 + 4 * 16;  // of a palette in NB_PALETTES
constexpr std::size_t tableSpace = 2048;        // the largest table: 512 entries
constexpr std::size_t sectionSize = 512;        // bytes of a section of 128 entries
constexpr std::size_t sourceSpace = 2 * tableSpace;

struct Mapping {
    std::uint32_t first;  ///< of a run of scheme numbers …
    std::uint32_t last;
    std::uint32_t id;  ///< … that map to this id and the ones after it
};

constexpr std::array<Mapping, 22> firstNumbering{{
    {1, 1, 1},    {2, 2, 4},    {3, 3, 15},      {4, 4, 8},       {5, 5, 17},   {6, 7, 13},
    {8, 8, 9},    {10, 11, 2},  {12, 14, 5},     {15, 15, 9},     {16, 18, 10}, {19, 19, 16},
    {20, 22, 18}, {23, 23, 22}, {24, 25, 25},    {30, 30, 21},    {38, 38, 23}, {53, 53, 24},
    {57, 57, 27}, {61, 61, 28}, {200, 200, 200}, {255, 255, 255},
}};
constexpr std::array<Mapping, 12> secondNumbering{{
    {1, 7, 1},
    {8, 8, 22},
    {11, 15, 8},
    {16, 17, 18},
    {18, 18, 17},
    {21, 22, 13},
    {23, 23, 20},
    {31, 32, 15},
    {33, 33, 25},
    {100, 101, 100},
    {200, 200, 200},
    {255, 255, 255},
}};

std::optional<std::uint32_t> lookUp(const auto& numbering, std::uint32_t number) {
    for (const Mapping& mapping : numbering) {
        if (number >= mapping.first && number <= mapping.last) {
            return mapping.id + (number - mapping.first);
        }
    }
    return std::nullopt;
}

constexpr std::uint32_t rawValues = 0;  // the palette of numbers that a numbering does not know

std::uint32_t paletteId(std::uint32_t schemeNumber, std::uint32_t numbering) {
    if (numbering == 1) {
        return lookUp(firstNumbering, schemeNumber).value_or(rawValues);
    }
    return numbering == 2 ? lookUp(secondNumbering, schemeNumber).value_or(rawValues) : schemeNumber;
}

/// A number, least significant byte first; written so that compilers make one load of it.
template <class Number>
Number readNumber(const std::uint8_t* bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        number |= Number{bytes[i]} << 8 * i;
    }
    return number;
}

const std::uint8_t* recordAt(std::size_t index) {
    return NB_PALETTES + nb_palettes_size - (sourceCount - index) * recordSize;
}

/// The tables of all palettes; null until they are built.
const std::uint8_t* builtTables() {
    return std::atomic_ref(nb_colors_palette).load(std::memory_order_acquire);
}

/// The palette at an index of the stored order, with its tables once they are built.
ColorPaletteSource sourceAt(std::size_t index) {
    const std::uint8_t* bytes = recordAt(index);
    ColorPaletteSource source{};
    source.id = readNumber<std::uint32_t>(bytes);
    bytes += 8;
    for (ColorPaletteSection& section : source.sections) {
        section = {.offset = readNumber<std::uint64_t>(bytes), .count = readNumber<std::uint64_t>(bytes + 8)};
        bytes += 16;
    }
    const std::uint8_t* tables = builtTables();
    if (tables != nullptr) {
        source.colors = tables + index * sourceSpace;
        source.indexedColors = source.colors + tableSpace;
    }
    return source;
}

/// Where the palette with an id stands in the stored order, if anywhere; all ids are below 256.
std::optional<std::size_t> indexOfId(std::uint32_t id) {
    static const auto indexes = [] {
        std::array<std::optional<std::uint8_t>, 256> found;
        for (std::size_t i = sourceCount; i-- > 0;) {  // the first of its kind wins
            found.at(readNumber<std::uint32_t>(recordAt(i))) = static_cast<std::uint8_t>(i);
        }
        return found;
    }();
    return id < indexes.size() ? indexes[id] : std::nullopt;
}

void buildTables(const ColorPaletteSource& source, std::uint8_t* colors) {
    std::uint8_t* section = colors;
    std::array<std::uint32_t, 4> counts{};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const std::uint32_t count = counts[i] = static_cast<std::uint32_t>(source.sections[i].count);
        if (count != 0) {
            cs_render_pal_colors(section, NB_PALETTES + source.sections[i].offset, 0, count, 0, count);
            section += std::size_t{count} * 4;
        }
    }
    std::uint8_t* indexedColors = colors + tableSpace;
    std::memcpy(indexedColors, colors, tableSpace);
    cs_render_indexed_colors(indexedColors, counts[0], counts[1]);
    cs_render_indexed_colors(indexedColors + tableSpace / 2, counts[2], counts[3]);
}

/// Bytes allocated; 0 without memory.
std::size_t buildAllTables() {
    constexpr std::size_t size = sourceCount * sourceSpace;
    auto* tables = static_cast<std::uint8_t*>(std::calloc(1, size));
    if (tables == nullptr) {
        return 0;
    }
    for (std::size_t i = 0; i < sourceCount; ++i) {
        buildTables(sourceAt(i), tables + i * sourceSpace);
    }
    nb_colors_palette_sources_count = sourceCount;
    std::atomic_ref(nb_colors_palette).store(tables, std::memory_order_release);
    return size;
}

void bandPart(std::uint8_t* colors, std::uint64_t count) {
    constexpr std::uint64_t width = 5;
    for (std::uint64_t band = 2; band < count; band += width) {
        const std::uint64_t end = std::min(band + width, count);
        for (std::uint64_t entry = band + 1; entry < end; ++entry) {
            std::memcpy(colors + entry * 4, colors + band * 4, 4);
        }
    }
}

void copyRainToAll(std::uint8_t* colors, std::size_t size) {
    for (std::size_t section = sectionSize; section + sectionSize <= size; section += sectionSize) {
        std::memcpy(colors + section, colors, sectionSize);
    }
}

void clearBelow(std::uint8_t* colors, std::size_t size, std::uint32_t minimalIndex) {
    const std::size_t cleared = std::min<std::size_t>(minimalIndex, sectionSize / 4) * 4;
    for (std::size_t section = 0; section + sectionSize <= size; section += sectionSize) {
        std::memset(colors + section, 0, cleared);
    }
}

}  // namespace

int cs_render_indexed_colors(uint8_t* colors, uint32_t firstCount, uint32_t secondCount) {
    if (colors == nullptr) {
        return 0;
    }
    bandPart(colors, firstCount);
    bandPart(colors + std::size_t{firstCount} * 4, secondCount);
    return 1;
}

int get_color_palette(uint32_t schemeNumber, uint32_t numbering, ColorPaletteSource* record) {
    if (record == nullptr) {
        return 0;
    }
    const std::optional<std::size_t> index = indexOfId(paletteId(schemeNumber, numbering));
    *record = sourceAt(index.value_or(0));
    return index ? 1 : 0;
}

size_t alloc_color_schemes(void) {
    static std::mutex mutex;
    if (builtTables() != nullptr) {
        return 0;
    }
    const std::lock_guard lock(mutex);
    return builtTables() == nullptr ? buildAllTables() : 0;
}

int get_static_color_scheme(uint32_t schemeNumber, uint32_t numbering, StaticColorScheme* result,
                            int smooth) {
    ColorPaletteSource source;
    if (result == nullptr) {
        return 0;
    }
    const int isFound = get_color_palette(schemeNumber, numbering, &source);
    *result = {.schemeNumber = schemeNumber,
               .size = 0,
               .colors = smooth != 0 ? source.colors : source.indexedColors};
    for (const ColorPaletteSection& section : source.sections) {
        result->size += section.count * 4;
    }
    return isFound;
}

uint8_t* get_color_scheme_bytes(uint32_t schemeNumber, uint32_t numbering, int smooth, int withSnow,
                                uint32_t minimalIndex) {
    StaticColorScheme scheme;
    if (get_static_color_scheme(schemeNumber, numbering, &scheme, smooth) == 0 || scheme.size == 0 ||
        scheme.colors == nullptr) {
        return nullptr;
    }
    auto* colors = static_cast<std::uint8_t*>(std::malloc(scheme.size));
    if (colors == nullptr) {
        return nullptr;
    }
    std::memcpy(colors, scheme.colors, scheme.size);
    if (withSnow == 0) {
        copyRainToAll(colors, scheme.size);
    }
    if (minimalIndex != 0) {
        clearBelow(colors, scheme.size, minimalIndex);
    }
    return colors;
}
