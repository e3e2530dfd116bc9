// The main function of tests that use programs as their users do: no windows of their own.

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleMock(&aArgumentCount, aArguments);
  const QCoreApplication application(aArgumentCount, aArguments);
  return RUN_ALL_TESTS();
}
