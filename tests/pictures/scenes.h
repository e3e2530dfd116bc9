#pragma once
// The windows of which there are pictures. Each scene opens one on the simulated lab, brings it to a state worth
// seeing, and saves it; what cannot be brought about is thrown as std::runtime_error.

#include "picturebook.h"

namespace scene {

/// The display, its menu, zoomed in, and without a picture.
void TakeDisplay(PictureBook& aBook);
/// The device finder where nothing can be reached. Before transports are installed.
void TakeEmptyFinder(PictureBook& aBook);
/// The device finder with the dialogs that it opens.
void TakeFinder(PictureBook& aBook);
/// The feature browser, searching, and with its options.
void TakeBrowser(PictureBook& aBook);
/// The editors of its features, lists, menus and tooltips.
void TakeBrowserEditors(PictureBook& aBook);
void TakeTerminal(PictureBook& aBook);
void TakeSerialBridges(PictureBook& aBook);
void TakeCameraBridges(PictureBook& aBook);
/// Message boxes, and what is shown while something takes long.
void TakeBoxes(PictureBook& aBook);
/// The viewer before a camera is chosen, with a camera, and with a region of interest.
void TakeViewer(PictureBook& aBook);
/// The viewer before a camera is chosen, of a user who has shown many.
void TakeViewerFirstPage(PictureBook& aBook);
/// A region of interest on a dark picture, and in a small window.
void TakeViewerRegions(PictureBook& aBook);
/// The viewer with several cameras, its menus, and in several sizes.
void TakeViewerTabs(PictureBook& aBook);
/// The viewer's panels of frames, and that of recordings.
void TakeViewerPanels(PictureBook& aBook);
/// Each panel by itself.
void TakeViewerDocks(PictureBook& aBook);
/// The panels with the keyboard's focus.
void TakeViewerFocus(PictureBook& aBook);
void TakeViewerRecording(PictureBook& aBook);
/// The viewer with a camera that cannot be had.
void TakeViewerTrouble(PictureBook& aBook);
/// What is shown while the viewer ends. Before a viewer has ended, which ends the application's loops.
void TakeViewerEndings(PictureBook& aBook);
/// What the viewer says beside its window: messages, boxes and questions for files.
void TakeViewerDialogs(PictureBook& aBook);

} // namespace scene
