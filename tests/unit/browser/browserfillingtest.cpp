#include "logic/browser/browserfilling.h"

#include "browsedcamera.h"
#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace krgui {

namespace {

struct CategoryRow {
  const char* name;
  const char* path;
  const char* expected;
};

constexpr CategoryRow kCategoryRows[] = {
    {"nothing", "", ""},
    {"one component", "Root", "Root"},
    {"two components", "Root\\ImageFormatControl", "ImageFormatControl"},
    {"three components", "Root\\A\\B", "B"},
    {"the last backslash is the first character", "\\A", "\\A"},
    {"the last backslash is the last character", "Root\\A\\", "Root\\A\\"},
    {"a backslash alone", "\\", "\\"},
    {"two backslashes inside", "Root\\\\A", "A"},
};

struct PathRow {
  const char* name;
  const char* path;
  std::vector<std::string_view> expected;
};

const std::vector<PathRow> kPathRows = {
    {"nothing", "", {}},
    {"the root alone", "Root", {}},
    {"one level", "Root\\ImageFormatControl", {"ImageFormatControl"}},
    {"two levels", "Root\\A\\B", {"A", "B"}},
    {"a root in other letters", "rOOT\\A", {"A"}},
    {"a root in capitals", "ROOT\\A", {"A"}},
    {"a root in the middle", "A\\root\\B", {"A", "B"}},
    {"names that only begin or end like it", "Roots\\MyRoot", {"Roots", "MyRoot"}},
    {"without a root", "A\\B", {"A", "B"}},
    {"the same name twice", "Root\\A\\A", {"A", "A"}},
    {"components without text", "\\A\\\\B\\", {"A", "B"}},
};

std::string MakeFeature(const std::string& aName, const std::string& aMore = {}) {
  return "<Integer Name=\"" + aName + "\">" + aMore + "<Value>1</Value></Integer>\n";
}

std::string MakeChoice(const std::string& aName, const std::vector<std::string>& aVisibilities) {
  std::string text = "<Enumeration Name=\"" + aName + "\">";
  int value = 0;
  for (const std::string& visibility : aVisibilities) {
    text += "<EnumEntry Name=\"E" + std::to_string(value) + "\"><Visibility>" + visibility + "</Visibility><Value>" +
            std::to_string(value) + "</Value></EnumEntry>";
    ++value;
  }
  return text + "<Value>0</Value></Enumeration>\n";
}

constexpr const char* kGuru = "<Visibility>Guru</Visibility>";
constexpr const char* kExpert = "<Visibility>Expert</Visibility>";
constexpr const char* kMissing = "<pIsImplemented>No</pIsImplemented>";
const std::string kPredicates = MakeFeature("Yes") + "<Integer Name=\"No\"><Value>0</Value></Integer>\n";

// A tree that is filled from a description.
class FillingTest : public testing::Test {
protected:
  void Fill(const std::string& aNodes, const BrowserOptions& aOptions = {}, const FeatureFilter& aFilter = {}) {
    mCamera = std::make_unique<BrowsedCamera>(kPredicates + aNodes);
    FillBrowserTree(*mCamera->array, aOptions, aFilter, mCamera->tree);
  }
  /// Every row below an item, in its order: blanks for its level, its name, and "/" for a category.
  std::vector<std::string> GetRows() {
    std::vector<std::string> rows;
    for (const GridItem item : mCamera->tree.GetTopLevel()) {
      AddRows(item, rows);
    }
    return rows;
  }
  std::vector<std::string> GetFeatureList() {
    std::vector<std::string> names;
    for (const auto& feature : mCamera->tree.GetFeatures()) {
      names.push_back(feature->GetName().ToUtf8());
    }
    return names;
  }

