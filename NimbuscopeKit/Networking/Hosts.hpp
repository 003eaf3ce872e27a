#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "NimbuscopeKit/Networking/ApiSettings.hpp"
#include "NimbuscopeKit/Preferences/HostIdentifier.hpp"
#include "Platform/Core/Export.hpp"
#include "Platform/Defaults/NSUserDefaults.hpp"
#include "Platform/Security/SecRandom.hpp"

namespace nimbuscope {

/// The host that serves a purpose unless the server names others: part of the build's configuration.
[[nodiscard]] NIMBUSCOPE_EXPORT std::string_view builtInHost(HostIdentifier identifier);

/// Which servers are there for what. The table is read once and written through to the group's store, where
/// other processes find it on their next start. One thread at a time.
class NIMBUSCOPE_EXPORT Hosts {
  public:
    using Table = std::map<HostIdentifier, std::vector<std::string>>;

    /// The process's one table, over the user's store, made with the first call; the queue of
    /// `Networking::default_()` uses it. Stops the process when there is no such store to open.
    [[nodiscard]] static Hosts& main();

    /// Reads the table. A stored value that is no list of texts counts as none; a store that cannot be read
    /// is an error.
    [[nodiscard]] static platform::DefaultsResult<std::unique_ptr<Hosts>> open(
        std::shared_ptr<platform::NSUserDefaults> groupDefaults, std::shared_ptr<platform::SecRandom> random);

    /// "https://" and one of the purpose's hosts, drawn anew on each call, all with the same probability; the
    /// built-in one where none is left. The lists come from the network: what is no host name or address,
    /// with or without a port, is never drawn.
    [[nodiscard]] std::string getHttpsHost(HostIdentifier identifier) const;

    /// Returns the purpose to its built-in host. When the store fails, nothing changes.
    [[nodiscard]] platform::DefaultsResult<void> resetHosts(HostIdentifier identifier);

    /// Takes over the lists of all purposes that the settings name, as they are, all or none.
    [[nodiscard]] platform::DefaultsResult<void> updateHostsBySettings(const ApiSettingsItem& settings);

    /// The lists as they are stored; a purpose may be without.
    [[nodiscard]] const Table& hosts() const { return hosts_; }

  private:
    Hosts(std::shared_ptr<platform::NSUserDefaults> groupDefaults,
          std::shared_ptr<platform::SecRandom> random)
        : groupDefaults_(std::move(groupDefaults)), random_(std::move(random)) {}

    [[nodiscard]] platform::DefaultsResult<void> store(Table changes);
    [[nodiscard]] std::size_t draw(std::size_t count) const;

    std::shared_ptr<platform::NSUserDefaults> groupDefaults_;
    std::shared_ptr<platform::SecRandom> random_;
    Table hosts_;
};

}  // namespace nimbuscope
