#pragma once
// Reads which values a feature can have: bounds, entries, what it starts with.

#include "camerafile/featurereader.h"

namespace krcamerabridge {

/// Sets the feature's values; type and commands are known.
void ReadFeatureValues(FileMap& aMap, FileFeature& aFeature, FeatureReferences& aReferences);

/// The value of a word for a feature: a number, true or false, the name of an entry (its index); nothing for another.
std::optional<WireValue> ParseFeatureValue(const FileFeature& aFeature, const std::string& aWord);

} // namespace krcamerabridge