  std::unique_ptr<BrowsedCamera> mCamera;

private:
  void AddRows(GridItem aItem, std::vector<std::string>& aRows) {
    const BrowserTree::Item& item = *mCamera->tree.Find(aItem);
    aRows.push_back(std::string(static_cast<std::size_t>(item.level), ' ') + item.node->GetName().ToUtf8() +
                    (item.node->GetCategory() ? "/" : ""));
    for (const GridItem child : item.children) {
      AddRows(child, aRows);
    }
  }
};

BrowserOptions AsList() {
  BrowserOptions options;
  options.isTree = false;
  return options;
}

struct ShownRow {
  const char* name;
  std::string nodes; ///< With a feature "X".
  KrGenVisibility visibility;
  bool isShown;
};

const std::vector<ShownRow> kShownRows = {
    {"a plain feature", MakeFeature("X") + MakeCategory("Root", {"X"}), KrGenVisibility::Beginner, true},
    {"for experts, at beginner", MakeFeature("X", kExpert) + MakeCategory("Root", {"X"}), KrGenVisibility::Beginner,
     false},
    {"for experts, at expert", MakeFeature("X", kExpert) + MakeCategory("Root", {"X"}), KrGenVisibility::Expert, true},
    {"for programs, at guru", MakeFeature("X", "<Visibility>Invisible</Visibility>") + MakeCategory("Root", {"X"}),
     KrGenVisibility::Guru, false},
    {"for programs, at invisible", MakeFeature("X", "<Visibility>Invisible</Visibility>") + MakeCategory("Root", {"X"}),
     KrGenVisibility::Invisible, true},
    {"not implemented", MakeFeature("X", kMissing) + MakeCategory("Root", {"X"}), KrGenVisibility::Guru, false},
    {"not available", MakeFeature("X", "<pIsAvailable>No</pIsAvailable>") + MakeCategory("Root", {"X"}),
     KrGenVisibility::Beginner, true},
    {"in a category for gurus, at expert",
     MakeFeature("X") + MakeCategory("A", {"X"}, kGuru) + MakeCategory("Root", {"A"}), KrGenVisibility::Expert, false},
    {"in a category for gurus, at guru",
     MakeFeature("X") + MakeCategory("A", {"X"}, kGuru) + MakeCategory("Root", {"A"}), KrGenVisibility::Guru, true},
    {"in a category inside one for gurus: only its own counts",
     MakeFeature("X") + MakeCategory("B", {"X"}) + MakeCategory("A", {"B"}, kGuru) + MakeCategory("Root", {"A"}),
     KrGenVisibility::Beginner, true},
    {"in a category that is not implemented",
     MakeFeature("X") + MakeCategory("A", {"X"}, kMissing) + MakeCategory("Root", {"A"}), KrGenVisibility::Guru, false},
    {"a choice with no entry for beginners", MakeChoice("X", {"Expert", "Guru"}) + MakeCategory("Root", {"X"}),
     KrGenVisibility::Beginner, false},
    {"a choice with one entry for experts", MakeChoice("X", {"Guru", "Expert"}) + MakeCategory("Root", {"X"}),
     KrGenVisibility::Expert, true},
    {"in no category", MakeFeature("X") + MakeFeature("Y") + MakeCategory("Root", {"Y"}), KrGenVisibility::Guru, false},
};

} // namespace

TEST(FindFilterCategory, RowsOfPaths_GiveTheLastComponent) {
  for (const CategoryRow& row : kCategoryRows) {
    EXPECT_EQ(FindFilterCategory(row.path), row.expected) << row.name;
  }
}

TEST(SplitCategoryPath, RowsOfPaths_GiveTheComponentsThatMakeRows) {
  for (const PathRow& row : kPathRows) {
    EXPECT_THAT(SplitCategoryPath(row.path), testing::ElementsAreArray(row.expected)) << row.name;
  }
}

TEST(IsFeatureShown, RowsOfFeatures_AreShownOrNot) {
  for (const ShownRow& row : kShownRows) {
    DescribedCamera camera(kPredicates + row.nodes);

    EXPECT_EQ(IsFeatureShown(*camera.array, *camera.array->Get("X"), row.visibility, {}), row.isShown) << row.name;
  }
}

TEST(IsFeatureShown, FeatureThatIsNotVisible_IsNotAskedOfTheDevice) {
  DescribedCamera camera(MakeInteger("Has", 0) +
                         MakeFeature("X", std::string(kGuru) + "<pIsImplemented>Has</pIsImplemented>") +
                         MakeCategory("Root", {"X"}));

  EXPECT_FALSE(IsFeatureShown(*camera.array, *camera.array->Get("X"), KrGenVisibility::Beginner, {}));
  EXPECT_EQ(camera.port.CountReads(), 0U);

  (void)IsFeatureShown(*camera.array, *camera.array->Get("X"), KrGenVisibility::Guru, {});
  EXPECT_GT(camera.port.CountReads(), 0U);
}

