#pragma once
// A node of a description that has come to life: what all kinds have in common. Finds cycles, remembers what was
// computed and works out access; what a kind's value is and stands on is left to the derived classes.

#include "description/description.h"
#include "krgenicam/krgentypes.h"
#include "nodes/accesscause.h"
#include "nodes/evaluation.h"
#include "nodes/memo.h"
#include "number.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace krgenicam {

class Node;
class ParameterWatch;

/// What of a node can be asked for.
enum class Facet : std::uint8_t {
  Value,
  Minimum,
  Maximum,
  Increment,      ///< InvalidInput where there is none.
  Access,         ///< A KrGenAccessMode as a number.
  AccessUnlocked, ///< The same without pIsLocked, which is all that reading depends on.
  Implementation, ///< 1 for what is implemented, 0 for what is not; asks for pIsImplemented alone.
};
inline constexpr std::size_t kFacetCount = 7;

/// A node that another one names.
struct NodeLink {
  Node* node = nullptr;       ///< Null where there is no such property, or no node of the name.
  std::string_view name = {}; ///< Empty where there is no such property.
  std::uint32_t line = 0;

  bool IsSet() const { return !name.empty(); }
};

/// How a node's number is best shown.
struct NodeShown {
  KrGenRepresentation representation = KrGenRepresentation::PureNumber;
  std::string_view unit = {};
  KrGenDisplayNotation notation = KrGenDisplayNotation::Automatic;
  std::int64_t precision = 6;
};

/// Finds nodes while they are being linked.
class INodeIndex {
public:
  /// The node of an index into the description's nodes; null for kNoNode and for one that could not be made.
  virtual Node* GetNode(NodeIndex aIndex) const = 0;
  /// The node of a name, or null.
  virtual Node* FindNode(std::string_view aName) const = 0;
  /// Notes a fault of the description, for the list that users get.
  virtual void AddFault(const Node& aNode, std::uint32_t aLine, const std::string& aText) = 0;
  /// Counts operations of a compiled formula; false, and none counted, where all formulas together have too many.
  virtual bool ReserveFormulaOperations(std::size_t aCount) = 0;

protected:
  ~INodeIndex() = default;
};

/// Thread: under the map's lock, but for what never changes after linking (name, kind, texts).
/// Ownership: the map's. Borrows the description.
class Node {
public:
  Node(const Description& aDescription, const NodeDescription& aNode);
  virtual ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  /// Takes the properties and finds the nodes they name; comes once, when all nodes are made. Overridings call it
  /// first.
  virtual void Link(INodeIndex& aIndex);

  // What never changes.
  std::string_view GetName() const { return mData.name; }
  NodeKind GetKind() const { return mData.kind; }
  std::uint32_t GetLine() const { return mData.line; }
  bool IsStandard() const { return mData.isStandard; }
  virtual KrGenType GetType() const { return KrGenType::Other; }
  KrGenVisibility GetVisibility() const { return mVisibility; }
  bool IsStreamable() const { return mIsStreamable; }
  std::optional<std::uint64_t> GetEventID() const { return mEventID; }
  /// In milliseconds; 0 where there is none.
  std::uint32_t GetPollingTimeMs() const { return mPollingTimeMs; }
  /// The text of a property, empty where there is none: ToolTip, Description, DisplayName, DocuURL, IsDeprecated …
  std::string_view GetText(PropertyKind aKind) const;
  const Property* FindProperty(PropertyKind aKind) const;
  std::span<const Property> GetProperties() const { return mDescription.GetProperties(mData); }
  const NodeLink& GetAlias() const { return mAlias; }
  const NodeLink& GetCastAlias() const { return mCastAlias; }
  const NodeLink& GetPollingBlock() const { return mBlockPolling; }
  /// The nodes that this one selects, and those that select it, in the order of the description.
  const std::vector<Node*>& GetSelected() const { return mSelected; }
  const std::vector<Node*>& GetSelecting() const { return mSelecting; }
  /// The nodes whose values, ranges or access stand on this one.
  const std::vector<Node*>& GetDependents() const { return mDependents; }

