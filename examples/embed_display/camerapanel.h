#pragma once
// A widget of the application's own: the library's display with the application's buttons beside it. It takes the
// frames on a thread of its own; which camera they come from is its owner's business.

#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"

#include <QLabel>
#include <QWidget>

#include <functional>
#include <thread>

class QVBoxLayout;

/// Thread: the user interface's. Ownership: borrows the device, which outlives it.
class CameraPanel : public QWidget {
public:
  explicit CameraPanel(KrDevice& aDevice);
  ~CameraPanel() override;

  std::uint64_t GetShownCount() const { return mDisplay.GetStatistics().shown; }

private:
  void AddButton(QVBoxLayout& aColumn, const char* aText, std::function<void()> aAction);
  void Tell(const KrResult& aResult);
  void Start();
  void Stop();
  void ShowFrames();

  KrStream mStream;
  KrDisplayWnd mDisplay;
  QLabel* mState = new QLabel;
  std::jthread mThread;
};
