#include "gencp/packet.h"

#include "gencp/packetreceiver.h"

#include <gtest/gtest.h>

#include <array>

namespace krcamerabridge {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Reading 4 bytes at 0 by request 0: the words of the header's part add up to 0x480C, with the rest to 0x4810.
const Bytes kReadOfTheVersion = {0x01, 0x00, 0xB7, 0xF3, 0xB7, 0xEF, 0x00, 0x00, 0x40, 0x00, 0x08, 0x00, 0x00, 0x0C,
                                 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04};
// Its answer, version 1.3: 0x0805 and 0x0809.
const Bytes kVersion = {0x01, 0x00, 0xF7, 0xFA, 0xF7, 0xF6, 0x00, 0x00, 0x00, 0x00,
                        0x08, 0x01, 0x00, 0x04, 0x00, 0x00, 0x00, 0x01, 0x00, 0x03};
// Writing 01 02 03 at 0x0000000100000204 by request 7: 0x4814, and with a zero behind the odd byte 0x4E1B.
const Bytes kWriteOfThree = {0x01, 0x00, 0xB7, 0xEB, 0xB1, 0xE4, 0x00, 0x00, 0x40, 0x00, 0x08, 0x02, 0x00, 0x0B,
                             0x00, 0x07, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x02, 0x04, 0x01, 0x02, 0x03};
// Request 7 needs a second more: 0x0810 and 0x0BF8.
const Bytes kPendingForASecond = {0x01, 0x00, 0xF7, 0xEF, 0xF4, 0x07, 0x00, 0x00, 0x00, 0x00,
                                  0x08, 0x05, 0x00, 0x04, 0x00, 0x07, 0x00, 0x00, 0x03, 0xE8};

const Packet kVersionPacket{0, 0, 0x0801, 0, {0, 1, 0, 3}};

Bytes Join(const Bytes& aFirst, const Bytes& aSecond) {
  Bytes both = aFirst;
  both.insert(both.end(), aSecond.begin(), aSecond.end());
  return both;
}

std::vector<Packet> TakeAll(PacketReceiver& aReceiver) {
  std::vector<Packet> packets;
  Packet packet;
  while (aReceiver.Take(packet))
    packets.push_back(packet);
  return packets;
}

TEST(GenCPPacket, Checksum_IsThatOfUdp) {
  struct Case {
    const char* name;
    Bytes bytes;
    std::uint16_t checksum;
  };
  const std::array cases = {
      Case{"nothing", {}, 0xFFFF},
      Case{"one word", {0x12, 0x34}, 0xEDCB},
      Case{"an odd byte is the upper one of its word", {0x12}, 0xEDFF},
      Case{"a carry is added again", {0xFF, 0xFF, 0x00, 0x02}, 0xFFFD},
      Case{"a carry of the carry, too", {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x01}, 0xFFFE},
      Case{"zero", {0xFF, 0xFF}, 0x0000},
      Case{"an example of RFC 1071", {0x00, 0x01, 0xF2, 0x03, 0xF4, 0xF5, 0xF6, 0xF7}, 0x220D},
  };
  for (const Case& sum : cases)
    EXPECT_EQ(GetChecksum(sum.bytes), sum.checksum) << sum.name;
}

TEST(GenCPPacket, Read_IsBuiltByteByByte) {
  const Packet packet{0, kRequestAcknowledge, kReadMemoryCommand, 0, BuildReadMemory(0, 4)};

  EXPECT_EQ(BuildPacket(packet), kReadOfTheVersion);
}

TEST(GenCPPacket, Write_IsBuiltByteByByte) {
  const Packet packet{0, kRequestAcknowledge, kWriteMemoryCommand, 7,
                      BuildWriteMemory(0x0000000100000204, Bytes{1, 2, 3})};

  EXPECT_EQ(BuildPacket(packet), kWriteOfThree);
}

TEST(GenCPPacket, Resend_HasItsFlagInTheChecksums) {
  const Packet packet{0, kRequestAcknowledge | kCommandResend, kReadMemoryCommand, 0, BuildReadMemory(0, 4)};

  const Bytes bytes = BuildPacket(packet);

  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 10),
            (Bytes{0x01, 0x00, 0x37, 0xF3, 0x37, 0xEF, 0x00, 0x00, 0xC0, 0x00}));
}

TEST(GenCPPacket, Answer_IsParsed) {
  Packet packet;
  std::size_t size = 0;

  EXPECT_EQ(ParsePacket(kVersion, packet, size), PacketState::Complete);

  EXPECT_EQ(packet, kVersionPacket);
  EXPECT_EQ(size, 20u);
}

TEST(GenCPPacket, PendingAnswer_IsParsed) {
  Packet packet;
  std::size_t size = 0;

  EXPECT_EQ(ParsePacket(kPendingForASecond, packet, size), PacketState::Complete);

  EXPECT_EQ(packet, (Packet{0, 0, kPendingAcknowledge, 7, {0, 0, 0x03, 0xE8}}));
}

TEST(GenCPPacket, EveryBeginning_IsIncomplete) {
  Packet packet;
  std::size_t size = 0;
  for (std::size_t count = 0; count < kVersion.size(); ++count)
    EXPECT_EQ(ParsePacket(std::span(kVersion).first(count), packet, size), PacketState::Incomplete) << count;
}

