#pragma once
// Calls of what may be an application's: what it throws becomes a result.

#include "krbase/krresult.h"

#include <exception>
#include <string>
#include <string_view>

namespace krserial {

/// What the operation gives; SystemError for an exception. aAttempt begins the description. Thread: any.
template <typename Operation>
KrResult Guard(std::string_view aAttempt, Operation&& aOperation) {
  try {
    return aOperation();
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, std::string(aAttempt) + " was ended by an exception: " + error.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, std::string(aAttempt) + " was ended by an exception of unknown type."};
  }
}

} // namespace krserial
