#include "page/messagebar.h"
#include "scenes.h"
#include "viewerscene.h"
#include "window/aboutbox.h"
#include "window/endingwindow.h"
#include "window/failurebox.h"
#include "window/keysbox.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace scene {

namespace {

using krviewer::BarMessage;
using krviewer::EndingWindow;
using krviewer::EndingWork;
using krviewer::MessageBar;
using krviewer::MessageKind;

const QString kLongName = QStringLiteral("Camera above the second conveyor belt, behind the pillar");

EndingWork MakeWork(const QString& aText, bool aIsRecording) {
  return {.isOver = [] { return false; },
          .describe = [aText] { return aText; },
          .isRecording = [aIsRecording] { return aIsRecording; },
          .abandon = [] {},
          .getWritten = [] { return std::nullopt; },
          .leave = [] {},
          .awaitsCamera = [] { return false; },
          .leaveCamera = [] {}};
}

EndingWork MakeCameraWork(const QString& aName) {
  EndingWork work = MakeWork(aName + " is being given back; it takes its time to answer.", false);
  work.awaitsCamera = [] { return true; };
  work.cameraLimit = std::chrono::seconds(30);
  return work;
}

// A picture of the window while it runs its loop, which that ends.
void SaveRunning(PictureBook& aBook, const QString& aName, EndingWindow& aWindow, const std::function<void()>& aRun) {
  QTimer look;
  std::exception_ptr failure;
  bool isSaved = false;
  QObject::connect(&look, &QTimer::timeout, &aWindow, [&] {
    if (!aWindow.isVisible() || !aWindow.isActiveWindow())
      return;
    look.stop();
    isSaved = true;
    try {
      aBook.Save(aWindow, aName);
    } catch (...) {
      failure = std::current_exception();
    }
    emit aWindow.Over();
  });
  look.start(10);
  aRun();
  if (failure)
    std::rethrow_exception(failure);
  if (!isSaved)
    throw std::runtime_error("The window did not come to the screen.");
}

} // namespace

void TakeViewerEndings(PictureBook& aBook) {
  EndingWindow waiting(
      {MakeWork("The recording of sim-mono is being written. Writing what is in memory: 123 frames.", true),
       MakeWork("A frame of " + kLongName + " is being saved.", false), MakeCameraWork(kLongName)});
  SaveRunning(aBook, "ending", waiting, [&] { waiting.Await(); });
  EndingWindow single({MakeCameraWork("sim-mono")});
  SaveRunning(aBook, "ending-single", single, [&] { single.Await(); });
  EndingWindow told({});
  SaveRunning(aBook, "ending-trouble", told, [&] {
    told.Tell("The recording of " + kLongName +
              " is not whole. Ended: the disk is full. Free some of it, or record elsewhere. 12 frames could not be "
              "written: No space left on device (/home/user/Videos/sim-mono-20260102-030405/frame-000123.raw).");
  });
}

namespace {

BarMessage MakeMessage(MessageKind aKind, const QString& aText, const QStringList& aButtons) {
  BarMessage message{.kind = aKind, .text = aText};
  for (const QString& button : aButtons)
    message.buttons.push_back({button, [] {}});
  return message;
}

// All kinds under each other, as wide as a window.
void TakeMessageBars(PictureBook& aBook, const QString& aName, int aWidth) {
  QWidget column;
  auto* const layout = new QVBoxLayout(&column);
  const auto add = [&](const BarMessage& aMessage) {
    auto* const bar = new MessageBar(&column);
    layout->addWidget(bar);
    bar->Say(aMessage);
    return bar;
  };
  add(MakeMessage(MessageKind::Information, "sim-mono is disconnected: others may use it now.", {"C&onnect"}));
  MessageBar* const warning = add(MakeMessage(
      MessageKind::Warning,
      "The camera is lost; it is shown again as soon as it is back with the same address. One that has got another "
      "is found among all cameras.\nThe device does not answer any more.",
      {"&Disconnect", "Fi&nd a Camera…"}));
  add(MakeMessage(MessageKind::Error,
                  kLongName +
                      " cannot be shown.\nThe camera's address is of another subnet than the network adapter it "
                      "is connected to.",
                  {"Set &Address…", "Tr&y Again"}));
  MessageBar* const working =
      add({.kind = MessageKind::Information, .text = "The camera is being set.", .canBeDismissed = false});
  working->Reword("The camera is being set as settings-of-the-left-camera.txt says; its stream is stopped meanwhile. "
                  "42 % are done.");
  add(MakeMessage(MessageKind::Warning,
                  "The camera is back, but not set as before:\nExposureTime is 20000.\nGain is 3.", {}));
  layout->addStretch(1);
  column.resize(aWidth, 100);
  column.show();
  QApplication::processEvents(); // The bars are as wide as they will be.
  column.resize(aWidth, layout->totalHeightForWidth(aWidth));
  Focus(*warning->findChild<QPushButton*>());
  aBook.Save(column, aName);
}

QWidget& AwaitWindow(const char* aWhat, const std::function<bool(const QWidget&)>& aIsIt) {
  QWidget* found = nullptr;
  Await(aWhat, [&] {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (window->isVisible() && window->isActiveWindow() && aIsIt(*window))
        found = window;
    return found != nullptr;
  });
  return *found;
}

void TakeViewerBoxes(PictureBook& aBook, krviewer::MainWindow& aWindow) {
  const auto take = [&aBook](const char* aClass, const QString& aName) {
    QWidget& box = AwaitWindow(aClass, [aClass](const QWidget& aOne) { return aOne.inherits(aClass); });
    aBook.Save(box, aName);
    box.close();
    Await("end of a box", [] { return true; });
  };
  krviewer::ShowKeysBox(aWindow);
  take("QDialog", "keys");
  krviewer::ShowAboutBox(aWindow, {"Aravis 0.8.26", "libusb 1.0.26"});
  take("QMessageBox", "about");
  krviewer::ShowFailure(&aWindow, "Save Frame",
                        {KrResult::Code::Failed, "The frame was not saved as /home/user/Pictures/frame.tiff: there is "
                                                 "no space left on the device. Free some, or save elsewhere."});
  take("QMessageBox", "failure");
}

} // namespace

void TakeViewerDialogs(PictureBook& aBook) {
  TakeMessageBars(aBook, "messages", 900);
  TakeMessageBars(aBook, "messages-small", 480);
  ViewerScene scene;
  krviewer::CameraPage& page = scene.OpenStreaming("sim-colour");
  TakeViewerBoxes(aBook, scene.GetWindow());
  const auto take = [&](const QString& aName) {
    QWidget& dialog = AwaitWindow("file dialog", [](const QWidget& aOne) { return aOne.inherits("QFileDialog"); });
    aBook.Save(dialog, aName);
    dialog.close();
  };
  Await("frame", [&] { return page.CanSaveFrame(); });
  page.SaveFrame();
  take("file-save-frame");
  page.GetSettings().AskForLoading();
  take("file-load-settings");
}

} // namespace scene
