#pragma once
// The controls of one opening of the serial terminal: finds them, makes the transcript, names them, says what is chosen
// in them and which can be used. What they do is left to the window.

#include "logic/serial/displayformat.h"
#include "logic/serial/senddata.h"
#include "logic/serial/terminalstatus.h"
#include "serial/terminalids.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QObject>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <cstdint>
#include <functional>

class QLabel;
class QProgressBar;
class QWidget;

namespace krgui {

class RollingEdit;

/// Thread: user interface. Ownership: the widgets belong to the dialog, which must outlive this object.
class TerminalControls {
public:
  using Lookup = std::function<QWidget*(int aID)>;

  /// Everything as it is at first, but for the display format.
  TerminalControls(const Lookup& aLookup, DisplayFormat aFormat);
  TerminalControls(const TerminalControls&) = delete;
  TerminalControls& operator=(const TerminalControls&) = delete;

  QComboBox& GetPortList() const { return Get<QComboBox>(terminalid::kPort); }
  QComboBox& GetSpeedList() const { return Get<QComboBox>(terminalid::kSpeed); }
  QCheckBox& GetLoopbackBox() const { return Get<QCheckBox>(terminalid::kLoopback); }
  QLineEdit& GetDataField() const { return Get<QLineEdit>(terminalid::kData); }
  QPushButton& GetSendButton() const { return Get<QPushButton>(terminalid::kSend); }
  QCheckBox& GetOtherBox() const { return Get<QCheckBox>(terminalid::kOther); }
  QLineEdit& GetOtherField() const { return Get<QLineEdit>(terminalid::kOtherField); }
  QLineEdit& GetFileField() const { return Get<QLineEdit>(terminalid::kFile); }
  QPushButton& GetBrowseButton() const { return Get<QPushButton>(terminalid::kBrowse); }
  QPushButton& GetSendFileButton() const { return Get<QPushButton>(terminalid::kSendFile); }
  QPushButton& GetStopButton() const { return Get<QPushButton>(terminalid::kStop); }
  QCheckBox& GetValidationBox() const { return Get<QCheckBox>(terminalid::kValidation); }
  std::array<QRadioButton*, 3> GetDisplayFormatButtons() const;
  QCheckBox& GetEchoBox() const { return Get<QCheckBox>(terminalid::kEcho); }
  QCheckBox& GetPauseBox() const { return Get<QCheckBox>(terminalid::kPause); }
  QPushButton& GetClearButton() const { return Get<QPushButton>(terminalid::kClear); }
  QPushButton& GetSaveButton() const { return Get<QPushButton>(terminalid::kSave); }
  RollingEdit& GetTranscript() const { return *mTranscript; }

  SendFormat GetSendFormat() const;
  TrailerChoice GetTrailer() const;
  DisplayFormat GetDisplayFormat() const;

  /// What can be used. Speed and loopback are left to LineSettings.
  void Enable(bool aIsPortOpen, bool aIsSendingFile);
  /// A few words on the port: whether it is one to talk to, and what else.
  void ShowPort(const QString& aWords, bool aIsOpen);
  /// Whether the line did not take the last message.
  void ShowBusy(bool aIsBusy);
  /// How far a transfer is.
  void ShowProgress(std::uint64_t aWritten, std::uint64_t aFileSize);
  void HideProgress();

private:
  template <typename Control>
  Control& Get(int aID) const {
    return static_cast<Control&>(*mLookup(aID));
  }
  void SetLine(int aLabel, const QString& aText) const;
  void MakeTranscript();
  void MakeProgressBar();
  void NameControls() const;
  void EnableView();
  void ShowStatus();

  const Lookup mLookup;
  RollingEdit* mTranscript = nullptr;
  QProgressBar* mProgressBar = nullptr;
  TerminalStatus mStatus;
  bool mIsPortOpen = false;
  QObject mConnections; ///< What the transcript, which lives longer, calls of this object ends with it.
};

} // namespace krgui
