#include "genicamfeatures.h"

#include <algorithm>
#include <type_traits>

namespace benchmarks {

namespace {

template <typename Type, typename Value>
bool HasValue(Type& aFeature, KrResult (Type::*aGetter)(Value&)) {
  Value value{};
  return (aFeature.*aGetter)(value).IsOK();
}

bool CanRead(const OurFeatures::View& aView) {
  return std::visit([](auto* aFeature) { return HasValue(*aFeature, &std::decay_t<decltype(*aFeature)>::GetValue); },
                    aView);
}

template <typename Type>
void AddView(KrGenParameter* aParameter, std::vector<OurFeatures::View>& aViews) {
  if (auto* const view = dynamic_cast<Type*>(aParameter))
    aViews.emplace_back(view);
}

TheirFeatures::View MakeView(KrGenInteger*, ArvGcNode* aNode) {
  return ARV_GC_INTEGER(aNode);
}
TheirFeatures::View MakeView(KrGenFloat*, ArvGcNode* aNode) {
  return ARV_GC_FLOAT(aNode);
}
TheirFeatures::View MakeView(KrGenEnum*, ArvGcNode* aNode) {
  return ARV_GC_ENUMERATION(aNode);
}
TheirFeatures::View MakeView(KrGenBoolean*, ArvGcNode* aNode) {
  return ARV_GC_BOOLEAN(aNode);
}
TheirFeatures::View MakeView(KrGenString*, ArvGcNode* aNode) {
  return ARV_GC_STRING(aNode);
}

void Read(ArvGcInteger* aNode, GError** aError) {
  arv_gc_integer_get_value(aNode, aError);
}
void Read(ArvGcFloat* aNode, GError** aError) {
  arv_gc_float_get_value(aNode, aError);
}
void Read(ArvGcEnumeration* aNode, GError** aError) {
  arv_gc_enumeration_get_int_value(aNode, aError);
}
void Read(ArvGcBoolean* aNode, GError** aError) {
  arv_gc_boolean_get_value(aNode, aError);
}
void Read(ArvGcString* aNode, GError** aError) {
  arv_gc_string_get_value(aNode, aError);
}

bool CanRead(const TheirFeatures::View& aView) {
  AravisError error;
  std::visit([&error](auto* aNode) { Read(aNode, error.Take()); }, aView);
  return !error.IsSet();
}

bool TellsAccess(ArvGcFeatureNode* aNode) {
  AravisError error;
  arv_gc_feature_node_is_implemented(aNode, error.Take());
  bool isTold = !error.IsSet();
  arv_gc_feature_node_is_available(aNode, error.Take());
  isTold = isTold && !error.IsSet();
  arv_gc_feature_node_is_locked(aNode, error.Take());
  arv_gc_feature_node_get_actual_access_mode(aNode);
  return isTold && !error.IsSet();
}

template <typename View>
std::size_t CountRead(const std::vector<View>& aViews) {
  return static_cast<std::size_t>(
      std::count_if(aViews.begin(), aViews.end(), [](const View& aView) { return CanRead(aView); }));
}

} // namespace

OurFeatures::OurFeatures(KrGenParameterArray& aArray) {
  for (std::size_t i = 0; i < aArray.GetCount(); ++i) {
    all.push_back(aArray[i]);
    AddView<KrGenInteger>(aArray[i], views);
    AddView<KrGenFloat>(aArray[i], views);
    AddView<KrGenEnum>(aArray[i], views);
    AddView<KrGenBoolean>(aArray[i], views);
    AddView<KrGenString>(aArray[i], views);
  }
}

std::size_t OurFeatures::ReadAll() const {
  return CountRead(views);
}

std::size_t OurFeatures::AskAccess() const {
  return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [](KrGenParameter* aParameter) {
    return aParameter->GetAccessMode() >= KrGenAccessMode::ReadOnly;
  }));
}

TheirFeatures::TheirFeatures(const AravisMap& aMap, const OurFeatures& aOurs) {
  const auto find = [&aMap](KrGenParameter* aParameter) { return aMap.Find(aParameter->GetName().CStr()); };
  for (KrGenParameter* const parameter : aOurs.all)
    all.push_back(ARV_GC_FEATURE_NODE(find(parameter)));
  for (const OurFeatures::View& view : aOurs.views)
    views.push_back(std::visit([&](auto* aFeature) { return MakeView(aFeature, find(aFeature)); }, view));
}

std::size_t TheirFeatures::ReadAll() const {
  return CountRead(views);
}

std::size_t TheirFeatures::AskAccess() const {
  return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), TellsAccess));
}

void KeepWhatBothRead(OurFeatures& aOurs, TheirFeatures& aTheirs) {
  std::vector<OurFeatures::View> ours;
  std::vector<TheirFeatures::View> theirs;
  for (std::size_t i = 0; i < aOurs.views.size(); ++i)
    if (CanRead(aOurs.views[i]) && CanRead(aTheirs.views[i])) {
      ours.push_back(aOurs.views[i]);
      theirs.push_back(aTheirs.views[i]);
    }
  aOurs.views = std::move(ours);
  aTheirs.views = std::move(theirs);
}

} // namespace benchmarks
