#include "browser/bytelimit.h"

#include <QLineEdit>
#include <QValidator>

namespace krgui {

namespace {

/// What one typed character adds at most: two halves of a surrogate pair.
constexpr qsizetype kTypedUnits = 2;

/// Knows how long the text was, as the edit box has the new one already when it asks.
class ByteLimit final : public QValidator {
public:
  ByteLimit(QLineEdit& aEditBox, std::int64_t aMostBytes)
      : QValidator(&aEditBox), mMostBytes(aMostBytes), mLength(aEditBox.text().size()) {}

  State validate(QString& aText, int&) const override {
    const qsizetype added = aText.size() - mLength;
    const bool isTyped = added > 0 && added <= kTypedUnits;
    if (isTyped && aText.toUtf8().size() > mMostBytes) {
      return Invalid;
    }
    mLength = aText.size();
    return Acceptable;
  }

private:
  const std::int64_t mMostBytes;
  mutable qsizetype mLength;
};

} // namespace

void SetByteLimit(QLineEdit& aEditBox, std::int64_t aMostBytes) {
  delete aEditBox.validator();
  aEditBox.setValidator(aMostBytes > 0 ? new ByteLimit(aEditBox, aMostBytes) : nullptr);
}

} // namespace krgui
