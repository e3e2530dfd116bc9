#pragma once
// A camera, a folder and a user who answers the dialogs of saving and restoring features.

#include "browser/settingsactions.h"
#include "describedcamera.h"
#include "duringmodalloop.h"
#include "portgate.h"
#include "temporaryfolder.h"
#include "windowwait.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace krgui {

using Step = std::function<void(QWidget&)>;

inline std::string MakeInteger(const std::string& aName, int aAddress, const std::string& aMore = "") {
  return "<Integer Name=\"" + aName + "\"><Streamable>Yes</Streamable>" + aMore + "<pValue>" + aName +
         "Reg</pValue></Integer><IntReg Name=\"" + aName + "Reg\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

inline const std::string kNodes = MakeInteger("Width", 0) + MakeInteger("Height", 4) +
                                  MakeInteger("Locked", 8, "<pIsLocked>TLParamsLocked</pIsLocked>") +
                                  MakeInteger("Small", 12, "<Max>10</Max>") +
                                  "<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer>";

inline constexpr const char* kHeader =
    "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n# GenApi persistence file (version 1.0.0)\n";

inline QPushButton* FindButton(QWidget& aDialog, const char* aText) {
  for (QPushButton* button : aDialog.findChildren<QPushButton*>()) {
    if (button->text().remove(QLatin1Char('&')) == QLatin1String(aText))
      return button;
  }
  ADD_FAILURE() << "no button " << aText << " in " << aDialog.windowTitle().toStdString();
  return nullptr;
}

inline Step Click(const char* aText) {
  return [aText](QWidget& aDialog) {
    if (QPushButton* const button = FindButton(aDialog, aText))
      QTest::mouseClick(button, Qt::LeftButton);
  };
}

inline Step PressEscape() {
  return [](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); };
}

/// Types a file's name into the file dialog, as users do, and presses Enter.
inline Step ChooseFile(const std::string& aFile) {
  return [aFile](QWidget& aDialog) {
    auto* const edit = aDialog.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    ASSERT_NE(qobject_cast<QFileDialog*>(&aDialog), nullptr);
    edit->setText(QString::fromStdString(aFile));
    QTest::keyClick(edit, Qt::Key_Return);
  };
}

inline std::string GetText(const QWidget& aDialog, const char* aLabel) {
  const auto* const label = aDialog.findChild<QLabel*>(QLatin1String(aLabel));
  return label ? label->text().toStdString() : "there is no label " + std::string(aLabel);
}

inline std::vector<std::string> GetRows(const QWidget& aDialog) {
  std::vector<std::string> rows;
  const auto* const view = aDialog.findChild<QAbstractItemView*>();
  if (!view)
    return rows;
  const QAbstractItemModel& model = *view->model();
  for (int row = 0; row < model.rowCount(); ++row) {
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
      cells.append(model.index(row, column).data().toString());
    rows.push_back(cells.join(QLatin1Char('|')).toStdString());
  }
  return rows;
}

/// A user who answers every dialog that comes, in turn; dialogs of progress are let alone unless a step asks for them.
class Answers {
public:
  struct Answer {
    const char* dialog; ///< Its object name; "message" for a message box.
    Step step;
    const char* work = ""; ///< How what is under way begins, where several dialogs of progress come in turn.
  };

  explicit Answers(std::vector<Answer> aAnswers) : mAnswers(std::move(aAnswers)) {
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { Look(); });
    mTimer.start(0);
  }
  ~Answers() { EXPECT_EQ(mNext, mAnswers.size()) << "not asked: " << (AreDone() ? "" : mAnswers[mNext].dialog); }

private:
  bool AreDone() const { return mNext == mAnswers.size(); }
  static QString GetName(const QWidget& aDialog) {
    return aDialog.objectName().isEmpty() ? QStringLiteral("message") : aDialog.objectName();
  }
  static QString GetWork(const QWidget& aDialog) {
    const auto* const bar = aDialog.findChild<QProgressBar*>();
    return bar ? bar->accessibleName() : QStringLiteral("");
  }

  void Look() {
    QWidget* const dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isActiveWindow() || dialog == mAnswered)
      return;
    const bool isMeant = !AreDone() && GetName(*dialog) == QLatin1String(mAnswers[mNext].dialog) &&
                         GetWork(*dialog).startsWith(QLatin1String(mAnswers[mNext].work));
    if (!isMeant && GetName(*dialog) == QLatin1String("progress"))
      return;
    mAnswered = dialog;
    if (isMeant)
      return mAnswers[mNext++].step(*dialog);
    ADD_FAILURE() << "unexpected dialog " << GetName(*dialog).toStdString() << ": " << GetText(*dialog, "text");
    dialog->close();
  }

  std::vector<Answer> mAnswers;
  std::size_t mNext = 0;
  QPointer<QWidget> mAnswered;
  QTimer mTimer;
};

class SettingsActions : public testing::Test {
protected:
  SettingsActions() {
    owner->resize(400, 300);
    owner->show();
  }

  bool Save(const std::stop_token& aEnd = {}) { return SaveSettings(owner.get(), *camera.array, aEnd); }
  bool Restore(const std::stop_token& aEnd = {}) {
    return RestoreSettings(owner.get(), *camera.array, hasWritten, aEnd);
  }
  std::string WriteFile(const std::string& aLines) {
    const std::string file = folder.GetFile("settings.txt");
    TemporaryFolder::WriteFile(file, kHeader + aLines);
    return file;
  }
  int GetByte(std::uint64_t aAddress) { return camera.Peek(aAddress, 1).front(); }

  TemporaryFolder folder;
  DescribedCamera camera{kNodes};
  std::unique_ptr<QWidget> owner = std::make_unique<QWidget>();
  bool hasWritten = false;
};

inline void FailAtHeight(DescribedCamera& aCamera) {
  aCamera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == 4 ? KrResult(KrResult::Code::ProtocolError, "Refused <i>so</i>.") : KrResult();
  });
}

/// Holds the first access up until it is let go.
class HeldDevice {
public:
  explicit HeldDevice(
      DescribedCamera& aCamera, const PortGate::Choice& aChoice = [](const auto&) { return true; }) {
    mGate.CloseFor(aCamera.port, aChoice);
  }
  ~HeldDevice() { LetGo(); }
  /// Inside a loop of the user interface: returns when the device is being asked.
  void Await() const {
    EXPECT_TRUE(krtest::AwaitCondition([this] { return mGate.IsReached(); }));
  }
  void LetGo() { mGate.Open(); }

private:
  PortGate mGate;
};

} // namespace krgui
