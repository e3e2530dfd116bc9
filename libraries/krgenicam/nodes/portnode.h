#pragma once
// Where registers are: the device, the data of its last event or of a frame's chunk. Reads and writes ranges of bytes,
// from the cache where that is allowed; what the bytes mean is left to the register nodes.

#include "nodes/node.h"
#include "nodes/registercache.h"

#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

namespace krgenicam {

/// What a register's Cachable says.
enum class RegisterCaching : std::uint8_t { WriteThrough, WriteAround, NoCache };

/// A register that accesses a port.
struct RegisterAccess {
  RegisterUser& user;
  RegisterRange range;
  RegisterCaching caching = RegisterCaching::WriteThrough;
  bool isBigEndian = false; ///< How the register has numbers.
  bool isReadable = true;   ///< Whether the register can be read back.
};

/// Thread, ownership: as Node.
class PortNode final : public Node {
public:
  PortNode(const Description& aDescription, const NodeDescription& aNode);
  ~PortNode() override;

  void Link(INodeIndex& aIndex) override;
  void Forget(std::vector<Node*>& aAffected) override;

  bool IsChunkPort() const { return mKind == Kind::Chunk; }
  /// The device itself.
  bool IsPlain() const { return mKind == Kind::Device; }
  /// Of a chunk port (ChunkID, or the value of what pChunkID names); nothing where it cannot be found out.
  std::optional<std::uint64_t> GetChunkID(Evaluation& aEvaluation);

  /// The data that an event port, or a chunk port, has from now on; they are copied. The map invalidates the port
  /// afterwards.
  void SetEventData(std::span<const std::uint8_t> aData);
  void SetChunkData(std::optional<std::span<const std::uint8_t>> aData);

  /// OutOfRange, with the reason as a whole sentence, for a range that the port cannot have.
  KrResult CheckAddress(const RegisterRange& aRange) const;
  /// Reads the bytes, of which there are as many as the range has. Busy for what is not cached where the device may not
  /// be asked.
  KrResult ReadRegister(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<std::uint8_t> aBytes);
  /// Writes them. All nodes that were read from bytes among these are told, the register's own among them, also when
  /// the port failed.
  KrResult WriteRegister(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<const std::uint8_t> aBytes);
  /// A register forgets what it was read from; other nodes that were read from the same are added to aAffected.
  void DropUsed(RegisterUser& aUser, std::vector<Node*>& aAffected) { mCache.DropUsed(aUser, aAffected); }
  /// A register of bits at this place can be read.
  void NoteReadableBits(const RegisterRange& aRange) { mReadableBits.insert(aRange); }
  bool HasReadableBits(const RegisterRange& aRange) const { return mReadableBits.contains(aRange); }
  /// What a register that cannot be read is believed to hold: what was last written to it, at first zeros.
  void GuessRegister(const RegisterRange& aRange, std::span<std::uint8_t> aBytes) const;

protected:
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  enum class Kind : std::uint8_t { Device, Event, Chunk };

  static Kind FindKind(const PortNode& aNode);
  KrResult ReadCached(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<std::uint8_t> aBytes);
  KrResult ReadData(const RegisterAccess& aAccess, std::span<std::uint8_t> aBytes) const;
  bool IsPseudoAddress(std::int64_t aAddress) const;
  KrResult ReadDevice(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<std::uint8_t> aBytes) const;
  KrResult ReadSwapped(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<std::uint8_t> aBytes) const;
  KrResult WriteDevice(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<const std::uint8_t> aBytes) const;
  KrResult WriteSwapped(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<const std::uint8_t> aBytes) const;
  void Keep(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<const std::uint8_t> aBytes);

  const Kind mKind;
  bool mSwapsWords = false;
  std::optional<std::uint64_t> mChunkID;
  NodeLink mChunkIDLink;
  std::optional<std::vector<std::uint8_t>> mData; ///< Of the last event, or the chunk.
  RegisterCache mCache;
  std::unordered_set<RegisterRange, RegisterRangeHash> mReadableBits;
};

} // namespace krgenicam
