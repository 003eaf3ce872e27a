#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace nimbuscope::platform {

/// Who wants to be told of something: held strongly, told in the order in which they were added, as often as
/// they were added. Used from one thread.
template <class Observer>
class ObserverList {
  public:
    void add(std::shared_ptr<Observer> observer) { observers_.push_back(std::move(observer)); }

    /// Removes every entry that is this very object; it is told nothing any more.
    void remove(const Observer& observer) {
        std::erase_if(observers_, [&](const auto& held) { return held.get() == &observer; });
    }

    /// Calls `notify` with each. Observers may come and go meanwhile: who has gone is not told, who has come
    /// is told the next time.
    template <class Notify>
    void tell(Notify notify) const {
        const auto told = observers_;
        for (const auto& observer : told) {
            if (std::ranges::find(observers_, observer) != observers_.end()) {
                notify(*observer);
            }
        }
    }

  private:
    std::vector<std::shared_ptr<Observer>> observers_;
};

}  // namespace nimbuscope::platform
