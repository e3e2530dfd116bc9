#pragma once
// The widget that covers a display window's client area and paints its content. It shares the content, so that a paint
// may come after the window object's end.

#include "logic/display/displaycontent.h"

#include <QFont>
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
  const QFont& GetOverlayFont(int aSize, double aPixelRatio);

  std::shared_ptr<DisplayContent> mContent;
  QFont mOverlayFont;
  int mFontSize = 0;
  double mFontPixelRatio = 0; ///< 0 until the first use makes the font.
};

} // namespace krgui
