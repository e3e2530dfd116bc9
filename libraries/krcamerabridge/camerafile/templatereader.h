#pragma once
// Reads the text of one template from its beginning to its end. What templates are is left to CommandTemplate.

#include "camerafile/commandtemplate.h"

#include <string>
#include <string_view>
#include <vector>

namespace krcamerabridge {

/// Thread: one at a time. Ownership: borrows text and problems.
class TemplateReader {
public:
  TemplateReader(std::string_view aText, std::vector<std::string>& aProblems) : mRest(aText), mProblems(aProblems) {}

  CommandTemplate ReadText();
  CommandTemplate ReadBytes();

private:
  void Append(char aByte);
  void Report(const std::string& aReason) { mProblems.push_back(aReason); }
  /// One character of a text, which is a byte; escapes are resolved.
  void TakeCharacter();
  void TakeEscape();
  void TakePlaceholder();
  void TakeQuoted();
  void TakeBytePair();
  TemplatePart ParsePlaceholder(std::string_view aInside);

  std::string_view mRest;
  std::vector<std::string>& mProblems;
  CommandTemplate mTemplate;
};

} // namespace krcamerabridge
