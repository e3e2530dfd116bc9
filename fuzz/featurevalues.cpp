// Whatever may be written on the command line as a feature's value: what is taken is shown as a text in one line, which
// sets the same value again; what is not has a reason, and changes nothing.

#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "require.h"
#include "valuetext.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kMostBytes = 4096;

constexpr std::string_view kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Model" VendorName="Vendor" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
  ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-666666666666"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Port Name="Device"/>
<Integer Name="Number"><Value>64</Value></Integer>
<Integer Name="Bounded"><Value>64</Value><Min>16</Min><Max>640</Max><Inc>8</Inc></Integer>
<Integer Name="Key"><Value>255</Value><Representation>HexNumber</Representation></Integer>
<Integer Name="Address"><Value>1</Value><Representation>IPV4Address</Representation></Integer>
<Integer Name="MAC"><Value>1</Value><Representation>MACAddress</Representation></Integer>
<Float Name="Gain"><Value>0.5</Value><Min>-1.5</Min><Max>24</Max></Float>
<Boolean Name="Flip"><Value>true</Value></Boolean>
<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
  <EnumEntry Name="On"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>
<StringReg Name="Name"><Address>16</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
</StringReg>
</RegisterDescription>)";

constexpr const char* kFeatures[] = {"Number", "Bounded", "Key", "Address", "MAC", "Gain", "Flip", "Mode", "Name"};

// As long as the program runs, as every input sets it all anew.
struct Camera {
  Camera() {
    KrGenDescription description;
    Require(RequireReason(KrGenDescription::ReadFromMemory(kDescription, "camera", description)));
    Require(RequireReason(KrGenParameterArray::Open(description, memory, {}, array)));
  }
  KrGenMemoryPort memory;
  std::unique_ptr<KrGenParameterArray> array;
};

std::string Read(KrGenParameter& aFeature) {
  std::string text;
  Require(RequireReason(krtool::ReadValueText(aFeature, text)));
  Require(text.find_first_of("\r\n\t") == text.npos);
  return text;
}

void CheckFeature(KrGenParameter& aFeature, const std::string& aText) {
  const std::string before = Read(aFeature);
  const bool isSet = RequireReason(krtool::WriteValueText(aFeature, aText));
  const std::string after = Read(aFeature);
  Require(isSet || after == before);
  // A text of the camera's is cleaned for the line, so that it need not be the same.
  if (aFeature.GetType() != KrGenType::String) {
    Require(RequireReason(krtool::WriteValueText(aFeature, after)) && Read(aFeature) == after);
  }
  const krtool::FeatureState state = krtool::ReadState(aFeature, aFeature.GetAccessMode());
  Require(state.value == after && state.error.empty());
}

// Each number that a feature may have sets it, as the feature shows it; others, as of addresses, are refused.
void CheckNumber(KrGenParameterArray& aArray, std::int64_t aNumber) {
  for (const char* const name : {"Number", "Key", "Address", "MAC"}) {
    KrGenInteger& feature = *aArray.GetInteger(name);
    KrGenRepresentation representation{};
    Require(RequireReason(feature.GetRepresentation(representation)));
    const std::string text = krtool::FormatInteger(aNumber, representation);
    std::int64_t least = 0;
    std::int64_t most = 0;
    Require(RequireReason(feature.GetMin(least)) && RequireReason(feature.GetMax(most)));
    const bool isSet = RequireReason(krtool::WriteValueText(feature, text));
    Require(isSet == (aNumber >= least && aNumber <= most));
    std::int64_t number = 0;
    Require(RequireReason(feature.GetValue(number)) && (!isSet || number == aNumber));
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  static const Camera camera;
  if (aSize > kMostBytes)
    return 0;
  const std::string text(reinterpret_cast<const char*>(aData), aSize);
  for (const char* const name : kFeatures)
    CheckFeature(*camera.array->Get(name), text);
  std::int64_t number = 0;
  if (aSize >= sizeof number) {
    std::memcpy(&number, aData, sizeof number);
    CheckNumber(*camera.array, number);
  }
  return 0;
}
