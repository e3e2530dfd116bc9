#include "bridges/serialbridges.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "krserial/krdeviceserialport.h"

#include <QCursor>
#include <QGuiApplication>

namespace krviewer {

namespace {

constexpr const char* kListName = "SerialBridges";

} // namespace

KrResult SerialBridges::SetUp(LentDevice& aDevice) {
  return mWindow.SetDevice(&aDevice.adapter);
}

void SerialBridges::TakeOut() {
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
}

KrPropertyList SerialBridges::GetNow() {
  KrPropertyList now;
  [[maybe_unused]] const KrResult saved = mWindow.Save(now); // Always OK.
  return now;
}

KeptBridges::Ports SerialBridges::GetPorts() {
  KeptBridges::Ports ports;
  for (const KrDeviceSerial port : kDeviceSerialPorts)
    if (KrDeviceSerialPort::IsSupported(&GetDevice()->adapter, port))
      ports.insert(port);
  return ports;
}

void SerialBridges::Start(const KrPropertyList& aWanted, BridgeNews aNews) {
  KrPropertyList wanted = aWanted;
  KrStringList errors;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  [[maybe_unused]] const KrResult loaded = mWindow.Load(wanted, errors); // What fails is in the list, line by line.
  QGuiApplication::restoreOverrideCursor();
  NoteStart(aNews, errors);
}

KrResult SerialBridges::ReadSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges) {
  return aReader.Restore(kListName, aBridges);
}

KrResult SerialBridges::WriteSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter) {
  return aWriter.Store(kListName, aBridges);
}

} // namespace krviewer
