#include "krbase/krnamedmutexes.h"

#include <gtest/gtest.h>

TEST(KrNamedMutexes, OfOneName_AreOneMutexWhileSomebodyHasIt) {
  KrNamedMutexes mutexes;

  const std::shared_ptr<std::mutex> first = mutexes.Of("a");

  EXPECT_EQ(mutexes.Of("a"), first);
  EXPECT_NE(mutexes.Of("b"), first);
}

TEST(KrNamedMutexes, OfANameThatNobodyHasAnyMore_AreForgotten) {
  KrNamedMutexes mutexes;
  const std::weak_ptr<std::mutex> former = mutexes.Of("a");

  EXPECT_TRUE(former.expired());
  EXPECT_NE(mutexes.Of("a"), nullptr);
}
