#pragma once
// A message about what failed, beside which everything goes on. What is said is the caller's.

#include "krbase/krresult.h"

#include <QString>

class QWidget;

namespace krviewer {

/// Shows a message that is no question, and returns at once; it ends with the user's answer or its parent. Texts of
/// devices are shown as they are, as far as there is room. Thread: user interface.
void ShowFailure(QWidget* aParent, const QString& aTitle, const KrResult& aFailure);

} // namespace krviewer
