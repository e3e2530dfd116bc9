#include "camerafile/camerafileport.h"

#include "camerafile/featurevalues.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <string>
#include <utility>

namespace krcamerabridge {

namespace {

constexpr std::uint32_t kMarginMs = 1000;

std::string QuoteName(const FileFeature& aFeature) {
  return "\"" + aFeature.name + "\"";
}

// Characters that steer a camera would end a command in its middle.
bool HasControls(const WireValue& aValue) {
  const auto* const text = std::get_if<std::string>(&aValue);
  return text &&
         std::ranges::any_of(*text, [](char aCharacter) { return static_cast<unsigned char>(aCharacter) < ' '; });
}

// What a feature's exchange needs at most, all its tries and the quiet before each.
std::uint64_t GetLongestMs(const FileFeature& aFeature, const FileProtocol& aProtocol) {
  const std::uint64_t bytes = kMostTemplateBytes + aFeature.maxLength;
  const std::uint64_t lineMs = bytes * 11 * 1000 / std::max<std::uint32_t>(aProtocol.baudRate, 1) + 1;
  // Writing and answering each have the limit.
  const std::uint64_t onceMs =
      2 * (lineMs + aFeature.answerMs) + 2 * std::uint64_t{aFeature.answerMs} + aFeature.pauseMs;
  return onceMs * (aProtocol.repeats + 1);
}

} // namespace

CameraFileDevice::CameraFileDevice(std::shared_ptr<const FileModel> aModel, ICameraLine& aLine)
    : mModel(std::move(aModel)), mExchange(aLine, mModel->protocol) {
  for (const FileFeature& feature : mModel->features)
    mHeld.push_back(feature.start.value_or(WireValue()));
}

KrResult CameraFileDevice::FindFeature(std::uint64_t aAddress, std::size_t aLength, std::size_t& aIndex) const {
  const std::uint64_t block = aAddress / kRegisterStride;
  if (aAddress % kRegisterStride != 0 || block < 1 || block > mModel->features.size() ||
      aLength != GetRegisterLength(mModel->features[block - 1]))
    return {KrResult::Code::InvalidInput, "The camera file has no register there."};
  aIndex = block - 1;
  return {};
}

KrResult CameraFileDevice::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) {
  std::size_t index = 0;
  if (KrResult result = FindFeature(aAddress, aData.size(), index); !result.IsOK())
    return result;
  WireValue shown;
  if (KrResult result = Ask(index, aStop, shown); !result.IsOK())
    return result;
  ToRegister(mModel->features[index], shown, aData);
  return {};
}

KrResult CameraFileDevice::Ask(std::size_t aIndex, const std::stop_token& aStop, WireValue& aShown) {
  const FileFeature& feature = mModel->features[aIndex];
  if (!feature.get && !feature.start)
    return {KrResult::Code::AccessDenied, QuoteName(feature) + " can only be written."};
  if (!feature.get) {
    aShown = mHeld[aIndex];
    return {};
  }
  CommandOrder order;
  if (KrResult result = BindOrder(feature, *feature.get, &feature.getAnswer, nullptr, order); !result.IsOK())
    return result;
  AnswerContent content;
  if (KrResult result = mExchange.Run(order, aStop, content); !result.IsOK())
    return result;
  std::optional<WireValue> shown = content.value ? FromWire(feature, *content.value) : std::nullopt;
  const auto* const text = shown ? std::get_if<std::string>(&*shown) : nullptr;
  if (!shown || (text && text->size() > feature.maxLength))
    return {KrResult::Code::ProtocolError,
            "What the camera answered is no value of " + QuoteName(feature) + " as the camera file has them."};
  aShown = std::move(*shown);
  return {};
}

KrResult CameraFileDevice::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData,
                                 const std::stop_token& aStop) {
  std::size_t index = 0;
  if (KrResult result = FindFeature(aAddress, aData.size(), index); !result.IsOK())
    return result;
  return Tell(index, FromRegister(mModel->features[index], aData), aStop);
}

KrResult CameraFileDevice::Tell(std::size_t aIndex, const WireValue& aShown, const std::stop_token& aStop) {
  const FileFeature& feature = mModel->features[aIndex];
  if (!feature.IsWritable())
    return {KrResult::Code::AccessDenied, QuoteName(feature) + " can only be read."};
  if (feature.set) {
    CommandOrder order;
    order.mayRepeat = feature.type != FileType::Command;
    if (KrResult result =
            BindOrder(feature, *feature.set, feature.setAnswer ? &*feature.setAnswer : nullptr, &aShown, order);
        !result.IsOK())
      return result;
    AnswerContent content;
    if (KrResult result = mExchange.Run(order, aStop, content); !result.IsOK())
      return result;
  }
  if (feature.start)
    mHeld[aIndex] = aShown;
  return {};
}

