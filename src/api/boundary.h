// The C boundary: nothing is thrown across it.
#pragma once

#include <exception>

#include "api/log.h"

namespace zelto {

// Runs `work` of an exported function; what it throws (memory has run out) is logged and becomes
// `failure`.
template <typename Result, typename Work>
Result guarded(Result failure, const Work& work) noexcept {
  try {
    return work();
  } catch (const std::exception& thrown) {
    log::failure("libzeltoapi", thrown.what());
    return failure;
  }
}

}  // namespace zelto
