// The file of tokens that check_auth reads.
#pragma once

#include <set>
#include <string>

#include "gateway/state.h"

namespace gateway {

// Takes the lines `old` out and, unless it is empty, puts `fresh` in. What other programs wrote
// there stays. Makes the file unreadable for other users. Throws a refusal when it cannot be
// changed; it is as it was then.
void change_token_file(const StateLock& lock, const std::set<std::string>& old,
                       const std::string& fresh);

}  // namespace gateway
