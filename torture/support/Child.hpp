#pragma once

#include <functional>

namespace nimbuscope::torture {

/// Runs `work` in a process of its own, which inherits all that this one has, and expects that it returns and
/// that no expectation in it failed. A signal, the exit code of `std::exit` and a failure are told as
/// failures of the running test.
void expectSoundInChild(const std::function<void()>& work);

/// Runs `work` in a process of its own that ends there and then, with nothing closed.
void abandonInChild(const std::function<void()>& work);

}  // namespace nimbuscope::torture
