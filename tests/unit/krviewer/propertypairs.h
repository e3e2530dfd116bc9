#pragma once
// Property lists as pairs of names and values, which tests can write down and compare.

#include "krpersistence/krpropertylist.h"

#include <string>
#include <utility>
#include <vector>

using Properties = std::vector<std::pair<std::string, std::string>>;

inline KrPropertyList MakeList(const Properties& aProperties) {
  KrPropertyList list;
  for (const auto& [name, value] : aProperties)
    list.Add({KrString(name), KrString(value)});
  return list;
}

inline Properties ToProperties(const KrPropertyList& aList) {
  Properties properties;
  for (const KrProperty& property : aList)
    properties.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
  return properties;
}
