#include "krgenicam/krgenparameterlist.h"

#include "map/selectorpath.h"

void KrGenParameterList::Add(KrGenParameter* aParameter) {
  mParameters.push_back(aParameter);
}

void KrGenParameterList::AddSelectorsOf(KrGenParameter& aParameter) {
  for (KrGenParameter* const selector : krgenicam::ListSelectors(aParameter))
    Add(selector);
}

void KrGenParameterList::Clear() {
  mParameters.clear();
  mNext = 0;
}

KrGenParameter* KrGenParameterList::operator[](std::size_t aIndex) const {
  return aIndex < mParameters.size() ? mParameters[aIndex] : nullptr;
}

KrGenParameter* KrGenParameterList::GetFirst() {
  mNext = 0;
  return GetNext();
}

KrGenParameter* KrGenParameterList::GetNext() {
  return mNext < mParameters.size() ? mParameters[mNext++] : nullptr;
}
