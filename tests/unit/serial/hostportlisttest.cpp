// Which of the host's ports are offered, in which order.

#include "logic/serial/hostportlist.h"

#include <gmock/gmock.h>

namespace krgui {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

KrStringList MakeList(const std::vector<const char*>& aNames) {
  KrStringList list;
  for (const char* name : aNames)
    list.Add(name);
  return list;
}

} // namespace

TEST(HostPortList, ThreePorts_AreListedByTheirNumbers) {
  EXPECT_THAT(GetCOMPortNumbers(MakeList({"COM12", "COM3", "COM1"})), ElementsAre(1U, 3U, 12U));
}

TEST(HostPortList, NamesOfOtherLengths_AreNotListed) {
  EXPECT_THAT(GetCOMPortNumbers(MakeList({"", "C", "COM", "COM123", "COM1234"})), IsEmpty());
}

TEST(HostPortList, LettersOfAnyCase_AreListed) {
  EXPECT_THAT(GetCOMPortNumbers(MakeList({"com4", "Com05", "cOm6", "coM7"})), ElementsAre(4U, 5U, 6U, 7U));
}

TEST(HostPortList, OtherNames_AreNotListed) {
  EXPECT_THAT(GetCOMPortNumbers(MakeList({"LPT1", "CON1", "COMX", "NUL", "XCOM1", "C\xCF\x8FM1", "[OM1", "COM-1"})),
              IsEmpty());
}

TEST(HostPortList, NoPorts_NoNumbers) {
  EXPECT_THAT(GetCOMPortNumbers({}), IsEmpty());
}

TEST(HostPortList, Number_IsNamedWithoutBlanks) {
  EXPECT_STREQ(FormatCOMPort(3).CStr(), "COM3");
  EXPECT_STREQ(FormatCOMPort(12).CStr(), "COM12");
}

TEST(HostPortList, FreeNumber_IsTheLowestThatIsNotTaken) {
  EXPECT_EQ(FindFreeCOMPortNumber({}), 1U);
  EXPECT_EQ(FindFreeCOMPortNumber({1, 2, 4}), 3U);
  std::set<std::uint32_t> all;
  for (std::uint32_t number = 1; number <= 99; ++number)
    all.insert(number);
  EXPECT_EQ(FindFreeCOMPortNumber(all), 0U);
}

} // namespace krgui
