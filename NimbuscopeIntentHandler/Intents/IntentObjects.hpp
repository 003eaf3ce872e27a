#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Core/Export.hpp"
#include "Platform/Intents/INIntentResolutionResult.hpp"
#include "Platform/Intents/INObject.hpp"

namespace nimbuscope {

/// A place that a widget may show: identifier and display string are the saved place's id and name.
class NIMBUSCOPE_EXPORT ForecastLocation final : public platform::INObject {
  public:
    using INObject::INObject;
    [[nodiscard]] std::string_view className() const override { return "ForecastLocation"; }
};

/// A place that a shortcut may name: identifier and display string are the saved place's id and name.
class NIMBUSCOPE_EXPORT Location final : public platform::INObject {
  public:
    using INObject::INObject;
    [[nodiscard]] std::string_view className() const override { return "Location"; }
};

/// A choice of the radar's colours; in the keyed form it adds "id".
class NIMBUSCOPE_EXPORT MapColorScheme final : public platform::INObject {
  public:
    using INObject::INObject;
    [[nodiscard]] std::string_view className() const override { return "MapColorScheme"; }

    std::optional<std::int64_t> id;  ///< the number of the scheme

  protected:
    void writeMore(platform::JSONWriter& writer) const override;
    [[nodiscard]] platform::DecodingFault restoreMore(platform::JSONElement json) override;
};

using ForecastLocationResolutionResult = platform::TypedObjectResolutionResult<ForecastLocation>;
using LocationResolutionResult = platform::TypedObjectResolutionResult<Location>;
using MapColorSchemeResolutionResult = platform::TypedObjectResolutionResult<MapColorScheme>;

using LocationCollection = platform::INObjectCollection<Location>;
using ForecastLocationCollection = platform::INObjectCollection<ForecastLocation>;
using MapColorSchemeCollection = platform::INObjectCollection<MapColorScheme>;

}  // namespace nimbuscope
