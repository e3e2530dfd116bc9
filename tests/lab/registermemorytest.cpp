#include "simulation/registermemory.h"

#include <gmock/gmock.h>

#include <array>

using krtransport::RegisterAccess;
using krtransport::RegisterMemory;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

RegisterMemory MakeMemory() {
  RegisterMemory memory;
  memory.Define(0x10, 4, RegisterAccess::ReadWrite, "Width");
  memory.Define(0x14, 8, RegisterAccess::ReadOnly, "Serial");
  memory.Define(0x20, 4, RegisterAccess::WriteOnly, "Start");
  memory.Define(0x30, 8, RegisterAccess::ReadWrite, "Name");
  return memory;
}

struct RefusedAccess {
  const char* name;
  std::uint64_t address;
  std::size_t length;
  const char* text;
};

constexpr RefusedAccess kRefusedReads[] = {
    {"address no multiple of 4", 0x12, 4, "bad alignment (0x8005)"},
    {"length no multiple of 4", 0x10, 3, "bad alignment (0x8005)"},
    {"nothing at the address", 0x00, 4, "invalid address (0x8003)"},
    {"behind the last register", 0x38, 4, "invalid address (0x8003)"},
    {"at the end of the address space", 0xFFFFFFFFFFFFFFFC, 8, "invalid address (0x8003)"},
    {"beyond what adjoins", 0x10, 16, "invalid address (0x8003)"},
    {"write-only", 0x20, 4, "access denied (0x8006)"},
};

constexpr RefusedAccess kRefusedWrites[] = {
    {"address no multiple of 4", 0x11, 4, "bad alignment (0x8005)"},
    {"length of 0", 0x10, 0, "bad alignment (0x8005)"},
    {"nothing at the address", 0x24, 4, "invalid address (0x8003)"},
    {"read-only", 0x14, 4, "write protect (0x8004)"},
    {"longer than the register", 0x10, 8, "invalid address (0x8003)"},
    {"inside of the register", 0x34, 4, "invalid address (0x8003)"},
};

} // namespace

TEST(RegisterMemory, SetInteger_Value_IsStoredMostSignificantByteFirst) {
  RegisterMemory memory = MakeMemory();
  std::array<std::uint8_t, 4> bytes = {};

  memory.SetInteger(0x10, 0x01020304);

  ASSERT_TRUE(memory.Read(0x10, bytes.data(), bytes.size()).IsOK());
  EXPECT_THAT(bytes, ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(memory.GetInteger(0x10), 0x01020304u);
}

TEST(RegisterMemory, SetFloat_Value_IsStoredMostSignificantByteFirst) {
  RegisterMemory memory = MakeMemory();
  std::array<std::uint8_t, 8> bytes = {};

  memory.SetFloat(0x30, 1.0);

  ASSERT_TRUE(memory.Read(0x30, bytes.data(), bytes.size()).IsOK());
  EXPECT_THAT(bytes, ElementsAre(0x3F, 0xF0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(memory.GetFloat(0x30), 1.0);
}

TEST(RegisterMemory, Read_AdjoiningRegisters_AreReadTogether) {
  RegisterMemory memory = MakeMemory();
  memory.SetInteger(0x10, 0x61626364);
  memory.SetText(0x14, "efgh");
  std::array<char, 12> bytes = {};

  ASSERT_TRUE(memory.Read(0x10, bytes.data(), bytes.size()).IsOK());

  EXPECT_EQ(std::string(bytes.data()), "abcdefgh");
}

TEST(RegisterMemory, Read_WhatCannotBeRead_IsRefusedByName) {
  const RegisterMemory memory = MakeMemory();
  for (const RefusedAccess& row : kRefusedReads) {
    SCOPED_TRACE(row.name);
    std::array<std::uint8_t, 16> bytes = {};

    const KrResult result = memory.Read(row.address, bytes.data(), row.length);

    EXPECT_TRUE(result == KrResult::Code::ProtocolError);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.text));
  }
}

TEST(RegisterMemory, Write_WhatCannotBeWritten_IsRefusedByName) {
  RegisterMemory memory = MakeMemory();
  for (const RefusedAccess& row : kRefusedWrites) {
    SCOPED_TRACE(row.name);
    const std::array<std::uint8_t, 16> bytes = {};

    const KrResult result = memory.Write(row.address, bytes.data(), row.length);

    EXPECT_TRUE(result == KrResult::Code::ProtocolError);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.text));
  }
}

TEST(RegisterMemory, Write_ShorterText_LeavesNoRestOfTheFormer) {
  RegisterMemory memory = MakeMemory();
  memory.SetText(0x30, "12345678");

  ASSERT_TRUE(memory.Write(0x30, "abcd", 4).IsOK());

  EXPECT_EQ(memory.GetText(0x30), "abcd");
}

TEST(RegisterMemory, SetText_LongerThanTheRegister_IsCut) {
  RegisterMemory memory = MakeMemory();

  memory.SetText(0x30, "123456789");

  EXPECT_EQ(memory.GetText(0x30), "12345678");
}
