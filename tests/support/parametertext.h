#pragma once
// Short ways to a parameter of an array by its name, for tests: a failure fails the test.

#include "krgenicam/krgenparameterarray.h"

#include <gtest/gtest.h>

#include <cstdint>

/// The value as a text, as users see it; empty, and a failure, where it cannot be read.
inline KrString ReadText(KrGenParameterArray& aArray, const char* aName) {
  KrString text;
  KrGenParameter* const parameter = aArray.Get(aName);
  const KrResult result = parameter ? parameter->ToString(text) : KrResult(KrResult::Code::NotFound);
  EXPECT_TRUE(result.IsOK()) << aName << ": " << result.GetDescription().CStr();
  return text;
}

/// The number of an integer; -1, and a failure, where it cannot be read.
inline std::int64_t ReadNumber(KrGenParameterArray& aArray, const char* aName) {
  std::int64_t value = -1;
  KrGenInteger* const integer = aArray.GetInteger(aName);
  const KrResult result = integer ? integer->GetValue(value) : KrResult(KrResult::Code::NotFound);
  EXPECT_TRUE(result.IsOK()) << aName << ": " << result.GetDescription().CStr();
  return value;
}

/// Sets a value as users type it.
inline KrResult SetText(KrGenParameterArray& aArray, const char* aName, const KrString& aText) {
  KrGenParameter* const parameter = aArray.Get(aName);
  return parameter ? parameter->FromString(aText) : KrResult(KrResult::Code::NotFound);
}

/// Whether it can be written now; false where there is none of that name.
inline bool IsWritable(KrGenParameterArray& aArray, const char* aName) {
  KrGenParameter* const parameter = aArray.Get(aName);
  return parameter && parameter->IsWritable();
}

/// Every feature can be read, but for commands, and the description has no faults.
inline void ExpectAllReadable(KrGenParameterArray& aArray) {
  KrStringList faults;
  EXPECT_TRUE(aArray.GetFaults(faults).IsOK());
  EXPECT_TRUE(faults.IsEmpty()) << faults[0].CStr();
  EXPECT_GT(aArray.GetCount(), 0u);
  for (std::size_t i = 0; i < aArray.GetCount(); ++i) {
    KrGenType type = KrGenType::Command;
    KrString name;
    EXPECT_TRUE(aArray[i]->GetType(type).IsOK());
    EXPECT_TRUE(aArray[i]->GetName(name).IsOK());
    KrString text;
    if (type == KrGenType::Command)
      continue;
    const KrResult read = aArray[i]->ToString(text);
    EXPECT_TRUE(read.IsOK()) << name.CStr() << ": " << read.GetDescription().CStr();
  }
}
