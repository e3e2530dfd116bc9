#pragma once
// The windows of which there are pictures. Each scene opens one on the simulated lab, brings it to a state worth
// seeing, and saves it; what cannot be brought about is thrown as std::runtime_error.

#include "picturebook.h"

namespace scene {

void TakeDisplay(PictureBook& aBook);
/// The device finder with the dialogs that it opens.
void TakeFinder(PictureBook& aBook);
/// The feature browser, searching, and with its options.
void TakeBrowser(PictureBook& aBook);
void TakeTerminal(PictureBook& aBook);
void TakeSerialBridges(PictureBook& aBook);
void TakeCameraBridges(PictureBook& aBook);
/// The viewer before a camera is chosen, with a camera, and with a region of interest.
void TakeViewer(PictureBook& aBook);
/// The viewer's panels of frames, and that of recordings.
void TakeViewerPanels(PictureBook& aBook);
/// The viewer with a camera that cannot be had.
void TakeViewerTrouble(PictureBook& aBook);

} // namespace scene
