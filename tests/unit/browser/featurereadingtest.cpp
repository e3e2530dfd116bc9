#include "logic/browser/featurereading.h"

#include "nodebench.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

using namespace krgui;

namespace {

const std::string kPredicates = R"(
<Integer Name="Zero"><Value>0</Value></Integer>
<Integer Name="One"><Value>1</Value></Integer>
)" + MakeUncachedRegister("Raw", 0) +
                                MakeUncachedRegister("Limit", 8) + MakeUncachedRegister("State", 16);

struct ValueRow {
  const char* description;
  const char* feature;
  std::string nodes;
  const char* text;
};

std::string MakeInteger(const char* aName, const std::string& aContent) {
  return "<Integer Name=\"" + std::string(aName) + "\">" + aContent + "</Integer>";
}

FeatureReading ReadStyled(NodeBench& aCamera, const char* aName) {
  const std::string name = aName;
  return ReadFeature(*aCamera.array->Get(aName),
                     {.isMACAddress = name == "GevMACAddress", .isIPAddress = name == "GevCurrentIPAddress"});
}

KrResult MakeFailure() {
  return {KrResult::Code::TimeLimitExceeded, "The device did not answer within 1000 ms."};
}

} // namespace

TEST(FeatureReading, Values_OfEachType_BecomeText) {
  const std::string entries = "<EnumEntry Name=\"Mono8\"><DisplayName>Mono 8 bits</DisplayName><Value>1</Value>"
                              "</EnumEntry><EnumEntry Name=\"Mono12\"><Value>2</Value></EnumEntry>";
  const ValueRow kRows[] = {
      {"MAC address", "GevMACAddress", MakeInteger("GevMACAddress", "<Value>0x0011223344556677</Value>"),
       "22:33:44:55:66:77"},
      {"MAC address with unit and representation", "GevMACAddress",
       MakeInteger("GevMACAddress", "<Value>1</Value><Unit>px</Unit><Representation>HexNumber</Representation>"),
       "00:00:00:00:00:01"},
      {"IP address", "GevCurrentIPAddress", MakeInteger("GevCurrentIPAddress", "<Value>0xC0A80001</Value>"),
       "192.168.0.1"},
      {"IP address with unit and representation", "GevCurrentIPAddress",
       MakeInteger("GevCurrentIPAddress",
                   "<Value>0xC0A80001</Value><Unit>px</Unit><Representation>HexNumber</Representation>"),
       "192.168.0.1"},
      {"representation alone makes no IP address", "X",
       MakeInteger("X", "<Value>256</Value><Representation>IPV4Address</Representation>"), "256 "},
      {"hexadecimal with unit", "X",
       MakeInteger("X", "<Value>255</Value><Unit>px</Unit><Representation>HexNumber</Representation>"), "0xFF px"},
      {"hexadecimal without unit", "X",
       MakeInteger("X", "<Value>255</Value><Representation>HexNumber</Representation>"), "0xFF "},
      {"negative hexadecimal", "X", MakeInteger("X", "<Value>-1</Value><Representation>HexNumber</Representation>"),
       "0xFFFFFFFFFFFFFFFF "},
      {"decimal with unit", "X", MakeInteger("X", "<Value>-12</Value><Unit>px</Unit>"), "-12 px"},
      {"decimal without unit", "X", MakeInteger("X", "<Value>640</Value>"), "640 "},
      {"float with unit", "X", "<Float Name=\"X\"><Value>0.5</Value><Unit>ms</Unit></Float>", "0.5 ms"},
      {"float without unit", "X", "<Float Name=\"X\"><Value>1234567.0</Value></Float>", "1.23457e+06 "},
      {"float of an IP address's name", "GevCurrentIPAddress",
       "<Float Name=\"GevCurrentIPAddress\"><Value>1.5</Value></Float>", "1.5 "},
      {"string of the MAC address's name", "GevMACAddress",
       "<String Name=\"GevMACAddress\"><Value>none</Value></String>", "none"},
      {"true", "X", "<Boolean Name=\"X\"><Value>true</Value></Boolean>", "True"},
      {"false", "X", "<Boolean Name=\"X\"><Value>false</Value></Boolean>", "False"},
      {"entry", "X", "<Enumeration Name=\"X\">" + entries + "<Value>1</Value></Enumeration>", "Mono8"},
      {"string", "X", "<String Name=\"X\"><Value>a &lt;b&gt; c</Value></String>", "a <b> c"},
      {"empty string", "X", "<String Name=\"X\"><Value></Value></String>", ""},
      {"register", "X",
       "<Register Name=\"X\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
       "</Register>",
       "{Register}"},
      {"command that is done", "X", "<Command Name=\"X\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>",
       "{Command}"},
  };

  for (const ValueRow& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(kPredicates + row.nodes);

    const FeatureReading reading = ReadStyled(camera, row.feature);

    EXPECT_EQ(reading.value.ToUtf8(), row.text);
    EXPECT_FALSE(reading.keepsValue);
    EXPECT_FALSE(reading.hasError) << reading.error.CStr();
    EXPECT_TRUE(reading.error.IsEmpty());
    EXPECT_EQ(reading.access, (AccessFlags{true, true, true, true}));
  }
}

