#pragma once
// An implementation window whose templates and limits stand in the table of all windows, as those of every window of
// the library do.

#include "frame/wnd.h"
#include "res/templates.h"

namespace krgui {

/// Ownership: borrows its row of the table, which is there for good.
class TabledWnd : public Wnd {
public:
  explicit TabledWnd(const WindowTraits& aTraits) : Wnd(aTraits.modalTemplate), mTraits(aTraits) {}

  int GetPopupTemplateID() const override { return mTraits.popupTemplate; }
  int GetChildTemplateID() const override { return mTraits.childTemplate; }
  int GetMinWidth() const override { return mTraits.minWidth; }
  int GetMaxWidth() const override { return mTraits.maxWidth; }
  int GetMinHeight() const override { return mTraits.minHeight; }
  int GetMaxHeight() const override { return mTraits.maxHeight; }

private:
  const WindowTraits& mTraits;
};

} // namespace krgui
