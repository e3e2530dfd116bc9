#pragma once
// A control for one IPv4 address: four fields of up to three digits in one frame, which is one stop of the Tab key.
// What a key does is decided by logic/frame/ipfieldediting.h; which addresses make sense is left to the dialogs.

#include "logic/frame/ipfieldediting.h"

#include <QWidget>

#include <array>
#include <cstdint>

class QLineEdit;

namespace krgui {

/// Thread: user interface. Ownership: belongs to its parent widget.
class IPAddressControl : public QWidget {
  Q_OBJECT

public:
  explicit IPAddressControl(QWidget* aParent);

  /// The address, the first field in the most significant byte; empty fields count as 0.
  std::uint32_t GetAddress() const;
  /// Fills all fields. Tells the change once, if there is one.
  void SetAddress(std::uint32_t aAddress);
  /// The texts of the fields with dots between them; tells an empty field from a 0.
  QString GetText() const;
  /// Empties a field, 0 to 3; any other is ignored.
  void ClearField(int aField);
  /// Gives the focus to a field, 0 to 3, with its text selected; any other is ignored.
  void FocusField(int aField);
  /// Says to screen readers what is wrong with the address; nothing for an empty text.
  void SetError(const QString& aError);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

Q_SIGNALS:
  /// The text of a field is another one, by whomever.
  void Changed();

protected:
  bool event(QEvent* aEvent) override;
  bool eventFilter(QObject* aField, QEvent* aEvent) override;
  bool focusNextPrevChild(bool aNext) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  void mousePressEvent(QMouseEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;

private:
  bool HandleKey(const QKeyEvent& aEvent);
  bool HandleEditKey(const QKeyEvent& aEvent);
  void ShowMenu(const QPoint& aGlobal);
  void Copy() const;
  void PasteText(const QString& aText);
  void Clear();
  /// What the fields are now: the mouse and assistive technology change them, too.
  IPFields Read() const;
  void Apply(const IPFields& aFields);
  void NormalizeField(QLineEdit& aField);
  void NameFields();
  void PlaceFields();
  QRect GetFrameContents() const;
  int GetFieldWidth() const;
  int GetDotWidth() const;

  std::array<QLineEdit*, IPFields::kCount> mFields = {};
  QString mError;
  bool mIsApplying = false; ///< Several fields change as one.
};

} // namespace krgui
