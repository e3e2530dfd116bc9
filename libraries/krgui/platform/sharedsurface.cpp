#include "platform/sharedsurface.h"

#include "platform/brokenpipeguard.h"

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <random>
#include <span>
#include <utility>

namespace krgui {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kExtensionName[] = "MIT-SHM";
constexpr std::uint8_t kTellWhenRead = 1;

std::uint32_t MakeSeed() {
  return static_cast<std::uint32_t>(Clock::now().time_since_epoch().count());
}

} // namespace

std::unique_ptr<SharedSurface> SharedSurface::Make(std::unique_ptr<WindowConnection> aConnection, SurfaceKind aKind,
                                                   WindowConnection::TimePoint aEnd) {
  std::unique_ptr<SharedSurface> surface(new SharedSurface(std::move(aConnection), aKind));
  if (!surface->LearnExtension(aEnd) || !surface->IsMemoryShared(aEnd)) {
    return nullptr;
  }
  return surface;
}

SharedSurface::SharedSurface(std::unique_ptr<WindowConnection> aConnection, SurfaceKind aKind)
    : mConnection(std::move(aConnection)), mKind(aKind) {
  for (Buffer& buffer : mBuffers) {
    buffer.segment = xcb_generate_id(mConnection->Get());
  }
}

bool SharedSurface::LearnExtension(WindowConnection::TimePoint aEnd) {
  xcb_connection_t* connection = mConnection->Get();
  // What the library asks for itself it awaits without a limit: a second request tells when that has been answered.
  xcb_prefetch_extension_data(connection, &xcb_shm_id);
  const auto cookie = xcb_query_extension(connection, sizeof kExtensionName - 1, kExtensionName);
  const auto extension = AwaitReply<xcb_query_extension_reply_t>(connection, cookie, aEnd);
  if (!extension || extension->present == 0) {
    return false;
  }
  mCompletionType = static_cast<std::uint8_t>(extension->first_event + XCB_SHM_COMPLETION);
  const auto version = AwaitReply<xcb_shm_query_version_reply_t>(connection, xcb_shm_query_version(connection), aEnd);
  constexpr std::pair kWithDescriptors(1, 2);
  return version && (mKind == SurfaceKind::SharedSystemV ||
                     std::pair<int, int>(version->major_version, version->minor_version) >= kWithDescriptors);
}

// Draws a few pixels from shared memory where nobody sees them and reads them back: a server on another computer may
// take a number of ours for memory of its own.
bool SharedSurface::IsMemoryShared(WindowConnection::TimePoint aEnd) {
  constexpr SurfaceExtent kExtent = {16, 1};
  constexpr std::uint32_t kColorBits = 0xffffff;
  constexpr std::uint32_t kAllPlanes = 0xffffffff;
  xcb_connection_t* connection = mConnection->Get();
  Buffer& buffer = mBuffers[0];
  if (!FitMemory(buffer, kExtent)) {
    return false;
  }
  const std::span drawn(buffer.memory.GetPixels(), kExtent.GetRowPixels());
  std::generate(drawn.begin(), drawn.end(), std::minstd_rand(MakeSeed()));
  const xcb_pixmap_t pixmap = xcb_generate_id(connection);
  xcb_create_pixmap(connection, mConnection->GetDepth(), pixmap, mConnection->GetWindow(), kExtent.width,
                    kExtent.height);
  Attach(buffer);
  xcb_shm_put_image(connection, pixmap, mConnection->GetContext(), kExtent.width, kExtent.height, 0, 0, kExtent.width,
                    kExtent.height, 0, 0, mConnection->GetDepth(), XCB_IMAGE_FORMAT_Z_PIXMAP, 0, buffer.segment, 0);
  const auto cookie =
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, 0, 0, kExtent.width, kExtent.height, kAllPlanes);
  const auto image = AwaitReply<xcb_get_image_reply_t>(connection, cookie, aEnd);
  xcb_free_pixmap(connection, pixmap);
  TakeEvents();
  if (!image || mIsLost || xcb_get_image_data_length(image.get()) != static_cast<int>(kExtent.GetSize())) {
    return false;
  }
  // What the reply holds is aligned to four bytes.
  const auto* pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
  return std::equal(drawn.begin(), drawn.end(), pixels,
                    [](std::uint32_t aDrawn, std::uint32_t aRead) { return ((aDrawn ^ aRead) & kColorBits) == 0; });
}

std::optional<DrawingSurface::Target> SharedSurface::Begin(std::int32_t aWidth, std::int32_t aHeight,
                                                           std::chrono::milliseconds aLimit) {
  const SurfaceExtent extent = SurfaceExtent::Cut(aWidth, aHeight);
  mBegun = nullptr;
  Buffer* buffer = extent.IsEmpty() ? nullptr : AwaitFree(aLimit);
  if (buffer == nullptr || !FitMemory(*buffer, extent)) {
    return std::nullopt;
  }
  mBegun = buffer;
  mLatest = static_cast<std::size_t>(buffer - mBuffers.data());
  const Canvas canvas = {{buffer->memory.GetPixels(), extent.GetRowPixels()}, extent.width, extent.height};
  // Drawing begins now: what is there if it is never presented, nobody knows.
  return Target{canvas, std::exchange(buffer->contentTag, 0)};
}

