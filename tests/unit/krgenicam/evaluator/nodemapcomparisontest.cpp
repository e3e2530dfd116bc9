#include "aravismap.h"
#include "generateddescription.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"

#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <random>

namespace {

constexpr std::size_t kFeatures = 500;
constexpr std::uint64_t kSeed = 20240607;

// One description over two memories of the same content, ours and that of Aravis.
class SideBySide : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(Fill(mOurMemory).IsOK());
    ASSERT_TRUE(Fill(mTheirMemory).IsOK());
    KrGenDescription description;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(mGenerated.xml, "generated", description).IsOK());
    const KrResult opened = KrGenParameterArray::Open(description, mOurMemory, {}, mArray);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    mTheirs = std::make_unique<AravisMap>(mGenerated.xml, mTheirMemory);
    ASSERT_NE(mTheirs->Get(), nullptr);
  }

  KrResult Fill(KrGenMemoryPort& aMemory) {
    return aMemory.Write(mGenerated.address, mGenerated.memory.data(), mGenerated.memory.size(), 1000);
  }
  std::vector<std::uint8_t> ReadAll(KrGenMemoryPort& aMemory) {
    std::vector<std::uint8_t> bytes(mGenerated.memory.size());
    EXPECT_TRUE(aMemory.Read(mGenerated.address, bytes.data(), bytes.size(), 1000).IsOK());
    return bytes;
  }

  // A number of ours and theirs. Aravis knows no limits of formulas and of what stands on them.
  template <typename Value, typename Parameter, typename Their>
  void CompareNumber(const char* aWhat, Parameter& aParameter, KrResult (Parameter::*aGetter)(Value&), Their* aTheir,
                     Value (*aTheirGetter)(Their*, GError**)) {
    AravisError error;
    const Value theirs = aTheirGetter(aTheir, error.Take());
    Value ours{};
    const KrResult result = (aParameter.*aGetter)(ours);
    EXPECT_TRUE(result.IsOK()) << aWhat << result.GetDescription().CStr();
    if (error.IsSet()) {
      EXPECT_THAT(error.GetText(), testing::HasSubstr("> node not found")) << aWhat;
      return;
    }
    ++mCompared;
    EXPECT_EQ(ours, theirs) << aWhat;
  }
  void Compare(const std::string& aName);
  void Compare(KrGenInteger& aOurs, ArvGcInteger* aTheirs);
  void Compare(KrGenFloat& aOurs, ArvGcFloat* aTheirs);
  void Compare(KrGenEnum& aOurs, ArvGcEnumeration* aTheirs);
  void Compare(KrGenString& aOurs, ArvGcString* aTheirs);
  void CompareTexts(KrGenParameter& aOurs, ArvGcFeatureNode* aTheirs);
  void CompareAll() {
    for (const std::vector<std::string>* const names : {&mGenerated.features, &mGenerated.inner}) {
      for (const std::string& name : *names)
        Compare(name);
    }
  }

  // Sets a parameter to something valid on both sides; false where that cannot be done.
  bool Change(const std::string& aName);
  bool Change(KrGenInteger& aOurs, ArvGcInteger* aTheirs);
  bool Change(KrGenFloat& aOurs, ArvGcFloat* aTheirs);
  bool Change(KrGenEnum& aOurs, ArvGcEnumeration* aTheirs);
  bool Change(KrGenBoolean& aOurs, ArvGcBoolean* aTheirs);
  bool Change(KrGenString& aOurs, ArvGcString* aTheirs);

  GeneratedDescription mGenerated = GenerateDescription(kFeatures, kSeed);
  KrGenMemoryPort mOurMemory;
  KrGenMemoryPort mTheirMemory;
  std::unique_ptr<KrGenParameterArray> mArray;
  std::unique_ptr<AravisMap> mTheirs;
  std::mt19937_64 mRandom{kSeed};
  std::size_t mCompared = 0;
};

void SideBySide::Compare(KrGenInteger& aOurs, ArvGcInteger* aTheirs) {
  CompareNumber("value ", aOurs, &KrGenInteger::GetValue, aTheirs, arv_gc_integer_get_value);
  CompareNumber("minimum ", aOurs, &KrGenInteger::GetMin, aTheirs, arv_gc_integer_get_min);
  CompareNumber("maximum ", aOurs, &KrGenInteger::GetMax, aTheirs, arv_gc_integer_get_max);
  CompareNumber("increment ", aOurs, &KrGenInteger::GetIncrement, aTheirs, arv_gc_integer_get_inc);
  KrString unit;
  ASSERT_TRUE(aOurs.GetUnit(unit).IsOK());
  const char* const theirUnit = arv_gc_integer_get_unit(aTheirs);
  EXPECT_STREQ(unit.CStr(), theirUnit ? theirUnit : "");
}

