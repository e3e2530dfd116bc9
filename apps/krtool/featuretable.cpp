#include "featuretable.h"

#include "featurewords.h"
#include "plaintext.h"
#include "valuetext.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <vector>

namespace krtool {

namespace {

constexpr const char* kHeadings = "path\tname\ttype\tvisibility\taccess\tvalue\tunit\tmin\tmax\tincrement\terror\n";
constexpr char kSeparator = '\\';

// A category by its path, with the features that stand directly in it.
struct Place {
  std::string path;
  std::vector<KrGenParameter*> features;
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

// The places in the order in which the tree reaches them: that of the first feature that stands there before anywhere
// else, where there is one.
class PlaceList {
public:
  explicit PlaceList(const KrGenParameterArray& aArray) {
    std::vector<KrStringList> paths(aArray.GetCount());
    for (std::size_t i = 0; i < aArray.GetCount(); ++i)
      if (aArray[i]->GetCategories(paths[i]).IsOK() && !paths[i].IsEmpty())
        FindPlace(paths[i][0]);
    for (std::size_t i = 0; i < aArray.GetCount(); ++i)
      for (const KrString& path : paths[i])
        FindPlace(path).features.push_back(aArray[i]);
  }

  const std::vector<Place>& GetPlaces() const { return mPlaces; }

private:
  Place& FindPlace(const KrString& aPath) {
    const auto [known, isNew] = mIndices.try_emplace(aPath.ToUtf8(), mPlaces.size());
    if (isNew)
      mPlaces.push_back({aPath.ToUtf8(), {}});
    return mPlaces[known->second];
  }

  std::vector<Place> mPlaces;
  std::map<std::string, std::size_t> mIndices;
};

bool IsWithin(const std::vector<std::string>& aNames, const std::string& aCategory) {
  return aCategory.empty() || std::find(aNames.begin(), aNames.end(), aCategory) != aNames.end();
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
    for (const std::string& name : SplitPath(place.path))
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
  const bool isKnown = aFilter.category.empty() || aArray.GetCategory(aFilter.category) != nullptr;
  if (!isKnown)
    return MakeUnknownCategory(places, aFilter.category);

  aOut << kHeadings;
  for (const Place& place : places) {
    const std::vector<std::string> names = SplitPath(place.path);
    if (!IsWithin(names, aFilter.category) || !AreVisible(aArray, names, aFilter.visibility))
      continue;
    for (KrGenParameter* const feature : place.features)
      if (feature->IsVisible(aFilter.visibility))
        WriteFeature(*feature, place.path, aOut);
  }
  return {};
}

} // namespace krtool
