#pragma once
// The messages by which the property grid is told, from any thread, to look at something again.

#include "logic/browser/griditem.h"
#include "logic/frame/messagequeue.h"

#include <memory>
#include <utility>

namespace krgui {

/// Moves the open editor to the selected row; a first parameter other than 0 gives it the focus.
inline constexpr std::uint32_t kRepositionEditorMessage = 0x1400;
/// A row has changed: its item. The second parameter tells who says so, 0 a node or a refresh, 1 the painting, and has
/// no further meaning.
inline constexpr std::uint32_t kRowChangedMessage = 0x1401;
/// The edit that ended by losing the focus is to be written.
inline constexpr std::uint32_t kCommitMessage = 0x1402;
/// Rows have moved: which of them are on the screen is to be noted anew.
inline constexpr std::uint32_t kMarkOnScreenMessage = 0x1403;

/// Where nodes and refreshes tell that a row has changed. Posts, never sends.
///
/// Thread: any. Ownership: shares the queue, never the grid; after the grid's end it posts into the void.
class RowNotifier {
public:
  explicit RowNotifier(std::shared_ptr<MessageQueue> aQueue) : mQueue(std::move(aQueue)) {}

  void TellRowChanged(GridItem aItem) const { mQueue->PostOnce({kRowChangedMessage, aItem, 0}); }

private:
  std::shared_ptr<MessageQueue> mQueue;
};

} // namespace krgui
