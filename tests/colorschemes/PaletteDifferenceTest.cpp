// Neighbouring steps of rain must be told apart by eye.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <numbers>

#include "colorschemes/colorschemes.h"

namespace {

using Vector = std::array<double, 3>;

/// Linear light of an sRGB colour (IEC 61966-2-1).
Vector linear(const std::uint8_t* color) {
    Vector light;
    for (std::size_t i = 0; i < 3; ++i) {
        const double c = color[i] / 255.0;
        light[i] = c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    }
    return light;
}

/// Deuteranopia at full severity (Machado, Oliveira and Fernandes 2009), in linear light.
Vector deuteranope(const Vector& c) {
    return {0.367322 * c[0] + 0.860646 * c[1] - 0.227968 * c[2],
            0.280085 * c[0] + 0.672501 * c[1] + 0.047413 * c[2],
            -0.011820 * c[0] + 0.042940 * c[1] + 0.968881 * c[2]};
}

/// CIELAB with white point D65.
Vector lab(const Vector& c) {
    const auto f = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
    const double x = f((0.4124564 * c[0] + 0.3575761 * c[1] + 0.1804375 * c[2]) / 0.95047);
    const double y = f(0.2126729 * c[0] + 0.7151522 * c[1] + 0.0721750 * c[2]);
    const double z = f((0.0193339 * c[0] + 0.1191920 * c[1] + 0.9503041 * c[2]) / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double degrees(double y, double x) {
    return std::atan2(y, x) * 180 / std::numbers::pi;
}

double cosine(double angle) {
    return std::cos(angle * std::numbers::pi / 180);
}

/// CIEDE2000 (CIE 142-2001), with the names of Sharma, Wu and Dalal 2005.
double ciede2000(const Vector& one, const Vector& two) {
    const double meanC = (std::hypot(one[1], one[2]) + std::hypot(two[1], two[2])) / 2;
    const double g = 1 + 0.5 * (1 - std::sqrt(std::pow(meanC, 7) / (std::pow(meanC, 7) + std::pow(25.0, 7))));
    const double c1 = std::hypot(one[1] * g, one[2]);
    const double c2 = std::hypot(two[1] * g, two[2]);
    const double h1 = degrees(one[2], one[1] * g);
    const double h2 = degrees(two[2], two[1] * g);
    const double dh = std::remainder(h2 - h1, 360);
    const double h = std::fmod(h1 + dh / 2 + 360, 360);
    const double l = (one[0] + two[0]) / 2 - 50;
    const double c = (c1 + c2) / 2;
    const double t = 1 - 0.17 * cosine(h - 30) + 0.24 * cosine(2 * h) + 0.32 * cosine(3 * h + 6) -
                     0.20 * cosine(4 * h - 63);
    const double dL = (two[0] - one[0]) / (1 + 0.015 * l * l / std::sqrt(20 + l * l));
    const double dC = (c2 - c1) / (1 + 0.045 * c);
    const double dH = 2 * std::sqrt(c1 * c2) * cosine(dh / 2 - 90) / (1 + 0.015 * c * t);
    const double theta = 30 * std::exp(-std::pow((h - 275) / 25, 2));
    const double rc = 2 * std::sqrt(std::pow(c, 7) / (std::pow(c, 7) + std::pow(25.0, 7)));
    return std::sqrt(dL * dL + dC * dC + dH * dH - cosine(2 * theta - 90) * rc * dC * dH);
}

TEST(PaletteDifference, agreesWithThePublishedPairs) {
    // Pairs 1, 7, 17 and 25 of Sharma, Wu and Dalal 2005.
    EXPECT_NEAR(ciede2000({50, 2.6772, -79.7751}, {50, 0, -82.7485}), 2.0425, 5e-5);
    EXPECT_NEAR(ciede2000({50, 0, 0}, {50, -1, 2}), 2.3669, 5e-5);
    EXPECT_NEAR(ciede2000({50, 2.5, 0}, {73, 25, -18}), 27.1492, 5e-5);
    EXPECT_NEAR(ciede2000({60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}), 1.2644, 5e-5);
}

TEST(PaletteDifference, rainStepsOfFiveDBZAreToldApart) {
    constexpr double least = 3;
    // Raw values are 5 grey levels apart; scheme 4 shows one white from 65 to 74 dBZ, one green from 75 on.
    const std::map<std::uint32_t, int> tooClose{{0, 17}, {4, 1}};
    alloc_color_schemes();
    std::printf("%8s %10s %14s\n", "palette", "least", "deuteranopia");
    for (std::uint32_t id = 0; id <= 28; ++id) {
        ColorPaletteSource source;
        ASSERT_EQ(get_color_palette(id, 0, &source), 1);
        if (source.sections[1].count == 0) {
            continue;
        }
        double smallest = 100;
        double smallestSeen = 100;
        int closePairs = 0;
        for (std::size_t position = 22; position + 5 <= 107; position += 5) {
            const std::uint8_t* one = source.colors + position * 4;
            const std::uint8_t* two = one + std::size_t{5} * 4;
            if (one[3] < 255 || two[3] < 255) {
                continue;  // faint: not drawn in a colour of its own
            }
            const double difference = ciede2000(lab(linear(one)), lab(linear(two)));
            closePairs += difference < least ? 1 : 0;
            smallest = std::min(smallest, difference);
            smallestSeen = std::min(smallestSeen,
                                    ciede2000(lab(deuteranope(linear(one))), lab(deuteranope(linear(two)))));
        }
        std::printf("%8u %10.2f %14.2f\n", id, smallest, smallestSeen);
        EXPECT_EQ(closePairs, tooClose.contains(id) ? tooClose.at(id) : 0) << "palette " << id;
    }
}

}  // namespace