TEST(IsFeatureShown, DeviceThatDoesNotAnswer_LeavesTheFeatureOut) {
  DescribedCamera camera(MakeInteger("Has", 0) + MakeFeature("X", "<pIsImplemented>Has</pIsImplemented>") +
                         MakeCategory("Root", {"X"}));
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });

  EXPECT_FALSE(IsFeatureShown(*camera.array, *camera.array->Get("X"), KrGenVisibility::Guru, {}));
}

TEST(IsFeatureShown, FeatureWhoseAvailabilityAloneCannotBeRead_IsShown) {
  DescribedCamera camera(MakeInteger("Has", 0) + MakeFeature("X", "<pIsAvailable>Has</pIsAvailable>") +
                         MakeCategory("Root", {"X"}));
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });

  EXPECT_TRUE(IsFeatureShown(*camera.array, *camera.array->Get("X"), KrGenVisibility::Guru, {}));
}

TEST_F(FillingTest, Tree_FeaturesInCategories_ComesInTheOrderOfTheDescription) {
  Fill(MakeFeature("Width") + MakeFeature("Gain") + MakeFeature("Top") + MakeFeature("Black") +
       MakeCategory("Root", {"ImageFormatControl", "Top", "Analog"}) + MakeCategory("ImageFormatControl", {"Width"}) +
       MakeCategory("Analog", {"Gain", "Levels"}) + MakeCategory("Levels", {"Black"}));

  EXPECT_THAT(GetRows(),
              ElementsAre("ImageFormatControl/", " Width", "Top", "Analog/", " Gain", " Levels/", "  Black"));
  EXPECT_THAT(GetFeatureList(), ElementsAre("Width", "Top", "Gain", "Black"));
}

TEST_F(FillingTest, Tree_CategoryWithoutFeaturesThatAreShown_IsNotThere) {
  Fill(MakeFeature("Width") + MakeFeature("Gain", kGuru) + MakeCategory("Root", {"A", "B", "C"}) +
       MakeCategory("A", {"Gain"}) + MakeCategory("B", {"Width"}) + MakeCategory("C", {}));

  EXPECT_THAT(GetRows(), ElementsAre("B/", " Width"));
}

TEST_F(FillingTest, Tree_CategoryThatIsComeBackTo_GetsTheFeatureAtItsEnd) {
  Fill(MakeFeature("First") + MakeFeature("Second") + MakeFeature("Third") + MakeCategory("Root", {"A"}) +
       MakeCategory("A", {"First", "B", "Third"}) + MakeCategory("B", {"Second"}));

  EXPECT_THAT(GetRows(), ElementsAre("A/", " First", " B/", "  Second", " Third"));
}

TEST_F(FillingTest, Tree_CategoryForGurusAroundOneForAll_IsMadeForWhatIsInIt) {
  Fill(MakeFeature("Width") + MakeCategory("Root", {"A"}) + MakeCategory("A", {"B"}, kGuru) +
       MakeCategory("B", {"Width"}));

  EXPECT_THAT(GetRows(), ElementsAre("A/", " B/", "  Width"));
}

TEST_F(FillingTest, Tree_DisplayNamesChosen_AreThoseThatRowsShow) {
  BrowserOptions options;
  options.showsDisplayNames = true;

  Fill(MakeFeature("Width", "<DisplayName>The width</DisplayName>") + MakeCategory("Root", {"Width"}), options);

  ASSERT_EQ(mCamera->tree.GetFeatures().size(), 1U);
  EXPECT_STREQ(mCamera->tree.GetFeatures()[0]->GetShownName().CStr(), "The width");
  EXPECT_STREQ(mCamera->tree.GetFeatures()[0]->GetName().CStr(), "Width");
}

// A path is parted at backslashes, and a description may have them in names.
TEST_F(FillingTest, Tree_ComponentThatNamesNoCategory_MakesNoRow) {
  Fill(MakeFeature("X") + MakeCategory("Root", {"Outer"}) + MakeCategory("Outer", {"No\\Such"}) +
       MakeCategory("No\\Such", {"Inner"}) + MakeCategory("Inner", {"X"}));

  EXPECT_THAT(GetRows(), ElementsAre("Outer/", " Inner/", "  X"));
}

TEST_F(FillingTest, Tree_ComponentThatNamesAFeature_MakesNoRowAndLeavesTheFeatureWithoutChildren) {
  Fill(MakeFeature("X") + MakeFeature("Same") + MakeCategory("Root", {"Same", "No\\Same"}) +
       MakeCategory("No\\Same", {"Inner"}) + MakeCategory("Inner", {"X"}));

  EXPECT_THAT(GetRows(), ElementsAre("Same", "Inner/", " X"));
}

