#include "platform/plainputwriter.h"

#include "platform/brokenpipeguard.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace krgui {

namespace {

// How many pixels a request can have. The library would ask the server for the limit of longer ones.
std::size_t GetBlockPixels(xcb_connection_t* aConnection) {
  constexpr std::size_t kHeaderUnits = sizeof(xcb_put_image_request_t) / sizeof(std::uint32_t);
  return xcb_get_setup(aConnection)->maximum_request_length - kHeaderUnits;
}

} // namespace

std::unique_ptr<PlainPutWriter> PlainPutWriter::Make(std::unique_ptr<WindowConnection> aConnection) {
  const std::size_t blockPixels = GetBlockPixels(aConnection->Get());
  std::unique_ptr<std::uint32_t[]> block(new (std::nothrow) std::uint32_t[blockPixels]);
  if (!block) {
    return nullptr;
  }
  std::unique_ptr<PlainPutWriter> writer(new PlainPutWriter(std::move(aConnection), std::move(block), blockPixels));
  try {
    writer->mThread = std::thread([&running = *writer] { running.Run(); });
  } catch (const std::system_error&) {
    return nullptr;
  }
  return writer;
}

PlainPutWriter::PlainPutWriter(std::unique_ptr<WindowConnection> aConnection, std::unique_ptr<std::uint32_t[]> aBlock,
                               std::size_t aBlockPixels)
    : mConnection(std::move(aConnection)), mBlock(std::move(aBlock)), mBlockPixels(aBlockPixels) {}

PlainPutWriter::~PlainPutWriter() {
  {
    const std::lock_guard lock(mMutex);
    mIsEnding = true;
  }
  mHasChanged.notify_all();
  mConnection->End();
  if (mThread.joinable()) {
    mThread.join();
  }
}

std::optional<std::size_t> PlainPutWriter::AwaitFree(std::size_t aPreferred, std::chrono::milliseconds aLimit) {
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
  std::unique_lock lock(mMutex);
  const auto isDecided = [&] { return mIsLost || FindFree(aPreferred); };
  if (!mIsStalled && aLimit.count() > 0) {
    mIsStalled = !mHasChanged.wait_for(lock, std::min(aLimit, kLongest), isDecided);
  }
  return mIsLost ? std::nullopt : FindFree(aPreferred);
}

void PlainPutWriter::Write(std::size_t aSlot, const Part& aPart) {
  {
    const std::lock_guard lock(mMutex);
    mJobs[mJobCount++] = {aSlot, aPart};
  }
  mHasChanged.notify_all();
}

bool PlainPutWriter::IsLost() const {
  const std::lock_guard lock(mMutex);
  return mIsLost;
}

void PlainPutWriter::Run() {
  const BrokenPipeGuard guard;
  while (const auto part = AwaitPart()) {
    Finish(Send(*part));
  }
}

std::optional<PlainPutWriter::Part> PlainPutWriter::AwaitPart() {
  std::unique_lock lock(mMutex);
  mHasChanged.wait(lock, [&] { return mIsEnding || mIsLost || mJobCount > 0; });
  return mIsEnding || mIsLost ? std::nullopt : std::optional(mJobs.front().part);
}

void PlainPutWriter::Finish(bool aHasArrived) {
  {
    const std::lock_guard lock(mMutex);
    std::shift_left(mJobs.begin(), mJobs.end(), 1);
    --mJobCount;
    mIsStalled = false;
    mIsLost = !aHasArrived;
  }
  mHasChanged.notify_all();
}

// Returns when the server has read the pixels; false when it will not.
bool PlainPutWriter::Send(const Part& aPart) {
  const PixelRect& rect = aPart.rect;
  const auto width = std::min(rect.GetWidth(), static_cast<std::int32_t>(mBlockPixels));
  const auto height = static_cast<std::int32_t>(mBlockPixels) / width;
  xcb_connection_t* connection = mConnection->Get();
  if (height >= rect.GetHeight() && width == rect.GetWidth()) {
    SendBlock(aPart, rect, mConnection->GetWindow());
  } else {
    SendBlocks(aPart, width, height, FitStage(rect));
    const auto left = static_cast<std::int16_t>(rect.left);
    const auto top = static_cast<std::int16_t>(rect.top);
    xcb_copy_area(connection, mStage, mConnection->GetWindow(), mConnection->GetContext(), left, top, left, top,
                  static_cast<std::uint16_t>(rect.GetWidth()), static_cast<std::uint16_t>(rect.GetHeight()));
  }
  // What the answer is does not matter: the server gives it when it has done everything before.
  const auto reply = KeepReply(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  constexpr std::uint8_t kError = 0;
  bool isRefused = false;
  while (const auto event = KeepReply(xcb_poll_for_event(connection))) {
    isRefused = isRefused || event->response_type == kError;
  }
  return reply && !isRefused;
}

void PlainPutWriter::SendBlocks(const Part& aPart, std::int32_t aWidth, std::int32_t aHeight, std::uint32_t aDrawable) {
  const PixelRect& rect = aPart.rect;
  for (std::int32_t top = rect.top; top < rect.bottom; top += aHeight) {
    for (std::int32_t left = rect.left; left < rect.right; left += aWidth) {
      SendBlock(aPart, {left, top, std::min(left + aWidth, rect.right), std::min(top + aHeight, rect.bottom)},
                aDrawable);
    }
  }
}

// A picture at the server that has room for a rectangle of the window, at the same place.
std::uint32_t PlainPutWriter::FitStage(const PixelRect& aRect) {
  if (mStage != 0 && mStageExtent.width >= aRect.right && mStageExtent.height >= aRect.bottom) {
    return mStage;
  }
  xcb_connection_t* connection = mConnection->Get();
  if (mStage == 0) {
    mStage = xcb_generate_id(connection);
  } else {
    xcb_free_pixmap(connection, mStage);
  }
  mStageExtent = {aRect.right, aRect.bottom};
  xcb_create_pixmap(connection, mConnection->GetDepth(), mStage, mConnection->GetWindow(),
                    static_cast<std::uint16_t>(mStageExtent.width), static_cast<std::uint16_t>(mStageExtent.height));
  return mStage;
}

void PlainPutWriter::SendBlock(const Part& aPart, const PixelRect& aRect, std::uint32_t aDrawable) {
  const auto width = static_cast<std::size_t>(aRect.GetWidth());
  std::uint32_t* packed = mBlock.get();
  for (std::int32_t y = aRect.top; y < aRect.bottom; ++y) {
    packed = std::copy_n(aPart.pixels + static_cast<std::size_t>(y) * aPart.rowPixels + aRect.left, width, packed);
  }
  const auto size = static_cast<std::uint32_t>((packed - mBlock.get()) * static_cast<std::ptrdiff_t>(sizeof *packed));
  xcb_put_image(mConnection->Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, aDrawable, mConnection->GetContext(),
                static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(aRect.GetHeight()),
                static_cast<std::int16_t>(aRect.left), static_cast<std::int16_t>(aRect.top), 0, mConnection->GetDepth(),
                size, reinterpret_cast<const std::uint8_t*>(mBlock.get()));
}

std::optional<std::size_t> PlainPutWriter::FindFree(std::size_t aPreferred) const {
  const auto jobsEnd = mJobs.begin() + static_cast<std::ptrdiff_t>(mJobCount);
  for (const std::size_t slot : {aPreferred, kSlots - 1 - aPreferred}) {
    if (std::none_of(mJobs.begin(), jobsEnd, [&](const Job& aJob) { return aJob.slot == slot; })) {
      return slot;
    }
  }
  return std::nullopt;
}

} // namespace krgui
