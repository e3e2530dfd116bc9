#include "recording/savingstate.h"

#include <QDataStream>
#include <QIODevice>

#include <gtest/gtest.h>

using krapps::FrameFileFormat;
using krviewer::SavingState;

namespace {

QByteArray MakeBytes(quint32 aVersion, quint32 aFormat) {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream << aVersion << QStringLiteral("/frames") << aFormat;
  return bytes;
}

const SavingState kBefore = {.folder = QStringLiteral("/before"), .format = FrameFileFormat::Raw};

} // namespace

TEST(SavingState, WhatIsSaved_IsRestored) {
  for (const FrameFileFormat format : {FrameFileFormat::PNG, FrameFileFormat::TIFF, FrameFileFormat::Raw}) {
    const SavingState saved = {.folder = QStringLiteral("/a folder/\u263A"), .format = format};
    SavingState restored = kBefore;

    restored.Restore(saved.Save());

    EXPECT_EQ(restored, saved);
  }
}

TEST(SavingState, NumbersOfFormats_StayThose) {
  constexpr FrameFileFormat kFormats[] = {FrameFileFormat::TIFF, FrameFileFormat::PNG, FrameFileFormat::Raw};
  for (quint32 number = 0; number < 3; ++number) {
    SavingState state;

    state.Restore(MakeBytes(1, number));

    EXPECT_EQ(state.format, kFormats[number]) << number;
    EXPECT_EQ(state.folder, "/frames") << number;
  }
}

TEST(SavingState, BytesThatAreNoState_ChangeNothing) {
  const QByteArray bytes = MakeBytes(1, 0);
  for (const QByteArray& wrong : {QByteArray(), QByteArray("nonsense"), bytes.left(bytes.size() - 1), MakeBytes(2, 0),
                                  MakeBytes(1, 3), MakeBytes(1, 0xFFFFFFFF)}) {
    SavingState state = kBefore;

    state.Restore(wrong);

    EXPECT_EQ(state, kBefore);
  }
}