bool SharedSurface::Present(const PixelRect& aRect, std::uint64_t aContentTag) {
  Buffer* buffer = std::exchange(mBegun, nullptr);
  if (buffer == nullptr || mIsLost) {
    return false;
  }
  buffer->contentTag = aContentTag;
  const PixelRect part = buffer->extent.Clip(aRect);
  if (part.IsEmpty()) {
    return true;
  }
  const BrokenPipeGuard guard;
  Attach(*buffer);
  const auto left = static_cast<std::uint16_t>(part.left);
  const auto top = static_cast<std::uint16_t>(part.top);
  xcb_shm_put_image(mConnection->Get(), mConnection->GetWindow(), mConnection->GetContext(),
                    static_cast<std::uint16_t>(buffer->extent.GetRowPixels()),
                    static_cast<std::uint16_t>(buffer->extent.height), left, top,
                    static_cast<std::uint16_t>(part.GetWidth()), static_cast<std::uint16_t>(part.GetHeight()),
                    static_cast<std::int16_t>(left), static_cast<std::int16_t>(top), mConnection->GetDepth(),
                    XCB_IMAGE_FORMAT_Z_PIXMAP, kTellWhenRead, buffer->segment, 0);
  buffer->isInFlight = true;
  // Never waits: the requests of two buffers are far less than a socket takes.
  xcb_flush(mConnection->Get());
  mIsLost = mConnection->HasEnded();
  return !mIsLost;
}

SharedMemory SharedSurface::MakeMemory(std::size_t aSize) const {
  return mKind == SurfaceKind::SharedDescriptor ? SharedMemory::MakeByDescriptor(aSize)
                                                : SharedMemory::MakeSystemV(aSize);
}

void SharedSurface::Attach(Buffer& aBuffer) {
  if (std::exchange(aBuffer.isAttached, true)) {
    return;
  }
  constexpr std::uint8_t kReadOnly = 1;
  xcb_connection_t* connection = mConnection->Get();
  if (mKind == SurfaceKind::SharedDescriptor) {
    // The library closes the descriptor when it is sent.
    xcb_shm_attach_fd(connection, aBuffer.segment, aBuffer.memory.TakeDescriptor(), kReadOnly);
  } else {
    xcb_shm_attach(connection, aBuffer.segment, static_cast<std::uint32_t>(aBuffer.memory.GetSegmentNumber()),
                   kReadOnly);
  }
}

void SharedSurface::Detach(Buffer& aBuffer) {
  if (std::exchange(aBuffer.isAttached, false)) {
    xcb_shm_detach(mConnection->Get(), aBuffer.segment);
  }
}

// Gives a buffer that is free memory for so many pixels, and says whether that was to be had.
bool SharedSurface::FitMemory(Buffer& aBuffer, const SurfaceExtent& aExtent) {
  if (std::exchange(aBuffer.extent, aExtent) != aExtent) {
    aBuffer.contentTag = 0;
  }
  const std::size_t size = ChooseSurfaceMemory(aExtent.GetSize(), aBuffer.memory.GetSize());
  if (size != aBuffer.memory.GetSize()) {
    Detach(aBuffer);
    // Given up before there is other memory, so that both are never needed at once.
    aBuffer.memory = SharedMemory();
    aBuffer.memory = MakeMemory(size);
    aBuffer.contentTag = 0;
  }
  return aBuffer.memory.GetPixels() != nullptr;
}

SharedSurface::Buffer* SharedSurface::AwaitFree(std::chrono::milliseconds aLimit) {
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
  const auto end = Clock::now() + std::min(aLimit, kLongest);
  TakeEvents();
  while (!mIsLost) {
    if (Buffer* free = FindFree()) {
      return free;
    }
    if (mIsStalled || Clock::now() >= end) {
      mIsStalled = mIsStalled || aLimit.count() > 0;
      return nullptr;
    }
    AwaitX11Data(mConnection->Get(), end);
    TakeEvents();
  }
  return nullptr;
}

// The one last drawn if it can be had, as its memory is still at hand in the processor and its content the newest.
SharedSurface::Buffer* SharedSurface::FindFree() {
  for (const std::size_t index : {mLatest, 1 - mLatest}) {
    if (!mBuffers[index].isInFlight) {
      return &mBuffers[index];
    }
  }
  return nullptr;
}

void SharedSurface::TakeEvents() {
  constexpr std::uint8_t kTypeBits = 0x7f;
  while (const auto event = KeepReply(xcb_poll_for_event(mConnection->Get()))) {
    const std::uint8_t type = event->response_type & kTypeBits;
    if (type == mCompletionType) {
      OnCompletion(reinterpret_cast<const xcb_shm_completion_event_t*>(event.get())->shmseg);
    } else if (type == 0) {
      // An error. All our requests succeed while there is the window and the server wants our memory.
      mIsLost = true;
    }
  }
  mIsLost = mIsLost || mConnection->HasEnded();
}

void SharedSurface::OnCompletion(std::uint32_t aSegment) {
  mIsStalled = false;
  for (Buffer& buffer : mBuffers) {
    buffer.isInFlight = buffer.isInFlight && buffer.segment != aSegment;
  }
}

} // namespace krgui
