#include "krgenicam/krgendescription.h"
#include "krgenicam/krgenmemoryport.h"
#include "recordingport.h"
#include "temporaryfolder.h"
#include "ziparchive.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using testing::AllOf;
using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::Le;

constexpr const char* kText = "<RegisterDescription/>";
constexpr std::uint32_t kTimeoutMs = 100;

TEST(KrGenDescription_, Memory_GivesItsTextAndOrigin) {
  KrGenDescription description;

  ASSERT_TRUE(KrGenDescription::ReadFromMemory(std::string(kText) + '\0', "here", description).IsOK());

  EXPECT_EQ(description.GetText(), kText);
  EXPECT_EQ(description.GetOrigin(), "here");
  EXPECT_EQ(KrGenDescription().GetText(), "");
}

TEST(KrGenDescription_, Archive_IsUnpackedWhateverItsName) {
  const TemporaryFolder folder;
  const std::string path = folder.GetFile("camera.xml");
  std::ofstream(path, std::ios::binary) << MakeZip({{"a.xml", kText}});
  KrGenDescription description;

  ASSERT_TRUE(KrGenDescription::ReadFromFile(KrString(path), description).IsOK());

  EXPECT_EQ(description.GetText(), kText);
  EXPECT_EQ(description.GetOrigin(), KrString(path));
}

TEST(KrGenDescription_, File_ThatCannotBeUsed_IsRefusedByNameAndLeavesTheDescriptionAlone) {
  const TemporaryFolder folder;
  std::ofstream(folder.GetFile("text")) << "hello";
  std::ofstream(folder.GetFile("zip")) << "PK\x03\x04 and no more";
  std::ofstream(folder.GetFile("huge")) << kText;
  std::filesystem::resize_file(folder.GetFile("huge"), KrGenDescription::kMaxBytes + 1);
  const struct {
    const char* name;
    std::string path;
    KrResult::Code code;
    const char* expected;
  } rows[] = {
      {"no such file", folder.GetFile("missing"), KrResult::Code::NotFound, "No such file"},
      {"a folder", folder.GetPath().string(), KrResult::Code::BadData, "it is no file"},
      {"other text", folder.GetFile("text"), KrResult::Code::BadData, "no XML, nor a ZIP archive"},
      {"a damaged archive", folder.GetFile("zip"), KrResult::Code::BadData, "damaged"},
      {"too large", folder.GetFile("huge"), KrResult::Code::BadData, "longer than the limit"},
  };
  KrGenDescription description;
  ASSERT_TRUE(KrGenDescription::ReadFromMemory(kText, "before", description).IsOK());

  for (const auto& row : rows) {
    const KrResult result = KrGenDescription::ReadFromFile(KrString(row.path), description);
    EXPECT_EQ(result.GetCode(), row.code) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr(row.path), HasSubstr(row.expected))) << row.name;
  }
  EXPECT_EQ(description.GetOrigin(), "before");
}

TEST(KrGenDescription_, Memory_OfMoreThanTheMost_IsRefused) {
  KrGenDescription description;
  const std::string text = kText + std::string(KrGenDescription::kMaxBytes, ' ');

  const KrResult result = KrGenDescription::ReadFromMemory(text, "here", description);
  const KrResult zipped = KrGenDescription::ReadFromMemory(MakeZip({{"a.xml", text}}), "here", description);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("it has more than 64 MiB"));
  EXPECT_EQ(zipped, KrResult::Code::BadData);
  EXPECT_THAT(zipped.GetDescription().ToUtf8(), HasSubstr("unpacked it has more than 64 MiB"));
}

// Registers of a device, and what it has been asked for.
struct Device {
  void Write(std::uint64_t aAddress, std::string_view aBytes) {
    ASSERT_TRUE(memory.Write(aAddress, aBytes.data(), aBytes.size(), kTimeoutMs).IsOK());
  }
  void WriteNumber(std::uint64_t aAddress, std::size_t aBytes, std::uint64_t aValue, bool aIsBigEndian) {
    std::string bytes(aBytes, '\0');
    for (std::size_t index = 0; index < aBytes; ++index)
      bytes[aIsBigEndian ? aBytes - 1 - index : index] = static_cast<char>(aValue >> (8 * index) & 0xFF);
    Write(aAddress, bytes);
  }
  KrResult Read(KrGenBootstrap aBootstrap, const std::stop_token& aCancel = {}) {
    return KrGenDescription::ReadFromDevice(port, aBootstrap, description, kTimeoutMs, aCancel);
  }
  KrResult ReadGigE() { return Read(KrGenBootstrap::GigEVision); }
  KrResult ReadGenCP() { return Read(KrGenBootstrap::GenCP); }

