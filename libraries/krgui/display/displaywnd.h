#pragma once
// The display's implementation window: ties the content to the widget that paints it.

#include "frame/wnd.h"
#include "logic/display/displaycontent.h"
#include "res/templates.h"

#include <memory>

namespace krgui {

class DisplayView;

class DisplayWnd : public Wnd {
public:
  DisplayWnd();
  ~DisplayWnd() override;

  int GetPopupTemplateID() const override { return kDisplayTraits.popupTemplate; }
  int GetChildTemplateID() const override { return kDisplayTraits.childTemplate; }
  int GetMinWidth() const override { return kDisplayTraits.minWidth; }
  int GetMaxWidth() const override { return kDisplayTraits.maxWidth; }
  int GetMinHeight() const override { return kDisplayTraits.minHeight; }
  int GetMaxHeight() const override { return kDisplayTraits.maxHeight; }

  /// Any thread.
  KrResult Display(const IKrImage* aImage);
  /// Any thread.
  void Clear();
  DisplayContent& GetContent() { return *mContent; }

protected:
  bool OnInitDialog() override;
  void OnSize(const QSize& aSize) override;
  bool OnMessage(const Message& aMessage) override;
  void OnDestroy() override;

private:
  void PostInvalidate();

  std::shared_ptr<DisplayContent> mContent;
  DisplayView* mView = nullptr; ///< Owned by the dialog; null while the window is not open.
};

} // namespace krgui
