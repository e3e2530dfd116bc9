#include "aravis/valuechains.h"

#include "krbase/trim.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace krtransport {
namespace {

// As many as our own evaluation follows.
constexpr std::size_t kMostNodes = 256;
// A node that two others stand on is evaluated twice, and what it stands on four times, and so on: ways from the value
// to the registers, each with a question to the camera.
constexpr std::uint64_t kMostEvaluations = 65'536;

// The elements by which a node's value stands on others, and those by which its limits do.
constexpr std::string_view kValueLinks[] = {"pValue",  "pVariable",     "pAddress",      "pIndex",
                                            "pLength", "pValueIndexed", "pValueDefault", "pCommandValue"};
constexpr std::string_view kRegisterOfParts = "StructReg";
constexpr std::string_view kLimitLinks[] = {"pMin", "pMax", "pInc"};

template <std::size_t Count>
bool Has(const std::string_view (&aNames)[Count], std::string_view aName) {
  return std::find(std::begin(aNames), std::end(aNames), aName) != std::end(aNames);
}

std::string GetText(ArvDomNode& aElement) {
  std::string text;
  for (ArvDomNode* part = arv_dom_node_get_first_child(&aElement); part != nullptr;
       part = arv_dom_node_get_next_sibling(part))
    if (ARV_IS_DOM_CHARACTER_DATA(part))
      if (const char* const piece = arv_dom_character_data_get_data(ARV_DOM_CHARACTER_DATA(part)); piece != nullptr)
        text += piece;
  return std::string(krbase::Trim(text));
}

// Follows values through the description. No recursion: a description is what is not trusted here.
class Walk {
public:
  explicit Walk(ArvGc& aDescription) : mDescription(aDescription) {}

  // Whether all that a node's value stands on ends within the limits.
  bool Ends(const std::string& aName) {
    std::vector<Step> path;
    Enter(aName, path);
    while (!path.empty()) {
      Step& step = path.back();
      if (step.next == step.links.size()) {
        const Cost cost = step.cost;
        mCosts[step.name] = cost;
        path.pop_back();
        if (!path.empty())
          path.back().cost.Add(cost);
        continue;
      }
      const std::string link = step.links[step.next++];
      if (const auto known = mCosts.find(link); known != mCosts.end())
        step.cost.Add(known->second);
      else if (path.size() >= kMostNodes || IsOn(path, link))
        return false;
      else
        Enter(link, path);
      if (!path.front().cost.IsWithinLimits())
        return false;
    }
    return mCosts[aName].IsWithinLimits();
  }

  std::vector<std::string> ListLimits(const std::string& aName) {
    std::vector<std::string> limits;
    if (ArvGcNode* const node = arv_gc_get_node(&mDescription, aName.c_str()); node != nullptr)
      Collect(*ARV_DOM_NODE(node), kLimitLinks, limits);
    return limits;
  }

  // The nodes that a feature's value and limits are passed on to, itself first.
  std::vector<std::string> ListTargets(const std::string& aName) {
    std::vector<std::string> targets = {aName};
    for (std::size_t i = 0; i < targets.size() && targets.size() < kMostNodes; ++i) {
      std::vector<std::string> next;
      if (ArvGcNode* const node = arv_gc_get_node(&mDescription, targets[i].c_str()); node != nullptr)
        Collect(*ARV_DOM_NODE(node), kPassing, next);
      for (const std::string& name : next)
        if (std::find(targets.begin(), targets.end(), name) == targets.end())
          targets.push_back(name);
    }
    return targets;
  }

private:
  static constexpr std::string_view kPassing[] = {"pValue"};

  // What evaluating a node takes, as far as that is known.
  struct Cost {
    std::size_t depth = 0; // Of what is behind it.
    std::uint64_t evaluations = 1;

    void Add(const Cost& aLink) {
      depth = std::max(depth, aLink.depth + 1);
      evaluations = std::min(evaluations + aLink.evaluations, kMostEvaluations + 1);
    }
    bool IsWithinLimits() const { return depth < kMostNodes && evaluations <= kMostEvaluations; }
  };
  struct Step {
    std::string name;
    std::vector<std::string> links;
    std::size_t next = 0;
    Cost cost = {};
  };

  static bool IsOn(const std::vector<Step>& aPath, const std::string& aName) {
    return std::any_of(aPath.begin(), aPath.end(), [&](const Step& aStep) { return aStep.name == aName; });
  }

  void Enter(const std::string& aName, std::vector<Step>& aPath) {
    Step step{.name = aName, .links = {}};
    if (ArvGcNode* const node = arv_gc_get_node(&mDescription, aName.c_str()); node != nullptr) {
      Collect(*ARV_DOM_NODE(node), kValueLinks, step.links);
      // A part of a register is where that is.
      ArvDomNode* const parent = arv_dom_node_get_parent_node(ARV_DOM_NODE(node));
      const char* const kind = parent != nullptr ? arv_dom_node_get_node_name(parent) : nullptr;
      if (kind != nullptr && kind == kRegisterOfParts)
        Collect(*parent, kValueLinks, step.links);
    }
    aPath.push_back(std::move(step));
  }

  // The names that a node's elements give, those of formulas inside of it too.
  template <std::size_t Count>
  static void Collect(ArvDomNode& aNode, const std::string_view (&aKinds)[Count], std::vector<std::string>& aNames) {
    std::vector<ArvDomNode*> open = {&aNode};
    while (!open.empty()) {
      ArvDomNode* const node = open.back();
      open.pop_back();
      for (ArvDomNode* child = arv_dom_node_get_first_child(node); child != nullptr;
           child = arv_dom_node_get_next_sibling(child)) {
        const char* const kind = arv_dom_node_get_node_name(child);
        if (kind != nullptr && Has(aKinds, kind))
          aNames.push_back(GetText(*child));
        else
          open.push_back(child);
      }
    }
  }

  ArvGc& mDescription;
  std::map<std::string, Cost> mCosts; // Of the nodes whose values end.
};

} // namespace

KrResult CheckValueChains(ArvGc& aDescription, std::initializer_list<const char*> aFeatures) {
  Walk walk(aDescription);
  for (const std::string feature : aFeatures)
    for (const std::string& target : walk.ListTargets(feature)) {
      std::vector<std::string> values = walk.ListLimits(target);
      values.push_back(target);
      if (!std::all_of(values.begin(), values.end(), [&](const std::string& aValue) { return walk.Ends(aValue); }))
        return {KrResult::Code::BadData, "The camera's description lets " + feature +
                                             " stand on itself, on more than " + std::to_string(kMostNodes) +
                                             " nodes in a row, or on more than " + std::to_string(kMostEvaluations) +
                                             " in all; no stream can be started. Ask the camera's maker for "
                                             "another firmware."};
    }
  return {};
}

} // namespace krtransport