  KrGenMemoryPort memory;
  RecordingPort port{memory};
  KrGenDescription description;
};

TEST(KrGenDescription_, GigEDevice_GivesWhatItsFirstUrlNames) {
  Device device;
  device.Write(0x200, "Local:camera.xml;10000;16");
  device.Write(0x10000, kText);

  ASSERT_TRUE(device.ReadGigE().IsOK());

  EXPECT_EQ(device.description.GetText(), kText);
  EXPECT_EQ(device.description.GetOrigin(), "Local:camera.xml;10000;16");
}

TEST(KrGenDescription_, GigEDevice_OfAnArchive_IsUnpacked) {
  Device device;
  const std::string archive = MakeZip({{"camera.xml", kText}});
  std::array<char, 64> url;
  std::snprintf(url.data(), url.size(), "Local:camera.zip;10000;%zX", archive.size());
  device.Write(0x200, url.data());
  device.Write(0x10000, archive);

  ASSERT_TRUE(device.ReadGigE().IsOK());

  EXPECT_EQ(device.description.GetText(), kText);
}

TEST(KrGenDescription_, GigEDevice_IsReadInPiecesOfWords) {
  Device device;
  const std::string text = kText + std::string(150001 - std::string_view(kText).size(), ' ');
  device.Write(0x200, "Local:camera.xml;10000;249F1");
  device.Write(0x10000, text);

  ASSERT_TRUE(device.ReadGigE().IsOK());

  EXPECT_EQ(device.description.GetText(), text);
  const std::vector<RegisterAccessRecord> records = device.port.TakeRecords();
  EXPECT_THAT(records, Each(Field(&RegisterAccessRecord::length, Le(65536U))));
  for (const RegisterAccessRecord& record : records)
    EXPECT_EQ(record.length % 4, 0U);
  EXPECT_EQ(records.size(), 4U);
}

TEST(KrGenDescription_, GigEDevice_WhoseFirstUrlFails_GivesWhatItsSecondNames) {
  const struct {
    const char* name;
    std::string first;
  } rows[] = {
      {"empty", ""},
      {"nonsense", "nonsense"},
      {"a file of the host", "File:///etc/passwd"},
      {"a server", "http://example.com/camera.xml"},
      {"no XML", "Local:camera.xml;30000;10"},
      {"no length", "Local:camera.xml;10000;0"},
      {"beyond all addresses", "Local:camera.xml;FFFFFFFFFFFFFFF0;16"},
      {"an unfinished text of 512 bytes", "Local:" + std::string(506, 'x')},
      {"registers that the device refuses", "Local:camera.xml;50000;16"},
  };

  for (const auto& row : rows) {
    Device device;
    device.Write(0x200, row.first + std::string(row.first.size() < 512 ? 1 : 0, '\0'));
    device.Write(0x400, "Local:camera.xml;10000;16?SchemaVersion=1.1.0");
    device.Write(0x10000, kText);
    device.port.SetFault([](const RegisterAccessRecord& aRecord) {
      return aRecord.address >= 0x50000 ? KrResult(KrResult::Code::ProtocolError, "no such register.") : KrResult();
    });

    const KrResult result = device.ReadGigE();

    EXPECT_TRUE(result.IsOK()) << row.name << ": " << result.GetDescription().CStr();
    EXPECT_EQ(device.description.GetText(), kText) << row.name;
  }
}

TEST(KrGenDescription_, GigEDevice_ThatNamesNothingUsable_SaysWhyOfEachPlace) {
  Device device;
  device.Write(0x200, "Local:camera.xml;10000;10");
  device.Write(0x400, "http://example.com/camera.xml");
  device.WriteNumber(0x934, 4, std::uint64_t{1} << 26, true);

  const KrResult result = device.ReadGigE();

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_THAT(result.GetDescription().ToUtf8(),
              AllOf(HasSubstr("First URL \"Local:camera.xml;10000;10\""), HasSubstr("it is empty"),
                    HasSubstr("Second URL \"http://example.com/camera.xml\": it names a server"),
                    HasSubstr("Manifest table: it says that it has 0 entries")));
  EXPECT_EQ(device.description.GetText(), "");
}

TEST(KrGenDescription_, GigEDevice_OfMoreThan63Entries_IsRefused) {
  Device device;
  device.WriteNumber(0x934, 4, std::uint64_t{1} << 26, true);
  for (const auto& [count, isTooMany] : {std::pair(63U, false), std::pair(64U, true)}) {
    device.WriteNumber(0x9000, 4, count, true);

    const KrResult result = device.ReadGigE();

    EXPECT_EQ(result, KrResult::Code::BadData);
    EXPECT_EQ(result.GetDescription().ToUtf8().find("says that it has 64 entries") != std::string::npos, isTooMany);
  }
}