void SideBySide::Compare(KrGenFloat& aOurs, ArvGcFloat* aTheirs) {
  CompareNumber("value ", aOurs, &KrGenFloat::GetValue, aTheirs, arv_gc_float_get_value);
  CompareNumber("minimum ", aOurs, &KrGenFloat::GetMin, aTheirs, arv_gc_float_get_min);
  CompareNumber("maximum ", aOurs, &KrGenFloat::GetMax, aTheirs, arv_gc_float_get_max);
  KrString unit;
  ASSERT_TRUE(aOurs.GetUnit(unit).IsOK());
  const char* const theirUnit = arv_gc_float_get_unit(aTheirs);
  EXPECT_STREQ(unit.CStr(), theirUnit ? theirUnit : "");
}

void SideBySide::Compare(KrGenEnum& aOurs, ArvGcEnumeration* aTheirs) {
  CompareNumber("value ", aOurs, &KrGenEnum::GetValue, aTheirs, arv_gc_enumeration_get_int_value);
  AravisError error;
  const char* const theirs = arv_gc_enumeration_get_string_value(aTheirs, error.Take());
  KrString ours;
  const KrResult result = aOurs.GetEntry(ours);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_STREQ(ours.CStr(), theirs);
  EXPECT_EQ(aOurs.GetEntriesCount(), g_slist_length(const_cast<GSList*>(arv_gc_enumeration_get_entries(aTheirs))));
}

void SideBySide::Compare(KrGenString& aOurs, ArvGcString* aTheirs) {
  AravisError error;
  KrString ours;
  const KrResult result = aOurs.GetValue(ours);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_STREQ(ours.CStr(), arv_gc_string_get_value(aTheirs, error.Take()));
  CompareNumber("length ", aOurs, &KrGenString::GetMaxLength, aTheirs, arv_gc_string_get_max_length);
}

void SideBySide::CompareTexts(KrGenParameter& aOurs, ArvGcFeatureNode* aTheirs) {
  const auto compare = [](KrResult aResult, const KrString& aOurText, const char* aTheirText) {
    EXPECT_TRUE(aResult.IsOK());
    EXPECT_STREQ(aOurText.CStr(), aTheirText ? aTheirText : "");
  };
  KrString text;
  compare(aOurs.GetToolTip(text), text, arv_gc_feature_node_get_tooltip(aTheirs));
  compare(aOurs.GetDescription(text), text, arv_gc_feature_node_get_description(aTheirs));
  const char* const theirName = arv_gc_feature_node_get_display_name(aTheirs);
  compare(aOurs.GetDisplayName(text), text, theirName ? theirName : aOurs.GetName().CStr());
  KrGenVisibility visibility{};
  EXPECT_TRUE(aOurs.GetVisibility(visibility).IsOK());
  constexpr ArvGcVisibility kVisibilities[] = {ARV_GC_VISIBILITY_BEGINNER, ARV_GC_VISIBILITY_EXPERT,
                                               ARV_GC_VISIBILITY_GURU, ARV_GC_VISIBILITY_INVISIBLE};
  EXPECT_EQ(kVisibilities[static_cast<int>(visibility)], arv_gc_feature_node_get_visibility(aTheirs));
  AravisError error;
  EXPECT_EQ(aOurs.IsImplemented(), arv_gc_feature_node_is_implemented(aTheirs, error.Take()) != FALSE);
  EXPECT_EQ(aOurs.IsAvailable(), arv_gc_feature_node_is_available(aTheirs, error.Take()) != FALSE);
}

void SideBySide::Compare(const std::string& aName) {
  const testing::ScopedTrace trace(__FILE__, __LINE__, aName);
  KrGenParameter* const ours = mArray->Get(aName);
  ArvGcNode* const theirs = mTheirs->Find(aName);
  ASSERT_NE(ours, nullptr);
  ASSERT_NE(theirs, nullptr);
  CompareTexts(*ours, ARV_GC_FEATURE_NODE(theirs));
  // Aravis gives values whether or not they are available.
  if (!ours->IsReadable())
    return;
  if (auto* const integer = dynamic_cast<KrGenInteger*>(ours))
    Compare(*integer, ARV_GC_INTEGER(theirs));
  else if (auto* const number = dynamic_cast<KrGenFloat*>(ours))
    Compare(*number, ARV_GC_FLOAT(theirs));
  else if (auto* const enumeration = dynamic_cast<KrGenEnum*>(ours))
    Compare(*enumeration, ARV_GC_ENUMERATION(theirs));
  else if (auto* const text = dynamic_cast<KrGenString*>(ours))
    Compare(*text, ARV_GC_STRING(theirs));
  else if (auto* const boolean = dynamic_cast<KrGenBoolean*>(ours)) {
    AravisError error;
    bool value = false;
    EXPECT_TRUE(boolean->GetValue(value).IsOK());
    EXPECT_EQ(value, arv_gc_boolean_get_value(ARV_GC_BOOLEAN(theirs), error.Take()) != FALSE);
  } else {
    EXPECT_NE(dynamic_cast<KrGenCommand*>(ours), nullptr) << "What kind is it?";
  }
}

