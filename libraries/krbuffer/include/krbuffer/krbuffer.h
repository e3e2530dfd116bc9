#pragma once
// One buffer of a stream: its bytes, what kind of payload they are and how they arrived.
// Queues and their order are the stream's business, pixels the converter's.

#include "krbase/krresult.h"
#include "krbuffer/ikrimage.h"
#include "krbuffer/krchunk.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/// The kinds of payload, numbered as GigE Vision 2.x numbers them in the data leader.
enum class KrPayloadType : std::uint32_t {
  None = 0,
  Image = 1,
  RawData = 2,
  File = 3,
  ChunkData = 4,         ///< Chunks alone; an image with chunks behind it is an Image.
  ExtendedChunkData = 5, ///< Deprecated by the standard; still sent by older devices.
  Jpeg = 6,
  Jpeg2000 = 7,
  H264 = 8,
  MultiZoneImage = 9,
  MultiPart = 10,
  GenDC = 11,
};

/// How a buffer came back from its stream.
enum class KrBufferStatus {
  Empty,      ///< Not filled yet.
  Complete,   ///< Everything that was sent is there.
  Incomplete, ///< Some of the data is missing; what arrived is in its place.
  Aborted,    ///< The stream was stopped, or the device lost, before the end.
  TooSmall,   ///< The device sent more than the buffer holds.
};

/// A buffer with its payload.
///
/// Thread: one at a time, as the holder of the buffer arranges it.
/// Ownership: owns its memory, or borrows memory that was attached.
///
///     KrBuffer buffer;
///     if (buffer.GetImage()->Alloc(640, 480, KrPixel::Mono8).IsOK())
///       std::memset(buffer.GetDataPointer(), 0x80, buffer.GetSize());
class KR_EXPORT KrBuffer {
public:
  /// An empty buffer of the image payload type.
  KrBuffer();
  /// An empty buffer of a payload type.
  explicit KrBuffer(KrPayloadType aType);
  ~KrBuffer();
  /// Takes over memory, image (pointers to it stay valid) and all else; the other goes on as an empty buffer of the
  /// image payload type.
  KrBuffer(KrBuffer&& aOther) noexcept;
  /// The same; what this buffer had before is given up.
  KrBuffer& operator=(KrBuffer&& aOther) noexcept;
  KrBuffer(const KrBuffer&) = delete;
  KrBuffer& operator=(const KrBuffer&) = delete;

  /// What kind of payload the bytes are.
  KrPayloadType GetPayloadType() const;
  /// Says what kind of payload the bytes are; they and their description as an image are not touched.
  void SetPayloadType(KrPayloadType aType);

  /// The buffer as an image: never null while the payload type is Image, null for every other type.
  IKrImage* GetImage();
  /// The same, to be read.
  const IKrImage* GetImage() const;

  /// The first byte; null while there is no memory.
  std::uint8_t* GetDataPointer();
  /// The same, to be read.
  const std::uint8_t* GetDataPointer() const;
  /// The memory's size in bytes; 0 after Free().
  std::size_t GetSize() const;
  /// How many bytes from the start the device filled; at most GetSize().
  std::size_t GetAcquiredSize() const;
  /// Sets the number of bytes filled; more than GetSize() is cut to it.
  void SetAcquiredSize(std::size_t aBytes);

  /// Makes room for bytes of no particular meaning, zeroed; the description as an image and the chunks are forgotten,
  /// as they are by Attach and Free. 0 gives InvalidInput, more than 4 GiB too, too little memory SystemError; the
  /// buffer is then unchanged.
  KrResult Alloc(std::size_t aBytes);
  /// Uses memory of the caller's, which must outlive the use; it is not freed. Null or 0 gives InvalidInput.
  KrResult Attach(void* aMemory, std::size_t aBytes);
  /// Gives up the memory; size, image size and acquired size become 0.
  void Free();

  /// Describes the bytes that are there as an image, without touching them: a stream does this when a frame is in.
  /// BadData when the image would be larger than the memory, InvalidInput for a width, height or pixel size of 0;
  /// the buffer is then unchanged. The payload type stays as it is; bytes that were never described are an image of
  /// width 0.
  KrResult DescribeImage(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint32_t aPaddingX = 0,
                         std::uint32_t aPaddingY = 0);

  /// Finds the chunks at the end of the acquired bytes, without touching these: a stream does this when a frame is in.
  /// The chunks reach back to the first byte, the image being the data of the first one, or to the end of the described
  /// image. Payload type and image stay as they are. BadData where the bytes contradict themselves or seem to hold more
  /// than 4096 chunks, SystemError where memory is short; there are then no chunks.
  KrResult DescribeChunks(KrByteOrder aOrder);
  /// Leaves no chunks described: a stream does this when a frame without, or with damaged ones, is in. The bytes stay.
  void ForgetChunks();
  /// The number of chunks found; 0 until they are described.
  std::size_t GetChunkCount() const;
  /// A chunk by its place in memory, the first being 0; null beyond the last. Valid until chunks are described again or
  /// forgotten.
  const KrChunk* GetChunk(std::size_t aIndex) const;
  /// The first chunk with this identifier, or null; valid as that of GetChunk.
  const KrChunk* FindChunk(std::uint32_t aID) const;
  /// The first byte of a chunk's data; null for a chunk that is not within this buffer's memory.
  const std::uint8_t* GetChunkData(const KrChunk& aChunk) const;

  /// What became of the frame.
  KrBufferStatus GetStatus() const;
  /// Says what became of the frame: a stream does this.
  void SetStatus(KrBufferStatus aStatus);
  /// The device's number of the frame (GigE Vision block ID, USB3 Vision frame ID).
  std::uint64_t GetFrameID() const;
  /// Sets the device's number of the frame: a stream does this.
  void SetFrameID(std::uint64_t aFrameID);
  /// The device's time stamp in nanoseconds of the device's clock; 0 where the device sends none.
  std::uint64_t GetTimestampNs() const;
  /// Sets the device's time stamp, in nanoseconds: a stream does this.
  void SetTimestampNs(std::uint64_t aNanoseconds);
  /// The host's time of completion in nanoseconds of the system's real-time clock.
  std::uint64_t GetHostTimestampNs() const;
  /// Sets the host's time stamp, in nanoseconds: a stream does this.
  void SetHostTimestampNs(std::uint64_t aNanoseconds);

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};
