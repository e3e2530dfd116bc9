#pragma once
// Finds out whether bytes are the answer that a template describes, and what is in it. Waiting for the bytes is left to
// CommandExchange.

#include "camerafile/commandtemplate.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace krcamerabridge {

struct AnswerContent {
  std::optional<WireValue> value = {};
  std::optional<std::int64_t> code = {};
  std::string text = {};
};

/// What is in a whole message; nothing where it is not what the template describes, its checksum among it. Features
/// must have become literals. Any thread.
std::optional<AnswerContent> MatchAnswer(const CommandTemplate& aTemplate, const ChecksumRule& aRule,
                                         std::string_view aMessage);

/// How much of what was received would be a message of a template.
struct MessageSize {
  enum class State { Known, More, Never };
  State state;
  std::size_t size = 0;
};

/// Never where the bytes at the beginning are not those of the template, More where its length cannot be told yet, or
/// it is not whole. One that ends with fixed bytes is measured up to their first occurrence from which it has aLeast
/// bytes; one whose length is otherwise known is Never that long where it is shorter. Any thread.
MessageSize MeasureMessage(const CommandTemplate& aTemplate, std::string_view aReceived, std::size_t aLeast = 0);

} // namespace krcamerabridge
