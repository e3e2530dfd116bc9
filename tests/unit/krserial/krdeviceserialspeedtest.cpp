#include "krserial/krdeviceserialspeed.h"

#include "await.h"
#include "krserial/krbulkselectorturn.h"
#include "serialadapter.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using krtest::SerialAdapter;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::uint32_t> GetSupported(SerialAdapter& aAdapter, KrDeviceSerial aPort) {
  std::vector<std::uint32_t> rates = {1};
  const KrResult asked = KrDeviceSerialSpeed(aAdapter, aPort).GetSupported(rates);
  EXPECT_TRUE(asked.IsOK()) << asked.GetDescription().CStr();
  return rates;
}

// A device with two bulk ports of their own speed, the second of which is selected.
class BulkAdapter : public SerialAdapter {
public:
  BulkAdapter() { enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"}; }

  bool HasParameter(const KrString& aName) override {
    return aName == KrString("BulkBaudRate") || SerialAdapter::HasParameter(aName);
  }
  KrResult GetEnumEntries(const KrString& aName, KrStringList& aEntries) override {
    return SerialAdapter::GetEnumEntries(Own(aName), aEntries);
  }
  KrResult GetEnumValue(const KrString& aName, KrString& aValue) override {
    return SerialAdapter::GetEnumValue(Own(aName), aValue);
  }
  KrResult SetEnumValue(const KrString& aName, const KrString& aValue) override {
    const bool isFirst = users.fetch_add(1) == 0;
    sawTwo = sawTwo || !isFirst;
    KrResult set = SerialAdapter::SetEnumValue(Own(aName), aValue);
    users.fetch_sub(1);
    return set;
  }

  std::atomic<int> users = 0;
  std::atomic<bool> sawTwo = false;

private:
  KrString Own(const KrString& aName) {
    return aName == KrString("BulkBaudRate") ? KrString(enumerations["BulkSelector"].value) + "Rate" : aName;
  }
};

// Made before all that is made when it is needed first, and so destroyed after it.
struct LastOfAll {
  ~LastOfAll() {
    if (action)
      action();
  }
  std::function<void()> action;
} lastOfAll;

class BulkSpeed : public testing::Test {
protected:
  BulkSpeed() {
    adapter.enumerations["Bulk0Rate"] = {{"Baud9600", "Baud19200"}, "Baud9600"};
    adapter.enumerations["Bulk1Rate"] = {{"Baud57600"}, "Baud57600"};
  }

  BulkAdapter adapter;
  KrDeviceSerialSpeed speed{adapter, KrDeviceSerial::Bulk0};
};

} // namespace

TEST(KrDeviceSerialSpeed, EntriesWithOneNumber_TellTheirRate) {
  struct Row {
    const char* entry;
    std::vector<std::uint32_t> rates;
  };
  const Row kRows[] = {
      {"Baud9600", {9600}},
      {"Baud_115200", {115200}},
      {"9600", {9600}},
      {"Rate57600bps", {57600}},
      {"Baud50", {50}},
      {"Auto", {}},
      {"", {}},
      {"Baud115k2", {}},
      {"Baud1M", {}},
      {"Baud0", {}},
      {"Baud9600_8N1", {}},
      {"Baud99999999999999999999", {}},
      {"Baud4000000", {4000000}},
      {"-9600", {9600}},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.entry);
    SerialAdapter adapter;
    adapter.enumerations["Uart0BaudRate"] = {{row.entry}, row.entry};
    std::uint32_t rate = 0;

    EXPECT_EQ(GetSupported(adapter, KrDeviceSerial::Serial0), row.rates);
    const KrResult read = KrDeviceSerialSpeed(adapter, KrDeviceSerial::Serial0).Get(rate);

    EXPECT_EQ(read, row.rates.empty() ? KrResult::Code::NotSupported : KrResult::Code::OK);
    EXPECT_EQ(rate, row.rates.empty() ? 0U : row.rates.front());
  }
}

TEST(KrDeviceSerialSpeed, Supported_AreInTheDevicesOrderWithoutThoseThatTellNone) {
  SerialAdapter adapter;
  adapter.enumerations["Uart1BaudRate"] = {{"Baud115200", "Auto", "Baud9600"}, "Auto"};

  EXPECT_THAT(GetSupported(adapter, KrDeviceSerial::Serial1), ElementsAre(115200, 9600));
}

TEST(KrDeviceSerialSpeed, Set_ChoosesTheEntryOfTheRate) {
  SerialAdapter adapter;
  adapter.enumerations["Uart0BaudRate"] = {{"Baud9600", "Baud115200", "Auto"}, "Baud9600"};
  const KrDeviceSerialSpeed speed(adapter, KrDeviceSerial::Serial0);
  std::uint32_t rate = 0;

  ASSERT_TRUE(speed.Set(115200).IsOK());
  ASSERT_TRUE(speed.Get(rate).IsOK());

  EXPECT_EQ(rate, 115200U);
  EXPECT_THAT(adapter.written, ElementsAre("Uart0BaudRate=Baud115200"));
}

