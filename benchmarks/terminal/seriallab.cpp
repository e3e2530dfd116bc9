#include "seriallab.h"

#include "checked.h"
#include "krtransport/krtransport.h"
#include "seriallabfile.h"

#include <fstream>

namespace benchmarks {

namespace {

constexpr const char* kMACAddress = "02:4b:52:00:77:10";

} // namespace

SerialLab::SerialLab() {
  Check(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true, .labFile = WriteLabFile()}));
  Check(mSystem.Find());
  const KrDeviceInfo* const info = mSystem.GetDeviceInfo(0);
  Check(info ? KrResult() : KrResult(KrResult::Code::NotFound, "there is no camera in the lab"));
  Check(KrDevice::Open(*info, KrDeviceAccess::Control, mDevice));
  Check(KrFindSimulatedFaults(kMACAddress, mFaults));
  mAdapter.emplace(*mDevice);
}

std::string SerialLab::GetFile(const char* aName) const {
  return mFolder.filePath(aName).toStdString();
}

std::string SerialLab::GetPath(KrDeviceSerial aPort) const {
  return GetFile(GetPortName(aPort).CStr());
}

std::string SerialLab::WriteLabFile() const {
  const std::string path = GetFile("lab.yaml");
  std::ofstream(path) << krtest::MakeSerialLabFile(
      kMACAddress, {"port: Serial0, rates: [3000000], behind: tty, path: " + GetPath(kPaced),
                    "port: Serial1, rates: [3000000], paced: false, behind: tty, path: " + GetPath(kUnpaced)});
  return path;
}

std::uint64_t SerialLab::CountReceived(KrDeviceSerial aPort) const {
  KrSimulatedSerialCounts counts;
  Check(mFaults->GetSerialCounts(static_cast<std::uint32_t>(aPort), counts));
  return counts.received;
}

} // namespace benchmarks
