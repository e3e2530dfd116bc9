#pragma once
// The display's implementation window: ties the content to the widget that paints it, the scroll bars and the context
// menu, and brings what any thread asks for to the user-interface thread.

#include "frame/tabledwnd.h"
#include "logic/display/displaycontent.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

class QMenu;
class QPoint;

namespace krgui {

class DisplayBars;
class DisplayView;

class DisplayWnd : public TabledWnd {
public:
  /// Hides or shows a scroll bar; posted by paints, which must not do so themselves.
  static constexpr std::uint32_t kHideScrollBarMessage = 2082;
  // The bits of its first parameter.
  static constexpr std::uint64_t kHideHorizontal = 0x1001;
  static constexpr std::uint64_t kHideVertical = 0x1002;
  static constexpr std::uint64_t kShowInstead = 0x2000;

  DisplayWnd();
  ~DisplayWnd() override;

  /// Any thread.
  KrResult Display(const IKrImage* aImage);
  /// Any thread.
  KrResult DisplayHeld(std::shared_ptr<const KrBuffer> aBuffer);
  /// What every buffer gets that holds no image. Any thread.
  KrResult RefusePayload();
  /// Any thread.
  void Clear();
  DisplayContent& GetContent() { return *mContent; }
  const DisplayContent& GetContent() const { return *mContent; }

  void Zoom1_1();
  void ZoomFit();
  void ZoomIn();
  void ZoomOut();

  HWND GetScrollHandle(ViewAxis aAxis) const;
  int GetScrollPos(ViewAxis aAxis) const;
  void GetScrollRange(ViewAxis aAxis, int& aMin, int& aMax) const;
  KrResult SetScrollPos(ViewAxis aAxis, int aPosition);

  void SetCursorLineEnabled(bool aEnabled);
  std::optional<KrDisplayMapping> GetMapping() const;

protected:
  bool OnInitDialog() override;
  void OnSize(const QSize& aSize) override;
  bool OnMessage(const Message& aMessage) override;
  /// A child closes with its widget too.
  void OnClose() override;
  void OnDestroy() override;

private:
  KrResult Finish(const KrResult& aResult, DisplayContent::Paint aPaint);
  void PostInvalidate();
  void Invalidate();
  void OnBarsFound(const BarChanges& aChanges);
  void PostBar(const Message& aMessage, bool aIsNews);
  void OnHideScrollBar(std::uint64_t aBits);
  void PlaceBars();
  void ShowMenu(const QPoint& aScreenPoint);
  void Perform(int aCommandID);

  const std::shared_ptr<DisplayContent> mContent;
  DisplayView* mView = nullptr;       ///< Owned by the dialog; null while the window is not open.
  std::unique_ptr<DisplayBars> mBars; ///< Null while the window is not open.
  /// Where the right mouse button was pressed last, in whichever opening, in device pixels of the client area; its
  /// upper left corner before the first time.
  PixelPoint mContextPoint;
  /// What view and menu call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  QPointer<QMenu> mMenu; ///< The context menu while it is open; owned by the dialog.
};

} // namespace krgui