TEST(KrDeviceSerialSpeed, Set_OfARateThatThePortLacks_IsNotSupported) {
  SerialAdapter adapter;
  adapter.enumerations["Uart0BaudRate"] = {{"Baud9600", "Auto"}, "Baud9600"};
  const KrDeviceSerialSpeed speed(adapter, KrDeviceSerial::Serial0);

  EXPECT_EQ(speed.Set(19200), KrResult::Code::NotSupported);
  EXPECT_EQ(speed.Set(0), KrResult::Code::NotSupported);
  EXPECT_THAT(adapter.written, IsEmpty());
}

TEST(KrDeviceSerialSpeed, OfAPortWithoutTheParameter_IsNotFound) {
  SerialAdapter adapter;
  for (const KrDeviceSerial port : {KrDeviceSerial::Serial0, KrDeviceSerial::Bulk0, KrDeviceSerial::Invalid}) {
    SCOPED_TRACE(GetPortName(port).CStr());
    const KrDeviceSerialSpeed speed(adapter, port);
    std::uint32_t rate = 7;

    EXPECT_THAT(GetSupported(adapter, port), IsEmpty());
    EXPECT_EQ(speed.Get(rate), KrResult::Code::NotFound);
    EXPECT_EQ(speed.Set(9600), KrResult::Code::NotFound);
    EXPECT_EQ(rate, 7U);
  }
}

TEST(KrDeviceSerialSpeed, OfAClockDivider_IsNotSupportedAndLeavesTheSelectorAlone) {
  SerialAdapter adapter;
  adapter.enumerations["BulkSystemClockDivider"] = {{"By5000", "By9600"}, "By5000"};
  adapter.enumerations["BulkSelector"] = {{"Bulk0", "Bulk1"}, "Bulk1"};
  const KrDeviceSerialSpeed speed(adapter, KrDeviceSerial::Bulk0);
  std::uint32_t rate = 0;

  EXPECT_THAT(GetSupported(adapter, KrDeviceSerial::Bulk0), IsEmpty());
  EXPECT_EQ(speed.Get(rate), KrResult::Code::NotSupported);
  EXPECT_EQ(speed.Set(9600), KrResult::Code::NotSupported);
  EXPECT_THAT(adapter.written, IsEmpty());
}

TEST(KrDeviceSerialSpeed, WhatTheDeviceFailsWith_ComesAsItIs) {
  SerialAdapter adapter;
  adapter.enumerations["Uart0BaudRate"] = {{"Baud9600"}, "Baud9600"};
  adapter.readFailure = KrResult(KrResult::Code::ConnectionLost, "Gone.");
  adapter.writeFailure = KrResult(KrResult::Code::AccessDenied, "Locked.");
  const KrDeviceSerialSpeed speed(adapter, KrDeviceSerial::Serial0);
  std::uint32_t rate = 0;

  EXPECT_EQ(speed.Get(rate), KrResult::Code::ConnectionLost);
  EXPECT_EQ(speed.Set(9600), KrResult::Code::AccessDenied);
}

TEST(KrDeviceSerialSpeed, OfAnAdapterThatThrows_IsASystemError) {
  class ThrowingAdapter : public SerialAdapter {
    bool HasParameter(const KrString&) override { throw std::runtime_error("no parameters today"); }
  };
  ThrowingAdapter adapter;
  std::uint32_t rate = 0;

  const KrResult read = KrDeviceSerialSpeed(adapter, KrDeviceSerial::Serial0).Get(rate);

  EXPECT_EQ(read, KrResult::Code::SystemError);
  EXPECT_NE(read.GetDescription().ToUtf8().find("no parameters today"), std::string::npos);
}

TEST_F(BulkSpeed, EachAccess_IsOfThePortAndPutsTheSelectorBack) {
  std::uint32_t rate = 0;

  EXPECT_THAT(GetSupported(adapter, KrDeviceSerial::Bulk0), ElementsAre(9600, 19200));
  EXPECT_TRUE(speed.Set(19200).IsOK());
  EXPECT_TRUE(speed.Get(rate).IsOK());

  EXPECT_EQ(rate, 19200U);
  EXPECT_EQ(adapter.enumerations["Bulk1Rate"].value, "Baud57600");
  EXPECT_THAT(adapter.written,
              ElementsAre("BulkSelector=Bulk0", "BulkSelector=Bulk1", "BulkSelector=Bulk0", "Bulk0Rate=Baud19200",
                          "BulkSelector=Bulk1", "BulkSelector=Bulk0", "BulkSelector=Bulk1"));
}