TEST_F(FillingTest, List_FeaturesInCategories_AreSortedByNameWithoutCategories) {
  Fill(MakeFeature("width") + MakeFeature("Gain") + MakeFeature("Offset") + MakeCategory("Root", {"width", "A"}) +
           MakeCategory("A", {"Offset", "Gain"}),
       AsList());

  EXPECT_THAT(GetRows(), ElementsAre("Gain", "Offset", "width"));
  EXPECT_THAT(GetFeatureList(), ElementsAre("Gain", "Offset", "width"));
  EXPECT_THAT(mCamera->tree.GetCategories(), IsEmpty());
}

TEST_F(FillingTest, List_DisplayNamesChosen_IsStillSortedByName) {
  BrowserOptions options = AsList();
  options.showsDisplayNames = true;

  Fill(MakeFeature("Width", "<DisplayName>A</DisplayName>") + MakeFeature("Gain", "<DisplayName>Z</DisplayName>") +
           MakeCategory("Root", {"Width", "Gain"}),
       options);

  EXPECT_THAT(GetRows(), ElementsAre("Gain", "Width"));
  EXPECT_THAT(GetFeatureList(), ElementsAre("Gain", "Width"));
}

TEST_F(FillingTest, Filter_OfTheApplication_DecidesLastButForEntries) {
  std::vector<std::string> asked;

  Fill(MakeFeature("Shown") + MakeFeature("Hidden") + MakeFeature("Expert", kExpert) +
           MakeFeature("Missing", kMissing) + MakeChoice("Choice", {"Guru"}) +
           MakeCategory("Root", {"Shown", "Hidden", "Expert", "Missing", "Choice"}),
       {}, [&](KrGenParameter* parameter) {
         asked.push_back(parameter->GetName().ToUtf8());
         return parameter->GetName() != KrString("Hidden");
       });

  EXPECT_THAT(GetRows(), ElementsAre("Shown"));
  EXPECT_THAT(asked, ElementsAre("Shown", "Hidden", "Choice"));
}

TEST_F(FillingTest, Filter_ThatThrows_ShowsTheFeatureAndIsLogged) {
  const KrLogCapture capture;

  Fill(MakeFeature("Width") + MakeFeature("Gain") + MakeCategory("Root", {"Width", "Gain"}), {},
       [](KrGenParameter* parameter) -> bool {
         if (parameter->GetName() == KrString("Gain")) {
           throw 7;
         }
         throw std::runtime_error("out of order");
       });

  EXPECT_THAT(GetRows(), ElementsAre("Width", "Gain"));
  const std::vector<KrLogRecord> records = capture.GetRecords();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_STREQ(records[0].channel.CStr(), "KrGUILib");
  EXPECT_EQ(records[0].level, KrLogLevel::Error);
  EXPECT_THAT(records[0].text.CStr(), testing::AllOf(HasSubstr("Width"), HasSubstr("out of order")));
  EXPECT_THAT(records[1].text.CStr(), HasSubstr("Gain"));
}

TEST_F(FillingTest, Filter_ThatEndsTheFilling_IsFollowedByNothing) {
  for (const bool isTree : {true, false}) {
    SCOPED_TRACE(isTree ? "tree" : "list");
    std::string nodes = MakeInteger("Has", 0);
    std::vector<std::string> names;
    for (int i = 0; i < 10; ++i) {
      names.push_back("F" + std::to_string(9 - i));
      nodes += MakeFeature(names.back(), "<pIsImplemented>Has</pIsImplemented>");
    }
    mCamera = std::make_unique<BrowsedCamera>(nodes + MakeCategory("Root", names));
    mCamera->Poke(0, {1});
    std::vector<std::string> asked;
    std::size_t readsAtTheEnd = 0;
    const FeatureFilter filter = [&](KrGenParameter* parameter) {
      asked.push_back(parameter->GetName().ToUtf8());
      readsAtTheEnd = mCamera->port.CountReads();
      return true;
    };
    BrowserOptions options;
    options.isTree = isTree;

    FillBrowserTree(*mCamera->array, options, filter, mCamera->tree, [&] { return asked.size() < 3; });

    EXPECT_THAT(asked, ElementsAre("F9", "F8", "F7"));
    EXPECT_EQ(mCamera->port.CountReads(), readsAtTheEnd) << "nothing was asked of the device after the filter";
    EXPECT_EQ(mCamera->tree.GetFeatures().size(), 2U);
  }
}

