#include "gigevision/adaptermembership.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using krtransport::AdapterMembership;

TEST(AdapterMembership, Cameras_ComingAndGoing_AreToldToTheOthersOfTheAdapter) {
  int toldFirst = 0;
  int toldSecond = 0;
  int toldElsewhere = 0;
  const AdapterMembership first("eth0", [&] { ++toldFirst; });
  const AdapterMembership elsewhere("eth1", [&] { ++toldElsewhere; });

  auto second = std::make_unique<AdapterMembership>("eth0", [&] { ++toldSecond; });

  EXPECT_EQ(first.CountCameras(), 2u);
  EXPECT_EQ(second->CountCameras(), 2u);
  EXPECT_EQ(elsewhere.CountCameras(), 1u);
  EXPECT_EQ(toldFirst, 1);
  second.reset();
  EXPECT_EQ(first.CountCameras(), 1u);
  EXPECT_EQ(toldFirst, 2);
  EXPECT_EQ(toldSecond, 0);
  EXPECT_EQ(toldElsewhere, 0);
}

} // namespace
