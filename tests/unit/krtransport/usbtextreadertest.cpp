#include "usb3vision/usbtextreader.h"

#include <gmock/gmock.h>

#include <array>
#include <thread>

namespace {

using namespace krtransport;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array<std::uint8_t, 4> kIndexes = {3, 0, 7, 9};
const KrResult kStalled(KrResult::Code::ProtocolError, "There is no such text.");
const KrResult kSilent(KrResult::Code::TimeLimitExceeded, "Nobody answers.");

// A device whose languages are English, and whose text n is the letter n of the alphabet.
class UsbTextReader : public testing::Test {
protected:
  KrResult Read(std::uint8_t aIndex, std::uint16_t aLanguage, milliseconds aLimit, std::vector<std::uint8_t>& aBytes) {
    mAsked.push_back(aIndex);
    EXPECT_EQ(aLanguage, aIndex == 0 ? 0 : 0x0409);
    EXPECT_GE(aLimit, milliseconds(1));
    EXPECT_LE(aLimit, mMostLimit);
    if (mOnRead)
      mOnRead(aIndex);
    if (aIndex == mFailingIndex)
      return mFailure;
    aBytes = aIndex == 0 ? std::vector<std::uint8_t>{4, 3, 0x09, 0x04}
                         : std::vector<std::uint8_t>{4, 3, static_cast<std::uint8_t>('@' + aIndex), 0};
    return {};
  }
  KrResult ReadTexts(steady_clock::time_point aEnd = steady_clock::now() + hours(1)) {
    const auto read = [this](std::uint8_t aIndex, std::uint16_t aLanguage, milliseconds aLimit,
                             std::vector<std::uint8_t>& aBytes) { return Read(aIndex, aLanguage, aLimit, aBytes); };
    return ReadUsbTexts({kIndexes, aEnd, mStop.get_token()}, read, mTexts);
  }

  std::stop_source mStop;
  milliseconds mMostLimit = kUsbTransferLimit;
  int mFailingIndex = -1;
  KrResult mFailure;
  std::function<void(std::uint8_t)> mOnRead;
  std::vector<std::uint8_t> mAsked;
  std::vector<std::string> mTexts = {"of before"};
};

TEST_F(UsbTextReader, DeviceThatAnswers_GivesItsTextsInTheFirstLanguage) {
  EXPECT_TRUE(ReadTexts().IsOK());

  EXPECT_THAT(mAsked, ElementsAre(0, 3, 7, 9));
  EXPECT_THAT(mTexts, ElementsAre("C", "", "G", "I"));
}

TEST_F(UsbTextReader, TextThatTheDeviceDoesNotHave_IsEmptyAndTheOthersFollow) {
  mFailingIndex = 7;
  mFailure = kStalled;

  EXPECT_TRUE(ReadTexts().IsOK());

  EXPECT_THAT(mTexts, ElementsAre("C", "", "", "I"));
}

TEST_F(UsbTextReader, DeviceThatFallsSilent_IsAskedNothingMore) {
  mFailingIndex = 7;
  mFailure = kSilent;

  EXPECT_TRUE(ReadTexts().IsOK());

  EXPECT_THAT(mAsked, ElementsAre(0, 3, 7));
  EXPECT_THAT(mTexts, ElementsAre("C", "", "", ""));
}

TEST_F(UsbTextReader, DeviceThatIsSilentFromTheStart_GivesItsFailureAndNoTexts) {
  mFailingIndex = 0;
  mFailure = kSilent;

  EXPECT_EQ(ReadTexts(), KrResult::Code::TimeLimitExceeded);

  EXPECT_THAT(mAsked, ElementsAre(0));
  EXPECT_THAT(mTexts, IsEmpty());
}

TEST_F(UsbTextReader, Cancelled_BetweenTwoTexts_IsAbortedWithoutAskingForTheNext) {
  mOnRead = [this](std::uint8_t aIndex) {
    if (aIndex == 3)
      mStop.request_stop();
  };

  EXPECT_EQ(ReadTexts(), KrResult::Code::Aborted);

  EXPECT_THAT(mAsked, ElementsAre(0, 3));
  EXPECT_THAT(mTexts, IsEmpty());
}

TEST_F(UsbTextReader, NoTimeLeft_NothingIsAsked) {
  EXPECT_EQ(ReadTexts(steady_clock::now()), KrResult::Code::TimeLimitExceeded);

  EXPECT_THAT(mAsked, IsEmpty());
  EXPECT_THAT(mTexts, IsEmpty());
}

TEST_F(UsbTextReader, TimeThatIsUpAfterAnAnswer_EndsTheQuestions) {
  // Longer and longer, until it is not up before the first question.
  for (milliseconds time(50); mAsked.empty(); time *= 2) {
    ASSERT_LT(time, hours(1));
    const auto end = steady_clock::now() + time;
    mOnRead = [end](std::uint8_t) { std::this_thread::sleep_until(end); };
    static_cast<void>(ReadTexts(end));
  }

  EXPECT_THAT(mAsked, ElementsAre(0)) << "the time is that of all questions together";
}

TEST_F(UsbTextReader, TimeThatIsShorterThanATransferMayTake_LimitsEachTransfer) {
  mMostLimit = kUsbTransferLimit - milliseconds(1);

  static_cast<void>(ReadTexts(steady_clock::now() + mMostLimit));

  EXPECT_FALSE(HasFailure()) << "the limit of each question is compared where it is asked";
}

} // namespace
