#pragma once
// Features and a serial line whose content a test decides.

#include "krsystem/ibytechannel.h"
#include "krsystem/ifeatureaccess.h"

#include <map>

/// Keeps enumerations and booleans in maps; every operation fails with refusal once that is set.
class FakeFeatures : public krsystem::IFeatureAccess {
public:
  struct Enumeration {
    KrStringList entries;
    KrString entry;
  };
  std::map<KrString, Enumeration> enumerations;
  std::map<KrString, bool> booleans;
  bool available = true;
  KrResult refusal;

  bool HasFeature(const KrString& aName) override { return enumerations.count(aName) + booleans.count(aName) > 0; }
  bool IsFeatureAvailable(const KrString& aName) override { return available && HasFeature(aName); }
  KrResult GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) override {
    aEntries = enumerations[aName].entries;
    return refusal;
  }
  KrResult GetEnumeration(const KrString& aName, KrString& aEntry) override {
    aEntry = enumerations[aName].entry;
    return refusal;
  }
  KrResult SetEnumeration(const KrString& aName, const KrString& aEntry) override {
    enumerations[aName].entry = aEntry;
    return refusal;
  }
  KrResult GetBoolean(const KrString& aName, bool& aValue) override {
    aValue = booleans[aName];
    return refusal;
  }
  KrResult SetBoolean(const KrString& aName, bool aValue) override {
    booleans[aName] = aValue;
    return refusal;
  }
};

/// Carries nothing.
class FakeByteChannel : public krsystem::IByteChannel {
public:
  KrResult Open() override { return {}; }
  void Close() override {}
  KrResult Read(std::uint8_t*, std::size_t, std::size_t& aRead, std::uint32_t, const std::stop_token&) override {
    aRead = 0;
    return KrResult::Code::TimeLimitExceeded;
  }
  KrResult Write(const std::uint8_t*, std::size_t, std::size_t& aWritten, std::uint32_t,
                 const std::stop_token&) override {
    aWritten = 0;
    return KrResult::Code::TimeLimitExceeded;
  }
};