bool SideBySide::Change(KrGenInteger& aOurs, ArvGcInteger* aTheirs) {
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  std::int64_t increment = 1;
  if (!aOurs.GetMin(minimum).IsOK() || !aOurs.GetMax(maximum).IsOK() || !aOurs.GetIncrement(increment).IsOK())
    return false;
  const std::uint64_t distance = static_cast<std::uint64_t>(maximum) - static_cast<std::uint64_t>(minimum);
  const std::uint64_t steps = distance / static_cast<std::uint64_t>(increment);
  const std::uint64_t step = steps == UINT64_MAX ? mRandom() : mRandom() % (steps + 1);
  const auto value =
      static_cast<std::int64_t>(static_cast<std::uint64_t>(minimum) + step * static_cast<std::uint64_t>(increment));
  // What a converter or a limit behind the feature refuses is not for Aravis, which checks nothing.
  if (!aOurs.SetValue(value).IsOK())
    return false;
  AravisError error;
  arv_gc_integer_set_value(aTheirs, value, error.Take());
  EXPECT_FALSE(error.IsSet()) << error.GetText();
  return true;
}

bool SideBySide::Change(KrGenFloat& aOurs, ArvGcFloat* aTheirs) {
  const double value = static_cast<double>(mRandom() % 40000) / 4;
  if (!aOurs.SetValue(value).IsOK())
    return false;
  AravisError error;
  arv_gc_float_set_value(aTheirs, value, error.Take());
  EXPECT_FALSE(error.IsSet()) << error.GetText();
  return true;
}

bool SideBySide::Change(KrGenEnum& aOurs, ArvGcEnumeration* aTheirs) {
  KrStringList names;
  if (!aOurs.GetAvailableEntries(names).IsOK() || names.GetCount() == 0)
    return false;
  const KrString name = names[mRandom() % names.GetCount()];
  if (!aOurs.SetEntry(name).IsOK())
    return false;
  AravisError error;
  EXPECT_TRUE(arv_gc_enumeration_set_string_value(aTheirs, name.CStr(), error.Take())) << error.GetText();
  return true;
}

bool SideBySide::Change(KrGenBoolean& aOurs, ArvGcBoolean* aTheirs) {
  const bool value = mRandom() % 2 == 0;
  if (!aOurs.SetValue(value).IsOK())
    return false;
  AravisError error;
  arv_gc_boolean_set_value(aTheirs, value, error.Take());
  EXPECT_FALSE(error.IsSet()) << error.GetText();
  return true;
}

bool SideBySide::Change(KrGenString& aOurs, ArvGcString* aTheirs) {
  std::string text(1 + mRandom() % 15, 'x');
  for (char& character : text)
    character = static_cast<char>('A' + mRandom() % 26);
  if (!aOurs.SetValue(text).IsOK())
    return false;
  AravisError error;
  arv_gc_string_set_value(aTheirs, text.c_str(), error.Take());
  EXPECT_FALSE(error.IsSet()) << error.GetText();
  return true;
}

bool SideBySide::Change(const std::string& aName) {
  const testing::ScopedTrace trace(__FILE__, __LINE__, aName);
  KrGenParameter* const ours = mArray->Get(aName);
  ArvGcNode* const theirs = mTheirs->Find(aName);
  if (auto* const integer = dynamic_cast<KrGenInteger*>(ours))
    return Change(*integer, ARV_GC_INTEGER(theirs));
  if (auto* const number = dynamic_cast<KrGenFloat*>(ours))
    return Change(*number, ARV_GC_FLOAT(theirs));
  if (auto* const enumeration = dynamic_cast<KrGenEnum*>(ours))
    return Change(*enumeration, ARV_GC_ENUMERATION(theirs));
  if (auto* const boolean = dynamic_cast<KrGenBoolean*>(ours))
    return Change(*boolean, ARV_GC_BOOLEAN(theirs));
  if (auto* const text = dynamic_cast<KrGenString*>(ours))
    return Change(*text, ARV_GC_STRING(theirs));
  return false;
}

} // namespace

TEST_F(SideBySide, FeaturesAndInnerNodes_HaveTheSameValuesLimitsAndTexts) {
  EXPECT_EQ(mArray->GetCount(), kFeatures);

  CompareAll();

  EXPECT_GT(mCompared, 3 * kFeatures) << "Too few numbers were compared.";
}

TEST_F(SideBySide, RandomChanges_LeaveTheSameBytesAndValues) {
  constexpr int kRounds = 3;
  int changed = 0;
  for (int round = 0; round < kRounds && !HasFailure(); ++round) {
    for (const std::string& name : mGenerated.features) {
      changed += Change(name) ? 1 : 0;
      ASSERT_EQ(ReadAll(mOurMemory), ReadAll(mTheirMemory)) << name;
    }
    // Another channel, another set of registers behind the selected features.
    const std::string channel = "Channel" + std::to_string(round);
    ASSERT_TRUE(mArray->GetEnum("Selector")->SetEntry(channel).IsOK());
    AravisError error;
    arv_gc_enumeration_set_string_value(ARV_GC_ENUMERATION(mTheirs->Find("Selector")), channel.c_str(), error.Take());
    CompareAll();
  }

  EXPECT_GT(changed, kRounds * static_cast<int>(kFeatures) / 3) << "Too little was changed.";
}
