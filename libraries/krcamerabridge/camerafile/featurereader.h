#pragma once
// Reads one feature of a camera file. Names of other features are only noted: they may follow later.

#include "camerafile/filemap.h"
#include "camerafile/filemodel.h"
#include "camerafile/protocolreader.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace krcamerabridge {

/// A word of the file and where it stands.
struct PlacedWord {
  std::string word;
  TextPlace place;
};

/// What a feature says of others, by name.
struct FeatureReferences {
  struct Bound {
    std::optional<FileBound> FileFeature::*member;
    PlacedWord feature;
  };
  struct Condition {
    std::vector<FileCondition> FileFeature::*member;
    PlacedWord feature;
    PlacedWord value;
  };

  bool changesAll = false;
  std::vector<PlacedWord> changes = {};
  std::vector<Bound> bounds = {};
  std::vector<Condition> conditions = {};
  TextPlace namePlace = {};
  TextPlace commandPlace = {}; ///< Of problems with features that commands and answers name.
};

struct ReadFeature {
  FileFeature feature;
  FeatureReferences references;
};

ReadFeature ReadFileFeature(const YamlNode& aNode, const ReadProtocol& aProtocol, TextProblems& aProblems);

} // namespace krcamerabridge
