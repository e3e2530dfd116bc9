#include "krserial/krserialfeatures.h"

#include "krdevice/krdevice.h"
#include "serialmaplist.h"
#include "serialorigins.h"

KrResult KrSerialFeatures::AddFile(const KrString& aPath) {
  return krserial::SerialMapList::Get().AddFile(aPath);
}

void KrSerialFeatures::RemoveAdded() {
  krserial::SerialMapList::Get().RemoveAdded();
}

KrResult KrSerialFeatures::Explain(KrDevice& aDevice, std::vector<KrSerialPortOrigin>& aOrigins) {
  return krserial::FindSerialOrigins(aDevice, krserial::SerialMapList::Get().GetAll(), aOrigins);
}

KrString KrSerialFeatures::GetUserDirectory() {
  return krserial::SerialMapList::GetUserDirectory();
}
