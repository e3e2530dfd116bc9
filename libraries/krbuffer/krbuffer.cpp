#include "krbuffer/krbuffer.h"

#include "chunkparser.h"
#include "image.h"
#include "memory.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

struct KrBuffer::Body {
  KrPayloadType payloadType = KrPayloadType::Image;
  krbuffer::Memory memory;
  krbuffer::Image image{memory};
  KrBufferStatus status = KrBufferStatus::Empty;
  std::uint64_t frameID = 0;
  std::uint64_t timestampNs = 0;
  std::uint64_t hostTimestampNs = 0;
  std::vector<KrChunk> chunks;
  std::uint64_t chunksGeneration = 0; ///< Of the memory that the chunks were found in; they go with it.

  bool HasChunks() const { return !chunks.empty() && chunksGeneration == memory.GetGeneration(); }
};

KrBuffer::KrBuffer() : mBody(std::make_unique<Body>()) {}

KrBuffer::KrBuffer(KrPayloadType aType) : KrBuffer() {
  mBody->payloadType = aType;
}

KrBuffer::~KrBuffer() = default;

// The image travels with the body, so that pointers to it stay good; the source goes on with a new, empty body.
KrBuffer::KrBuffer(KrBuffer&& aOther) noexcept : mBody(std::exchange(aOther.mBody, std::make_unique<Body>())) {}

KrBuffer& KrBuffer::operator=(KrBuffer&& aOther) noexcept {
  mBody = std::exchange(aOther.mBody, std::make_unique<Body>());
  return *this;
}

KrPayloadType KrBuffer::GetPayloadType() const {
  return mBody->payloadType;
}

void KrBuffer::SetPayloadType(KrPayloadType aType) {
  mBody->payloadType = aType;
}

IKrImage* KrBuffer::GetImage() {
  return mBody->payloadType == KrPayloadType::Image ? &mBody->image : nullptr;
}

const IKrImage* KrBuffer::GetImage() const {
  return mBody->payloadType == KrPayloadType::Image ? &mBody->image : nullptr;
}

std::uint8_t* KrBuffer::GetDataPointer() {
  return mBody->memory.GetDataPointer();
}

const std::uint8_t* KrBuffer::GetDataPointer() const {
  return mBody->memory.GetDataPointer();
}

std::size_t KrBuffer::GetSize() const {
  return mBody->memory.GetSize();
}

std::size_t KrBuffer::GetAcquiredSize() const {
  return mBody->memory.GetFilledBytes();
}

void KrBuffer::SetAcquiredSize(std::size_t aBytes) {
  mBody->memory.SetFilledBytes(aBytes);
}

KrResult KrBuffer::Alloc(std::size_t aBytes) {
  if (aBytes == 0 || aBytes > krbuffer::kMaxAllocationBytes)
    return {KrResult::Code::InvalidInput,
            "A buffer of " + std::to_string(aBytes) + " bytes is not allocated. Give a size from 1 byte to 4 GiB."};
  KrResult result = mBody->memory.Alloc(aBytes);
  if (result.IsOK())
    mBody->image.Forget();
  return result;
}

KrResult KrBuffer::Attach(void* aMemory, std::size_t aBytes) {
  if (!aMemory || aBytes == 0)
    return {KrResult::Code::InvalidInput, "Memory of " + std::to_string(aBytes) + " bytes at " +
                                              (aMemory ? "an address" : "the null address") +
                                              " is not attached to a buffer. Give an address and a size above 0."};
  mBody->memory.Attach(static_cast<std::uint8_t*>(aMemory), aBytes);
  mBody->image.Forget();
  return {};
}

void KrBuffer::Free() {
  mBody->memory.Free();
  mBody->image.Forget();
}

KrResult KrBuffer::DescribeImage(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType,
                                 std::uint32_t aPaddingX, std::uint32_t aPaddingY) {
  return mBody->image.Describe({aWidth, aHeight, aType, aPaddingX, aPaddingY});
}

KrResult KrBuffer::DescribeChunks(KrByteOrder aOrder) {
  ForgetChunks();
  mBody->chunksGeneration = mBody->memory.GetGeneration();
  const IKrImage* image = GetImage();
  const krbuffer::ChunkParser parser({mBody->memory.GetDataPointer(), mBody->memory.GetFilledBytes()}, aOrder,
                                     image ? image->GetImageSize() : 0);
  try {
    return parser.Parse(mBody->chunks);
  } catch (const std::bad_alloc&) {
    return {KrResult::Code::SystemError, "The chunks of a buffer could not be listed: there is too little memory. Use "
                                         "fewer or smaller buffers."};
  }
}

void KrBuffer::ForgetChunks() {
  mBody->chunks.clear();
}

std::size_t KrBuffer::GetChunkCount() const {
  return mBody->HasChunks() ? mBody->chunks.size() : 0;
}

const KrChunk* KrBuffer::GetChunk(std::size_t aIndex) const {
  return aIndex < GetChunkCount() ? &mBody->chunks[aIndex] : nullptr;
}

const KrChunk* KrBuffer::FindChunk(std::uint32_t aID) const {
  const auto end = mBody->chunks.begin() + static_cast<std::ptrdiff_t>(GetChunkCount());
  const auto chunk =
      std::find_if(mBody->chunks.begin(), end, [aID](const KrChunk& aChunk) { return aChunk.id == aID; });
  return chunk != end ? &*chunk : nullptr;
}

const std::uint8_t* KrBuffer::GetChunkData(const KrChunk& aChunk) const {
  const std::size_t bytes = GetSize();
  const bool isWithin = GetDataPointer() && aChunk.offset <= bytes && aChunk.length <= bytes - aChunk.offset;
  return isWithin ? GetDataPointer() + aChunk.offset : nullptr;
}

KrBufferStatus KrBuffer::GetStatus() const {
  return mBody->status;
}

void KrBuffer::SetStatus(KrBufferStatus aStatus) {
  mBody->status = aStatus;
}

std::uint64_t KrBuffer::GetFrameID() const {
  return mBody->frameID;
}

void KrBuffer::SetFrameID(std::uint64_t aFrameID) {
  mBody->frameID = aFrameID;
}

std::uint64_t KrBuffer::GetTimestampNs() const {
  return mBody->timestampNs;
}

void KrBuffer::SetTimestampNs(std::uint64_t aNanoseconds) {
  mBody->timestampNs = aNanoseconds;
}

std::uint64_t KrBuffer::GetHostTimestampNs() const {
  return mBody->hostTimestampNs;
}

void KrBuffer::SetHostTimestampNs(std::uint64_t aNanoseconds) {
  mBody->hostTimestampNs = aNanoseconds;
}