TEST(FeatureReading, Entry_WithDisplayNames_ShowsItsDisplayName) {
  NodeBench camera("<Enumeration Name=\"X\"><EnumEntry Name=\"A\"><DisplayName>Letter A</DisplayName><Value>1</Value>"
                   "</EnumEntry><EnumEntry Name=\"B\"><Value>2</Value></EnumEntry><Value>1</Value></Enumeration>");
  KrGenEnum& feature = camera.Enum("X");

  EXPECT_EQ(ReadFeature(feature, {.showsDisplayNames = true}).value, KrString("Letter A"));
  EXPECT_EQ(ReadFeature(feature, {}).value, KrString("A"));
  ASSERT_TRUE(feature.SetValue(2).IsOK());
  EXPECT_EQ(ReadFeature(feature, {.showsDisplayNames = true}).value, KrString("B"));
}

TEST(FeatureReading, Register_IsNeverRead) {
  NodeBench camera("<Register Name=\"X\"><Address>64</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                   "<pPort>Device</pPort></Register>");
  (void)camera.port.TakeRecords();

  const FeatureReading reading = ReadFeature(camera.Register("X"), {});

  EXPECT_EQ(reading.value, KrString("{Register}"));
  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(FeatureReading, RegisterPort_ThatFails_FailsTheStepThatAskedIt) {
  struct {
    const char* description;
    std::string nodes;
    const char* context;
  } const kRows[] = {
      {"integer", "<Integer Name=\"X\"><pValue>Raw</pValue></Integer>", "Error reading value"},
      {"MAC address", "<Integer Name=\"GevMACAddress\"><pValue>Raw</pValue></Integer>", "Error reading value"},
      {"IP address", "<Integer Name=\"GevCurrentIPAddress\"><pValue>Raw</pValue></Integer>", "Error reading value"},
      {"float", "<Float Name=\"X\"><pValue>Raw</pValue></Float>", "Error reading value"},
      {"boolean", "<Boolean Name=\"X\"><pValue>Raw</pValue></Boolean>", "Error reading value"},
      {"enumeration",
       "<Enumeration Name=\"X\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><pValue>Raw</pValue></Enumeration>",
       "Error reading value"},
      {"string",
       "<StringReg Name=\"X\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
       "<Cachable>NoCache</Cachable></StringReg>",
       "Error reading value"},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(kPredicates + row.nodes);
    const std::size_t nameAt = row.nodes.find('"') + 1;
    const std::string name = row.nodes.substr(nameAt, row.nodes.find('"', nameAt) - nameAt);
    camera.FailReads(0, MakeFailure());

    const FeatureReading reading = ReadStyled(camera, name.c_str());

    EXPECT_TRUE(reading.hasError);
    EXPECT_TRUE(reading.error.ToUtf8().starts_with(std::string(row.context) + ", ")) << reading.error.CStr();
    EXPECT_NE(reading.error.ToUtf8().find("did not answer within 1000 ms"), std::string::npos) << reading.error.CStr();
    EXPECT_TRUE(reading.value.IsEmpty());
    EXPECT_FALSE(reading.keepsValue) << "a failure leaves an empty text, not that of an earlier reading";
    EXPECT_EQ(reading.access, (AccessFlags{true, true, true, true}));
  }
}

TEST(FeatureReading, Error_IsTheContextAndTheLibrarysOwnWords) {
  NodeBench camera(kPredicates + "<Integer Name=\"X\"><pValue>Raw</pValue></Integer>");
  camera.FailReads(0, MakeFailure());
  std::int64_t value = 0;
  const KrResult failure = camera.Integer("X").GetValue(value);
  ASSERT_FALSE(failure.IsOK());

  const FeatureReading reading = ReadFeature(camera.Integer("X"), {});

  EXPECT_EQ(reading.error, "Error reading value, " + failure.GetDescription());
}

TEST(FeatureReading, EnumerationValue_OfNoEntry_SaysThatNoneMatches) {
  NodeBench camera(kPredicates + "<Enumeration Name=\"X\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
                                 "<pValue>Raw</pValue></Enumeration>");
  camera.Poke(0, {9, 0, 0, 0});

  const FeatureReading reading = ReadFeature(camera.Enum("X"), {});

  EXPECT_TRUE(reading.hasError);
  EXPECT_TRUE(reading.error.ToUtf8().starts_with("Enum value not matching any enum entry, ")) << reading.error.CStr();
  EXPECT_TRUE(reading.value.IsEmpty());
}

TEST(FeatureReading, AccessQuestions_AreAskedInTheirOrderAndKeepWhatWasAnswered) {
  struct {
    int answers;
    const char* context;
    AccessFlags access;
  } const kRows[] = {
      {0, "Error retrieving implemented attribute", {}},
      {1, "Error retrieving available attribute", {.isImplemented = true}},
      {2, "Error retrieving readable attribute", {.isImplemented = true, .isAvailable = true}},
      {3, "Error retrieving writable attribute", {.isReadable = true, .isImplemented = true, .isAvailable = true}},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.context);
    NodeBench camera(kPredicates +
                     "<Integer Name=\"X\"><pIsImplemented>State</pIsImplemented><Value>1</Value></Integer>");
    camera.Poke(16, {1, 0, 0, 0});
    auto reads = std::make_shared<std::atomic<int>>(0);
    camera.port.SetFault(
        [=](const RegisterAccessRecord&) { return ++*reads > row.answers ? MakeFailure() : KrResult(); });

    const FeatureReading reading = ReadFeature(camera.Integer("X"), {});

    EXPECT_TRUE(reading.hasError);
    EXPECT_TRUE(reading.error.ToUtf8().starts_with(std::string(row.context) + ", ")) << reading.error.CStr();
    EXPECT_EQ(reading.access, row.access);
    EXPECT_TRUE(reading.value.IsEmpty());
    EXPECT_FALSE(reading.keepsValue);
  }
}

TEST(FeatureReading, PredicateThatCannotBeRead_FailsTheQuestionThatNeedsIt) {
  struct {
    const char* predicate;
    const char* context;
    AccessFlags access;
  } const kRows[] = {
      {"pIsImplemented", "Error retrieving implemented attribute", {}},
      {"pIsAvailable", "Error retrieving available attribute", {.isImplemented = true}},
      {"pIsLocked",
       "Error retrieving writable attribute",
       {.isReadable = true, .isImplemented = true, .isAvailable = true}},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.predicate);
    const std::string element = row.predicate;
    NodeBench camera(kPredicates + "<Integer Name=\"X\"><" + element + ">State</" + element +
                     "><Value>1</Value></Integer>");
    camera.FailReads(16, MakeFailure());

    const FeatureReading reading = ReadFeature(camera.Integer("X"), {});

    EXPECT_TRUE(reading.hasError);
    EXPECT_TRUE(reading.error.ToUtf8().starts_with(std::string(row.context) + ", ")) << reading.error.CStr();
    EXPECT_EQ(reading.access, row.access);
    EXPECT_TRUE(reading.value.IsEmpty());
  }
}

