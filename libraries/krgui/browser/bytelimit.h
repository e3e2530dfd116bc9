#pragma once
// Keeps a user from typing more into an edit box than a device takes.

#include <cstdint>

class QLineEdit;

namespace krgui {

/// A character by which the text would have more bytes of UTF-8 is not taken; 0 takes all. What is longer already, or
/// was pasted, stays whole, so that whoever writes it hears of it rather than a part of it being written.
///
/// Thread: user interface.
void SetByteLimit(QLineEdit& aEditBox, std::int64_t aMostBytes);

} // namespace krgui
