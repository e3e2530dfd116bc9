#pragma once
// Calls a register port so that whatever it throws is a failure: the port is foreign code, and those who call it, or
// the threads that do, have nobody to catch it. What an access means is left to the caller.

#include "krbase/krresult.h"

#include <exception>
#include <string>

namespace krgenicam {

/// What aAccess, a call of a port, gives; SystemError with the words of the exception where it throws.
template <typename Access>
KrResult CallPort(Access aAccess) {
  try {
    return aAccess();
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError,
            std::string("The access to the device's registers failed with an exception: ") + exception.what()};
  } catch (...) {
    return {KrResult::Code::SystemError,
            "The access to the device's registers failed with an exception that does not say why."};
  }
}

} // namespace krgenicam
