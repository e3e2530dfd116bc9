#include "frame/progressdialog.h"
#include "platform/messagebox.h"
#include "scene.h"
#include "scenes.h"

#include <QProgressBar>

#include <atomic>
#include <thread>

namespace scene {

namespace {

void TakeMessages(PictureBook& aBook, QWidget& aOwner) {
  struct Message {
    const char* name;
    krgui::MessageIcon icon;
    krgui::MessageButtons buttons;
    QString text;
  };
  const QString lines =
      QStringLiteral("ExposureTime: the device refuses 1000000, its greatest value is 100000.\n").repeated(40);
  const Message messages[] = {
      {"box-stop", krgui::MessageIcon::Stop, krgui::MessageButtons::OK, "The device does not answer."},
      {"box-exclamation", krgui::MessageIcon::Exclamation, krgui::MessageButtons::OK,
       "The address is of another subnet than the network adapter's. The device will not be reached by it, unless the "
       "network between them leads there.\n\nSet it all the same, or choose another one."},
      {"box-information", krgui::MessageIcon::Information, krgui::MessageButtons::OK, "Features were saved."},
      {"box-question", krgui::MessageIcon::Question, krgui::MessageButtons::YesNo, "Replace settings.txt?"},
      {"box-long", krgui::MessageIcon::Exclamation, krgui::MessageButtons::OK, lines},
  };
  InDialog(
      [&] {
        krgui::ShowMessage(&aOwner, "Could not contact device. ", "Error", krgui::MessageIcon::Exclamation,
                           krgui::MessageButtons::OK, "Nothing answers at 192.168.1.21.");
      },
      [&](QWidget& aDialog) { aBook.Save(aDialog, "box-detail"); });
  for (const Message& message : messages)
    InDialog([&] { krgui::ShowMessage(&aOwner, message.text, "Restore Features", message.icon, message.buttons); },
             [&](QWidget& aDialog) { aBook.Save(aDialog, message.name); });
}

void TakeProgress(PictureBook& aBook, QWidget& aOwner) {
  std::atomic<bool> mayEnd = false;
  krgui::ProgressDialog dialog(&aOwner, "Restore Features", "The device is being set as settings.txt says...");
  InDialog(
      [&] {
        dialog.Run([&](const KrGenProgress& aProgress) {
          while (!mayEnd && aProgress(42, 100))
            std::this_thread::yield();
        });
      },
      [&](QWidget& aDialog) {
        const auto* const bar = aDialog.findChild<QProgressBar*>();
        Await("progress", [bar] { return bar->value() == 420; });
        aBook.Save(aDialog, "box-progress");
        mayEnd = true;
      });
}

} // namespace

void TakeBoxes(PictureBook& aBook) {
  QWidget owner;
  owner.resize(600, 400);
  owner.show();
  TakeMessages(aBook, owner);
  TakeProgress(aBook, owner);
}

} // namespace scene
