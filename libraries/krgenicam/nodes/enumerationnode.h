#pragma once
// Enumeration: a number of which only the values of entries can be set, each by its name, too.

#include "nodes/enumentrynode.h"
#include "nodes/valuenode.h"

#include <string_view>
#include <vector>

namespace krgenicam {

/// Thread, ownership: as Node.
class EnumerationNode final : public ValueNode {
public:
  using ValueNode::ValueNode;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Enumeration; }

  /// All entries, in the order of the description.
  const std::vector<EnumEntryNode*>& GetEntries() const { return mEntries; }
  /// The first entry of a value or name; null where there is none.
  EnumEntryNode* FindEntry(std::int64_t aValue) const;
  EnumEntryNode* FindEntry(std::string_view aName) const;
  /// Whether the device leaves the current entry by itself; the value is read around all caches then.
  bool IsSelfClearingNow(Evaluation& aEvaluation);
  /// The smallest and largest NumericValue of the entries.
  double GetNumericMinimum() const { return mNumericMinimum; }
  double GetNumericMaximum() const { return mNumericMaximum; }

  KrResult GetFloatView(Evaluation& aEvaluation, double& aValue) override;
  KrResult FromFloatView(Evaluation& aEvaluation, double aFloat, Number& aValue) override;
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult ReadText(Evaluation& aEvaluation, std::string& aText) override;
  KrResult CheckWriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult WriteText(Evaluation& aEvaluation, std::string_view aText) override;
  KrResult GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength) override;
  std::string DescribeValue(const Number& aValue) const override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  void TakeEntries(INodeIndex& aIndex);
  void SortEntries(INodeIndex& aIndex);
  KrResult ReadValue(Evaluation& aEvaluation, Number& aValue);
  bool IsSelfClearing(const Number& aValue) const;
  /// Whether any entry is there, and whether any can be chosen.
  void LookForEntries(Evaluation& aEvaluation, bool& aIsImplemented, bool& aIsAvailable);
  /// InvalidInput that lists the entries that can be chosen now.
  KrResult RefuseValue(Evaluation& aEvaluation, const std::string& aValue);
  std::string ListAvailable(Evaluation& aEvaluation);

  std::vector<EnumEntryNode*> mEntries;
  std::vector<EnumEntryNode*> mByValue; ///< Ascending; of those with one value the first.
  std::vector<EnumEntryNode*> mByName;  ///< The same by name.
  double mNumericMinimum = 0.0;
  double mNumericMaximum = 0.0;
  bool mWasSelfClearing = false; ///< When the value was read last.
};

} // namespace krgenicam