TEST(FeatureReading, Access_ByPredicates_GatesTheValueByReadabilityAlone) {
  struct {
    const char* description;
    const char* content;
    AccessFlags access;
    const char* text;
  } const kRows[] = {
      {"not implemented", "<pIsImplemented>Zero</pIsImplemented>", {}, ""},
      {"not available", "<pIsAvailable>Zero</pIsAvailable>", {.isImplemented = true}, ""},
      {"write only",
       "<ImposedAccessMode>WO</ImposedAccessMode>",
       {.isWritable = true, .isImplemented = true, .isAvailable = true},
       ""},
      {"locked", "<pIsLocked>One</pIsLocked>", {.isReadable = true, .isImplemented = true, .isAvailable = true}, "1 "},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(kPredicates + MakeInteger("X", std::string(row.content) + "<Value>1</Value>"));

    const FeatureReading reading = ReadFeature(camera.Integer("X"), {});

    EXPECT_EQ(reading.access, row.access);
    EXPECT_EQ(reading.value.ToUtf8(), row.text);
    EXPECT_EQ(reading.keepsValue, !row.access.isReadable);
    EXPECT_FALSE(reading.hasError);
  }
}

TEST(FeatureReading, ValueOutsideItsBounds_KeepsItsTextBesideTheError) {
  struct {
    const char* description;
    const char* name;
    std::string nodes;
    const char* text;
    bool isOutside;
  } const kRows[] = {
      {"above", "X", "<Integer Name=\"X\"><pValue>Raw</pValue><Max>99</Max></Integer>", "100 ", true},
      {"below", "X", "<Integer Name=\"X\"><pValue>Raw</pValue><Min>101</Min></Integer>", "100 ", true},
      {"at the largest", "X", "<Integer Name=\"X\"><pValue>Raw</pValue><Max>100</Max></Integer>", "100 ", false},
      {"at the smallest", "X", "<Integer Name=\"X\"><pValue>Raw</pValue><Min>100</Min></Integer>", "100 ", false},
      {"float above", "X", "<Float Name=\"X\"><pValue>Raw</pValue><Max>99.5</Max></Float>", "100 ", true},
      {"float below", "X", "<Float Name=\"X\"><pValue>Raw</pValue><Min>100.5</Min></Float>", "100 ", true},
      {"float within", "X", "<Float Name=\"X\"><pValue>Raw</pValue><Min>0</Min><Max>100</Max></Float>", "100 ", false},
      {"MAC address above", "GevMACAddress",
       "<Integer Name=\"GevMACAddress\"><pValue>Raw</pValue><Max>99</Max></Integer>", "00:00:00:00:00:64", true},
      {"IP address above", "GevCurrentIPAddress",
       "<Integer Name=\"GevCurrentIPAddress\"><pValue>Raw</pValue><Max>99</Max></Integer>", "0.0.0.100", true},
      {"hexadecimal above", "X",
       "<Integer Name=\"X\"><pValue>Raw</pValue><Max>99</Max><Representation>HexNumber</Representation></Integer>",
       "0x64 ", true},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(kPredicates + row.nodes);
    camera.Poke(0, {100, 0, 0, 0});

    const FeatureReading reading = ReadStyled(camera, row.name);

    EXPECT_EQ(reading.value.ToUtf8(), row.text);
    EXPECT_EQ(reading.hasError, row.isOutside);
    EXPECT_EQ(reading.error.ToUtf8(), row.isOutside ? "Parameter out of range" : "");
  }
}

