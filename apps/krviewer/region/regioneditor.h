#pragma once
// Lets the user draw a camera's region of interest on its live picture, and sets it. What regions there are is left to
// the rules, what drawing does to one to the gesture; where the bar is placed to the page.

#include "acquisition/devicework.h"
#include "krgui/krdisplaywnd.h"
#include "region/regionbar.h"
#include "region/regiongesture.h"
#include "region/regionoutline.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>

class QKeyEvent;
class QMouseEvent;

namespace krviewer {

/// While a region is drawn the picture's keys and left mouse button are the editor's: the mouse draws, moves and
/// stretches, arrow keys move, with Shift stretch, with Ctrl by ten increments, Enter sets the region, Escape gives the
/// drawing up. Zooming and scrolling go on. The drawing ends by itself when the picture is another one.
///
/// Thread: user interface. Ownership: borrows the window, which must outlive it; it may be closed.
class RegionEditor : public QObject {
  Q_OBJECT

public:
  /// Has work done with the camera's parameters, as Acquisition::Do.
  using WorkDoer = std::function<void(DeviceWork)>;

  RegionEditor(KrDisplayWnd& aWindow, WorkDoer aDo);
  ~RegionEditor() override;

  /// Asks the camera for its region and begins; shows a message where that is not possible.
  void Begin();
  /// Gives a drawing up, and what was asked of the camera: of a connection that ends nobody may answer any more.
  void Cancel();
  /// Sets the region that is drawn, with the stream stopped meanwhile.
  void Apply();
  /// Sets the camera's largest region, whether or not one is drawn.
  void SetFullFrame();

  bool IsEditing() const { return mGesture.has_value(); }
  /// The region that is drawn, to be asked while there is one.
  const Region& GetRegion() const { return mGesture->GetRegion(); }
  /// Numbers and buttons, shown while a region is drawn; to be placed beside the picture by whoever has that.
  QWidget& GetBar() { return *mBar; }

Q_SIGNALS:
  void EditingChanged(bool aIsEditing);
  /// What the camera has come to have, in words for a status bar.
  void Applied(const QString& aText);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  int BeginRequest();
  bool EndRequest(int aRequest);
  void Start(const RegionLimits& aLimits);
  void End();
  void Write(std::function<KrResult(KrGenParameterArray&)> aWrite, const QString& aText);
  void Fail(const KrResult& aReason);
  void Follow();
  void ShowRegion();
  bool OnMouse(const QMouseEvent& aEvent);
  bool OnKey(const QKeyEvent& aEvent);
  bool OnArrow(const QKeyEvent& aEvent);
  void ShowCursorOf(const RegionGrip& aGrip);
  QWidget* FindPicture() const;

  KrDisplayWnd& mWindow;
  const WorkDoer mDo;
  QPointer<RegionBar> mBar;   ///< Owned by whoever placed it, else by the editor.
  QPointer<QWidget> mPicture; ///< The widget that is drawn on, while there is a gesture.
  QPointer<RegionOutline> mOutline;
  std::optional<RegionGesture> mGesture;
  bool mIsBusy = false; ///< The camera is asked, or is being set.
  int mRequest = 0;     ///< Whose answer counts.
  QTimer mTimer;        ///< The picture's place changes without a word.
};

} // namespace krviewer
