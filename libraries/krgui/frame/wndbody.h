#pragma once
// What a Wnd keeps: the remembered rectangle and title for its whole life, and the opening while there is one.
// Internal to the frame; derived windows use Wnd alone.

#include "frame/wnd.h"
#include "logic/frame/windowposition.h"
#include "platform/applicationend.h"
#include "platform/deferreddeletions.h"
#include "platform/dialogbuilder.h"
#include "platform/dialogwindow.h"
#include "platform/foreignwindow.h"

#include <QPointer>
#include <QSize>

#include <memory>
#include <optional>

class QSocketNotifier;

namespace krgui {

/// Where an opening goes: into or above a widget, a foreign window, or neither.
struct OpeningParent {
  QWidget* widget = nullptr;
  std::unique_ptr<ForeignWindow> foreign;
  bool embedsPopups = false; ///< A child is inside, whatever its template.
};

/// One opening: what comes with the native window and goes with it.
struct Opening {
  QPointer<DialogWindow> dialog;
  const DialogTemplate* dialogTemplate = nullptr;
  std::unique_ptr<DialogControls> controls;
  std::unique_ptr<ForeignWindow> foreign;
  QSocketNotifier* notifier = nullptr; ///< Owned by the dialog.
  /// The rectangle asked for, until the window manager has placed the window; as the position is stored.
  std::optional<WindowRect> wanted;
  QSize laidOutSize;
  bool isPopup = false; ///< A window of its own; else inside its parent.
  bool isReady = false; ///< The controls were laid out once.
  bool isExposed = false;
  bool isEnding = false;
  bool isDying = false; ///< The dialog is in its destructor.
};

struct Wnd::Body final : DialogOwner {
  Body(Wnd& aWnd, int aConstructionTemplateID);
  ~Body();

  /// Makes and shows a child or a modeless window, as the mode says.
  KrResult Open(int aTemplateID, OpeningParent aParent);
  /// Runs the window as a modal dialog: what it ended with, -1 when nobody ended it.
  int RunModal();
  /// Ends the opening: the one place that every closing passes.
  void End();
  /// Gives a message of the queue to the window.
  void Dispatch(MessageQueue::Taken& aMessage);

  void ApplyPosition(const WindowRect& aRect);
  void CapturePosition();
  void ApplyTitle();
  WindowLimits GetLimits() const;

  void OnDialogAccept() override;
  void OnDialogCancel() override;
  void OnDialogClose() override;
  void OnDialogResize(const QSize& aSize) override;
  void OnDialogExpose() override;
  void OnDialogDying() override;
  void OnDialogParentEnd() override;

  Wnd& wnd;
  const int constructionTemplateID;
  Mode mode = Mode::None;
  WindowRect position;
  bool hasPosition = false;
  KrString title;
  std::shared_ptr<MessageQueue> queue = std::make_shared<MessageQueue>();
  /// Expires with the window, which any handler may delete.
  std::shared_ptr<const bool> alive = std::make_shared<const bool>(true);
  std::unique_ptr<Opening> opening;
  /// What the modal loop ends with; shared with the loop, which may outlive the window. Null for other openings.
  std::shared_ptr<int> modalResult;
  /// What is left of earlier openings; shared, as the window may end while one of them does.
  std::shared_ptr<DeferredDeletions> deletions = std::make_shared<DeferredDeletions>();
  ApplicationEnd applicationEnd{[this] { OnApplicationEnd(); }};

private:
  bool Prepare(const DialogTemplate& aTemplate, OpeningParent aParent);
  bool InitDialog();
  void MakeControls(const DialogTemplate& aTemplate);
  DialogWindow* MakeDialog(const OpeningParent& aParent);
  bool Embed();
  void LimitSize();
  void WatchQueue();
  void Move(const WindowRect& aRect);
  void OnApplicationEnd();
  QPoint FindOrigin() const;
  QPoint FindCorner() const;
  static void Release(std::unique_ptr<Opening> aOpening, std::shared_ptr<DeferredDeletions> aDeletions);
};

} // namespace krgui
