#include "platform/guardedcall.h"

#include "krbase/krlogger.h"

#include <exception>
#include <string>

namespace krgui {

namespace {

// Without the words where there is no memory for them.
KrResult MakeThrown(const char* aAttempt, const char* aReason) {
  try {
    KrResult thrown(KrResult::Code::SystemError, std::string(aAttempt) + " was ended by an exception: " + aReason);
    KrLogger("KrGUILib").Log(KrLogLevel::Error, {"CallGuarded", "guardedcall"}, thrown.GetDescription());
    return thrown;
  } catch (...) {
    return KrResult::Code::SystemError;
  }
}

} // namespace

KrResult CallGuarded(const char* aAttempt, const std::function<KrResult()>& aOperation) {
  try {
    return aOperation();
  } catch (const std::exception& error) {
    return MakeThrown(aAttempt, error.what());
  } catch (...) {
    return MakeThrown(aAttempt, "of unknown type");
  }
}

} // namespace krgui
