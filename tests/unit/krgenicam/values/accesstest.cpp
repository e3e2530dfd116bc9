// What can be done with a node, in every combination of what decides it, and the reasons that are given.

#include "describedcamera.h"
#include "krbase/krlogger.h"
#include "registertext.h"

#include <gmock/gmock.h>

#include <array>

using testing::AllOf;
using testing::HasSubstr;

namespace {

// What a predicate can be: not there, false, true, without a value, without a node.
enum class Word { None, No, Yes, Unreadable, Missing };
constexpr std::array kWords{Word::None, Word::No, Word::Yes, Word::Unreadable, Word::Missing};
constexpr const char* kWordNodes[] = {"", "No", "Yes", "Unreadable", "Missing"};
constexpr std::array<std::string_view, 3> kModes{"RO", "WO", "RW"};

const std::string kPredicates = MakeRegister("Unreadable", 0x1000, "WO") +
                                "<Boolean Name=\"Yes\"><Value>true</Value></Boolean>"
                                "<Integer Name=\"No\"><Value>0</Value></Integer>";

struct Combination {
  Word implemented;
  Word available;
  Word locked;
  std::string_view imposed;
  std::string_view intrinsic;

  std::string GetCommon() const {
    const auto predicate = [](const char* aElement, Word aWord) {
      return aWord == Word::None
                 ? std::string()
                 : std::string("<") + aElement + ">" + kWordNodes[static_cast<int>(aWord)] + "</" + aElement + ">";
    };
    return predicate("pIsImplemented", implemented) + predicate("pIsAvailable", available) +
           predicate("pIsLocked", locked) + "<ImposedAccessMode>" + std::string(imposed) + "</ImposedAccessMode>";
  }

  // By the rules of the standard, told by what can be read and written.
  KrGenAccessMode GetExpected() const {
    if (implemented == Word::No)
      return KrGenAccessMode::NotImplemented;
    const auto allows = [](Word aWord) { return aWord == Word::None || aWord == Word::Yes; };
    const bool isThere = allows(implemented) && allows(available);
    const bool isReadable = isThere && imposed != "WO" && intrinsic != "WO";
    const bool isWritable = isThere && imposed != "RO" && intrinsic != "RO" && locked != Word::Yes;
    if (isReadable)
      return isWritable ? KrGenAccessMode::ReadWrite : KrGenAccessMode::ReadOnly;
    return isWritable ? KrGenAccessMode::WriteOnly : KrGenAccessMode::NotAvailable;
  }
};

std::vector<Combination> MakeCombinations() {
  std::vector<Combination> all;
  for (const Word implemented : kWords) {
    for (const Word available : kWords) {
      for (const Word locked : kWords) {
        for (const std::string_view imposed : kModes) {
          for (const std::string_view intrinsic : kModes)
            all.push_back({implemented, available, locked, imposed, intrinsic});
        }
      }
    }
  }
  return all;
}

KrResult SetTo(DescribedCamera& aCamera, const char* aName, std::int64_t aValue) {
  return aCamera.Integer(aName).SetValue(aValue);
}

} // namespace

TEST(Access, EveryCombinationOnARegisterAndBehindAnother_AsTheRulesSay) {
  const std::vector<Combination> combinations = MakeCombinations();
  std::string nodes = kPredicates;
  for (std::size_t i = 0; i < combinations.size(); ++i) {
    const std::string number = std::to_string(i);
    const Combination& row = combinations[i];
    nodes += MakeRegister("Register" + number, i * 4, row.intrinsic, row.GetCommon());
    nodes += MakeRegister("Bare" + number, i * 4, row.intrinsic);
    nodes +=
        "<Integer Name=\"Over" + number + "\">" + row.GetCommon() + "<pValue>Bare" + number + "</pValue></Integer>";
    nodes += "<Float Name=\"Behind" + number + "\"><pValue>Register" + number + "</pValue></Float>";
  }
  DescribedCamera camera(nodes);

  for (std::size_t i = 0; i < combinations.size(); ++i) {
    const std::string number = std::to_string(i);
    const Combination& row = combinations[i];
    SCOPED_TRACE(row.GetCommon() + std::string(row.intrinsic));
    for (const char* const name : {"Register", "Over", "Behind"})
      EXPECT_EQ(camera.array->Get(KrString(name + number))->GetAccessMode(), row.GetExpected()) << name;
  }
}

