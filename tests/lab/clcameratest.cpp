// What the Camera Link cameras of the lab are made of: checksums, archives, registers.

#include "clcamerafixture.h"
#include "simulation/clcamera/clcameramemory.h"
#include "simulation/clcamera/gencpframes.h"
#include "simulation/clcamera/sha1.h"
#include "simulation/clcamera/zipping.h"

#include "krgenicam/krgendescription.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

using krtransport::CLAccess;
using krtransport::CLCameraMemory;
using krtransport::GenCPListener;

namespace {

std::string ToHexDigest(std::string_view aText) {
  const auto digest = krtransport::MakeSha1(aText);
  return ToHex({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

std::vector<std::uint8_t> ToBytes(std::string_view aHex) {
  const std::string bytes = FromHex(aHex);
  return {bytes.begin(), bytes.end()};
}

// Reading 4 bytes from 0, as request 0.
constexpr const char* kCommand = "0100 b7f3 b7ef 0000 4000 0800 000c 0000 0000 0000 0000 0000 0000 0004";

int CountCommands(std::string_view aBytes) {
  GenCPListener listener;
  int commands = 0;
  for (const char byte : aBytes) {
    listener.Hear(static_cast<std::uint8_t>(byte));
    while (listener.Take())
      ++commands;
  }
  return commands;
}

} // namespace

TEST(Sha1, OfTheStandardsMessages_IsTheStandardsDigest) {
  EXPECT_EQ(ToHexDigest("abc"), Hex("a9993e36 4706816a ba3e2571 7850c26c 9cd0d89d"));
  EXPECT_EQ(ToHexDigest(""), Hex("da39a3ee 5e6b4b0d 3255bfef 95601890 afd80709"));
  EXPECT_EQ(ToHexDigest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            Hex("84983e44 1c3bd26e baae4aa1 f95129e5 e54670f1"));
  EXPECT_EQ(ToHexDigest(std::string(1000000, 'a')), Hex("34aa973c d4c4daa4 f61eeb2b dbad2731 6534016f"));
}

TEST(Zipping, Archive_Unzipped_IsWhatWasZipped) {
  const std::string text = "<RegisterDescription>" + std::string(100000, ' ') + "</RegisterDescription>";

  const std::string archive = krtransport::MakeZip("camera.xml", text);

  EXPECT_EQ(archive.substr(0, 4), std::string("PK\x03\x04", 4));
  EXPECT_LT(archive.size(), 2000u);
  EXPECT_EQ(archive, krtransport::MakeZip("camera.xml", text)) << "the same bytes each time";
  KrGenDescription description;
  ASSERT_TRUE(KrGenDescription::ReadFromMemory(archive, "archive", description).IsOK());
  EXPECT_EQ(description.GetText(), text);
}

TEST(GenCPChecksum, Sums_FoldTheirCarries) {
  EXPECT_EQ(krtransport::MakeGenCPChecksum({}), 0xFFFF);
  EXPECT_EQ(krtransport::MakeGenCPChecksum(ToBytes("0001 f203 f4f5 f6f7")), 0x220D) << "the example of RFC 1071";
  EXPECT_EQ(krtransport::MakeGenCPChecksum(ToBytes("ffff 0001")), 0xFFFE);
  EXPECT_EQ(krtransport::MakeGenCPChecksum(ToBytes("12")), 0xEDFF) << "an odd byte is the upper one";
}

TEST(GenCPListener, Commands_AmongOtherBytes_AreFound) {
  const std::string command = FromHex(kCommand);
  std::string broken = command;
  broken[20] = '\x01';

  EXPECT_EQ(CountCommands(command), 1);
  EXPECT_EQ(CountCommands(command + command), 2);
  EXPECT_EQ(CountCommands(FromHex("01 00 01") + command), 1) << "a preamble that is none";
  EXPECT_EQ(CountCommands(broken), 0) << "what is wrong in the data is found by the second checksum";
  EXPECT_EQ(CountCommands(broken + command), 1);
  EXPECT_EQ(CountCommands(command.substr(0, 22) + command), 1) << "what was cut off takes nothing along";
}

TEST(CLCameraMemory, Reading_SpansRegistersAndStopsAtGaps) {
  CLCameraMemory memory{krtransport::LabCLCamera()};
  memory.Define(0x30000, krtransport::RegisterAccess::ReadOnly, {1, 2});
  memory.Define(0x30002, krtransport::RegisterAccess::ReadOnly, {3, 4});
  std::array<std::uint8_t, 3> bytes = {};

  EXPECT_EQ(memory.Read(0x30001, bytes, 0), CLAccess::Done);
  EXPECT_EQ(bytes, (std::array<std::uint8_t, 3>{2, 3, 4}));
  EXPECT_EQ(memory.Read(0x30002, bytes, 0), CLAccess::NoRegister);
  EXPECT_EQ(memory.Read(~std::uint64_t{0}, bytes, 0), CLAccess::NoRegister);
  EXPECT_EQ(bytes, (std::array<std::uint8_t, 3>{2, 3, 4})) << "nothing is set on failure";
}

TEST(CLCameraMemory, Restart_ForgetsFeaturesAndKeepsNameAndSets) {
  CLCameraMemory memory{krtransport::LabCLCamera()};
  const std::vector<std::uint8_t> width = ToBytes("0000 0140");
  const std::vector<std::uint8_t> one = ToBytes("0000 0001");
  ASSERT_EQ(memory.Write(0x10008, width), CLAccess::Done);
  ASSERT_EQ(memory.Write(0x184, ToBytes("61 62")), CLAccess::Done);
  ASSERT_EQ(memory.Write(0x10400, one), CLAccess::Done);
  ASSERT_EQ(memory.Write(0x10408, one), CLAccess::Done);

  memory.Restart();

  EXPECT_EQ(memory.GetInteger(0x10008), 640u);
  EXPECT_EQ(memory.GetText(0x184), "ab");
  ASSERT_EQ(memory.Write(0x10400, one), CLAccess::Done);
  ASSERT_EQ(memory.Write(0x10404, one), CLAccess::Done);
  EXPECT_EQ(memory.GetInteger(0x10008), 320u);
}
