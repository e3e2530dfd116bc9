#include "camerafile/commandexchange.h"

#include "await.h"
#include "cameraend.h"
#include "camerafile/camerafilereader.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>

namespace krcamerabridge {
namespace {

using namespace std::string_literals;
using krtest::CameraEnd;
using testing::HasSubstr;

// A protocol alone; features do not matter here.
FileProtocol MakeProtocol(const std::string& aProtocol) {
  std::vector<std::string> errors;
  const std::optional<FileModel> model =
      ReadCameraFileText("cameraFile: 1\ncamera: {vendor: V, model: M}\nprotocol: {" + aProtocol +
                             "}\ncategories: [{name: C, features: [{name: F, type: integer, start: 1}]}]\n",
                         errors);
  EXPECT_THAT(errors, testing::IsEmpty());
  return model.value_or(FileModel()).protocol;
}

CommandTemplate MakeAnswer(const std::string& aText, bool aIsBinary) {
  std::vector<std::string> problems;
  CommandTemplate answer = ParseCommandTemplate(aText, aIsBinary, problems);
  EXPECT_THAT(problems, testing::IsEmpty());
  return answer;
}

CommandOrder MakeOrder(const std::string& aCommand, const std::string& aAnswer, bool aIsBinary = false,
                       std::uint32_t aAnswerMs = 30000) {
  return {.command = aCommand, .answer = MakeAnswer(aAnswer, aIsBinary), .answerMs = aAnswerMs};
}

constexpr const char* kPlain = "commandEnd: \"\\r\", answerEnd: \"\\r\", repeats: 0, errors: [{answer: 'ERR {text}'},"
                               " {answer: AGAIN, damaged: true}]";

// Answers each command, which ends with CR, by a table's text.
CameraEnd::Camera Answering(std::string aAnswer) {
  return [answer = std::move(aAnswer), rest = std::string()](std::string_view aBytes) mutable {
    rest += aBytes;
    std::string answers;
    for (std::size_t end = rest.find('\r'); end != std::string::npos; end = rest.find('\r')) {
      rest.erase(0, end + 1);
      answers += answer;
    }
    return answers;
  };
}

std::int64_t GetWhole(const AnswerContent& aContent) {
  return aContent.value ? std::get<std::int64_t>(*aContent.value) : -1;
}

TEST(CommandExchange, AnAnswer_GivesItsValue) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera(Answering("G=12\r"));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("G?\r", "G={value:d}\\r"), {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 12);
}

TEST(CommandExchange, Rubbish_IsPassedOver) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera(Answering("\x80\x01 booted\rX=5\rG=12\r"));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  EXPECT_TRUE(exchange.Run(MakeOrder("G?\r", "G={value:d}\\r"), {}, content).IsOK());
  EXPECT_EQ(GetWhole(content), 12);
}

TEST(CommandExchange, BytesWithoutAnEnd_AreAFailureBeforeTheyFillTheMemory) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera(Answering(std::string(1 << 20, 'x')));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("G?\r", "G={value:d}\\r"), {}, content);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("The camera answered \"" + std::string(80, 'x') + "…\" to"));
}

// Whatever comes behind them.
TEST(CommandExchange, BytesThatBeginNoBinaryAnswer_AreAFailureBeforeTheyFillTheMemory) {
  const FileProtocol protocol = MakeProtocol("data: binary, repeats: 0");
  CameraEnd camera([](std::string_view) { return std::string(8192, '\xFF') + "\x06\x01\x2C"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("\x01", "06 {value:u16be}", true), {}, content);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("The camera answered \"FF FF FF"));
}

TEST(CommandExchange, FourThousandBytesThatBeginNoBinaryAnswer_ArePassedOver) {
  const FileProtocol protocol = MakeProtocol("data: binary, repeats: 0");
  CameraEnd camera([](std::string_view) { return std::string(4000, '\xFF') + "\x06\x01\x2C"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("\x01", "06 {value:u16be}", true), {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 300);
}

TEST(CommandExchange, StartsInsideAnswers_BelongToThem) {
  struct Row {
    const char* sent;
    const char* answer;
    const char* value;
  };
  const Row rows[] = {
      {":12:30\r", ":{value:text}\\r", "12:30"},
      {":T=12:30\r", ":T={value:text}\\r", "12:30"},
      {"?:?:T=12:30\r", ":T={value:text}\\r", "12:30"},
      {"noise:T=12\r", ":T={value:text}\\r", "12"},
  };
  const FileProtocol protocol = MakeProtocol(
      "commandEnd: \"\\r\", answerStart: ':', answerEnd: \"\\r\", repeats: 0, errors: [{answer: 'ERR {text}'}]");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.sent);
    CameraEnd camera(Answering(row.sent));
    CommandExchange exchange(camera.GetLine(), protocol);
    AnswerContent content;

    const KrResult result = exchange.Run(MakeOrder("T?\r", row.answer), {}, content);

    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(content.value, WireValue(std::string(row.value)));
  }
  CameraEnd camera(Answering(":ERR lens: off\r"));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  EXPECT_THAT(exchange.Run(MakeOrder("T?\r", ":T={value:text}\\r"), {}, content).GetDescription().ToUtf8(),
              HasSubstr("refused \"T?\\r\": lens: off."));
}

