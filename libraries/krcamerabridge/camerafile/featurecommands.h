#pragma once
// Reads by which commands a feature is got, set and executed, and finds out whether its values can be in them.

#include "camerafile/featurereader.h"

namespace krcamerabridge {

/// Sets the feature's commands and answers; the type is known.
void ReadFeatureCommands(FileMap& aMap, const ReadProtocol& aProtocol, FileFeature& aFeature,
                         FeatureReferences& aReferences);

/// The format in which a value of a type is written where none was said; Automatic where one has to be.
WireFormat GetDefaultFormat(FileType aType, bool aIsBinary);

} // namespace krcamerabridge