TEST(GenCPPacket, EveryChangedBit_IsNoticed) {
  for (std::size_t bit = 0; bit < 8 * kVersion.size(); ++bit) {
    Bytes bytes = kVersion;
    bytes[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
    Packet packet;
    std::size_t size = 0;

    EXPECT_EQ(ParsePacket(bytes, packet, size), PacketState::Damaged) << bit;
  }
}

TEST(GenCPPacket, ChecksumOfZero_MayBeSentAsAllOnes) {
  // The words of the header's part add up to 0xFFFF: status 0xF7FE, command 0x0801.
  const Bytes zero = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF7, 0xFE, 0x08, 0x01, 0x00, 0x00, 0x00, 0x00};
  Bytes ones = zero;
  std::fill(ones.begin() + 2, ones.begin() + 6, std::uint8_t{0xFF});
  Packet packet;
  std::size_t size = 0;

  EXPECT_EQ(ParsePacket(zero, packet, size), PacketState::Complete);
  EXPECT_EQ(ParsePacket(ones, packet, size), PacketState::Complete);
}

TEST(GenCPPacket, LengthBeyondTheLargestPacket_IsDamage) {
  // 1009 bytes: 0x0801 and 0x03F1 add up to 0x0BF2.
  const Bytes tooLong = {0x01, 0x00, 0xF4, 0x0D, 0xF4, 0x0D, 0x00, 0x00,
                         0x00, 0x00, 0x08, 0x01, 0x03, 0xF1, 0x00, 0x00};
  Packet packet;
  std::size_t size = 0;

  EXPECT_EQ(ParsePacket(tooLong, packet, size), PacketState::Damaged);
}

TEST(PacketReceiver, PacketThatComesByteByByte_IsTakenOnce) {
  PacketReceiver receiver;
  std::vector<Packet> packets;
  for (const std::uint8_t byte : kVersion) {
    receiver.Add(std::array{byte});
    for (Packet& packet : TakeAll(receiver))
      packets.push_back(packet);
  }

  EXPECT_EQ(packets, std::vector{kVersionPacket});
  EXPECT_FALSE(receiver.HasPart());
  EXPECT_FALSE(receiver.IsDamaged());
}

TEST(PacketReceiver, PacketsBehindEachOther_AreTakenInTheirOrder) {
  PacketReceiver receiver;
  receiver.Add(Join(kPendingForASecond, kVersion));

  const std::vector<Packet> packets = TakeAll(receiver);

  ASSERT_EQ(packets.size(), 2u);
  EXPECT_EQ(packets[0].commandID, kPendingAcknowledge);
  EXPECT_EQ(packets[1], kVersionPacket);
}

TEST(PacketReceiver, PacketBehindRubbish_IsTaken) {
  const std::array rubbish = {Bytes{0x00},
                              Bytes{0x01},
                              Bytes{0x01, 0x00},
                              Bytes{0x01, 0x01},
                              Bytes{0xFF, 0x01, 0x00, 0x55, 0x01},
                              Bytes(kVersion.begin(), kVersion.begin() + 9)};
  for (const Bytes& bytes : rubbish) {
    PacketReceiver receiver;
    receiver.Add(Join(bytes, kVersion));

    EXPECT_EQ(TakeAll(receiver), std::vector{kVersionPacket}) << bytes.size();
    EXPECT_TRUE(receiver.IsDamaged()) << bytes.size();
  }
}

TEST(PacketReceiver, PacketBehindOneWithALostByte_IsTaken) {
  for (std::size_t lost = 0; lost < kVersion.size(); ++lost) {
    Bytes damaged = kVersion;
    damaged.erase(damaged.begin() + static_cast<std::ptrdiff_t>(lost));
    PacketReceiver receiver;
    receiver.Add(Join(damaged, kVersion));

    EXPECT_EQ(TakeAll(receiver), std::vector{kVersionPacket}) << lost;
  }
}

TEST(PacketReceiver, PacketBehindOneWithADoubledByte_IsTaken) {
  for (std::size_t doubled = 0; doubled < kVersion.size(); ++doubled) {
    Bytes damaged = kVersion;
    damaged.insert(damaged.begin() + static_cast<std::ptrdiff_t>(doubled), kVersion[doubled]);
    PacketReceiver receiver;
    receiver.Add(Join(damaged, kPendingForASecond));

    const std::vector<Packet> packets = TakeAll(receiver);

    ASSERT_FALSE(packets.empty()) << doubled;
    EXPECT_EQ(packets.back().commandID, kPendingAcknowledge) << doubled;
  }
}

TEST(PacketReceiver, Clear_ForgetsTheBeginningOfAPacket) {
  PacketReceiver receiver;
  receiver.Add(std::span(kVersion).first(10));
  ASSERT_TRUE(TakeAll(receiver).empty());
  ASSERT_TRUE(receiver.HasPart());

  receiver.Clear();

  EXPECT_FALSE(receiver.HasPart());
  receiver.Add(kVersion);
  EXPECT_EQ(TakeAll(receiver), std::vector{kVersionPacket});
}

TEST(PacketReceiver, EndlessRubbish_IsNotKept) {
  PacketReceiver receiver;
  for (int i = 0; i < 100; ++i) {
    receiver.Add(Bytes(1000, 0x55));
    EXPECT_TRUE(TakeAll(receiver).empty());
  }

  EXPECT_FALSE(receiver.HasPart());
}

} // namespace
} // namespace krcamerabridge
