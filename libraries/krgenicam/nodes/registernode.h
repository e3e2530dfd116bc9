#pragma once
// A piece of a port's memory whose place and length a description tells, as numbers or by naming nodes: the base of all
// kinds of registers, and the class of those that are bytes alone. Caching is left to the port.

#include "nodes/node.h"
#include "nodes/portnode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace krgenicam {

/// A register. Without AccessMode it can only be read, as that is what the schema takes an empty element for; without
/// pPort it is in the port "Device" where there is one that is the device itself.
///
/// Thread, ownership: as Node.
class RegisterNode : public Node {
public:
  /// The longest register; a longer one is a fault of the description.
  static constexpr std::int64_t kMaxLength = std::int64_t{16} << 20;

  RegisterNode(const Description& aDescription, const NodeDescription& aNode);
  ~RegisterNode() override;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Register; }
  void Forget(std::vector<Node*>& aAffected) override;

  /// Where the register is at the moment: the sum of all that its description names. BadData or OutOfRange where the
  /// port can have no such address.
  KrResult GetAddress(Evaluation& aEvaluation, std::int64_t& aAddress);
  /// How many bytes it has at the moment: 1 to kMaxLength; BadData for any other length.
  KrResult GetLength(Evaluation& aEvaluation, std::int64_t& aLength);

  /// The bytes, unless the register cannot be read at the moment: AccessDenied then, with the reason.
  KrResult GetBytes(Evaluation& aEvaluation, std::vector<std::uint8_t>& aBytes);
  /// Sets the bytes: checks, writes, and asks the error nodes (pError) afterwards.
  KrResult SetBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes);
  /// The bytes, whose access was checked.
  KrResult ReadBytes(Evaluation& aEvaluation, std::vector<std::uint8_t>& aBytes);
  /// Refuses bytes that WriteBytes would not take: access, place, InvalidInput for another number than the length.
  KrResult CheckWriteBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes);
  KrResult WriteBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes);

protected:
  /// The bytes of a register that is a number, of which there are length.
  struct Word {
    std::array<std::uint8_t, 8> bytes{};
    std::size_t length = 0;

    std::span<std::uint8_t> GetBytes() { return std::span(bytes).first(length); }
    std::span<const std::uint8_t> GetBytes() const { return std::span(bytes).first(length); }
  };

  /// Why the kind cannot have a length that a register can have, as a whole sentence; empty where it can.
  virtual std::string FindLengthProblem(std::int64_t aLength) const;
  KrResult ReadWord(Evaluation& aEvaluation, Word& aWord);
  /// The bytes of which only some bits are to be replaced: read, or guessed where they cannot be read.
  KrResult ReadSurroundings(Evaluation& aEvaluation, Word& aWord);
  /// Refuses, with the reason, a register that cannot be written or whose place cannot be found out at the moment.
  KrResult CheckWritableRegister(Evaluation& aEvaluation);
  /// Other registers may replace bits of this one's bytes: says that they can be read, where they can.
  void ShareBits();
  bool IsBigEndian() const { return mIsBigEndian; }
  /// The line of a property, or the node's where there is none.
  std::uint32_t GetLineOf(PropertyKind aKind) const;
  /// From now on the node is unusable, for a reason that is a whole sentence; the first such reason counts.
  void SetFault(INodeIndex& aIndex, std::uint32_t aLine, const std::string& aReason);
  /// Why the node is unusable, whatever happens; OK where it is not.
  const KrResult& GetFault() const { return mFault; }

  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  /// A node whose value, times something where it is an index, is a part of the address.
  struct AddressTerm {
    enum class Scale : std::uint8_t { None, Constant, Node, Length };

    NodeLink link;
    Scale scale = Scale::None;
    std::int64_t offset = 0;
    NodeLink offsetLink = {};
  };

  void LinkPort(INodeIndex& aIndex);
  void LinkAddress(INodeIndex& aIndex);
  void LinkIndex(INodeIndex& aIndex, const Property& aProperty);
  void LinkLength(INodeIndex& aIndex);
  NodeLink TakeLink(INodeIndex& aIndex, const Property& aProperty);
  KrResult FindTerm(Evaluation& aEvaluation, const AddressTerm& aTerm, std::int64_t& aTermValue);
  KrResult AskNumber(Evaluation& aEvaluation, const NodeLink& aLink, std::int64_t& aNumber);
  /// Why the register cannot have a length, as a whole sentence; empty where it can.
  std::string FindAnyLengthProblem(std::int64_t aLength) const;
  KrResult FindRange(Evaluation& aEvaluation, RegisterRange& aRange);
  RegisterAccess MakeAccess(const RegisterRange& aRange);
  KrResult ReadRange(Evaluation& aEvaluation, const RegisterRange& aRange, std::span<std::uint8_t> aBytes);
  /// The range, where it takes these bytes.
  KrResult FindRangeOf(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes, RegisterRange& aRange);
  /// A node without which the place is not known and that cannot be read at the moment, or null.
  Node* FindUnreadablePlaceNode(Evaluation& aEvaluation) const;

  RegisterUser mUser;
  PortNode* mPort = nullptr;
  std::vector<AddressTerm> mTerms;
  std::vector<Node*> mPlaceNodes; ///< All that must be readable for the place to be known.
  std::int64_t mConstantAddress = 0;
  NodeLink mLengthLink;
  std::int64_t mConstantLength = 0;
  KrGenAccessMode mAccessMode = KrGenAccessMode::ReadOnly;
  RegisterCaching mCaching = RegisterCaching::WriteThrough;
  bool mIsBigEndian = false;
  KrResult mFault;
};

} // namespace krgenicam
