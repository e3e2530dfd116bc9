#include "describedcamera.h"
#include "registertext.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

const std::string kCommand =
    MakeRegister("Raw", 0) + R"(
<Command Name="Run"><pValue>Raw</pValue><CommandValue>5</CommandValue></Command>
)" +
    "<IntReg Name=\"Count\"><Address>16</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
    "<pInvalidator>Run</pInvalidator><Endianess>LittleEndian</Endianess></IntReg>";

} // namespace

TEST(CommandNode, Execute_WritesTheCommandValue) {
  DescribedCamera camera(kCommand);

  ASSERT_TRUE(camera.Command("Run").Execute().IsOK());

  EXPECT_EQ(camera.Peek(0, 4), (std::vector<std::uint8_t>{5, 0, 0, 0}));
}

TEST(CommandNode, IsDone_WhenTheDeviceHasAnotherValue) {
  DescribedCamera camera(kCommand);
  KrGenCommand& run = camera.Command("Run");
  ASSERT_TRUE(run.Execute().IsOK());

  EXPECT_FALSE(Read(run, &KrGenCommand::IsDone));
  EXPECT_FALSE(Read(run, &KrGenCommand::IsDone));
  camera.Poke(0, {0});
  EXPECT_TRUE(Read(run, &KrGenCommand::IsDone));
}

TEST(CommandNode, IsDone_AsksTheDeviceEachTime) {
  DescribedCamera camera(kCommand);
  KrGenCommand& run = camera.Command("Run");
  ASSERT_TRUE(run.Execute().IsOK());
  static_cast<void>(camera.port.TakeRecords());

  static_cast<void>(Read(run, &KrGenCommand::IsDone));
  static_cast<void>(Read(run, &KrGenCommand::IsDone));

  EXPECT_EQ(camera.port.CountReads(), 2u);
}

TEST(CommandNode, WhatItInvalidates_IsReadAnewWhenExecutedAndWhenDone) {
  DescribedCamera camera(kCommand);
  KrGenCommand& run = camera.Command("Run");
  KrGenInteger& count = camera.Integer("Count");
  EXPECT_EQ(Read(count, &KrGenInteger::GetValue), 0);

  camera.Poke(16, {1});
  EXPECT_EQ(Read(count, &KrGenInteger::GetValue), 0);
  ASSERT_TRUE(run.Execute().IsOK());
  EXPECT_EQ(Read(count, &KrGenInteger::GetValue), 1);
  camera.Poke(16, {2});
  EXPECT_FALSE(Read(run, &KrGenCommand::IsDone));
  EXPECT_EQ(Read(count, &KrGenInteger::GetValue), 1);
  camera.Poke(0, {0});
  EXPECT_TRUE(Read(run, &KrGenCommand::IsDone));
  EXPECT_EQ(Read(count, &KrGenInteger::GetValue), 2);
}

TEST(CommandNode, AsNumber_IsOneWhileKnownToBeUnderWay) {
  DescribedCamera camera(kCommand + "<Integer Name=\"Running\"><pValue>Run</pValue></Integer>");
  KrGenInteger& running = camera.Integer("Running");
  EXPECT_EQ(Read(running, &KrGenInteger::GetValue), 0);

  ASSERT_TRUE(camera.Command("Run").Execute().IsOK());
  EXPECT_EQ(Read(running, &KrGenInteger::GetValue), 1);
  camera.Poke(0, {0});
  EXPECT_TRUE(Read(camera.Command("Run"), &KrGenCommand::IsDone));
  EXPECT_EQ(Read(running, &KrGenInteger::GetValue), 0);
}

TEST(CommandNode, WhatCannotBeAsked_IsDoneAtOnce) {
  DescribedCamera camera(MakeRegister("Raw", 0, "WO") +
                         "<Command Name=\"Run\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>"
                         "<Command Name=\"Floating\"><Value>0</Value><CommandValue>1</CommandValue></Command>");

  ASSERT_TRUE(camera.Command("Run").Execute().IsOK());
  ASSERT_TRUE(camera.Command("Floating").Execute().IsOK());
  EXPECT_TRUE(Read(camera.Command("Run"), &KrGenCommand::IsDone));
  EXPECT_TRUE(Read(camera.Command("Floating"), &KrGenCommand::IsDone));
  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(CommandNode, CommandValueOfAnotherNode_IsTakenWhenExecuted) {
  DescribedCamera camera(MakeRegister("Raw", 0) +
                         "<Integer Name=\"What\"><Value>9</Value></Integer>"
                         "<Command Name=\"Run\"><pValue>Raw</pValue><pCommandValue>What</pCommandValue></Command>");
  ASSERT_TRUE(camera.Command("Run").Execute().IsOK());
  ASSERT_TRUE(camera.Integer("What").SetValue(8).IsOK());

  EXPECT_EQ(camera.Peek(0, 1)[0], 9);
  EXPECT_FALSE(Read(camera.Command("Run"), &KrGenCommand::IsDone));
}

TEST(CommandNode, ExecuteRefused_WritesNothing) {
  struct Row {
    const char* name;
    std::string nodes;
    KrResult::Code code;
  };
  const Row kRows[] = {
      {"locked",
       MakeRegister("Raw", 0) + "<Command Name=\"Run\"><pIsLocked>One</pIsLocked><pValue>Raw</pValue>"
                                "<CommandValue>1</CommandValue></Command>",
       KrResult::Code::AccessDenied},
      {"read only target",
       MakeRegister("Raw", 0, "RO") +
           "<Command Name=\"Run\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>",
       KrResult::Code::AccessDenied},
      {"value out of range",
       MakeRegister("Raw", 0) + "<Command Name=\"Run\"><pValue>Raw</pValue><CommandValue>-1</CommandValue></Command>",
       KrResult::Code::OutOfRange},
      {"value that is missing",
       MakeRegister("Raw", 0) +
           "<Command Name=\"Run\"><pValue>Raw</pValue><pCommandValue>Missing</pCommandValue></Command>",
       KrResult::Code::BadData},
      {"target that is missing",
       "<Command Name=\"Run\"><pValue>Missing</pValue><CommandValue>1</CommandValue></Command>",
       KrResult::Code::BadData},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    DescribedCamera camera(row.nodes + "<Integer Name=\"One\"><Value>1</Value></Integer>");

    EXPECT_EQ(camera.Command("Run").Execute(), row.code);
    EXPECT_EQ(camera.port.CountWrites(), 0u);
  }
}

TEST(CommandNode, DeviceThatSaysError_FailsWithItsWords) {
  DescribedCamera camera(
      kCommand +
      "<Enumeration Name=\"Verdict\"><EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry>"
      "<EnumEntry Name=\"TooHot\"><ToolTip>Let it cool down</ToolTip><DisplayName>Too hot</DisplayName>"
      "<Value>3</Value></EnumEntry><Value>3</Value></Enumeration>"
      "<Command Name=\"Risky\"><pError>Verdict</pError><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>");

  const KrResult result = camera.Command("Risky").Execute();

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("TooHot (Too hot: Let it cool down)"));
}