TEST(FeatureReading, BoundThatCannotBeRead_LimitsNothing) {
  for (const char* const bound : {"pMin", "pMax"}) {
    SCOPED_TRACE(bound);
    const std::string limit = "<" + std::string(bound) + ">Limit</" + bound + ">";
    const std::string other = std::string(bound) == "pMin" ? "<Max>99</Max>" : "<Min>101</Min>";
    for (const char* const type : {"Integer", "Float"}) {
      SCOPED_TRACE(type);
      NodeBench camera(kPredicates + "<" + type + " Name=\"X\"><pValue>Raw</pValue>" + limit + other + "</" + type +
                       ">");
      camera.Poke(0, {100, 0, 0, 0});
      camera.FailReads(8, MakeFailure());

      const FeatureReading reading = ReadFeature(*camera.array->Get("X"), {});

      EXPECT_EQ(reading.value.ToUtf8(), "100 ");
      EXPECT_FALSE(reading.hasError) << reading.error.CStr();
    }
  }
}

TEST(FeatureReading, Command_ThatRuns_IsNotWritableUntilItIsDone) {
  NodeBench camera(kPredicates + "<Command Name=\"X\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>");
  KrGenCommand& command = camera.Command("X");
  ASSERT_TRUE(command.Execute().IsOK());

  const FeatureReading running = ReadFeature(command, {});
  camera.Poke(0, {0, 0, 0, 0});
  const FeatureReading done = ReadFeature(command, {});

  EXPECT_EQ(running.value, KrString("{Executing}"));
  EXPECT_EQ(running.access, (AccessFlags{.isReadable = true, .isImplemented = true, .isAvailable = true}));
  EXPECT_FALSE(running.hasError);
  EXPECT_EQ(done.value, KrString("{Command}"));
  EXPECT_TRUE(done.access.isWritable);
}

