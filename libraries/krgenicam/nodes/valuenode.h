#pragma once
// A node whose value is its own (Value), another node's (pValue, with pValueCopy) or the one that an index picks
// (pIndex). Reading, writing and access follow what is picked; what the number means is left to the derived classes.

#include "nodes/node.h"

#include <optional>
#include <vector>

namespace krgenicam {

/// Thread, ownership: as Node.
class ValueNode : public Node {
public:
  using Node::Node;

  void Link(INodeIndex& aIndex) override;

  bool CanHaveValidValues(std::size_t aDepth) override;

protected:
  /// Where a value is: in another node, or here. One of the two is set.
  struct Origin {
    Node* node = nullptr;
    Number* stored = nullptr;
  };

  /// Finds where the value is at the moment; BadData where a link leads nowhere, and what an index says.
  KrResult PickOrigin(Evaluation& aEvaluation, Origin& aOrigin);
  KrResult ReadOrigin(Evaluation& aEvaluation, Number& aValue);
  /// The same around all caches.
  KrResult ReadOriginAnew(Evaluation& aEvaluation, Number& aValue);
  /// Refuses what any of the nodes would refuse that WriteOrigin writes.
  KrResult CheckWriteOrigin(Evaluation& aEvaluation, const Number& aValue);
  /// Writes pValue and its copies in the order of the document.
  KrResult WriteOrigin(Evaluation& aEvaluation, const Number& aValue);

  bool HasCopies() const { return mTargets.size() > 1; }
  /// pValue and its copies, in the order of the document; empty without pValue.
  const std::vector<NodeLink>& GetTargets() const { return mTargets; }
  /// pValue; not set where the value is here or picked by an index.
  const NodeLink& GetTarget() const { return mTarget; }

  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

  /// The value that a text of the description stands for; nothing where it is none, with a fault noted.
  virtual std::optional<Number> ParseValue(std::string_view aText) const;
  virtual std::string_view GetWantedText() const { return "a whole number of 64 bits"; }
  /// A target's value as the node has it.
  virtual KrResult ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue);
  /// What to write to a target for a value of the node.
  virtual KrResult ToTarget(Evaluation& aEvaluation, Node& aTarget, const Number& aValue, Number& aTargetValue);
  /// Whether the copies have the same increment, without which nothing can be written.
  virtual bool AreTargetsAlike(Evaluation&) { return true; }

private:
  /// A value that an index can pick.
  struct Choice {
    std::int64_t index = 0;
    NodeLink link = {};
    Number stored = {};
  };

  using WriteStep = KrResult (Node::*)(Evaluation&, const Number&);

  void TakeStored(INodeIndex& aIndex, const Property& aProperty, Number& aStored);
  void TakeChoice(INodeIndex& aIndex, const Property& aProperty);
  KrResult PickChoice(Evaluation& aEvaluation, Choice*& aChoice);
  /// Takes a step of writing with each node that a value goes to.
  KrResult VisitTargets(Evaluation& aEvaluation, const Number& aValue, WriteStep aStep);
  bool AreCopiesWritable(Evaluation& aEvaluation, Facet aFacet);

  NodeLink mTarget;
  NodeLink mIndex;
  std::vector<NodeLink> mTargets;
  std::vector<Choice> mChoices; ///< By index, ascending.
  Choice mDefault;
  bool mHasDefault = false;
  bool mIsEmpty = false; ///< Nothing says where the value is.
  Number mStored;
  std::optional<bool> mCanHaveValidValues;
};

} // namespace krgenicam