TEST_F(FillingTest, Filter_ThatThrowsAfterItTookTheArrayAway_IsLoggedByTheFeaturesName) {
  const KrLogCapture capture;
  mCamera = std::make_unique<BrowsedCamera>(MakeFeature("Width") + MakeCategory("Root", {"Width"}));
  bool goesOn = true;

  FillBrowserTree(
      *mCamera->array, {},
      [&](KrGenParameter*) -> bool {
        mCamera->array.reset();
        goesOn = false;
        throw std::runtime_error("out of order");
      },
      mCamera->tree, [&] { return goesOn; });

  ASSERT_EQ(capture.GetRecords().size(), 1U);
  EXPECT_THAT(capture.GetRecords()[0].text.CStr(), HasSubstr("Width"));
  EXPECT_THAT(GetRows(), IsEmpty());
}

TEST_F(FillingTest, CategoriesInACycle_GiveEachFeatureOnce) {
  Fill(MakeFeature("X") + MakeFeature("Y") + MakeCategory("Root", {"A", "Root"}) + MakeCategory("A", {"X", "B"}) +
       MakeCategory("B", {"Y", "A"}));

  EXPECT_THAT(GetFeatureList(), testing::UnorderedElementsAre("X", "Y"));
}

TEST_F(FillingTest, CategoryInsideItself_IsNoFurtherRow) {
  Fill(MakeFeature("X") + MakeCategory("Root", {"A"}) + MakeCategory("A", {"A", "X"}));

  EXPECT_THAT(GetRows(), ElementsAre("A/", " X"));
}

TEST_F(FillingTest, TenThousandCategoriesInEachOther_MakeALimitedNumberOfLevels) {
  constexpr int kDepth = 10000;
  std::string nodes = MakeFeature("Deepest") + MakeCategory("Root", {"C0"});
  for (int i = 0; i < kDepth; ++i) {
    nodes += MakeCategory("C" + std::to_string(i), {i + 1 < kDepth ? "C" + std::to_string(i + 1) : "Deepest"});
  }

  Fill(nodes);

  ASSERT_THAT(GetFeatureList(), ElementsAre("Deepest"));
  EXPECT_EQ(mCamera->tree.Find(mCamera->tree.GetFeatures()[0]->GetItem())->level, 255);
}

TEST_F(FillingTest, FeaturesOfSeveralCategoriesInTurn_ComeIntoTheSameRows) {
  Fill(MakeFeature("A1") + MakeFeature("B1") + MakeFeature("A2") + MakeFeature("B2") + MakeCategory("Root", {"A"}) +
       MakeCategory("A", {"A1", "B", "A2", "C"}) + MakeCategory("B", {"B1"}) + MakeCategory("C", {"B2"}));

  EXPECT_THAT(GetRows(), ElementsAre("A/", " A1", " B/", "  B1", " A2", " C/", "  B2"));
}

TEST_F(FillingTest, ManyFeaturesOfOneCategory_AskTheDeviceAboutTheCategoryOnce) {
  std::vector<std::string> names;
  std::string nodes = MakeInteger("Has", 0);
  for (int i = 0; i < 100; ++i) {
    names.push_back("F" + std::to_string(i));
    nodes += MakeFeature(names.back());
  }
  mCamera = std::make_unique<BrowsedCamera>(nodes + MakeCategory("Root", {"A"}) +
                                            MakeCategory("A", names, "<pIsImplemented>Has</pIsImplemented>"));
  mCamera->Poke(0, {1});

  FillBrowserTree(*mCamera->array, {}, {}, mCamera->tree);

  EXPECT_EQ(mCamera->tree.GetFeatures().size(), names.size());
  EXPECT_EQ(mCamera->port.CountReads(), 1U);
}

TEST_F(FillingTest, SecondFilling_AfterClearing_IsAsTheFirst) {
  Fill(MakeFeature("Width") + MakeCategory("Root", {"A"}) + MakeCategory("A", {"Width"}));
  const std::vector<std::string> first = GetRows();

  mCamera->tree.Clear();
  FillBrowserTree(*mCamera->array, {}, {}, mCamera->tree);

  EXPECT_EQ(GetRows(), first);
}

TEST_F(FillingTest, DescriptionWithoutFeatures_LeavesTheTreeEmpty) {
  Fill(MakeCategory("Root", {}));

  EXPECT_THAT(GetRows(), IsEmpty());
}

} // namespace krgui