// Of the first the sum is what ends it, of the second a byte of the value.
TEST(CommandExchange, EndingsInsideBinaryAnswers_BelongToThem) {
  const FileProtocol protocol = MakeProtocol("data: binary, repeats: 0, check: {kind: sum8, write: u8}");
  for (const auto& [sent, value] :
       {std::pair("\x02\x01\x03\x03"s, "\x01"s), std::pair("\x02\x61\x03\x9A\x00\x03"s, "\x61\x03\x9A"s)}) {
    CameraEnd camera([answer = sent](std::string_view) { return answer; });
    CommandExchange exchange(camera.GetLine(), protocol);
    AnswerContent content;

    const KrResult result = exchange.Run(MakeOrder("?", "02 {value:text} {check:u8} 03", true), {}, content);

    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(content.value, WireValue(value));
  }
}

TEST(CommandExchange, AnError_HasTheCamerasWords) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera(Answering("ERR lens cap is on\r"));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("G?\r", "{value:text}\\r"), {}, content);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_EQ(result.GetDescription().ToUtf8(), "The camera refused \"G?\\r\": lens cap is on.");
}

TEST(CommandExchange, AnAnswerThatIsNone_IsShown) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera(Answering("HUH\r"));
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("G?\r", "G={value:d}\\r", false, 100), {}, content);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("The camera answered \"HUH\\r\" to \"G?\\r\""));
}

TEST(CommandExchange, Silence_IsATimeLimitThatHasPassed) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera([](std::string_view) { return std::string(); });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("G?\r", "{value:d}\\r", false, 50), {}, content);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(result.GetDescription().ToUtf8(),
            "The camera did not answer \"G?\\r\" within 50 milliseconds; check its cable and its power.");
}

