#include "krbase/krstringlist.h"

void KrStringList::Add(const KrString& aText) {
  mTexts.push_back(aText);
}

void KrStringList::Clear() {
  mTexts.clear();
}

std::size_t KrStringList::GetCount() const {
  return mTexts.size();
}

bool KrStringList::IsEmpty() const {
  return mTexts.empty();
}

const KrString& KrStringList::operator[](std::size_t aIndex) const {
  // Never destroyed, so that a list read while the process ends still has it.
  static const KrString& emptyText = *new KrString();
  return aIndex < mTexts.size() ? mTexts[aIndex] : emptyText;
}

std::vector<KrString>::const_iterator KrStringList::begin() const {
  return mTexts.begin();
}

std::vector<KrString>::const_iterator KrStringList::end() const {
  return mTexts.end();
}
