#include "platform/onchosen.h"

#include <QRadioButton>

#include <memory>

namespace krgui {

void OnChosen(const QRadioButton& aButton, const QObject& aContext, const std::function<void()>& aHandler) {
  const auto isPressed = std::make_shared<bool>(false);
  QObject::connect(&aButton, &QRadioButton::pressed, &aContext, [isPressed] { *isPressed = true; });
  QObject::connect(&aButton, &QRadioButton::released, &aContext, [isPressed] { *isPressed = false; });
  QObject::connect(&aButton, &QRadioButton::clicked, &aContext, aHandler);
  QObject::connect(&aButton, &QRadioButton::toggled, &aContext, [isPressed, aHandler](bool aIsOn) {
    if (aIsOn && !*isPressed)
      aHandler();
  });
}

} // namespace krgui