  // What can be asked for: remembered where possible, an error in a cycle or too deep.
  KrResult Get(Evaluation& aEvaluation, Facet aFacet, Number& aValue);
  KrGenAccessMode GetAccess(Evaluation& aEvaluation, Facet aFacet = Facet::Access);
  /// The value, unless the node cannot be read at the moment: AccessDenied then, with the reason.
  KrResult GetValue(Evaluation& aEvaluation, Number& aValue);
  /// The same for those who do not need the reason, which is work to find.
  bool TryGetValue(Evaluation& aEvaluation, Number& aValue);
  /// Why the node cannot be read (or written) at the moment: AccessDenied, naming what stands in the way.
  KrResult ExplainAccess(Evaluation& aEvaluation, bool aForWriting);
  /// The same with another beginning of the sentence, which ends with a colon and a blank.
  KrResult ExplainAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
    return Explain(aEvaluation, aForWriting, aAttempt);
  }

  /// Sets a value: checks all of it before anything is written, writes, and asks the error nodes (pError) afterwards.
  KrResult SetValue(Evaluation& aEvaluation, const Number& aValue);
  KrResult SetText(Evaluation& aEvaluation, std::string_view aText);
  /// The second half of the same, for nodes that have checked all of it themselves.
  KrResult WriteAndAsk(Evaluation& aEvaluation, const Number& aValue);
  KrResult WriteTextAndAsk(Evaluation& aEvaluation, std::string_view aText);

  // What kinds can do. All of these come with the node's access checked but for the Check operations, which check it
  // themselves by calling CheckWritable first.
  /// The value as a floating-point number: of an enumeration the entry's NumericValue.
  virtual KrResult GetFloatView(Evaluation& aEvaluation, double& aValue);
  /// The value of the node that a floating-point number stands for: of an enumeration the writable entry whose
  /// NumericValue is nearest to it.
  virtual KrResult FromFloatView(Evaluation& aEvaluation, double aFloat, Number& aValue);
  /// Refuses a value that Write would not take, as things stand: access, range, increment, entry, and the same for all
  /// nodes that Write would go on to.
  virtual KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue);
  virtual KrResult Write(Evaluation& aEvaluation, const Number& aValue);
  virtual KrResult ReadText(Evaluation& aEvaluation, std::string& aText);
  virtual KrResult CheckWriteText(Evaluation& aEvaluation, std::string_view aText);
  virtual KrResult WriteText(Evaluation& aEvaluation, std::string_view aText);
  virtual KrResult GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength);
  /// The only values that there are, ascending; empty where there are no such.
  virtual KrResult GetValidValues(Evaluation& aEvaluation, std::vector<Number>& aValues);
  /// Whether there can be such at all, here or in what the value is handed on from; found once, as asking each node on
  /// a long way for them takes its time. aDepth counts the nodes that are asking.
  virtual bool CanHaveValidValues(std::size_t aDepth = 0);
  virtual NodeShown GetShown(Evaluation& aEvaluation);
  /// Whether the limit of a facet is more than the end of what numbers of the type can be.
  virtual bool HasLimit(Evaluation& aEvaluation, Facet aFacet);
  /// Whether there is an increment, even where it cannot be read.
  virtual bool HasIncrement(Evaluation& aEvaluation);
  /// What a value of the node means, for people: of an enumeration the entry's names and texts.
  virtual std::string DescribeValue(const Number& aValue) const;
  /// Forgets what was computed and read; nodes that lose something they share with this one are added to aAffected.
  virtual void Forget(std::vector<Node*>& aAffected);

  /// The epoch of the last evaluation that came to the node, since it was forgotten; 0 for none.
  std::uint64_t GetLastAsked() const;

  /// aDependent's value, range or access stands on this node.
  void AddDependent(Node& aDependent);

  // For the map.
  NodeIndex index = kNoNode;       ///< Its place among the description's nodes.
  std::uint64_t mark = 0;          ///< The last walk through dependents that visited the node, …
  std::uint64_t originMark = 0;    ///< … and the last that went on to the nodes that its value is in.
  bool forgetsOrigins = false;     ///< What forgets the node means the value itself, wherever it is.
  ParameterWatch* watch = nullptr; ///< Who listens; null for nobody.

