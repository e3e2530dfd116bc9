#include "krpersistence/krpropertylist.h"

#include <algorithm>
#include <utility>

void KrPropertyList::Add(const KrProperty& aProperty) {
  mProperties.push_back(aProperty);
}

void KrPropertyList::Clear() {
  mProperties.clear();
}

std::size_t KrPropertyList::GetCount() const {
  return mProperties.size();
}

bool KrPropertyList::IsEmpty() const {
  return mProperties.empty();
}

const KrProperty* KrPropertyList::GetProperty(const KrString& aName) const {
  const auto found = std::find_if(mProperties.begin(), mProperties.end(),
                                  [&aName](const KrProperty& aProperty) { return aProperty.GetName() == aName; });
  return found != mProperties.end() ? &*found : nullptr;
}

const KrProperty* KrPropertyList::GetProperty(std::size_t aIndex) const {
  return aIndex < mProperties.size() ? &mProperties[aIndex] : nullptr;
}

// The list is not const here, so neither are its properties.
KrProperty* KrPropertyList::GetProperty(const KrString& aName) {
  return const_cast<KrProperty*>(std::as_const(*this).GetProperty(aName));
}

KrProperty* KrPropertyList::GetProperty(std::size_t aIndex) {
  return const_cast<KrProperty*>(std::as_const(*this).GetProperty(aIndex));
}

std::vector<KrProperty>::iterator KrPropertyList::begin() {
  return mProperties.begin();
}

std::vector<KrProperty>::iterator KrPropertyList::end() {
  return mProperties.end();
}

std::vector<KrProperty>::const_iterator KrPropertyList::begin() const {
  return mProperties.begin();
}

std::vector<KrProperty>::const_iterator KrPropertyList::end() const {
  return mProperties.end();
}