TEST(CommandExchange, ACommandThatCameDamaged_IsSentAgain) {
  FileProtocol protocol = MakeProtocol(kPlain);
  protocol.repeats = 2;
  std::atomic<int> count{0};
  CameraEnd camera([&count](std::string_view) { return ++count < 3 ? "AGAIN\r"s : "OK\r"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  CommandOrder order = MakeOrder("SAVE\r", "OK\\r");
  order.mayRepeat = false; // It was not done.
  AnswerContent content;

  EXPECT_TRUE(exchange.Run(order, {}, content).IsOK());
  EXPECT_EQ(count, 3);
}

TEST(CommandExchange, WithoutAnAnswer_IsRepeatedOnlyWhereThatDoesNoHarm) {
  FileProtocol protocol = MakeProtocol(kPlain);
  protocol.repeats = 1;
  for (const bool mayRepeat : {false, true}) {
    std::atomic<int> count{0};
    CameraEnd camera([&count](std::string_view) { return ++count > 1 ? "OK\r"s : std::string(); });
    CommandExchange exchange(camera.GetLine(), protocol);
    CommandOrder order = MakeOrder("SAVE\r", "OK\\r", false, 2000);
    order.mayRepeat = mayRepeat;
    AnswerContent content;

    EXPECT_EQ(exchange.Run(order, {}, content).IsOK(), mayRepeat);
    EXPECT_TRUE(camera.AwaitBytes(mayRepeat ? 10 : 5));
    EXPECT_EQ(count, mayRepeat ? 2 : 1);
  }
}

TEST(CommandExchange, ALateAnswer_IsNotTakenForThatOfTheNextCommand) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  // The answers cannot be told apart by their looks.
  CameraEnd camera([](std::string_view aBytes) { return aBytes == "A?\r" ? "1\r"s : "2\r"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  camera.HoldBack(true);
  EXPECT_EQ(exchange.Run(MakeOrder("A?\r", "{value:d}\\r", false, 300), {}, content),
            KrResult::Code::TimeLimitExceeded);
  ASSERT_TRUE(camera.AwaitBytes(3));

  camera.HoldBack(false);
  const KrResult result = exchange.Run(MakeOrder("B?\r", "{value:d}\\r"), {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 2);
}

TEST(CommandExchange, TheAnswerToACancelledCommand_IsDropped) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera([](std::string_view aBytes) { return aBytes == "A?\r" ? "1\r"s : "2\r"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  camera.HoldBack(true);
  std::stop_source stop;
  CommandOrder order = MakeOrder("A?\r", "{value:d}\\r");
  order.answerMs = 3000; // As long the line is to be quiet afterwards.
  auto asked = std::async(std::launch::async, [&] { return exchange.Run(order, stop.get_token(), content); });
  ASSERT_TRUE(camera.AwaitBytes(3));
  stop.request_stop();
  EXPECT_EQ(asked.get(), KrResult::Code::Aborted);

  camera.HoldBack(false);
  const KrResult result = exchange.Run(MakeOrder("B?\r", "{value:d}\\r"), {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 2);
}

TEST(CommandExchange, Cancelling_EndsTheWaitAtOnce) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera([](std::string_view) { return std::string(); });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  std::stop_source stop;
  auto asked = std::async(std::launch::async, [&] {
    return exchange.Run(MakeOrder("A?\r", "{value:d}\\r", false, 600000), stop.get_token(), content);
  });
  ASSERT_TRUE(camera.AwaitBytes(3));

  stop.request_stop();

  ASSERT_EQ(asked.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  EXPECT_EQ(asked.get(), KrResult::Code::Aborted);
}

TEST(CommandExchange, ALineThatBreaks_IsALostConnection) {
  const FileProtocol protocol = MakeProtocol(kPlain);
  CameraEnd camera([](std::string_view) { return std::string(); });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  camera.HangUp();

  EXPECT_EQ(exchange.Run(MakeOrder("A?\r", "{value:d}\\r"), {}, content), KrResult::Code::ConnectionLost);
}

TEST(CommandExchange, Echo_IsPassedOver) {
  const FileProtocol protocol =
      MakeProtocol("commandEnd: \"\\r\", answerEnd: \"\\r\\n\", echo: true, echoEnd: \"\\r\\n\", repeats: 0");
  CameraEnd camera([](std::string_view aBytes) { return std::string(aBytes) + "\n7\r\n"; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  const KrResult result = exchange.Run(MakeOrder("5\r", "{value:d}\\r\\n"), {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 7); // Not the 5 of the echo.
}

TEST(CommandExchange, AMissingEcho_IsTold) {
  const FileProtocol protocol = MakeProtocol("commandEnd: \"\\r\", answerEnd: \"\\r\", echo: true, repeats: 0");
  CameraEnd camera([](std::string_view) { return "7\r"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  // The limit is waited out, as the echo might still come.
  const KrResult result = exchange.Run(MakeOrder("A?\r", "{value:d}\\r", false, 3000), {}, content);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("answered \"7\\r\""));
}

TEST(CommandExchange, Prompt_EndsCommandsWithoutAnAnswer) {
  const FileProtocol protocol = MakeProtocol("commandEnd: \"\\r\", answerEnd: \"\\r\\n\", prompt: '> ', repeats: 0,"
                                             " errors: [{answer: '?{text}'}]");
  CameraEnd camera([](std::string_view aBytes) {
    return aBytes == "BAD\r" ? "?no such command\r\n> "s : aBytes == "A?\r" ? "3\r\n> "s : "> "s;
  });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;

  EXPECT_TRUE(exchange.Run({.command = "A=3\r", .answerMs = 30000}, {}, content).IsOK());
  EXPECT_TRUE(exchange.Run(MakeOrder("A?\r", "{value:d}\\r\\n"), {}, content).IsOK());
  EXPECT_EQ(GetWhole(content), 3);
  const KrResult refused = exchange.Run({.command = "BAD\r", .answerMs = 30000}, {}, content);
  EXPECT_EQ(refused, KrResult::Code::ProtocolError);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), HasSubstr("no such command"));
}

TEST(CommandExchange, BinaryAnswers_AreFoundBehindRubbish) {
  const FileProtocol protocol = MakeProtocol("data: binary, check: {kind: sum8}, repeats: 0");
  // 02 + 02 + 01 + 2C is 31.
  CameraEnd camera([](std::string_view) { return "\xFF\x02\x02\x09\x02\x02\x01\x2C\x31"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  CommandOrder order = MakeOrder("\x01", "02 {length:u8-1} {value:u16be} {check:u8}", true);
  AnswerContent content;

  const KrResult result = exchange.Run(order, {}, content);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(GetWhole(content), 300);
}

TEST(CommandExchange, BinaryAnswersInPieces_AreAwaited) {
  const FileProtocol protocol = MakeProtocol("data: binary, repeats: 0");
  CameraEnd camera([](std::string_view) { return "\x06\x01"s; });
  CommandExchange exchange(camera.GetLine(), protocol);
  AnswerContent content;
  auto asked = std::async(std::launch::async,
                          [&] { return exchange.Run(MakeOrder("\x01", "06 {value:u16be}", true), {}, content); });
  ASSERT_TRUE(camera.AwaitBytes(1));

  camera.Say("\x2C");

  EXPECT_TRUE(asked.get().IsOK());
  EXPECT_EQ(GetWhole(content), 300);
}

} // namespace
} // namespace krcamerabridge
