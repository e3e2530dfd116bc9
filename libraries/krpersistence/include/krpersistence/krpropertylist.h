#pragma once
// Named settings in their order, as windows save and load them. Files are left to the configuration writer and reader.

#include "krpersistence/krproperty.h"

#include <cstddef>
#include <vector>

/// A list of properties in the order in which they were added; equal names may occur several times.
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: owns its properties; pointers to them are valid until the list is changed.
///
///     KrPropertyList list;
///     list.Add({"View", "Tree"});
///     if (const KrProperty* view = list.GetProperty("View"))
///       ShowTree(view->GetValue() == "Tree");
class KR_EXPORT KrPropertyList {
public:
  /// Appends a property.
  void Add(const KrProperty& aProperty);
  /// Removes all properties.
  void Clear();
  /// The number of properties.
  std::size_t GetCount() const;
  /// Whether there are no properties.
  bool IsEmpty() const;

  /// The first property of a name, or null. Names are compared exactly, case included.
  KrProperty* GetProperty(const KrString& aName);
  /// The same, to be read.
  const KrProperty* GetProperty(const KrString& aName) const;
  /// The property at an index, or null at GetCount() and beyond.
  KrProperty* GetProperty(std::size_t aIndex);
  /// The same, to be read.
  const KrProperty* GetProperty(std::size_t aIndex) const;

  /// For range-based loops; valid until the list is changed.
  std::vector<KrProperty>::iterator begin();
  /// For range-based loops; valid until the list is changed.
  std::vector<KrProperty>::iterator end();
  /// For range-based loops; valid until the list is changed.
  std::vector<KrProperty>::const_iterator begin() const;
  /// For range-based loops; valid until the list is changed.
  std::vector<KrProperty>::const_iterator end() const;

  /// Whether both have the same properties in the same order.
  friend bool operator==(const KrPropertyList&, const KrPropertyList&) = default;

private:
  std::vector<KrProperty> mProperties;
};
