#pragma once
// The numbers of the buttons that end a modal dialog, in every template.

namespace krgui {

inline constexpr int kOKID = 1;
inline constexpr int kCancelID = 2;

} // namespace krgui
