#pragma once
// A window for tests of what all windows have in common: it records what happens to it and lets a test take a handler's
// place.

#include "frame/wnd.h"
#include "res/templates.h"

#include "windowwait.h"

#include <QApplication>
#include <QEvent>

#include <functional>
#include <memory>
#include <ostream>
#include <vector>

namespace krgui {

/// What happened to a window; outlives it.
struct WndRecord {
  int inits = 0;
  int accepts = 0;
  int cancels = 0;
  int destroys = 0;
  std::vector<QSize> sizes;
  std::vector<Message> messages;
};

class TestWnd : public Wnd {
public:
  explicit TestWnd(const WindowTraits& aTraits = kDisplayTraits) : Wnd(aTraits.modalTemplate), traits(aTraits) {}
  ~TestWnd() override { Dispose(); }

  int GetPopupTemplateID() const override { return traits.popupTemplate; }
  int GetChildTemplateID() const override { return traits.childTemplate; }
  int GetMinWidth() const override { return traits.minWidth; }
  int GetMaxWidth() const override { return traits.maxWidth; }
  int GetMinHeight() const override { return traits.minHeight; }
  int GetMaxHeight() const override { return traits.maxHeight; }

  using Wnd::DestroyWindow;
  using Wnd::EndDialog;
  using Wnd::GetControl;

  bool OnInitDialog() override {
    ++record->inits;
    const bool result = Wnd::OnInitDialog();
    Call(onInitDialog);
    return result;
  }
  void OnSize(const QSize& aSize) override { record->sizes.push_back(aSize); }
  bool OnMessage(const Message& aMessage) override {
    record->messages.push_back(aMessage);
    const auto handler = onMessage;
    return handler && handler(aMessage);
  }
  void OnOK() override {
    ++record->accepts;
    if (!Call(onOK)) {
      Wnd::OnOK();
    }
  }
  void OnCancel() override {
    ++record->cancels;
    if (!Call(onCancel)) {
      Wnd::OnCancel();
    }
  }
  void OnDestroy() override {
    ++record->destroys;
    Call(onDestroy);
  }

  // The handlers of OK and Cancel take the place of the default ones.
  std::function<void()> onInitDialog;
  std::function<bool(const Message&)> onMessage;
  std::function<void()> onOK;
  std::function<void()> onCancel;
  std::function<void()> onDestroy;

  WindowTraits traits;
  std::shared_ptr<WndRecord> record = std::make_shared<WndRecord>();

private:
  /// By copy, as a handler may delete the window; true when there is one. Nothing of the window is touched afterwards.
  static bool Call(std::function<void()> aHandler) {
    if (aHandler) {
      aHandler();
    }
    return aHandler != nullptr;
  }
};

/// Handles events until a condition holds; false when it does not within a limit that only a fault can reach.
template <typename Condition>
[[nodiscard]] bool WaitFor(Condition aCondition) {
  return krtest::AwaitCondition(aCondition);
}

/// Really deletes what was left for later, which the toolkit does not do outside of a loop.
inline void DeleteWhatIsLeft() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

struct Position {
  int x = -1, y = -1, width = -1, height = -1;
  friend bool operator==(const Position&, const Position&) = default;
  friend std::ostream& operator<<(std::ostream& aStream, const Position& aPosition) {
    return aStream << '(' << aPosition.x << ", " << aPosition.y << ", " << aPosition.width << ", " << aPosition.height
                   << ')';
  }
};

template <typename Window>
Position GetPosition(Window& aWindow) {
  Position position;
  aWindow.GetPosition(position.x, position.y, position.width, position.height);
  return position;
}

} // namespace krgui
