// Whatever may stand in the viewer's settings file, and in what a camera's page kept there: what makes no sense is as
// if it were not there, the rest keeps to the limits, and what is written then is read again.

#include "window/viewersettings.h"
#include "page/keptpage.h"
#include "panels/optiontexts.h"
#include "recording/recordsettings.h"
#include "recording/savingstate.h"
#include "require.h"

#include <QByteArray>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

using namespace krviewer;

constexpr std::size_t kMostBytes = 16384; // Longer ones show the same.
constexpr std::size_t kMostHostSettings = 200;
constexpr qsizetype kMostState = 1 << 16;

void CheckRecent(const RecentCameras& aRecent) {
  Require(aRecent.GetAll().size() <= RecentCameras::kMost);
  QSet<QString> ids;
  for (const RecentCamera& camera : aRecent.GetAll()) {
    Require(!camera.id.isEmpty() && !ids.contains(camera.id));
    Require(std::max(camera.id.size(), camera.name.size()) <= RecentCameras::kMostLetters);
    ids.insert(camera.id);
  }
}

void CheckRead(const ViewerSettings& aSettings) {
  const RecentCameras recent = aSettings.GetRecentCameras();
  CheckRecent(recent);
  Require(aSettings.GetWindowLayout().size() <= kMostState && aSettings.GetPageState().size() <= kMostState);
  for (const RecentCamera& camera : recent.GetAll()) {
    Require(aSettings.GetPageState(camera.id).size() <= kMostState);
    for (const auto& side : aSettings.GetHostSettings(camera.id))
      Require(side.size() <= kMostHostSettings);
  }
}

void CheckFile(const QString& aName) {
  RecentCameras written;
  const QByteArray layout("layout\0of a window", 18);
  {
    ViewerSettings settings(aName);
    static_cast<void>(settings.TakeTrouble()); // Whether it is damaged is its writer's business.
    CheckRead(settings);
    written = settings.GetRecentCameras();
    written.Add({QStringLiteral("00:11:22:33:44:55"), QStringLiteral("A camera, with = and \"")});
    settings.SetRecentCameras(written);
    settings.SetWindowLayout(layout);
    settings.Write();
  }
  ViewerSettings again(aName);
  Require(again.TakeTrouble().isEmpty());
  Require(again.GetRecentCameras().GetAll() == written.GetAll() && again.GetWindowLayout() == layout);
}

void CheckRecording(const QByteArray& aBytes) {
  RecordSettings settings;
  settings.Restore(aBytes);
  Require(settings.everyNth >= 1 && settings.queueMB >= 1);
  Require(std::min({settings.mostFrames, settings.mostSeconds, settings.mostDiskMB, settings.freeDiskMB}) >= 0);
  RecordSettings again;
  again.Restore(settings.Save());
  Require(again.Save() == settings.Save());
}

void CheckSaving(const QByteArray& aBytes) {
  SavingState state;
  state.Restore(aBytes);
  SavingState again;
  again.Restore(state.Save());
  Require(again == state);
}

void CheckPage(const QByteArray& aBytes) {
  const std::optional<KeptPage> page = KeptPage::Read(aBytes);
  if (!page)
    return;
  CheckRecording(page->recording);
  CheckSaving(page->saving);
  for (const QStringList& texts : page->options) {
    const KrPropertyList options = ToOptions(texts);
    Require(options.GetCount() == static_cast<std::size_t>(texts.size() / 2));
    Require(ToOptions(ToTexts(options)) == options);
  }
  const std::optional<KeptPage> again = KeptPage::Read(page->Save());
  Require(again && again->Save() == page->Save());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  // Files of one name would be taken for the former one.
  static const QTemporaryDir folder;
  static int number = 0;
  if (aSize > kMostBytes)
    return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(aData), static_cast<qsizetype>(aSize));
  QFile file(folder.filePath(QString::number(++number)));
  Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
  file.close();
  CheckFile(file.fileName());
  Require(file.remove());
  CheckRecording(bytes);
  CheckSaving(bytes);
  CheckPage(bytes);
  return 0;
}