TEST(FeatureReading, Command_WhoseStateCannotBeRead_CountsAsDone) {
  NodeBench camera(kPredicates + "<Command Name=\"X\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>");
  ASSERT_TRUE(camera.Command("X").Execute().IsOK());
  camera.FailReads(0, MakeFailure());

  const FeatureReading reading = ReadFeature(camera.Command("X"), {});

  EXPECT_EQ(reading.value, KrString("{Command}"));
  EXPECT_TRUE(reading.access.isWritable);
  EXPECT_FALSE(reading.hasError);
}

TEST(FeatureReading, Command_ThatCanOnlyBeWritten_KeepsItsValue) {
  NodeBench camera(
      kPredicates +
      "<IntReg Name=\"Trigger\"><Address>32</Address><Length>4</Length><AccessMode>WO</AccessMode>"
      "<pPort>Device</pPort></IntReg><Command Name=\"X\"><pValue>Trigger</pValue><CommandValue>1</CommandValue>"
      "</Command>");
  (void)camera.port.TakeRecords();

  const FeatureReading reading = ReadFeature(camera.Command("X"), {});

  EXPECT_TRUE(reading.keepsValue);
  EXPECT_EQ(reading.access, (AccessFlags{.isWritable = true, .isImplemented = true, .isAvailable = true}));
  EXPECT_FALSE(reading.hasError);
  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(FeatureReading, NodeWithoutValue_HasNoText) {
  NodeBench camera("<Node Name=\"X\"/>");

  const FeatureReading reading = ReadFeature(*camera.array->Get("X"), {});

  EXPECT_TRUE(reading.value.IsEmpty());
  EXPECT_FALSE(reading.hasError);
}

TEST(FeatureReading, RegisterPort_ThatThrows_FailsTheStepThatAsksForIt) {
  struct {
    const char* description;
    const char* content;
    const char* error;
    const char* value;
    AccessFlags access;
  } const kRows[] = {
      {"value", "<pValue>Raw</pValue>", "Error reading value, ", "", {true, true, true, true}},
      {"bound, which limits nothing", "<Value>0</Value><pMax>Limit</pMax>", "", "0 ", {true, true, true, true}},
      {"access",
       "<pIsAvailable>State</pIsAvailable><Value>1</Value>",
       "Error retrieving available attribute, ",
       "",
       {.isImplemented = true}},
  };

  for (const auto& row : kRows) {
    SCOPED_TRACE(row.description);
    NodeBench camera(kPredicates + "<Integer Name=\"X\">" + row.content + "</Integer>");
    camera.port.SetFault([](const RegisterAccessRecord&) -> KrResult { throw std::runtime_error("The cable burns."); });

    const FeatureReading reading = ReadFeature(camera.Integer("X"), {});
    camera.port.SetFault({});

    const std::string error = reading.error.ToUtf8();
    const bool hasFailed = *row.error != '\0';
    EXPECT_EQ(reading.hasError, hasFailed);
    EXPECT_TRUE(error.starts_with(row.error)) << error;
    EXPECT_EQ(error.find("The cable burns.") != std::string::npos, hasFailed) << error;
    EXPECT_EQ(reading.value.ToUtf8(), row.value);
    EXPECT_EQ(reading.access, row.access);
  }
}

TEST(FeatureReading, AccessReason_IsThereForWhatMightBeMore) {
  struct {
    const char* description;
    const char* content;
    const char* reason;
  } constexpr kRows[] = {
      {"writable", "", ""},
      {"locked", "<pIsLocked>One</pIsLocked>", "Locked by One (1)."},
      {"not available", "<pIsAvailable>Zero</pIsAvailable>", "Not available: Zero is 0."},
      {"not implemented", "<pIsImplemented>Zero</pIsImplemented>", "Not implemented: Zero is 0."},
      {"never writable", "<ImposedAccessMode>RO</ImposedAccessMode>", ""},
  };

  for (const auto& row : kRows) {
    NodeBench camera(kPredicates + MakeInteger("X", std::string(row.content) + "<Value>1</Value>"));

    EXPECT_EQ(ReadFeature(camera.Integer("X"), {}).accessReason.text.ToUtf8(), row.reason) << row.description;
  }
}
