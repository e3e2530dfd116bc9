#include "aravismap.h"
#include "describedcamera.h"

#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <string>

// Where Aravis' node map is known to differ from GenApi: ours is right, and Aravis' still does what is written here.

namespace {

// A description over the same memory, ours and that of Aravis. The register "Reg" of four bytes lies at address 0.
class Both {
public:
  explicit Both(const std::string& aNodes)
      : ours(aNodes + kRegister), theirs(MakeDescription(aNodes + kRegister), ours.memory) {}

  std::int64_t GetTheirInteger(const char* aName) {
    return arv_gc_integer_get_value(ARV_GC_INTEGER(theirs.Find(aName)), error.Take());
  }
  ArvGcFeatureNode* GetTheirFeature(const char* aName) { return ARV_GC_FEATURE_NODE(theirs.Find(aName)); }

  DescribedCamera ours;
  AravisMap theirs;
  AravisError error;

private:
  static constexpr const char* kRegister = R"(
    <IntReg Name="Reg"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>)";
};

// A register at an address, with what else it says.
std::string MakeRegister(const std::string& aName, int aAddress, const std::string& aMore = "") {
  return "<IntReg Name=\"" + aName + "\">" + aMore + "<Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

} // namespace

TEST(NodeMapDifference, FeatureOnAnUnavailableRegister_IsUnavailable) {
  Both both(MakeRegister("Hidden", 16, "<pIsAvailable>Reg</pIsAvailable>") +
            "<Integer Name=\"Gain\"><pValue>Hidden</pValue></Integer>");

  EXPECT_EQ(both.ours.Integer("Gain").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_TRUE(arv_gc_feature_node_is_available(both.GetTheirFeature("Gain"), both.error.Take()));
}

TEST(NodeMapDifference, UnavailableFeature_CannotBeAccessed) {
  Both both("<Integer Name=\"Gain\"><pIsAvailable>Reg</pIsAvailable><Value>7</Value></Integer>");

  EXPECT_EQ(both.ours.Integer("Gain").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_EQ(arv_gc_feature_node_get_actual_access_mode(both.GetTheirFeature("Gain")), ARV_GC_ACCESS_MODE_RW);
}

TEST(NodeMapDifference, LockedFeature_CanOnlyBeRead) {
  Both both("<Integer Name=\"Gain\"><pIsLocked>Reg</pIsLocked><Value>7</Value></Integer>");
  both.ours.Poke(0, {1, 0, 0, 0});

  EXPECT_EQ(both.ours.Integer("Gain").GetAccessMode(), KrGenAccessMode::ReadOnly);
  EXPECT_EQ(arv_gc_feature_node_get_actual_access_mode(both.GetTheirFeature("Gain")), ARV_GC_ACCESS_MODE_RW);
}

TEST(NodeMapDifference, IndexedRegister_IsReadAnewUnderAnotherIndex) {
  Both both(R"(<Integer Name="Index"><Value>0</Value></Integer>
    <IntReg Name="Indexed"><Address>16</Address><pIndex Offset="4">Index</pIndex><Length>4</Length>
      <AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>)");
  both.ours.Poke(16, {10, 0, 0, 0, 20, 0, 0, 0});
  arv_gc_set_register_cache_policy(both.theirs.Get(), ARV_REGISTER_CACHE_POLICY_ENABLE);
  ASSERT_EQ(Read(both.ours.Integer("Indexed"), &KrGenInteger::GetValue), 10);
  ASSERT_EQ(both.GetTheirInteger("Indexed"), 10);

  ASSERT_TRUE(both.ours.Integer("Index").SetValue(1).IsOK());
  arv_gc_integer_set_value(ARV_GC_INTEGER(both.theirs.Find("Index")), 1, both.error.Take());

  EXPECT_EQ(Read(both.ours.Integer("Indexed"), &KrGenInteger::GetValue), 20);
  EXPECT_EQ(both.GetTheirInteger("Indexed"), 0);
}

TEST(NodeMapDifference, TwoRegistersOnOneAddress_AgreeAfterAWrite) {
  Both both(MakeRegister("First", 16) + MakeRegister("Second", 16));
  arv_gc_set_register_cache_policy(both.theirs.Get(), ARV_REGISTER_CACHE_POLICY_ENABLE);
  ASSERT_EQ(Read(both.ours.Integer("Second"), &KrGenInteger::GetValue), 0);
  ASSERT_EQ(both.GetTheirInteger("Second"), 0);

  ASSERT_TRUE(both.ours.Integer("First").SetValue(5).IsOK());
  arv_gc_integer_set_value(ARV_GC_INTEGER(both.theirs.Find("First")), 5, both.error.Take());

  EXPECT_EQ(Read(both.ours.Integer("Second"), &KrGenInteger::GetValue), 5);
  EXPECT_EQ(both.GetTheirInteger("Second"), 0);
}

TEST(NodeMapDifference, VariableWithMax_IsTheMaximum) {
  Both both(R"(<Integer Name="Gain"><Value>7</Value><Max>99</Max></Integer>
    <IntSwissKnife Name="Knife"><pVariable Name="G.Max">Gain</pVariable><Formula>G.Max + 1</Formula></IntSwissKnife>)");

  EXPECT_EQ(Read(both.ours.Integer("Knife"), &KrGenInteger::GetValue), 100);
  EXPECT_EQ(both.GetTheirInteger("Knife"), 8);
}

TEST(NodeMapDifference, VariableWithAnEntry_IsTheEntrysValue) {
  Both both(R"(<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>3</Value></EnumEntry>
      <EnumEntry Name="On"><Value>4</Value></EnumEntry><Value>3</Value></Enumeration>
    <IntSwissKnife Name="Knife"><pVariable Name="M.Entry.On">Mode</pVariable><Formula>M.Entry.On</Formula></IntSwissKnife>)");

  EXPECT_EQ(Read(both.ours.Integer("Knife"), &KrGenInteger::GetValue), 4);
  EXPECT_EQ(both.GetTheirInteger("Knife"), 3);
}

TEST(NodeMapDifference, FormulaWithoutValue_IsAnError) {
  Both both(
      "<IntSwissKnife Name=\"Knife\"><pVariable Name=\"A\">Reg</pVariable><Formula>8 / A</Formula></IntSwissKnife>"
      "<IntSwissKnife Name=\"Bad\"><pVariable Name=\"A\">Reg</pVariable><Formula>8 / / A</Formula></IntSwissKnife>");

  std::int64_t value = 0;
  EXPECT_EQ(both.ours.Integer("Knife").GetValue(value).GetCode(), KrResult::Code::OutOfRange);
  EXPECT_EQ(both.ours.Integer("Bad").GetValue(value).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(both.GetTheirInteger("Knife"), 0);
  EXPECT_FALSE(both.error.IsSet());
  EXPECT_EQ(both.GetTheirInteger("Bad"), 0);
  EXPECT_FALSE(both.error.IsSet());
}

TEST(NodeMapDifference, LimitsOfAFormula_AreThoseOfItsNumbers) {
  Both both("<IntSwissKnife Name=\"Knife\"><Formula>8</Formula></IntSwissKnife>");

  EXPECT_EQ(Read(both.ours.Integer("Knife"), &KrGenInteger::GetMax), std::numeric_limits<std::int64_t>::max());
  arv_gc_integer_get_max(ARV_GC_INTEGER(both.theirs.Find("Knife")), both.error.Take());
  EXPECT_TRUE(both.error.IsSet());
}

TEST(NodeMapDifference, Entries_AreInTheOrderOfTheDescription) {
  Both both(R"(<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
    <EnumEntry Name="On"><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>)");
  KrGenEnumEntry* first = nullptr;

  ASSERT_TRUE(both.ours.Enum("Mode").GetEntryByIndex(0, first).IsOK());
  const GSList* const theirs = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(both.theirs.Find("Mode")));

  EXPECT_STREQ(first->GetName().CStr(), "Off");
  EXPECT_STREQ(arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(theirs->data)), "On");
}

TEST(NodeMapDifference, NodeWithoutNameSpace_IsTheMakersOwn) {
  Both both("<Integer Name=\"Gain\"><Value>7</Value></Integer>");
  KrGenNameSpace nameSpace{};

  ASSERT_TRUE(both.ours.Integer("Gain").GetNameSpace(nameSpace).IsOK());
  EXPECT_EQ(nameSpace, KrGenNameSpace::Custom);
  EXPECT_EQ(arv_gc_feature_node_get_name_space(both.GetTheirFeature("Gain")), ARV_GC_NAME_SPACE_STANDARD);
}

TEST(NodeMapDifference, ValueOffTheIncrement_IsRefused) {
  Both both("<Integer Name=\"Width\"><pValue>Reg</pValue><Min>0</Min><Max>100</Max><Inc>8</Inc></Integer>");
  arv_gc_set_range_check_policy(both.theirs.Get(), ARV_RANGE_CHECK_POLICY_ENABLE);

  EXPECT_EQ(both.ours.Integer("Width").SetValue(13).GetCode(), KrResult::Code::OutOfRange);
  arv_gc_integer_set_value(ARV_GC_INTEGER(both.theirs.Find("Width")), 13, both.error.Take());
  EXPECT_FALSE(both.error.IsSet());
  EXPECT_EQ(both.ours.Peek(0, 1)[0], 13);
}

TEST(NodeMapDifference, ValueOutsideTheRange_IsRefused) {
  Both both("<Integer Name=\"Width\"><pValue>Reg</pValue><Min>0</Min><Max>100</Max></Integer>");

  EXPECT_EQ(both.ours.Integer("Width").SetValue(101).GetCode(), KrResult::Code::OutOfRange);
  arv_gc_integer_set_value(ARV_GC_INTEGER(both.theirs.Find("Width")), 101, both.error.Take());
  EXPECT_FALSE(both.error.IsSet());
  EXPECT_EQ(both.ours.Peek(0, 1)[0], 101);
}

TEST(NodeMapDifference, BlanksAroundANodesName_DoNotMatter) {
  Both both("<Integer Name=\"Gain\"><pValue>\n  Reg\n</pValue></Integer>");
  both.ours.Poke(0, {42, 0, 0, 0});

  EXPECT_EQ(Read(both.ours.Integer("Gain"), &KrGenInteger::GetValue), 42);
  EXPECT_EQ(both.GetTheirInteger("Gain"), 0);
  EXPECT_FALSE(both.error.IsSet());
}

TEST(NodeMapDifference, CopiesOfAValue_AreWritten) {
  Both both(MakeRegister("Copy", 16) +
            "<Integer Name=\"Gain\"><pValue>Reg</pValue><pValueCopy>Copy</pValueCopy></Integer>");

  arv_gc_integer_set_value(ARV_GC_INTEGER(both.theirs.Find("Gain")), 9, both.error.Take());
  EXPECT_EQ(both.ours.Peek(16, 1)[0], 0);
  ASSERT_TRUE(both.ours.Integer("Gain").SetValue(9).IsOK());
  EXPECT_EQ(both.ours.Peek(16, 1)[0], 9);
}

TEST(NodeMapDifference, BooleanSelector_KnowsWhatItSelects) {
  Both both("<Boolean Name=\"High\"><Value>0</Value><pSelected>Gain</pSelected></Boolean>"
            "<Integer Name=\"Gain\"><Value>7</Value></Integer>");
  KrGenParameterList selected;

  ASSERT_TRUE(both.ours.Boolean("High").GetSelectedParameters(selected).IsOK());
  EXPECT_EQ(selected.GetCount(), 1u);
  EXPECT_FALSE(ARV_IS_GC_SELECTOR(both.theirs.Find("High")));
}

TEST(NodeMapDifference, FloatAsText_HasAllItsDigits) {
  Both both("<Float Name=\"Gain\"><Value>0.123456789</Value></Float>");
  KrString text;

  ASSERT_TRUE(both.ours.Float("Gain").ToString(text).IsOK());
  EXPECT_STREQ(text.CStr(), "0.123456789");
  EXPECT_STREQ(arv_gc_feature_node_get_value_as_string(both.GetTheirFeature("Gain"), both.error.Take()), "0.123457");
}

TEST(NodeMapDifference, HalfADocument_IsRefused) {
  const std::string whole = MakeDescription("<Integer Name=\"Gain\"><Value>7</Value></Integer>");
  const std::string half = whole.substr(0, whole.find("</RegisterDescription>"));
  KrGenMemoryPort memory;
  KrGenDescription description;
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenDescription::ReadFromMemory(half, "half", description).IsOK());

  const KrResult opened = KrGenParameterArray::Open(description, memory, {}, array);
  const AravisMap theirs(half, memory);

  EXPECT_EQ(opened.GetCode(), KrResult::Code::BadData);
  EXPECT_NE(theirs.Find("Gain"), nullptr);
}

TEST(NodeMapDifference, NodesInACircle_AreAnErrorThatNamesThem) {
  // Reading such nodes ends a process that uses Aravis' node map, so ours is asked alone.
  DescribedCamera camera(
      "<Integer Name=\"A\"><pValue>B</pValue></Integer><Integer Name=\"B\"><pValue>A</pValue></Integer>");
  std::int64_t value = 0;

  const KrResult result = camera.Integer("A").GetValue(value);

  EXPECT_EQ(result.GetCode(), KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().CStr(), testing::HasSubstr("A → B → A"));
}

TEST(NodeMapDifference, RegisterOfAnImpossibleLength_IsAnError) {
  // Aravis asks for as much memory, and the process ends.
  DescribedCamera camera(R"(<StringReg Name="Text"><Address>0</Address><Length>0x10000000000</Length>
    <AccessMode>RO</AccessMode><pPort>Device</pPort></StringReg>)");
  KrString value;

  EXPECT_FALSE(camera.String("Text").GetValue(value).IsOK());
}
