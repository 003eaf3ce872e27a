#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "NimbuscopeKit/Networking/Networking.hpp"
#include "NimbuscopeKit/RadarCatalogue/ApiMaps.hpp"
#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// The endpoints of the mobile API, one operation each.
class NIMBUSCOPE_EXPORT ApiService {
  public:
    /// The process's one instance, over `Networking::default_()`.
    [[nodiscard]] static ApiService& default_();

    explicit ApiService(std::shared_ptr<Networking> networking) : networking_(std::move(networking)) {}

    /// The map timeline. What the numbers mean, also when negative, the server decides. Calls back as
    /// `Networking` does.
    void getMaps(std::int64_t step, std::int64_t nowcastInterval, std::int64_t interval,
                 RequestHandler<ApiMaps> completion) {
        const std::string path = "maps/?step=" + std::to_string(step) +
                                 "&nowcast_interval=" + std::to_string(nowcastInterval) +
                                 "&interval=" + std::to_string(interval);
        networking_->authorizedRequest<ApiMaps>(path, "GET", {}, std::nullopt, std::move(completion));
    }

  private:
    std::shared_ptr<Networking> networking_;
};

}  // namespace nimbuscope
