#include "camerafile/doubledkeys.h"

#include <iterator>
#include <utility>

namespace krcamerabridge {

namespace {

using krpersistence::TextPlace;
using krpersistence::YamlKind;
using krpersistence::YamlNode;

void ListPlaces(const YamlNode& aNode, std::set<TextPlace>& aPlaces) {
  aPlaces.insert(aNode.place);
  for (const auto& [key, place] : aNode.keys)
    aPlaces.insert(place);
  for (const YamlNode& item : aNode.items)
    ListPlaces(item, aPlaces);
}

void Visit(YamlNode& aNode, std::size_t& aLeft, const std::function<void(const std::set<TextPlace>& aPlaces)>& aCheck) {
  for (YamlNode& item : aNode.items)
    Visit(item, aLeft, aCheck);
  for (std::size_t i = 0; i < aNode.doubles.size() && aLeft > 0; ++i) {
    YamlNode& item = aNode.items[aNode.doubledItems[i]];
    std::swap(item, aNode.doubles[i]);
    std::set<TextPlace> places;
    ListPlaces(item, places);
    --aLeft;
    aCheck(places);
    Visit(item, aLeft, aCheck);
    std::swap(item, aNode.doubles[i]);
  }
}

} // namespace

void JoinDoubledLists(YamlNode& aRoot) {
  std::vector<YamlNode> doubles;
  std::vector<std::size_t> doubledItems;
  for (std::size_t i = 0; i < aRoot.doubles.size(); ++i) {
    YamlNode& item = aRoot.items[aRoot.doubledItems[i]];
    YamlNode& other = aRoot.doubles[i];
    if (item.kind == YamlKind::Sequence && other.kind == YamlKind::Sequence) {
      item.items.insert(item.items.end(), std::make_move_iterator(other.items.begin()),
                        std::make_move_iterator(other.items.end()));
      item.isCut = item.isCut || other.isCut;
      continue;
    }
    doubles.push_back(std::move(other));
    doubledItems.push_back(aRoot.doubledItems[i]);
  }
  aRoot.doubles = std::move(doubles);
  aRoot.doubledItems = std::move(doubledItems);
  for (std::vector<YamlNode>* const nodes : {&aRoot.items, &aRoot.doubles})
    for (YamlNode& node : *nodes)
      JoinDoubledLists(node);
}

void ForEachDoubledValue(YamlNode& aRoot, const std::function<void(const std::set<TextPlace>& aPlaces)>& aCheck) {
  std::size_t left = kMostDoubledValues;
  Visit(aRoot, left, aCheck);
}

} // namespace krcamerabridge
