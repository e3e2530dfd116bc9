// Any text may be given to the reader of camera files, and any bytes may come from the camera that it describes: what
// is taken makes a description without faults, and a camera that talks nonsense fails the access at worst.

#include "camerafile/camerafile.h"
#include "camerafile/camerafileport.h"
#include "camerafile/featurevalues.h"
#include "require.h"

#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace {

using krcamerabridge::CameraFile;

// Behind this the text ends and what the camera says begins.
constexpr std::string_view kParting = "\n...\n";
constexpr std::size_t kMostAsked = 16;

// A line on which all has come already.
class GivenLine final : public krcamerabridge::ICameraLine {
public:
  explicit GivenLine(std::string_view aBytes) : mBytes(aBytes) {}

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t,
                const std::stop_token&) override {
    if (mBytes.empty())
      return KrResult::Code::ConnectionLost; // Waiting would find nothing.
    aRead = std::min(aSize, mBytes.size());
    std::copy_n(mBytes.begin(), aRead, aBytes);
    mBytes.remove_prefix(aRead);
    return {};
  }
  KrResult Write(const std::uint8_t*, std::size_t, std::uint32_t, const std::stop_token&) override { return {}; }
  void DropReceived() override {}
  std::vector<std::uint32_t> GetSupportedBaudRates() override { return {}; }
  std::uint32_t GetBaudRate() override { return 0; }
  KrResult SetBaudRate(std::uint32_t) override { return KrResult::Code::NotSupported; }

private:
  std::string_view mBytes;
};

void Describe(const CameraFile& aFile) {
  KrGenDescription description;
  KrGenMemoryPort memory;
  std::unique_ptr<KrGenParameterArray> array;
  Require(aFile.GetDescription(description).IsOK());
  Require(KrGenParameterArray::Open(description, memory, {}, array).IsOK());
  KrStringList faults;
  Require(array->GetFaults(faults).IsOK() && faults.IsEmpty());
}

void Talk(const CameraFile& aFile, std::string_view aAnswers) {
  const auto& features = aFile.GetModel().features;
  for (std::size_t i = 0; i < std::min(features.size(), kMostAsked); ++i) {
    // Pauses would only take time.
    if (features[i].pauseMs > 0)
      continue;
    GivenLine line(aAnswers);
    krcamerabridge::CameraFileDevice device(std::make_shared<const krcamerabridge::FileModel>(aFile.GetModel()), line);
    std::vector<std::uint8_t> bytes(krcamerabridge::GetRegisterLength(features[i]));
    // Whether it goes well is the camera's business.
    static_cast<void>(RequireReason(device.Read(krcamerabridge::GetRegisterAddress(i), bytes, {})));
    static_cast<void>(RequireReason(device.Write(krcamerabridge::GetRegisterAddress(i), bytes, {})));
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::size_t end = std::min(input.find(kParting), input.size());
  CameraFile file;
  KrStringList errors;
  const KrResult result = CameraFile::Parse(input.substr(0, end), "camera.yml", file, errors);
  Require(result.IsOK() == errors.IsEmpty());
  Require(result.IsOK() || result == KrResult::Code::BadData);
  if (!result.IsOK())
    return 0;
  Describe(file);
  Talk(file, input.substr(std::min(end + kParting.size(), input.size())));
  return 0;
}
