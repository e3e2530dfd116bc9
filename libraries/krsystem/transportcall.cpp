#include "krsystem/transportcall.h"

namespace krsystem {

void LogTransportFailure(const KrLogSite& aSite, const char* aAttempt, ITransport& aTransport,
                         const KrResult& aResult) {
  KrString name;
  const KrResult named = CallTransport("Asking a transport for its name", [&] {
    name = aTransport.GetName();
    return KrResult();
  });
  if (!named.IsOK())
    name = "a transport without a name";
  KrLogger("KrSystem")
      .Log(KrLogLevel::Warning, aSite,
           KrString(aAttempt) + " by " + name + " failed: " + aResult.GetCodeString() + ". " +
               aResult.GetDescription());
}

} // namespace krsystem