KrResult CameraFileDevice::Probe(const std::stop_token& aStop) {
  const std::size_t index = mModel->protocol.probeFeature;
  if (index >= mModel->features.size())
    return {}; // There is nothing that the camera could be asked.
  WireValue shown;
  return Ask(index, aStop, shown);
}

KrResult CameraFileDevice::Encode(const FileFeature& aFeature, const WireValue& aShown, const WireFormat& aFormat,
                                  std::string& aBytes) const {
  const std::optional<WireValue> wire = ToWire(aFeature, aShown, aFormat);
  if (!wire)
    return {KrResult::Code::InvalidInput, "The camera has nothing for this value of " + QuoteName(aFeature) + "."};
  if (!mModel->protocol.isBinary && HasControls(*wire))
    return {KrResult::Code::InvalidInput, "The text for " + QuoteName(aFeature) + " has control characters in it."};
  std::optional<std::string> bytes = EncodeWire(aFormat, *wire);
  if (!bytes)
    return {KrResult::Code::OutOfRange, "The value of " + QuoteName(aFeature) + " does not fit into the command."};
  aBytes = std::move(*bytes);
  return {};
}

KrResult CameraFileDevice::Bind(const CommandTemplate& aTemplate, const FileFeature* aFeature, const WireValue* aShown,
                                CommandTemplate& aBound) const {
  for (const TemplatePart& part : aTemplate) {
    TemplatePart bound = part;
    KrResult result;
    if (part.kind == TemplatePart::Kind::Feature)
      result = Encode(mModel->features[part.featureIndex], mHeld[part.featureIndex], part.format, bound.text);
    else if (part.kind == TemplatePart::Kind::Value && aShown)
      result = Encode(*aFeature, *aShown, part.format, bound.text);
    if (!result.IsOK())
      return result;
    if (part.kind == TemplatePart::Kind::Feature || (part.kind == TemplatePart::Kind::Value && aShown))
      bound.kind = TemplatePart::Kind::Literal;
    aBound = Join(aBound, {bound});
  }
  return {};
}

KrResult CameraFileDevice::BindOrder(const FileFeature& aFeature, const CommandTemplate& aCommand,
                                     const CommandTemplate* aAnswer, const WireValue* aShown,
                                     CommandOrder& aOrder) const {
  CommandTemplate command;
  if (KrResult result = Bind(aCommand, &aFeature, aShown, command); !result.IsOK())
    return result;
  const std::optional<std::string> bytes = BuildCommand(command, mModel->protocol.check);
  if (!bytes)
    return {KrResult::Code::OutOfRange, "The command of " + QuoteName(aFeature) + " has more bytes than it can say."};
  aOrder.command = *bytes;
  aOrder.answerMs = aFeature.answerMs;
  aOrder.pauseMs = aFeature.pauseMs;
  if (aAnswer)
    return Bind(*aAnswer, nullptr, nullptr, aOrder.answer.emplace());
  return {};
}

CameraFilePort::CameraFilePort(const CameraFile& aFile, ICameraLine& aLine)
    : mModel(aFile.mModel), mLine(aLine), mFormerRate(aLine), mDevice(mModel, aLine), mWorker(mDevice) {}

KrResult CameraFilePort::SetRate() {
  const std::uint32_t rate = mModel->protocol.baudRate;
  const std::uint32_t present = mLine.GetBaudRate();
  if (present == rate)
    return {};
  mFormerRate.Note();
  KrResult result = mLine.SetBaudRate(rate);
  return result == KrResult::Code::NotSupported && present == 0 ? KrResult() : result;
}

// What is said until then is said at the camera's rate.
void CameraFilePort::Disconnect(const std::stop_token&) {
  mWorker.Stop();
  if (const KrResult restored = mFormerRate.Restore(); !restored.IsOK())
    KrLogger("KrCameraBridge").Log(KrLogLevel::Info, {"CameraFilePort", "camerafileport"}, restored.GetDescription());
}

KrResult CameraFilePort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                              const std::stop_token& aCancel) {
  return mWorker.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
}

KrResult CameraFilePort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                               const std::stop_token& aCancel) {
  return mWorker.Write(aAddress, aData, aLength, aTimeoutMs, aCancel);
}

KrResult CameraFilePort::Greet(std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  const std::size_t index = mModel->protocol.probeFeature;
  if (index >= mModel->features.size())
    return {};
  std::vector<std::uint8_t> bytes(GetRegisterLength(mModel->features[index]));
  KrResult result = Read(GetRegisterAddress(index), bytes.data(), bytes.size(), aTimeoutMs, aCancel);
  return result == KrResult::Code::ProtocolError ? KrResult() : result;
}

std::uint32_t CameraFilePort::GetLongestAccessMs() const {
  std::uint64_t longest = 0;
  for (const FileFeature& feature : mModel->features)
    longest = std::max(longest, GetLongestMs(feature, mModel->protocol));
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(longest + kMarginMs, UINT32_MAX));
}

} // namespace krcamerabridge