protected:
  /// The one property of a kind that names a node, where there is one; from then on this node depends on that one.
  NodeLink LinkTo(INodeIndex& aIndex, PropertyKind aKind);
  NodeLink LinkTo(INodeIndex& aIndex, const Property& aProperty);
  /// The integer, number and word of a property; aDefault where there is none, and, with a fault noted, where its text
  /// is none.
  std::int64_t TakeInteger(INodeIndex& aIndex, PropertyKind aKind, std::int64_t aDefault);
  double TakeFloat(INodeIndex& aIndex, PropertyKind aKind, double aDefault);
  bool TakeYesNo(INodeIndex& aIndex, PropertyKind aKind, bool aDefault);
  std::size_t TakeWord(INodeIndex& aIndex, PropertyKind aKind, std::span<const std::string_view> aWords,
                       std::size_t aDefault);

  /// What the node's own properties say of how it is shown.
  NodeShown TakeShown(INodeIndex& aIndex);
  /// Notes that the text of a property is not what it should be.
  void AddWordFault(INodeIndex& aIndex, const Property& aProperty, std::string_view aWanted);

  /// The node behind a link; BadData with node, line and reason where it leads nowhere.
  KrResult Follow(const NodeLink& aLink, Node*& aNode) const;
  /// A fault that names this node and a line, with a reason that is a whole sentence.
  KrResult MakeFault(std::uint32_t aLine, const std::string& aReason,
                     KrResult::Code aCode = KrResult::Code::BadData) const;
  /// AccessDenied, with the reason, unless the node can be written now.
  KrResult CheckWritable(Evaluation& aEvaluation);
  /// OutOfRange, with what is allowed, unless minimum and maximum, and increment where aChecksIncrement, allow the
  /// value.
  KrResult CheckRange(Evaluation& aEvaluation, const Number& aValue, bool aChecksIncrement);
  /// Refuses a value where none can be written, one that is no number (NaN), and one beyond minimum or maximum.
  KrResult CheckNumber(Evaluation& aEvaluation, const Number& aValue);

  /// The facets but the accesses; the default refuses with InvalidInput that the node has no value.
  virtual KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue);
  /// What the node could do by what it stands on alone: the access of its register, its pValue and so on, each asked
  /// with the same facet; without the predicates and ImposedAccessMode, which GetAccess adds.
  virtual KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet);

  /// Whether what the node stands on is implemented, as 1 or 0; without its own pIsImplemented, which Get adds.
  virtual KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented);
  /// The same of the node behind a link. What leads nowhere is no more than not available.
  static KrResult GetImplementation(Evaluation& aEvaluation, const NodeLink& aLink, Number& aImplemented);

  /// Why the node cannot be read (or written) by what it stands on, after its own predicates were found to allow it.
  /// aAttempt begins the sentence. Overridings name the node that stands in the way.
  virtual KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt);
  /// The reason of another node that stands in the way, as the end of the sentence that aAttempt begins.
  KrResult ExplainBy(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt, Node& aObstacle);

  /// AccessDenied with a reason that the description gives for all times.
  static KrResult DenyForGood(Evaluation& aEvaluation, const std::string& aSentence);

  /// Asks the error nodes (pError), after the node was written: ProtocolError with the device's own words.
  KrResult CheckErrors(Evaluation& aEvaluation);

private:
  KrResult Find(Evaluation& aEvaluation, Facet aFacet, Number& aValue, Memo& aMemo);
  /// BadData that names the nodes of a path from this one on, which comes again behind the last.
  KrResult MakeCycleFault(std::span<Node* const> aPath) const;
  /// Whether pIsLocked locks the node; what cannot be found out does not.
  bool IsLocked(Evaluation& aEvaluation);
  KrGenAccessMode CombineAccess(Evaluation& aEvaluation, Facet aFacet);
  KrResult CombineImplementation(Evaluation& aEvaluation, Number& aImplemented);
  KrResult Explain(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt);
  KrResult ExplainPredicate(Evaluation& aEvaluation, const NodeLink& aPredicate, const std::string& aAttempt,
                            AccessCause::Verdict aVerdict);
  void NoteWhyNotImplemented(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt);

  const Description& mDescription;
  const NodeDescription& mData;
  std::array<Memo, kFacetCount> mMemos;
  NodeLink mIsImplemented;
  NodeLink mIsAvailable;
  NodeLink mIsLocked;
  NodeLink mBlockPolling;
  NodeLink mAlias;
  NodeLink mCastAlias;
  std::vector<NodeLink> mErrors;
  std::vector<Node*> mSelected;
  std::vector<Node*> mSelecting;
  std::vector<Node*> mDependents;
  std::optional<std::uint64_t> mEventID;
  std::uint32_t mPollingTimeMs = 0;
  KrGenVisibility mVisibility = KrGenVisibility::Beginner;
  KrGenAccessMode mImposedAccess = KrGenAccessMode::ReadWrite;
  bool mIsStreamable = false;
  bool mHasToldOfLock = false; ///< That pIsLocked could not be read.
};

/// Two accesses that both have to be had: not implemented before not available before what is left of both.
KrGenAccessMode CombineAccessModes(KrGenAccessMode aLeft, KrGenAccessMode aRight);
constexpr bool IsReadable(KrGenAccessMode aMode) {
  return aMode == KrGenAccessMode::ReadOnly || aMode == KrGenAccessMode::ReadWrite;
}
constexpr bool IsWritable(KrGenAccessMode aMode) {
  return aMode == KrGenAccessMode::WriteOnly || aMode == KrGenAccessMode::ReadWrite;
}

} // namespace krgenicam
