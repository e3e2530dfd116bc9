#include "aravis/valuechains.h"

#include "aravis/gobjectpointer.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace krtransport;

KrResult Check(const std::string& aNodes) {
  const std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription "
                           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
                           aNodes + "</RegisterDescription>";
  const GObjectPointer<ArvGc> description(arv_gc_new(nullptr, text.data(), text.size()));
  EXPECT_NE(description, nullptr);
  return description ? CheckValueChains(*description, {"Missing", "PayloadSize"}) : KrResult();
}

std::string MakeChain(int aNodes) {
  std::string nodes = "<Integer Name=\"PayloadSize\"><pValue>N1</pValue></Integer>";
  for (int i = 1; i < aNodes - 1; ++i)
    nodes += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i + 1) + "</pValue></Integer>";
  return nodes + "<Integer Name=\"N" + std::to_string(aNodes - 1) + "\"><Value>1</Value></Integer>";
}

TEST(ValueChains, ThatEnd_AreWell) {
  const char* const rows[] = {
      "",
      "<Integer Name=\"PayloadSize\"><Value>1</Value></Integer>",
      "<Integer Name=\"PayloadSize\"><pValue>Gone</pValue></Integer>",
      // A diamond is no circle, and limits that stand on each other are none of the value's.
      "<IntSwissKnife Name=\"PayloadSize\"><pVariable Name=\"A\">A</pVariable><pVariable Name=\"B\">B</pVariable>"
      "<Formula>A*B</Formula></IntSwissKnife><Integer Name=\"A\"><pValue>C</pValue><pMax>D</pMax></Integer>"
      "<Integer Name=\"B\"><pValue>C</pValue></Integer><Integer Name=\"C\"><Value>1</Value></Integer>"
      "<Integer Name=\"D\"><Value>1</Value><pMax>A</pMax></Integer>",
  };

  for (const char* const row : rows) {
    const KrResult result = Check(row);
    EXPECT_TRUE(result.IsOK()) << row << "\n" << result.GetDescription().CStr();
  }
}

TEST(ValueChains, InACircle_AreRefused) {
  const char* const rows[] = {
      "<Integer Name=\"PayloadSize\"><pValue>PayloadSize</pValue></Integer>",
      "<Integer Name=\"PayloadSize\"><pValue> A </pValue></Integer><Integer Name=\"A\"><pValue>PayloadSize</pValue>"
      "</Integer>",
      "<IntSwissKnife Name=\"PayloadSize\"><pVariable Name=\"A\">A</pVariable><Formula>A</Formula></IntSwissKnife>"
      "<IntReg Name=\"A\"><pAddress>B</pAddress><Length>4</Length></IntReg>"
      "<IntReg Name=\"B\"><Address>0</Address><pLength>PayloadSize</pLength></IntReg>",
      "<IntReg Name=\"PayloadSize\"><IntSwissKnife><pVariable Name=\"A\">PayloadSize</pVariable><Formula>A</Formula>"
      "</IntSwissKnife><Length>4</Length></IntReg>",
      "<StructReg><pAddress>PayloadSize</pAddress><Length>4</Length><StructEntry Name=\"PayloadSize\"><Bit>1</Bit>"
      "</StructEntry></StructReg>",
      "<Integer Name=\"PayloadSize\"><Value>1</Value><pMax>A</pMax></Integer><Integer Name=\"A\"><pValue>A</pValue>"
      "</Integer>",
      "<Integer Name=\"PayloadSize\"><pValue>A</pValue></Integer><Integer Name=\"A\"><Value>1</Value><pMin>B</pMin>"
      "</Integer><Integer Name=\"B\"><pValue>B</pValue></Integer>",
  };

  for (const char* const row : rows) {
    const KrResult result = Check(row);
    EXPECT_EQ(result, KrResult::Code::BadData) << row;
    EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("lets PayloadSize stand on itself"));
  }
}

TEST(ValueChains, OfTenThousandNodes_AreRefusedWithoutFollowingThem) {
  EXPECT_TRUE(Check(MakeChain(200)).IsOK());
  EXPECT_EQ(Check(MakeChain(300)), KrResult::Code::BadData);
  EXPECT_EQ(Check(MakeChain(10'000)), KrResult::Code::BadData);
}

// Each node stands on the next one twice, so that the last is evaluated 2^(nodes - 1) times.
std::string MakeDoubled(int aNodes) {
  std::string nodes = "<Integer Name=\"PayloadSize\"><pValue>N1</pValue></Integer>";
  for (int i = 1; i < aNodes; ++i) {
    const std::string next = ">N" + std::to_string(i + 1) + "</pVariable>";
    nodes += "<IntSwissKnife Name=\"N" + std::to_string(i) + "\"><pVariable Name=\"A\"" + next +
             "<pVariable Name=\"B\"" + next + "<Formula>A+B</Formula></IntSwissKnife>";
  }
  return nodes + "<Integer Name=\"N" + std::to_string(aNodes) + "\"><Value>1</Value></Integer>";
}

TEST(ValueChains, ThatDoubleAtEachNode_AreRefusedBeforeAnythingIsAsked) {
  EXPECT_TRUE(Check(MakeDoubled(12)).IsOK());
  EXPECT_EQ(Check(MakeDoubled(40)), KrResult::Code::BadData);
  EXPECT_EQ(Check(MakeDoubled(200)), KrResult::Code::BadData);
}

} // namespace
