#pragma once
// Calls of what is an application's, which may throw: nothing that it throws crosses into the toolkit.

#include "krbase/krresult.h"

#include <functional>

namespace krgui {

/// What the operation gives; SystemError, which is logged, for an exception. aAttempt begins the description. Any
/// thread.
KrResult CallGuarded(const char* aAttempt, const std::function<KrResult()>& aOperation);

} // namespace krgui
