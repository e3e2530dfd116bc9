#include "krpersistence/krpropertylist.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

KrPropertyList MakeList() {
  KrPropertyList list;
  list.Add({"Serial0", "COMPort"});
  list.Add({"Serial0Port", "COM3"});
  list.Add({"Serial0", "CLDLL"});
  return list;
}

TEST(KrPropertyList, New_IsEmpty) {
  const KrPropertyList list;

  EXPECT_TRUE(list.IsEmpty());
  EXPECT_EQ(list.GetCount(), 0U);
  EXPECT_EQ(list.GetProperty("Serial0"), nullptr);
  EXPECT_EQ(list.GetProperty(0), nullptr);
  EXPECT_TRUE(list.begin() == list.end());
}

TEST(KrPropertyList, Add_KeepsOrderAndEqualNames) {
  const KrPropertyList list = MakeList();

  ASSERT_EQ(list.GetCount(), 3U);
  std::string names;
  for (const KrProperty& property : list)
    names += property.GetName().ToUtf8() + "=" + property.GetValue().ToUtf8() + ";";
  EXPECT_EQ(names, "Serial0=COMPort;Serial0Port=COM3;Serial0=CLDLL;");
  EXPECT_EQ(*list.GetProperty(2), KrProperty("Serial0", "CLDLL"));
  EXPECT_EQ(list.GetProperty(3), nullptr);
}

TEST(KrPropertyList, NameThatOccursTwice_GivesTheFirst) {
  const KrPropertyList list = MakeList();

  ASSERT_NE(list.GetProperty("Serial0"), nullptr);
  EXPECT_EQ(list.GetProperty("Serial0")->GetValue(), "COMPort");
  EXPECT_EQ(list.GetProperty("serial0"), nullptr);
}

TEST(KrPropertyList, Property_CanBeChangedInItsPlace) {
  KrPropertyList list = MakeList();

  list.GetProperty("Serial0Port")->SetValue("COM4");
  list.GetProperty(0)->SetName("Bulk7");

  EXPECT_EQ(std::as_const(list).GetProperty("Serial0Port")->GetValue(), "COM4");
  EXPECT_EQ(std::as_const(list).GetProperty("Serial0")->GetValue(), "CLDLL");
}

TEST(KrPropertyList, Clear_RemovesAll) {
  KrPropertyList list = MakeList();

  list.Clear();

  EXPECT_TRUE(list.IsEmpty());
  EXPECT_EQ(list, KrPropertyList());
}

TEST(KrPropertyList, Copy_IsEqualUntilOneChanges) {
  const KrPropertyList list = MakeList();
  KrPropertyList copy = list;

  EXPECT_EQ(copy, list);
  copy.Add({"Serial1", "COMPort"});

  EXPECT_NE(copy, list);
  EXPECT_EQ(list.GetCount(), 3U);
}

TEST(KrPropertyList, Comparison_SeesTheOrder) {
  KrPropertyList forward;
  forward.Add({"a", 1});
  forward.Add({"b", 2});
  KrPropertyList backward;
  backward.Add({"b", 2});
  backward.Add({"a", 1});

  EXPECT_NE(forward, backward);
}

} // namespace
