// Whatever a file, an archive or a device's registers may hold where a description should be. What is taken is a text
// within its limits; what is not is refused with a reason, and leaves the former description as it was.

#include "description/description.h"
#include "krgenicam/krgendescription.h"
#include "require.h"

#include <cstring>
#include <span>

namespace {

constexpr const char* kBefore = "<a/>";

// Registers from an address on; all others are refused.
class InputPort final : public IKrRegisterPort {
public:
  InputPort(std::span<const std::uint8_t> aBytes, std::uint64_t aAddress) : mBytes(aBytes), mAddress(aAddress) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token&) override {
    Require(aLength > 0 && aLength <= 65536);
    if (aAddress < mAddress || aAddress - mAddress >= mBytes.size() || aLength > mBytes.size() - (aAddress - mAddress))
      return {KrResult::Code::ProtocolError, "There are no such registers."};
    std::memcpy(aData, mBytes.data() + (aAddress - mAddress), aLength);
    return {};
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override {
    Require(false); // Nobody has asked for it.
    return {};
  }

private:
  const std::span<const std::uint8_t> mBytes;
  const std::uint64_t mAddress;
};

KrResult Read(std::uint8_t aSource, std::span<const std::uint8_t> aBytes, KrGenDescription& aDescription) {
  constexpr std::uint64_t kFirstUrl = 0x200;
  if (aSource == 0)
    return KrGenDescription::ReadFromMemory({reinterpret_cast<const char*>(aBytes.data()), aBytes.size()}, "input",
                                            aDescription);
  InputPort port(aBytes, aSource == 1 ? kFirstUrl : 0);
  return KrGenDescription::ReadFromDevice(port, aSource == 1 ? KrGenBootstrap::GigEVision : KrGenBootstrap::GenCP,
                                          aDescription, 1);
}

} // namespace

// The first byte says what the others are: a file (0), a GigE Vision device's registers from 0x200 on (1), a GenCP
// device's registers (2).
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  KrGenDescription description;
  Require(KrGenDescription::ReadFromMemory(kBefore, "before", description).IsOK());

  const KrResult result = Read(aData[0] % 3, std::span(aData + 1, aSize - 1), description);

  if (!result.IsOK()) {
    Require(!result.GetDescription().IsEmpty() && description.GetText() == kBefore);
    return 0;
  }
  Require(!description.GetText().empty());
  krgenicam::Description nodes;
  const KrResult read = krgenicam::Description::Read(description, nodes);
  Require(read.IsOK() || (read == KrResult::Code::BadData && nodes.GetNodes().empty()));
  for (const krgenicam::NodeDescription& node : nodes.GetNodes()) {
    for (const krgenicam::Property& property : nodes.GetProperties(node))
      Require(property.target == krgenicam::kNoNode || property.target < nodes.GetNodes().size());
  }
  return 0;
}
