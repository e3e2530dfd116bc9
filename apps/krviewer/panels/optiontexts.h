#pragma once
// What the user has chosen of how features are shown, as the texts that are kept of it: names and values in turn. What
// they mean is left to the feature browser.

#include "krpersistence/krpropertylist.h"

#include <QStringList>

namespace krviewer {

// Thread: any.

QStringList ToTexts(const KrPropertyList& aOptions);
/// A name without a value is left out.
KrPropertyList ToOptions(const QStringList& aTexts);

} // namespace krviewer
