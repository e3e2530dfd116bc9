#include "page/keptpage.h"

#include <gtest/gtest.h>

#include <QDataStream>
#include <QIODevice>

#include <optional>

using krviewer::KeptPage;

namespace {

KeptPage MakePage() {
  return {.layout = "layout",
          .recording = "recording",
          .saving = "saving",
          .options = {{QStringList{"Visibility", "Guru"}, QStringList{}, QStringList{"Tree", ""}}},
          .isCreatingPorts = true};
}

} // namespace

TEST(KeptPage_, WhatIsKept_IsReadAgain) {
  const KeptPage page = MakePage();

  const std::optional<KeptPage> read = KeptPage::Read(page.Save());

  ASSERT_TRUE(read);
  EXPECT_EQ(read->layout, page.layout);
  EXPECT_EQ(read->recording, page.recording);
  EXPECT_EQ(read->saving, page.saving);
  EXPECT_EQ(read->options, page.options);
  EXPECT_TRUE(read->isCreatingPorts);
}

TEST(KeptPage_, BytesThatEndEarly_AreNone) {
  const QByteArray whole = MakePage().Save();

  for (qsizetype size = 0; size < whole.size(); ++size)
    EXPECT_FALSE(KeptPage::Read(whole.first(size))) << size;
}

TEST(KeptPage_, PageOfAnotherVersion_IsNone) {
  QByteArray bytes = MakePage().Save();
  bytes[3] = 3;

  EXPECT_FALSE(KeptPage::Read(bytes));
}

// Texts of no letter, of which there would be as many as numbers can say.
TEST(KeptPage_, ListOfMoreTextsThanThereAreBytesFor_IsNone) {
  for (const quint32 count : {quint32{3}, quint32{0xFFFF'FFF0}, quint32{0xFFFF'FFFE}, quint32{0xFFFF'FFFF}}) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << quint32{2} << QByteArray() << QByteArray() << QByteArray() << count << QString() << QString();

    EXPECT_FALSE(KeptPage::Read(bytes)) << count;
  }
}
