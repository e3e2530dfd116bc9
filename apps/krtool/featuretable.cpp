#include "featuretable.h"

#include "featurewords.h"
#include "plaintext.h"
#include "valuetext.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace krtool {

namespace {

constexpr const char* kHeadings = "path\tname\ttype\tvisibility\taccess\tvalue\tunit\tmin\tmax\tincrement\terror\n";
constexpr char kSeparator = '\\';

// A category at one place in the tree, with the features that stand directly in it.
struct Place {
  std::string path;
  std::vector<std::string> names = {};    // Of the categories from the root on.
  std::vector<std::size_t> ordinals = {}; // The places of these among their siblings.
  std::vector<KrGenParameter*> features = {};
};

std::vector<std::string> SplitPath(const std::string& aPath) {
  std::vector<std::string> names;
  for (std::size_t start = 0; start <= aPath.size();) {
    const std::size_t end = std::min(aPath.find(kSeparator, start), aPath.size());
    names.push_back(aPath.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

// The places in the order of the tree: a category's own features, then the categories in it.
class PlaceList {
public:
  explicit PlaceList(const KrGenParameterArray& aArray) : mArray(aArray) {
    KrStringList paths;
    for (std::size_t i = 0; i < aArray.GetCount(); ++i)
      if (aArray[i]->GetCategories(paths).IsOK())
        for (const KrString& path : paths)
          FindPlace(path.ToUtf8()).features.push_back(aArray[i]);
    std::stable_sort(mPlaces.begin(), mPlaces.end(),
                     [](const Place& aLeft, const Place& aRight) { return aLeft.ordinals < aRight.ordinals; });
  }

  const std::vector<Place>& GetPlaces() const { return mPlaces; }

private:
  Place& FindPlace(const std::string& aPath) {
    const auto [known, isNew] = mIndices.try_emplace(aPath, mPlaces.size());
    if (isNew) {
      Place place = {.path = aPath, .names = SplitPath(aPath)};
      for (std::size_t i = 0; i < place.names.size(); ++i)
        place.ordinals.push_back(GetOrdinal(i > 0 ? place.names[i - 1] : "", place.names[i]));
      mPlaces.push_back(std::move(place));
    }
    return mPlaces[known->second];
  }

  // Of roots, whose parent is empty, that in which they are met.
  std::size_t GetOrdinal(const std::string& aParent, const std::string& aName) {
    const auto [siblings, isNew] = mSiblings.try_emplace(aParent);
    std::vector<KrGenCategory*> categories;
    KrGenCategory* const parent = isNew ? mArray.GetCategory(aParent) : nullptr;
    if (parent != nullptr && parent->GetCategories(categories).IsOK())
      for (KrGenCategory* const category : categories)
        siblings->second.try_emplace(category->GetName().ToUtf8(), siblings->second.size());
    return siblings->second.try_emplace(aName, siblings->second.size()).first->second;
  }

  const KrGenParameterArray& mArray;
  std::vector<Place> mPlaces;
  std::map<std::string, std::size_t> mIndices;
  std::map<std::string, std::map<std::string, std::size_t>> mSiblings; // By the parent's name.
};

bool IsWithin(const Place& aPlace, const std::vector<std::string>& aCategory) {
  return std::search(aPlace.names.begin(), aPlace.names.end(), aCategory.begin(), aCategory.end()) !=
         aPlace.names.end();
}

bool AreVisible(const KrGenParameterArray& aArray, const std::vector<std::string>& aNames,
                KrGenVisibility aVisibility) {
  return std::all_of(aNames.begin(), aNames.end(), [&](const std::string& aName) {
    const KrGenCategory* const category = aArray.GetCategory(aName);
    return category == nullptr || category->IsVisible(aVisibility);
  });
}

KrResult MakeUnknownCategory(const std::vector<Place>& aPlaces, const std::string& aName) {
  std::vector<std::string> names;
  std::set<std::string> known;
  for (const Place& place : aPlaces)
    for (const std::string& name : place.names)
      if (known.insert(name).second)
        names.push_back(name);
  std::string text = "there is no category \"" + aName + "\"";
  for (std::size_t i = 0; i < names.size(); ++i)
    text += (i == 0 ? ". Categories are: " : ", ") + krapps::MakeField(names[i]);
  return {KrResult::Code::NotFound, text + "."};
}

void WriteFeature(KrGenParameter& aFeature, const std::string& aPath, std::ostream& aOut) {
  KrGenVisibility visibility = KrGenVisibility::Beginner;
  const KrResult known = aFeature.GetVisibility(visibility);
  const KrGenAccessMode access = aFeature.GetAccessMode();
  const FeatureState state = ReadState(aFeature, access);
  aOut << krapps::MakeField(aPath) << '\t' << krapps::MakeField(aFeature.GetName()) << '\t'
       << GetTypeWord(aFeature.GetType()) << '\t' << (known.IsOK() ? GetVisibilityWord(visibility) : "") << '\t'
       << GetAccessWord(access) << '\t' << state.value << '\t' << state.unit << '\t' << state.minimum << '\t'
       << state.maximum << '\t' << state.increment << '\t' << state.error << '\n';
}

} // namespace

KrResult WriteFeatureTable(KrGenParameterArray& aArray, const FeatureFilter& aFilter, std::ostream& aOut) {
  const PlaceList list(aArray);
  const std::vector<Place>& places = list.GetPlaces();
  const bool takesAll = aFilter.category.empty();
  const std::vector<std::string> category = SplitPath(aFilter.category);
  const auto isWanted = [&](const Place& aPlace) { return takesAll || IsWithin(aPlace, category); };
  // A category that holds no feature has no place.
  const bool isKnown = takesAll || aArray.GetCategory(aFilter.category) != nullptr ||
                       std::any_of(places.begin(), places.end(), isWanted);
  if (!isKnown)
    return MakeUnknownCategory(places, aFilter.category);

  aOut << kHeadings;
  for (const Place& place : places) {
    if (!isWanted(place) || !AreVisible(aArray, place.names, aFilter.visibility))
      continue;
    for (KrGenParameter* const feature : place.features)
      if (feature->IsVisible(aFilter.visibility))
        WriteFeature(*feature, place.path, aOut);
  }
  return {};
}

} // namespace krtool
