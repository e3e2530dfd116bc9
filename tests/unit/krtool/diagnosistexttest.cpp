#include "diagnosistext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <gmock/gmock.h>

#include <cstdint>
#include <set>

namespace krtool {
namespace {

const KrFinding kNoAddress = {KrFindingKind::NoAddress, "eth1", "It has no IPv4 address.", "First line.\nip addr add"};
const KrFinding kNotUnique = {KrFindingKind::SubnetNotUnique, "", "Two adapters lie in one subnet.", "Change one."};

TEST(DiagnosisText, Findings_AreTextsWithTheirRemediesIndented) {
  EXPECT_EQ(FormatFindings({kNoAddress, kNotUnique}), "eth1: It has no IPv4 address.\n"
                                                      "    First line.\n"
                                                      "    ip addr add\n"
                                                      "Two adapters lie in one subnet.\n"
                                                      "    Change one.\n");
}

TEST(DiagnosisText, TextThatNamesItsSubject_StandsAlone) {
  const KrFinding finding = {KrFindingKind::AdapterDown, "eth1", "The adapter eth1 is down.", ""};

  EXPECT_EQ(FormatFindings({finding}), "The adapter eth1 is down.\n");
}

TEST(DiagnosisText, NoFinding_IsSaid) {
  EXPECT_EQ(FormatFindings({}), "Nothing was found that would keep devices away.\n");
}

TEST(DiagnosisText, SubjectThatATerminalWouldObey_IsShownWithoutThat) {
  const KrFinding finding = {KrFindingKind::AddressConflict, "cam\n\x1b[2J", "Text.", "a\x1b\nb"};

  EXPECT_EQ(FormatFindings({finding}), "cam??[2J: Text.\n    a?\n    b\n");
}

TEST(DiagnosisText, Json_HoldsAllOfEachFinding) {
  const std::string text = FormatFindingsJson({kNoAddress, kNotUnique});

  const QJsonArray findings = QJsonDocument::fromJson(QByteArray::fromStdString(text)).object()["findings"].toArray();
  ASSERT_EQ(findings.size(), 2) << text;
  EXPECT_EQ(findings[0].toObject()["kind"].toString(), "NoAddress");
  EXPECT_EQ(findings[0].toObject()["subject"].toString(), "eth1");
  EXPECT_EQ(findings[0].toObject()["text"].toString(), "It has no IPv4 address.");
  EXPECT_EQ(findings[0].toObject()["remedy"].toString(), "First line.\nip addr add");
  EXPECT_EQ(findings[1].toObject()["kind"].toString(), "SubnetNotUnique");
}

TEST(DiagnosisText, Json_HasAWordForEveryKind) {
  std::set<QString> words;
  for (std::int32_t kind = 0; kind <= static_cast<std::int32_t>(KrFindingKind::NoAnswer); ++kind) {
    const KrFinding finding = {static_cast<KrFindingKind>(kind), "", "Text.", ""};

    const QJsonObject document =
        QJsonDocument::fromJson(QByteArray::fromStdString(FormatFindingsJson({finding}))).object();

    words.insert(document["findings"].toArray()[0].toObject()["kind"].toString());
  }

  EXPECT_EQ(words.size(), 15U) << "one each";
  EXPECT_FALSE(words.contains("Unknown"));
  EXPECT_TRUE(words.contains("NoAdapter"));
  EXPECT_TRUE(words.contains("NoAnswer"));
}

TEST(DiagnosisText, JsonWithoutFinding_IsAnEmptyList) {
  EXPECT_EQ(FormatFindingsJson({}), "{\"findings\":[]}\n");
}

} // namespace
} // namespace krtool