TEST(Access, EveryCombination_RefusesWithAReasonExactlyWhatItDoesNotAllow) {
  const std::vector<Combination> combinations = MakeCombinations();
  std::string nodes = kPredicates;
  for (std::size_t i = 0; i < combinations.size(); ++i)
    nodes +=
        MakeRegister("Register" + std::to_string(i), i * 4, combinations[i].intrinsic, combinations[i].GetCommon());
  DescribedCamera camera(nodes);

  for (std::size_t i = 0; i < combinations.size(); ++i) {
    SCOPED_TRACE(combinations[i].GetCommon() + std::string(combinations[i].intrinsic));
    const KrGenAccessMode mode = combinations[i].GetExpected();
    KrGenInteger& node = camera.Integer(("Register" + std::to_string(i)).c_str());
    std::int64_t value = 0;
    const KrResult read = node.GetValue(value);
    const KrResult written = node.SetValue(1);

    EXPECT_EQ(read.IsOK(), mode == KrGenAccessMode::ReadOnly || mode == KrGenAccessMode::ReadWrite);
    EXPECT_EQ(written.IsOK(), mode == KrGenAccessMode::WriteOnly || mode == KrGenAccessMode::ReadWrite);
    EXPECT_EQ(read.IsOK(), read.GetDescription().IsEmpty());
    EXPECT_EQ(written.IsOK(), written.GetDescription().IsEmpty());
  }
}

TEST(Access, StoredValue_FollowsPredicatesOnTheSpot) {
  DescribedCamera camera(
      "<Integer Name=\"There\"><Value>1</Value></Integer><Integer Name=\"Lock\"><Value>0</Value></Integer>"
      "<Float Name=\"X\"><pIsAvailable>There</pIsAvailable><pIsLocked>Lock</pIsLocked><Value>1</Value></Float>");
  const auto mode = [&] { return camera.Float("X").GetAccessMode(); };

  EXPECT_EQ(mode(), KrGenAccessMode::ReadWrite);
  ASSERT_TRUE(SetTo(camera, "Lock", 1).IsOK());
  EXPECT_EQ(mode(), KrGenAccessMode::ReadOnly);
  ASSERT_TRUE(SetTo(camera, "There", 0).IsOK());
  EXPECT_EQ(mode(), KrGenAccessMode::NotAvailable);
  ASSERT_TRUE(SetTo(camera, "There", 1).IsOK());
  ASSERT_TRUE(SetTo(camera, "Lock", 0).IsOK());
  EXPECT_EQ(mode(), KrGenAccessMode::ReadWrite);
}

TEST(Access, ReadOnlyArray_LetsNothingBeWritten) {
  KrGenArrayOptions options;
  options.isReadOnly = true;
  DescribedCamera camera(MakeRegister("Raw", 0) +
                             "<Integer Name=\"Stored\"><Value>1</Value></Integer>"
                             "<Integer Name=\"Over\"><pValue>Raw</pValue></Integer>"
                             "<String Name=\"Text\"><Value>a</Value></String>"
                             "<Command Name=\"Run\"><Value>0</Value><CommandValue>1</CommandValue></Command>",
                         options);

  for (const char* const name : {"Raw", "Stored", "Over", "Text", "Run"})
    EXPECT_EQ(camera.array->Get(name)->GetAccessMode(), KrGenAccessMode::ReadOnly) << name;
  EXPECT_THAT(SetTo(camera, "Over", 1).GetDescription().CStr(), HasSubstr("open for reading only"));
}

TEST(AccessReason, OfAChain_NamesTheNodeThatStandsInTheWayAndWhatItStandsOn) {
  DescribedCamera camera(MakeRegister("GainRaw", 0, "RW", "<pIsLocked>TLParamsLocked</pIsLocked>") +
                         "<Integer Name=\"TLParamsLocked\"><Value>1</Value></Integer>"
                         "<Integer Name=\"GainSelected\"><pValue>GainRaw</pValue></Integer>"
                         "<Converter Name=\"GainConverted\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>"
                         "<pValue>GainSelected</pValue></Converter>"
                         "<Float Name=\"Gain\"><pValue>GainConverted</pValue></Float>");

  const KrResult refused = camera.Float("Gain").SetValue(1.0);

  EXPECT_EQ(refused, KrResult::Code::AccessDenied);
  EXPECT_STREQ(refused.GetDescription().CStr(),
               "\"Gain\" cannot be set because of \"GainRaw\": it is locked as long as "
               "\"TLParamsLocked\" is not 0.");
}

