#pragma once
// The transcript: read-only text that keeps a bounded amount, follows the newest line, and holds still while the user
// drags in it or has paused it. What is in it is decided by RollingText, what characters look like by
// logic/serial/showntext.

#include "logic/serial/rollingtext.h"
#include "logic/serial/transcriptencoder.h"

#include <QPlainTextEdit>
#include <QString>
#include <QTimer>

#include <string>

namespace krgui {

/// Thread: user interface. Ownership: its parent widget's.
class RollingEdit : public QPlainTextEdit, public ITranscript, private IRollingView {
  Q_OBJECT
public:
  explicit RollingEdit(QWidget* aParent);

  void Append(std::u16string_view aText) override { mText.Append(aText); }
  void Flush();
  void RemoveLastLine() override { mText.RemoveLastLine(); }
  void ClearPending() { mText.ClearPending(); }
  void SetEmpty() override;
  void SetLimit(std::size_t aUnits) { mText.SetLimit(aUnits); }
  void SetUpdateInterval(std::int32_t aInterval) { mText.SetUpdateInterval(aInterval); }
  /// So long at least, in milliseconds, lies between two changes of the view by appends and cuts; what happens in the
  /// meantime is shown together. Flush, SetEmpty and SetPaused do not wait. 0, as at first: each at once.
  void SetShowPeriod(int aPeriodMs);
  /// The whole text, with CR LF as two units.
  std::u16string_view GetText() const { return mText.GetText(); }
  /// The text that is on the screen: the whole one, but while paused or within the period above.
  std::u16string_view GetShownText() const { return mShown; }

  /// While paused the view stays where it is and shows what was there; the text goes on, and is shown from the end of
  /// the pause on.
  void SetPaused(bool aPaused);
  bool IsPaused() const { return mIsPaused; }

  /// What stands in place of a text while there is none.
  void SetHint(const QString& aHint);
  const QString& GetHint() const { return mHint; }

protected:
  bool event(QEvent* aEvent) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  void focusOutEvent(QFocusEvent* aEvent) override;
  QMimeData* createMimeDataFromSelection() const override;
  void contextMenuEvent(QContextMenuEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  /// What the user has of the view.
  struct Hold {
    int anchor = 0;
    int position = 0;
    int line = 0;
    int column = 0; ///< In pixels.
  };

  void OnTextChanged(std::u16string_view aText, std::size_t aErased, std::u16string_view aAppended) override;
  void OnTextCut(std::u16string_view aText) override;
  Hold GetHold() const;
  void KeepHold(const Hold& aHold, int aErased);
  void EraseShown(int aBegin, int aEnd);
  void ShowInTime();
  void OnShowTime();
  void ShowBehind();
  void ShowDifference();
  void ShowNewestLine();
  void Perform(int aCommandID);

  RollingText mText;
  std::u16string mShown;         ///< What the document shows.
  std::size_t mErasedBehind = 0; ///< Units at the front of what is shown that the text has no more.
  std::size_t mKept = 0;         ///< Units behind them that are the text's first ones still.
  bool mIsBehind = false;        ///< Shows something else than the text, or an older one.
  QTimer mShowTimer;             ///< Runs while the last change of the view is not long ago.
  QString mHint;
  bool mIsPaused = false;
  bool mIsReachedByKeys = false; ///< The keyboard brought the focus here last.
};

} // namespace krgui
