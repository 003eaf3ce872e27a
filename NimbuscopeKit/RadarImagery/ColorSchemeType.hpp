#pragma once

namespace nimbuscope {

/// What a legend shows of a colour table: one kind of precipitation of a radar table, or the clouds of a
/// satellite table.
enum class ColorSchemeType { Rain, Hail, Snow, FreezingRain, IcePellete, Clouds };

}  // namespace nimbuscope
