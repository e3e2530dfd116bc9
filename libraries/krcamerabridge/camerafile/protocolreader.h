#pragma once
// Reads how a camera is spoken to: the key "protocol" of a camera file.

#include "camerafile/filemap.h"
#include "camerafile/filemodel.h"

#include <optional>
#include <string>

namespace krcamerabridge {

/// The protocol, and what is said there for features to take over.
struct ReadProtocol {
  FileProtocol protocol;
  std::optional<CommandTemplate> getAnswer; ///< Without start and end; likewise the next.
  bool hasSetAnswer = false;
  std::optional<CommandTemplate> setAnswer; ///< None where the camera says nothing.
  std::string probe;
  TextPlace probePlace;
};

ReadProtocol ReadFileProtocol(const YamlNode& aNode, TextProblems& aProblems);

/// Makes a whole message of an answer's template, and finds out whether answers can be told by it; a problem where they
/// cannot.
std::optional<CommandTemplate> CompleteAnswer(const FileProtocol& aProtocol, CommandTemplate aAnswer, FileMap& aMap,
                                              const TextPlace& aPlace, std::string_view aKey);
std::optional<CommandTemplate> CompleteCommand(const FileProtocol& aProtocol, CommandTemplate aCommand, FileMap& aMap,
                                               const TextPlace& aPlace, std::string_view aKey);

} // namespace krcamerabridge
