#pragma once
// A backend may stand on foreign code: its exceptions end here and become results.

#include "krbase/krlogger.h"
#include "krbase/krresult.h"
#include "krsystem/itransport.h"

#include <exception>
#include <string>

namespace krsystem {

/// Calls a transport's operation; an exception becomes SystemError with its text. Any thread.
template <typename Operation>
KrResult CallTransport(const char* aOperationName, Operation&& aOperation) {
  try {
    return aOperation();
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, std::string(aOperationName) + " was ended by an exception: " + error.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, std::string(aOperationName) + " was ended by an exception of unknown type."};
  }
}

/// Writes a warning that a transport failed in what it attempted, with its name and its result's text. Any thread.
KR_EXPORT void LogTransportFailure(const KrLogSite& aSite, const char* aAttempt, ITransport& aTransport,
                                   const KrResult& aResult);

} // namespace krsystem
