#pragma once
// What tests of the camera bridge manager share: the frame grabber of the simulated lab, whose lines need no time, a
// window on it whose controls can be had, and a user's hands.

#include "browser/propertiesgrid.h"
#include "camerabridge/camerabridgeids.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krtransport/krsimulatedfaults.h"
#include "labfixture.h"
#include "testclocks.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

namespace id = cameraid;

/// The frame grabber of the built-in lab: a GenCP camera behind Serial0, one with texts behind Serial1, and one with a
/// CL Protocol driver behind Bulk0.
inline constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";
inline constexpr const char* kTextCameraFile = KR_CAMERA_FILES "/simulated-camera.yml";

class CameraTest : public LabTest {
protected:
  explicit CameraTest(std::shared_ptr<krtransport::ICameraClock> aClock = std::make_shared<JumpingClock>())
      : LabTest(std::move(aClock)) {
    EXPECT_TRUE(LabTest::Open(kGrabberMAC, mDevice).IsOK());
    QObject::connect(&mAnswering, &QTimer::timeout, [this] { AnswerDialog(); });
    mAnswering.start(0);
  }
  ~CameraTest() override {
    EXPECT_EQ(mBoxes.size(), mExpectedBoxes) << testing::PrintToString(mBoxes);
    mWindow.reset();
    DeleteWhatIsLeft();
  }

  /// Opens the window on the device.
  void Open() {
    ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitActive(mWindow->GetWidget()));
    AwaitAnswers();
  }
  /// The window has asked the device, which has Power over Camera Link, what it shows of it.
  void AwaitAnswers() const {
    ASSERT_TRUE(WaitFor([this] { return IsEnabled(id::kPoCL); }));
  }
  template <typename Control = QWidget>
  Control& Get(int aID) const {
    auto* control = mWindow->GetWidget()->findChild<Control*>(QStringLiteral("control%1").arg(aID));
    if (control == nullptr)
      throw std::runtime_error("no control " + std::to_string(aID));
    return *control;
  }
  bool IsEnabled(int aID) const { return Get(aID).isEnabled(); }
  bool IsChecked(int aID) const { return Get<QAbstractButton>(aID).isChecked(); }
  /// Of a label, an edit or a list.
  std::string GetText(int aID) const {
    QWidget& control = Get(aID);
    if (const auto* const label = qobject_cast<QLabel*>(&control))
      return label->text().toStdString();
    if (const auto* const edit = qobject_cast<QLineEdit*>(&control))
      return edit->text().toStdString();
    return Get<QComboBox>(aID).currentText().toStdString();
  }
  std::vector<std::string> GetEntries(int aID) const {
    std::vector<std::string> entries;
    const auto& list = Get<QComboBox>(aID);
    for (int index = 0; index < list.count(); ++index)
      entries.push_back(list.itemText(index).toStdString());
    return entries;
  }
  /// As a user does; what the click leads to has come to its end afterwards.
  void Click(int aID) const {
    auto& button = Get<QAbstractButton>(aID);
    ASSERT_TRUE(button.isEnabled()) << aID;
    QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
  }
  /// Picks an entry as the user does.
  void Pick(int aID, const char* aEntry) const {
    auto& list = Get<QComboBox>(aID);
    const int index = list.findText(QString::fromLatin1(aEntry));
    ASSERT_GE(index, 0) << aEntry;
    list.setCurrentIndex(index);
    Q_EMIT list.activated(index);
  }

  /// Whether the wait cursor is there while something is done that runs a loop.
  static bool HasWaitCursorDuring(const std::function<void()>& aAction) {
    bool wasWaiting = false;
    int looks = 0;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
      ++looks;
      wasWaiting |= QGuiApplication::overrideCursor() && QGuiApplication::overrideCursor()->shape() == Qt::WaitCursor;
    });
    look.start(0);
    aAction();
    EXPECT_GT(looks, 0);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    return wasWaiting;
  }

  /// How many rows the browser shows at its top level.
  int CountBrowserRows() const {
    const auto* const grid = mWindow->GetWidget()->findChild<PropertiesGrid*>();
    return grid ? grid->model()->rowCount() : -1;
  }
  bool HasParameters() const { return CountBrowserRows() > 0; }
  KrCameraBridge& GetBridge(int aIndex) const { return *mWindow->GetBridge(aIndex); }
  std::string MakeStatus(int aIndex) const {
    return "GenApi interface containing " + std::to_string(GetBridge(aIndex).GetParameters()->GetCount()) +
           " parameters available";
  }

  /// Chooses GenCP for the port that is selected, and connects its camera.
  void ConnectGenCP() const {
    Click(id::kGenCP);
    ASSERT_FALSE(GetEntries(id::kGenCPXML).empty());
    Click(id::kGenCPConnect);
  }
  /// Connects the camera with texts behind the second port.
  void ConnectCameraFile() {
    Pick(id::kDevicePort, "Serial1");
    Click(id::kCameraFile);
    ChooseFile(kTextCameraFile);
    Click(id::kLoad);
  }
  static void EnterFile(QWidget& aDialog, const std::string& aFile) {
    auto* const edit = aDialog.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    edit->setText(QString::fromStdString(aFile));
    QTest::keyClick(edit, Qt::Key_Return);
  }
  void ChooseFile(const std::string& aFile) {
    OnNextDialog("camerafile", [aFile](QWidget& aDialog) { EnterFile(aDialog, aFile); });
    Click(id::kBrowse);
  }

  /// So many message boxes are about to be shown; all others are failures.
  void ExpectBoxes(std::size_t aCount) { mExpectedBoxes += aCount; }
  /// Does this in the next dialog of a name ("" is a message box's) once it is on the screen. Whether it is the active
  /// window is the window manager's business.
  void OnNextDialog(const char* aName, std::function<void(QWidget&)> aAction) {
    mDialog = aName;
    mAction = std::move(aAction);
  }

  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrCameraBridgeManagerWnd> mWindow = std::make_unique<KrCameraBridgeManagerWnd>();
  std::vector<std::string> mBoxes;    ///< Those that were answered, each its caption and its text.
  std::vector<std::string> mPictures; ///< What their pictures are called for those who do not see them.

private:
  /// Looks whether a dialog is there that wants an answer; waits for cameras are let alone.
  void AnswerDialog() {
    QWidget* const dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isVisible())
      return;
    if (mAction && dialog->objectName() == mDialog)
      return std::exchange(mAction, nullptr)(*dialog);
    const auto* const text = dialog->findChild<QLabel*>(QStringLiteral("text"));
    if (!text)
      return;
    mBoxes.push_back((dialog->windowTitle() + ": " + text->text()).toStdString());
    const auto* const picture = dialog->findChild<QLabel*>(QStringLiteral("picture"));
    mPictures.push_back(picture ? picture->accessibleName().toStdString() : std::string());
    QTest::keyClick(dialog, Qt::Key_Escape);
  }

  QTimer mAnswering;
  std::size_t mExpectedBoxes = 0;
  QString mDialog;
  std::function<void(QWidget&)> mAction;
};

} // namespace krgui
