// What a camera's description lets the features stand on that are evaluated while it streams, as mark-up and as a graph
// of nodes: references in a circle, too deep or too many are refused with a reason, others are not, whatever else is
// asked beside.

#include "aravis/valuechains.h"

#include "aravis/gobjectpointer.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace krtransport;

constexpr std::size_t kMostText = std::size_t{16} << 10;
constexpr std::size_t kMostNodes = 256;
constexpr std::uint64_t kMostEvaluations = 65'536;

constexpr std::array kValueLinks = {"pValue",  "pVariable",     "pAddress",      "pIndex",
                                    "pLength", "pValueIndexed", "pValueDefault", "pCommandValue"};
constexpr std::array kLimitLinks = {"pMin", "pMax", "pInc"};
constexpr std::size_t kPassing = 0; // Of the links of values.

KrResult Check(ArvGc& aDescription, std::initializer_list<const char*> aFeatures) {
  KrResult result = CheckValueChains(aDescription, aFeatures);
  Require(RequireReason(result) || result == KrResult::Code::BadData);
  return result;
}

// What is said of a feature does not depend on what is asked beside it.
bool CheckTogether(std::string_view aText) {
  const GObjectPointer<ArvGc> description(arv_gc_new(nullptr, aText.data(), aText.size()));
  if (!description)
    return false;
  const bool isWidthWell = Check(*description, {"Width"}).IsOK();
  const bool isPayloadWell = Check(*description, {"PayloadSize"}).IsOK();
  const bool areWell = isWidthWell && isPayloadWell;
  Require(Check(*description, {"Width", "PayloadSize"}).IsOK() == areWell);
  Require(Check(*description, {"PayloadSize", "Missing", "Width", "PayloadSize"}).IsOK() == areWell);
  return true;
}

// Nodes that refer to each other; the first is PayloadSize.
class Graph {
public:
  // A chain of as many pairs of nodes as the first byte says, and links from node to node, four bytes each.
  explicit Graph(std::span<const std::uint8_t> aBytes) {
    const std::size_t chain = 2 * std::size_t{aBytes[0]};
    for (std::size_t node = 0; node < chain; ++node)
      Get(node).values[kPassing].push_back(node + 1);
    Get(chain);
    for (aBytes = aBytes.subspan(1); aBytes.size() >= 4; aBytes = aBytes.subspan(4)) {
      const std::size_t to = aBytes[1] + 256 * (aBytes[2] & 1U);
      Node& node = Get(aBytes[0] + 256 * (aBytes[2] >> 7U));
      const std::size_t kind = aBytes[3] % (kValueLinks.size() + kLimitLinks.size());
      if (kind < kValueLinks.size())
        node.values[kind].push_back(to);
      else
        node.limits[kind - kValueLinks.size()].push_back(to);
      Get(to);
    }
  }

  std::string MakeText() const {
    std::string text = "<RegisterDescription xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">";
    for (std::size_t node = 0; node < mNodes.size(); ++node) {
      text += "<IntSwissKnife Name=\"" + GetName(node) + "\">";
      AppendLinks(kValueLinks, mNodes[node].values, text);
      AppendLinks(kLimitLinks, mNodes[node].limits, text);
      text += "<Formula>1</Formula></IntSwissKnife>";
    }
    return text + "</RegisterDescription>";
  }

  // Nothing where the value is passed on to more nodes than are followed.
  std::optional<bool> IsWell() const {
    std::vector<std::size_t> targets = {0};
    for (std::size_t i = 0; i < targets.size(); ++i)
      for (const std::size_t next : mNodes[targets[i]].values[kPassing])
        if (std::ranges::find(targets, next) == targets.end())
          targets.push_back(next);
    bool areWell = true;
    for (const std::size_t target : targets) {
      areWell = areWell && Ends(target);
      for (const auto& links : mNodes[target].limits)
        areWell = areWell && std::ranges::all_of(links, [this](std::size_t aNode) { return Ends(aNode); });
    }
    if (areWell || targets.size() < kMostNodes || !Ends(0))
      return areWell;
    return std::nullopt;
  }

private:
  struct Node {
    std::array<std::vector<std::size_t>, kValueLinks.size()> values;
    std::array<std::vector<std::size_t>, kLimitLinks.size()> limits;
  };
  struct Cost {
    std::size_t deepest = 0;
    std::uint64_t evaluations = 0;
    friend bool operator==(const Cost&, const Cost&) = default;
  };

  Node& Get(std::size_t aNode) {
    mNodes.resize(std::max(mNodes.size(), aNode + 1));
    return mNodes[aNode];
  }
  static std::string GetName(std::size_t aNode) { return aNode == 0 ? "PayloadSize" : "N" + std::to_string(aNode); }
  template <typename Names, typename Links>
  static void AppendLinks(const Names& aNames, const Links& aLinks, std::string& aText) {
    for (std::size_t kind = 0; kind < aNames.size(); ++kind)
      for (const std::size_t to : aLinks[kind]) {
        const std::string name(aNames[kind]);
        aText += "<" + name + (name == "pVariable" ? " Name=\"V\">" : ">") + GetName(to) + "</" + name + ">";
      }
  }

  // By rounds: after as many as a chain may be long, nothing changes any more where all ends.
  bool Ends(std::size_t aNode) const {
    if (mCosts.empty())
      Weigh();
    return mCosts[aNode].deepest < kMostNodes && mCosts[aNode].evaluations <= kMostEvaluations;
  }
  void Weigh() const {
    mCosts.assign(mNodes.size(), {});
    bool hasChanged = true;
    for (std::size_t round = 0; hasChanged && round <= kMostNodes; ++round) {
      hasChanged = false;
      for (std::size_t node = 0; node < mNodes.size(); ++node) {
        Cost cost{.deepest = 0, .evaluations = 1};
        for (const auto& links : mNodes[node].values)
          for (const std::size_t next : links) {
            cost.deepest = std::max(cost.deepest, std::min(mCosts[next].deepest + 1, kMostNodes));
            cost.evaluations = std::min(cost.evaluations + mCosts[next].evaluations, kMostEvaluations + 1);
          }
        hasChanged = hasChanged || cost != mCosts[node];
        mCosts[node] = cost;
      }
    }
  }

  std::vector<Node> mNodes;
  mutable std::vector<Cost> mCosts;
};

} // namespace

// Mark-up where the input begins with it, else a graph.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0 || aSize > kMostText)
    return 0;
  if (aData[0] == '<') {
    CheckTogether({reinterpret_cast<const char*>(aData), aSize});
    return 0;
  }
  const Graph graph(std::span(aData, aSize));
  const std::string text = graph.MakeText();
  Require(CheckTogether(text));
  const GObjectPointer<ArvGc> description(arv_gc_new(nullptr, text.data(), text.size()));
  const KrResult checked = Check(*description, {"PayloadSize"});
  if (const std::optional<bool> isWell = graph.IsWell())
    Require(checked.IsOK() == *isWell);
  return 0;
}
