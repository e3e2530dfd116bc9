#include "soakbridges.h"

#include "await.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "scene.h"
#include "serial/serialbridgeids.h"

#include <QAbstractButton>

#include <chrono>

namespace {

namespace id = krgui::bridgeid;

constexpr const char* kListName = "SerialBridges";
constexpr int kMostPortBytes = 1024;
constexpr int kMostPublishedBytes = 64; // The line behind has 9600 baud.
const std::chrono::milliseconds kLimit = krtest::GetGenerousLimit();

} // namespace

SoakBridges::SoakBridges(KrSerialBridgeManagerWnd& aManager, const std::string& aFile, std::uint32_t aSeed)
    : mManager(aManager), mFile(aFile),
      mPortTraffic(aSeed, kMostPortBytes,
                   [this](const std::string& aBlock, const std::stop_token& aStop) { return Exchange(aBlock, aStop); }),
      mPublishedTraffic(aSeed + 1, kMostPublishedBytes,
                        [this](const std::string& aBlock, const std::stop_token& aStop) {
                          return mProgram.Exchange(aBlock, aStop);
                        }) {
  MakePort();
}

/// A new one, in which nothing is left of what was under way.
void SoakBridges::MakePort() {
  const std::string link = KrHostSerialPorts::GetFolders().links.ToUtf8() + "/com1";
  std::filesystem::remove(link);
  mTerminal = std::make_unique<krtest::PseudoTerminal>();
  mHost.AddLink("com1", mTerminal->GetPath());
}

void SoakBridges::LinkByHand() {
  QWidget& window = *mManager.GetWidget();
  scene::Pick(window, id::kDevicePort, "Bulk0");
  scene::Get<QAbstractButton>(window, id::kCOMPortLink).click();
  scene::Pick(window, id::kCOMPort, "COM1");
  scene::Pick(window, id::kDevicePort, "Serial1");
  scene::Get<QAbstractButton>(window, id::kCameraLink).click();
  Save();
  Open();
}

void SoakBridges::Open() {
  scene::Await("published port", [this] { return mProgram.Open(); });
  mPortTraffic.Start();
  mPublishedTraffic.Start();
}

void SoakBridges::Save() {
  KrPropertyList properties;
  scene::Require(mManager.Save(properties));
  KrConfigurationWriter writer;
  scene::Require(writer.Store(kListName, properties));
  scene::Require(writer.Save(mFile));
}

void SoakBridges::Load() {
  KrConfigurationReader reader;
  scene::Require(reader.Load(mFile));
  KrPropertyList properties;
  scene::Require(reader.Restore(kListName, properties));
  KrStringList errors;
  scene::Require(mManager.Load(properties, errors));
  if (errors.GetCount() != 0)
    throw std::runtime_error("The serial bridges were not set up: " + errors[0].ToUtf8());
}

void SoakBridges::SaveAndLoad() {
  Finish();
  mProgram.Close();
  Save();
  Load();
  Open();
}

void SoakBridges::Finish() {
  mPortTraffic.Finish();
  mPublishedTraffic.Finish();
}

void SoakBridges::Resume() {
  mPortTraffic.Start();
  mPublishedTraffic.Start();
}

void SoakBridges::Abandon() {
  mPortTraffic.Abandon();
  mPublishedTraffic.Abandon();
  mProgram.Close();
}

void SoakBridges::Restore() {
  MakePort();
  Load();
  Open();
}

std::string SoakBridges::Exchange(const std::string& aBlock, const std::stop_token& aStop) const {
  constexpr int kStepMs = 100; // After which it is looked whether it was stopped.
  const auto end = std::chrono::steady_clock::now() + kLimit;
  const int line = mTerminal->GetDescriptor();
  std::string back;
  if (::write(line, aBlock.data(), aBlock.size()) != static_cast<ssize_t>(aBlock.size()))
    return back;
  while (back.size() < aBlock.size() && !aStop.stop_requested() && std::chrono::steady_clock::now() < end) {
    pollfd descriptor = {.fd = line, .events = POLLIN, .revents = 0};
    if (::poll(&descriptor, 1, kStepMs) <= 0)
      continue;
    std::string bytes(aBlock.size() - back.size(), '\0');
    const ssize_t size = ::read(line, bytes.data(), bytes.size());
    if (size <= 0)
      break;
    back.append(bytes, 0, static_cast<std::size_t>(size));
  }
  return back;
}
