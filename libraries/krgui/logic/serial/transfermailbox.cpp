#include "logic/serial/transfermailbox.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace krgui {

namespace {

template <typename Value>
Value Take(std::map<std::int64_t, Value>& aValues, std::int64_t aNumber) {
  auto node = aValues.extract(aNumber);
  return node.empty() ? Value() : std::move(node.mapped());
}

} // namespace

struct TransferMailbox::Body {
  mutable std::mutex mutex; // Guards all below.
  std::condition_variable_any hasRoom;
  std::map<std::int64_t, std::vector<std::uint8_t>> chunks;
  std::map<std::int64_t, std::u16string> lines;
  std::int64_t lastNumber = 0;
  TransferProgress progress;
};

TransferMailbox::TransferMailbox() : mBody(std::make_unique<Body>()) {}

TransferMailbox::~TransferMailbox() = default;

std::int64_t TransferMailbox::PutChunk(std::vector<std::uint8_t> aChunk) {
  const std::scoped_lock lock(mBody->mutex);
  mBody->chunks.emplace(++mBody->lastNumber, std::move(aChunk));
  return mBody->lastNumber;
}

std::vector<std::uint8_t> TransferMailbox::TakeChunk(std::int64_t aNumber) {
  const std::scoped_lock lock(mBody->mutex);
  mBody->hasRoom.notify_all();
  return Take(mBody->chunks, aNumber);
}

bool TransferMailbox::AwaitRoom(std::chrono::milliseconds aLimit, const std::stop_token& aStop) {
  std::unique_lock lock(mBody->mutex);
  return mBody->hasRoom.wait_for(lock, aStop, aLimit, [this] { return mBody->chunks.size() < kChunkLimit; });
}

std::int64_t TransferMailbox::PutLine(std::u16string aLine) {
  const std::scoped_lock lock(mBody->mutex);
  mBody->lines.emplace(++mBody->lastNumber, std::move(aLine));
  return mBody->lastNumber;
}

std::u16string TransferMailbox::TakeLine(std::int64_t aNumber) {
  const std::scoped_lock lock(mBody->mutex);
  return Take(mBody->lines, aNumber);
}

void TransferMailbox::SetProgress(const TransferProgress& aProgress) {
  const std::scoped_lock lock(mBody->mutex);
  mBody->progress = aProgress;
}

TransferProgress TransferMailbox::GetProgress() const {
  const std::scoped_lock lock(mBody->mutex);
  return mBody->progress;
}

} // namespace krgui
