#include "jsonwriter.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace krtool {
namespace {

// Reads a JSON text with an independent reader; a text that it refuses fails the test.
QJsonDocument Read(const std::string& aText) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(aText), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << "\n" << aText;
  return document;
}

TEST(JsonWriter, NestedValues_AreReadBackAsWritten) {
  JsonWriter writer;
  writer.BeginObject();
  writer.Key("list");
  writer.BeginArray();
  writer.Number(1);
  writer.BeginObject();
  writer.EndObject();
  writer.BeginArray();
  writer.EndArray();
  writer.Null();
  writer.EndArray();
  writer.TextMember("text", "value");
  writer.Key("yes");
  writer.Boolean(true);
  writer.EndObject();

  const QJsonObject object = Read(writer.GetText()).object();

  EXPECT_EQ(object.size(), 3);
  EXPECT_EQ(object["list"].toArray().size(), 4);
  EXPECT_EQ(object["list"].toArray()[0].toInt(), 1);
  EXPECT_TRUE(object["list"].toArray()[3].isNull());
  EXPECT_EQ(object["text"].toString(), "value");
  EXPECT_TRUE(object["yes"].toBool());
}

TEST(JsonWriter, EveryCharacter_IsReadBackAsItWas) {
  std::u16string text = u"\"\\/\b\f\n\r\tGr\u00f6\u00dfe \u955c \U0001F4F7";
  for (char16_t unit = 0; unit < 0x100; ++unit)
    text += unit;

  const QJsonArray array = Read("[" + QuoteJson(KrString(text)) + "]").array();

  EXPECT_EQ(array[0].toString().toStdU16String(), text);
}

TEST(JsonWriter, BytesThatAreNoUtf8_StillGiveValidJson) {
  const QJsonArray array = Read("[" + QuoteJson("a\xff\xc3") + "]").array();

  EXPECT_EQ(array[0].toString(), QStringLiteral("a\uFFFD\uFFFD"));
}

} // namespace
} // namespace krtool
