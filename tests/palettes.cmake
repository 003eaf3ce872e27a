# Palettes, colour schemes, and the pictures of them.
nimbuscope_test(colorschemes_test
  SOURCES
    ${CMAKE_SOURCE_DIR}/colorschemes/compiler/PaletteTable.cpp
    colorschemes/ColorTableTest.cpp
    colorschemes/HeaderInC.c
    colorschemes/PaletteDifferenceTest.cpp
    colorschemes/SchemesTest.cpp
    colorschemes/StopsTest.cpp
  LINKS
    colorschemes
    colorschemes.text
)
nimbuscope_test(radar_imagery_test
  SOURCES
    NimbuscopeKit/ColorSchemeTest.cpp
    Platform/PNGTest.cpp
  LINKS
    Platform.Linux.Spng
    RadarImagery
)
nimbuscope_test(palette_tool_test
  SOURCES
    tools/PaletteTest.cpp
  LINKS
    Platform
    Platform.Linux.Spng
    colorschemes
)
target_compile_definitions(palette_tool_test PRIVATE NIMBUSCOPE_PROGRAM="$<TARGET_FILE:nimbuscope>")
add_dependencies(palette_tool_test nimbuscope)