TEST(KrGenDescription_, GigEDevice_WithAManifest_GivesWhatItNamesAsALastResort) {
  const struct {
    const char* name;
    std::uint64_t firstEntry;
  } rows[] = {{"a header of 8 bytes", 0x9008}, {"a header of 4 bytes", 0x9004}};

  for (const auto& row : rows) {
    Device device;
    device.WriteNumber(0x934, 4, std::uint64_t{1} << 26, true);
    device.WriteNumber(0x9000, 4, 2, true);
    device.WriteNumber(row.firstEntry + 4, 4, 0x20000, true);
    device.WriteNumber(row.firstEntry + 12, 4, 0x20200, true);
    device.Write(0x20000, "Local:camera.xml;10000;10");
    device.Write(0x20200, "Local:camera.xml;18000;16");
    device.Write(0x18000, kText);

    const KrResult result = device.ReadGigE();

    EXPECT_TRUE(result.IsOK()) << row.name << ": " << result.GetDescription().CStr();
    EXPECT_EQ(device.description.GetText(), kText) << row.name;
  }
}

TEST(KrGenDescription_, GigEDevice_WithoutTheCapability_IsNotAskedForAManifest) {
  Device device;

  EXPECT_EQ(device.ReadGigE(), KrResult::Code::BadData);

  EXPECT_THAT(device.port.TakeRecords(), Each(Field(&RegisterAccessRecord::address, Le(0x934U))));
}

// A manifest table at 0x8000 and its entries.
class ManifestDevice : public Device {
public:
  explicit ManifestDevice(bool aIsBigEndian, std::uint64_t aCount) : mIsBigEndian(aIsBigEndian) {
    WriteNumber(0, 4, 0x00010003, aIsBigEndian);
    WriteNumber(0x1D0, 8, 0x8000, aIsBigEndian);
    WriteNumber(0x8000, 8, aCount, aIsBigEndian);
  }
  void AddEntry(std::uint32_t aVersion, std::uint32_t aSchema, std::uint64_t aAddress, std::uint64_t aLength) {
    WriteNumber(mNext, 4, aVersion, mIsBigEndian);
    WriteNumber(mNext + 4, 4, aSchema, mIsBigEndian);
    WriteNumber(mNext + 8, 8, aAddress, mIsBigEndian);
    WriteNumber(mNext + 16, 8, aLength, mIsBigEndian);
    mNext += 64;
  }

private:
  const bool mIsBigEndian;
  std::uint64_t mNext = 0x8008;
};

TEST(KrGenDescription_, GenCPDevice_GivesTheFileOfItsManifest) {
  for (const bool isBigEndian : {false, true}) {
    ManifestDevice device(isBigEndian, 1);
    device.AddEntry(0x01020003, 0x01010000, 0x10000, std::string_view(kText).size());
    device.Write(0x10000, kText);

    const KrResult result = device.ReadGenCP();

    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    EXPECT_EQ(device.description.GetText(), kText) << isBigEndian;
    EXPECT_EQ(device.description.GetOrigin(), "entry 1 of the manifest table (schema 1.1, version 1.2.3)");
  }
}

TEST(KrGenDescription_, GenCPDevice_OfSeveralFiles_GivesTheNewestThatCanBeRead) {
  ManifestDevice device(false, 6);
  device.AddEntry(0x01000000, 0x01000000, 0x10000, 4); // An older schema.
  device.AddEntry(0x01000000, 0x01010000, 0x11000, 4); // An older version.
  device.AddEntry(0x02000000, 0x01010400, 0x12000, 4); // Zipped, the best one.
  device.AddEntry(0x03000000, 0x01010001, 0x13000, 4); // Of chunk data.
  device.AddEntry(0x03000000, 0x01020000, 0x14000, 4); // Too new a schema.
  device.AddEntry(0x01050000, 0x01010000, 0x15000, 4); // The second best.
  device.Write(0x12000, "none");
  device.Write(0x15000, "<a/>");

  ASSERT_TRUE(device.ReadGenCP().IsOK());

  EXPECT_EQ(device.description.GetText(), "<a/>");
  EXPECT_EQ(device.description.GetOrigin(), "entry 6 of the manifest table (schema 1.1, version 1.5.0)");
}

