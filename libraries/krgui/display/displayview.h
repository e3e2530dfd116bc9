#pragma once
// The widget that covers a display window's client area and paints its content. It shares the content, so that a paint
// may come after the window object's end.

#include "display/displaypainter.h"
#include "logic/display/displaycontent.h"

#include <QWidget>

#include <memory>

namespace krgui {

class DisplayView : public QWidget {
  Q_OBJECT

public:
  DisplayView(std::shared_ptr<DisplayContent> aContent, QWidget* aParent);
  ~DisplayView() override;

protected:
  void paintEvent(QPaintEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  std::shared_ptr<DisplayContent> mContent;
  DisplayPainter mPainter;
};

} // namespace krgui
