// Slowing down who guesses passwords, without a harm to anybody at another address.
#pragma once

#include <string>

namespace gateway {

// Counts an attempt of `source` as failed, before it is known whether it is: so attempts at the
// same time count one by one, and one that cannot be counted is not made. Throws a refusal with the
// seconds to wait when the source has to, which waiting it does not prolong by asking.
void charge_attempt(const std::string& source);

// The attempt succeeded: the source starts afresh.
void forgive(const std::string& source);

}  // namespace gateway