TEST(KrGenDescription_, GenCPDevice_WhoseManifestCannotBeUsed_SaysWhy) {
  const struct {
    const char* name;
    std::uint64_t table;
    std::uint64_t count;
    std::uint64_t address;
    std::uint64_t length;
    const char* expected;
  } rows[] = {
      {"no entries", 0x8000, 0, 0, 0, "Manifest table at 0x8000, 0 entries: its length is 0"},
      {"a table beyond all addresses", 0xFFFFFFFFFFFFFFFC, 0, 0, 0, "it would end beyond the last address"},
      {"a table at the last address", 0xFFFFFFFFFFFFFFF8, 1, 0, 0, ""},
      {"a file without length", 0x8000, 1, 0x10000, 0, "its length is 0"},
      {"a file of 2^40 bytes", 0x8000, 1, 0x10000, std::uint64_t{1} << 40, "its length is more than 64 MiB"},
      {"a file beyond all addresses", 0x8000, 1, 0xFFFFFFFFFFFFFFFF, 2, "it would end beyond the last address"},
      {"an empty file", 0x8000, 1, 0x10000, 4, "File at 0x10000, entry 1 of the manifest table"},
      {"as many entries as can be said", 0x8000, 0xFFFFFFFFFFFFFFFF, 0x10000, 4, "File at 0x10000"},
  };

  for (const auto& row : rows) {
    ManifestDevice device(false, row.count);
    device.WriteNumber(0x1D0, 8, row.table, false);
    if (row.table == 0xFFFFFFFFFFFFFFF8)
      device.WriteNumber(row.table, 8, row.count, false);
    device.AddEntry(0x01000000, 0x01010000, row.address, row.length);

    const KrResult result = device.ReadGenCP();

    EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected)) << row.name;
  }
}

TEST(KrGenDescription_, Device_ThatIsGone_IsAskedOnce) {
  for (const KrResult::Code code : {KrResult::Code::Aborted, KrResult::Code::ConnectionLost}) {
    Device device;
    device.port.SetFault([code](const RegisterAccessRecord&) { return KrResult(code, "it is over."); });

    EXPECT_EQ(device.ReadGigE(), code);
    EXPECT_EQ(device.port.TakeRecords().size(), 1U);
  }
}

TEST(KrGenDescription_, Device_ThatAnswersNothing_IsAskedOnce) {
  for (const KrGenBootstrap bootstrap : {KrGenBootstrap::GigEVision, KrGenBootstrap::GenCP}) {
    Device device;
    device.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });

    EXPECT_EQ(device.Read(bootstrap), KrResult::Code::TimeLimitExceeded);
    EXPECT_EQ(device.port.TakeRecords().size(), 1U);
  }
}

TEST(KrGenDescription_, StoppedToken_EndsReadingBeforeAnyAccess) {
  for (const KrGenBootstrap bootstrap : {KrGenBootstrap::GigEVision, KrGenBootstrap::GenCP}) {
    Device device;
    std::stop_source source;
    source.request_stop();

    EXPECT_EQ(device.Read(bootstrap, source.get_token()), KrResult::Code::Aborted);

    EXPECT_EQ(device.port.TakeRecords().size(), 0U);
  }
}

TEST(KrGenDescription_, TokenStoppedMeanwhile_EndsReading) {
  Device device;
  device.Write(0x200, "Local:camera.xml;10000;4000000");
  std::stop_source source;
  device.port.SetFault([&source](const RegisterAccessRecord& aRecord) {
    if (aRecord.address == 0x20000)
      source.request_stop();
    return KrResult();
  });

  EXPECT_EQ(device.Read(KrGenBootstrap::GigEVision, source.get_token()), KrResult::Code::Aborted);

  EXPECT_LE(device.port.TakeRecords().size(), 4U);
}

/// A port that throws instead of failing.
class ThrowingPort final : public IKrRegisterPort {
public:
  explicit ThrowingPort(std::function<void()> aThrow) : mThrow(std::move(aThrow)) {}
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    mThrow();
    return {};
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override { return {}; }

private:
  const std::function<void()> mThrow;
};

TEST(KrGenDescription_, Device_WhosePortThrows_FailsWithTheWordsOfTheException) {
  const struct {
    const char* name;
    std::function<void()> action;
    const char* expected;
  } rows[] = {
      {"an exception", [] { throw std::runtime_error("The cable is loose."); }, "The cable is loose."},
      {"something else", [] { throw 4711; }, "does not say why"},
  };
  for (const auto& row : rows) {
    for (const KrGenBootstrap bootstrap : {KrGenBootstrap::GigEVision, KrGenBootstrap::GenCP}) {
      SCOPED_TRACE(row.name);
      ThrowingPort port(row.action);
      KrGenDescription description;
      ASSERT_TRUE(KrGenDescription::ReadFromMemory(kText, "before", description).IsOK());
      KrResult result;

      ASSERT_NO_THROW(result = KrGenDescription::ReadFromDevice(port, bootstrap, description, kTimeoutMs));

      EXPECT_EQ(result, KrResult::Code::SystemError);
      EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected));
      EXPECT_EQ(description.GetOrigin(), "before");
    }
  }
}

} // namespace
