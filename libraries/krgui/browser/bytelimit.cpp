#include "browser/bytelimit.h"

#include <QLineEdit>
#include <QValidator>

namespace krgui {

namespace {

/// What one typed character adds at most: two halves of a surrogate pair.
constexpr qsizetype kTypedUnits = 2;

class ByteLimit final : public QValidator {
public:
  ByteLimit(QLineEdit& aEditBox, std::int64_t aMostBytes)
      : QValidator(&aEditBox), mEditBox(aEditBox), mMostBytes(aMostBytes) {}

  State validate(QString& aText, int&) const override {
    const qsizetype added = aText.size() - mEditBox.text().size();
    const bool isTyped = added > 0 && added <= kTypedUnits;
    return isTyped && aText.toUtf8().size() > mMostBytes ? Invalid : Acceptable;
  }

private:
  const QLineEdit& mEditBox;
  const std::int64_t mMostBytes;
};

} // namespace

void SetByteLimit(QLineEdit& aEditBox, std::int64_t aMostBytes) {
  delete aEditBox.validator();
  aEditBox.setValidator(aMostBytes > 0 ? new ByteLimit(aEditBox, aMostBytes) : nullptr);
}

} // namespace krgui
