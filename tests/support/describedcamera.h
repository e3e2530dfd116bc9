#pragma once
// A parameter array over memory, made from the nodes of a description: what tests of the engine stand on.

#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "recordingport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// The nodes inside the root element of schema 1.1, with a port "Device".
inline std::string MakeDescription(std::string_view aNodes) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Model" VendorName="Vendor" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
  ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-666666666666"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Port Name="Device"/>
)" + std::string(aNodes) +
         "\n</RegisterDescription>\n";
}

/// A camera that is its description and memory. Fails the test that makes it when the description is refused.
class DescribedCamera {
public:
  explicit DescribedCamera(std::string_view aNodes, KrGenArrayOptions aOptions = {}) {
    OpenText(MakeDescription(aNodes), aOptions);
  }

  /// The typed view of a name; a test failure and null where there is none.
  template <typename Parameter>
  Parameter* Get(const char* aName) {
    auto* const parameter = dynamic_cast<Parameter*>(array->Get(aName));
    EXPECT_NE(parameter, nullptr) << aName;
    return parameter;
  }
  KrGenInteger& Integer(const char* aName) { return *Get<KrGenInteger>(aName); }
  KrGenFloat& Float(const char* aName) { return *Get<KrGenFloat>(aName); }
  KrGenEnum& Enum(const char* aName) { return *Get<KrGenEnum>(aName); }
  KrGenBoolean& Boolean(const char* aName) { return *Get<KrGenBoolean>(aName); }
  KrGenString& String(const char* aName) { return *Get<KrGenString>(aName); }
  KrGenCommand& Command(const char* aName) { return *Get<KrGenCommand>(aName); }
  KrGenRegister& Register(const char* aName) { return *Get<KrGenRegister>(aName); }

  /// Bytes of the memory, unseen by the array: the device changes by itself.
  void Poke(std::uint64_t aAddress, std::initializer_list<std::uint8_t> aBytes) {
    const std::vector<std::uint8_t> bytes(aBytes);
    ASSERT_TRUE(memory.Write(aAddress, bytes.data(), bytes.size(), 1000).IsOK());
  }
  std::vector<std::uint8_t> Peek(std::uint64_t aAddress, std::size_t aLength) {
    std::vector<std::uint8_t> bytes(aLength);
    EXPECT_TRUE(memory.Read(aAddress, bytes.data(), aLength, 1000).IsOK());
    return bytes;
  }

  KrGenMemoryPort memory;
  RecordingPort port{memory};
  std::unique_ptr<KrGenParameterArray> array;

private:
  void OpenText(const std::string& aText, const KrGenArrayOptions& aOptions) {
    KrGenDescription description;
    const KrResult read = KrGenDescription::ReadFromMemory(aText, "test", description);
    ASSERT_TRUE(read.IsOK()) << read.GetDescription().CStr();
    const KrResult opened = KrGenParameterArray::Open(description, port, aOptions, array);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  }
};

/// The value that a getter gives; a test failure and the type's zero where it fails.
template <typename Value, typename Parameter>
Value Read(Parameter& aParameter, KrResult (Parameter::*aGetter)(Value&)) {
  Value value{};
  const KrResult result = (aParameter.*aGetter)(value);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return value;
}
template <typename Value, typename Parameter>
Value Read(Parameter& aParameter, KrResult (Parameter::*aGetter)(Value&) const) {
  Value value{};
  const KrResult result = (aParameter.*aGetter)(value);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return value;
}