TEST(AccessReason, OfPredicates_NamesThem) {
  struct Row {
    const char* common;
    const char* reason;
  };
  constexpr Row kRows[] = {{"<pIsAvailable>No</pIsAvailable>", "not available as long as \"No\" is 0"},
                           {"<pIsImplemented>No</pIsImplemented>", "this camera does not have it"},
                           {"<pIsLocked>Yes</pIsLocked>", "locked as long as \"Yes\" is not 0"},
                           {"<ImposedAccessMode>RO</ImposedAccessMode>", "it can only be read"},
                           {"<pIsAvailable>Missing</pIsAvailable>", "no usable node \"Missing\""},
                           {"<pIsAvailable>Unreadable</pIsAvailable>", "\"Unreadable\""}};
  for (const Row& row : kRows) {
    DescribedCamera camera(kPredicates + "<Integer Name=\"X\">" + row.common + "<Value>1</Value></Integer>");

    EXPECT_THAT(SetTo(camera, "X", 1).GetDescription().CStr(), HasSubstr(row.reason));
  }
}

TEST(Access, LockThatCannotBeRead_IsLoggedOncePerNode) {
  DescribedCamera camera(kPredicates + "<Integer Name=\"A\"><pIsLocked>Unreadable</pIsLocked><Value>1</Value></Integer>"
                                       "<Integer Name=\"B\"><pIsLocked>Missing</pIsLocked><Value>1</Value></Integer>"
                                       "<Integer Name=\"C\"><pIsLocked>No</pIsLocked><Value>1</Value></Integer>");
  const KrLogCapture capture;

  for (const char* const name : {"A", "B", "C", "A", "B", "C"})
    EXPECT_TRUE(SetTo(camera, name, 2).IsOK()) << name;

  const std::vector<KrLogRecord> records = capture.GetRecords();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].channel, "KrGenICam");
  EXPECT_THAT(records[0].text.CStr(), AllOf(HasSubstr("\"A\""), HasSubstr("\"Unreadable\"")));
  EXPECT_THAT(records[1].text.CStr(), AllOf(HasSubstr("\"B\""), HasSubstr("\"Missing\"")));
}

TEST(Access, TwoFeaturesThatLockEachOther_AreNoCircle) {
  DescribedCamera camera(
      "<Integer Name=\"TriggerMode\"><pIsLocked>TriggerSource</pIsLocked><Value>0</Value></Integer>"
      "<Integer Name=\"TriggerSource\"><pIsLocked>TriggerMode</pIsLocked><Value>0</Value></Integer>");

  EXPECT_TRUE(SetTo(camera, "TriggerMode", 1).IsOK());
  EXPECT_EQ(camera.Integer("TriggerSource").GetAccessMode(), KrGenAccessMode::ReadOnly);
  EXPECT_EQ(camera.Integer("TriggerMode").GetAccessMode(), KrGenAccessMode::ReadWrite);
  EXPECT_EQ(SetTo(camera, "TriggerSource", 1), KrResult::Code::AccessDenied);
  EXPECT_TRUE(SetTo(camera, "TriggerMode", 0).IsOK());
  EXPECT_TRUE(SetTo(camera, "TriggerSource", 1).IsOK());
}

TEST(Access, TwoFeaturesThatLimitEachOther_AreNoCircle) {
  DescribedCamera camera(MakeRegister("WidthRaw", 0) + MakeRegister("OffsetRaw", 4) +
                         "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"O\">OffsetX</pVariable><Formula>1000 - "
                         "O</Formula></IntSwissKnife>"
                         "<IntSwissKnife Name=\"OffsetMax\"><pVariable Name=\"W\">Width</pVariable><Formula>1000 - "
                         "W</Formula></IntSwissKnife>"
                         "<Integer Name=\"Width\"><pValue>WidthRaw</pValue><pMax>WidthMax</pMax></Integer>"
                         "<Integer Name=\"OffsetX\"><pValue>OffsetRaw</pValue><pMax>OffsetMax</pMax></Integer>");

  ASSERT_TRUE(SetTo(camera, "Width", 600).IsOK());
  EXPECT_EQ(Read(camera.Integer("OffsetX"), &KrGenInteger::GetMax), 400);
  EXPECT_EQ(SetTo(camera, "OffsetX", 401), KrResult::Code::OutOfRange);
  ASSERT_TRUE(SetTo(camera, "OffsetX", 400).IsOK());
  EXPECT_EQ(Read(camera.Integer("Width"), &KrGenInteger::GetMax), 600);
}