TEST_F(BulkSpeed, OfThePortThatIsSelected_LeavesTheSelectorAlone) {
  adapter.enumerations["BulkSelector"].value = "Bulk0";
  std::uint32_t rate = 0;

  EXPECT_TRUE(speed.Get(rate).IsOK());

  EXPECT_EQ(rate, 9600U);
  EXPECT_THAT(adapter.written, IsEmpty());
}

TEST_F(BulkSpeed, WithASelectorThatCannotBeSet_DoesNotTouchAnotherPort) {
  adapter.writeFailure = KrResult(KrResult::Code::AccessDenied, "Locked.");
  std::uint32_t rate = 7;

  EXPECT_EQ(speed.Get(rate), KrResult::Code::AccessDenied);
  EXPECT_EQ(speed.Set(9600), KrResult::Code::AccessDenied);
  EXPECT_EQ(rate, 7U);
  EXPECT_THAT(adapter.written, ElementsAre("BulkSelector=Bulk0", "BulkSelector=Bulk0"));
}

TEST_F(BulkSpeed, TwoPortsAtOnce_NeverMeetAtTheSelector) {
  const auto setOften = [this](KrDeviceSerial aPort, std::uint32_t aRate) {
    return std::async(std::launch::async, [this, aPort, aRate] {
      bool isAllSet = true;
      for (int round = 0; round < 500; ++round) {
        std::uint32_t rate = 0;
        isAllSet = KrDeviceSerialSpeed(adapter, aPort).Set(aRate).IsOK() && isAllSet;
        isAllSet = KrDeviceSerialSpeed(adapter, aPort).Get(rate).IsOK() && rate == aRate && isAllSet;
      }
      return isAllSet;
    });
  };

  std::future<bool> first = setOften(KrDeviceSerial::Bulk0, 19200);
  std::future<bool> second = setOften(KrDeviceSerial::Bulk1, 57600);

  EXPECT_TRUE(first.get());
  EXPECT_TRUE(second.get());
  EXPECT_FALSE(adapter.sawTwo);
}

TEST_F(BulkSpeed, WhileAnotherHasTheTurn_Waits) {
  auto turn = std::make_unique<KrBulkSelectorTurn>(adapter, KrDeviceSerial::Bulk1);
  std::promise<void> started;
  std::future<KrResult> setting = std::async(std::launch::async, [&] {
    started.set_value();
    return speed.Set(19200);
  });
  started.get_future().wait();

  const std::vector<std::string> writtenMeanwhile = adapter.written;
  turn.reset();

  EXPECT_TRUE(setting.get().IsOK());
  EXPECT_THAT(writtenMeanwhile, IsEmpty());
  EXPECT_FALSE(adapter.written.empty());
}

TEST_F(BulkSpeed, StoppedWhileAnotherHasTheTurn_IsAbortedAndAsksNothing) {
  const KrBulkSelectorTurn turn(adapter, KrDeviceSerial::Bulk1);
  std::stop_source stop;
  std::future<KrResult> setting = std::async(std::launch::async, [&] { return speed.Set(19200, stop.get_token()); });

  stop.request_stop();

  EXPECT_EQ(setting.get(), KrResult::Code::Aborted);
  EXPECT_THAT(adapter.written, IsEmpty());
  std::vector<std::uint32_t> rates;
  std::uint32_t rate = 0;
  EXPECT_EQ(speed.GetSupported(rates, stop.get_token()), KrResult::Code::Aborted);
  EXPECT_EQ(speed.Get(rate, stop.get_token()), KrResult::Code::Aborted);
}

TEST(KrBulkSelectorTurn, OfOtherPortsAndDevices_IsHadAtOnce) {
  class OtherAdapter : public SerialAdapter {
    KrString GetDeviceText() const override { return "Model X 00:11:22:33:44:66"; }
  };
  SerialAdapter adapter;
  OtherAdapter other;

  const KrBulkSelectorTurn first(adapter, KrDeviceSerial::Bulk0);
  const std::future<void> others = std::async(std::launch::async, [&] {
    const KrBulkSelectorTurn ofSerialPort(adapter, KrDeviceSerial::Serial0);
    const KrBulkSelectorTurn ofOther(other, KrDeviceSerial::Bulk0);
  });

  EXPECT_EQ(others.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}

// A thread may be at it still: a program whose display goes is ended from inside, for one.
TEST(KrBulkSelectorTurn, WhileTheProcessEnds_IsStillHad) {
  SerialAdapter adapter;
  const auto end = [&adapter] {
    const auto take = [&adapter] { return KrBulkSelectorTurn(adapter, KrDeviceSerial::Bulk0).IsMine(); };
    lastOfAll.action = [take] { _exit(take() ? 0 : 1); };
    if (!take())
      _exit(3);
    std::exit(2);
  };

  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}
