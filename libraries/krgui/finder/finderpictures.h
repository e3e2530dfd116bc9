#pragma once
// The pictures of the finder: the image strip of its tree and the error indicator's mark, drawn at whatever size and
// scale is asked for. Which node has which picture is decided by the rules.

#include <QIcon>

namespace krgui {

/// The picture at a place of the strip; an empty one outside 0 to 28. Thread: user interface.
QIcon GetFinderPicture(int aIndex);
/// The mark of a value that is doubtful. Thread: user interface.
QIcon GetErrorPicture();

} // namespace krgui
