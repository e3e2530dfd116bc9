#include "clprotocol/clsession.h"

#include "clprotocol/clprotocolapi.h"
#include "krbase/krclwire.h"
#include "krbase/krlogger.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string_view>
#include <utility>

namespace krcamerabridge {

namespace {

std::string ToText(const std::vector<std::uint8_t>& aBytes) {
  return {aBytes.begin(), aBytes.end()};
}

bool TellsOfNoCamera(std::int32_t aCode) {
  return aCode == CL_ERR_TIMEOUT || aCode == CL_ERR_NO_DEVICE_FOUND || aCode == CL_ERR_INVALID_DEVICEID;
}

// The drivers of a file name, that of the directory first: the same driver may have another place on another machine.
std::vector<CLDriverFile> ListCandidates(const CLFullID& aTemplate) {
  std::vector<CLDriverFile> drivers = ListCLDrivers();
  std::erase_if(drivers, [&](const CLDriverFile& aDriver) { return aDriver.fileName != aTemplate.fileName; });
  std::stable_partition(drivers.begin(), drivers.end(),
                        [&](const CLDriverFile& aDriver) { return aDriver.directory == aTemplate.directory; });
  return drivers;
}

// A text ends at its zero. An archive, which ends with zeros of its own, may have one behind it or none.
KrResult TakeDescription(const std::string& aBytes, const std::string& aXMLID, KrGenDescription& aDescription) {
  if (!aBytes.starts_with("PK"))
    return KrGenDescription::ReadFromMemory(aBytes.c_str(), aXMLID, aDescription);
  const std::string_view archive = aBytes;
  KrResult result = KrGenDescription::ReadFromMemory(archive.substr(0, archive.size() - 1), aXMLID, aDescription);
  if (!result.IsOK())
    result = KrGenDescription::ReadFromMemory(archive, aXMLID, aDescription);
  return result;
}

void LogInfo(const std::string& aText) {
  KrLogger("KrCameraBridge").Log(KrLogLevel::Info, {"CLSession", "clsession"}, aText);
}

} // namespace

CLSession::~CLSession() {
  CLSession::Close({});
}

KrResult CLSession::Open(const std::string& aTemplate, const std::stop_token& aStop) {
  const std::optional<CLFullID> clTemplate = ParseCLFullID(aTemplate);
  if (!clTemplate)
    return {KrResult::Code::InvalidInput,
            "\"" + aTemplate + "\" is no template of a CL Protocol driver: Directory#FileName#Manufacturer…"};
  if (KrResult result = StartDriver(*clTemplate, aStop); !result.IsOK())
    return result;
  mFormerRate.Note();
  KrResult result = FindCamera(clTemplate->shortID, kCLFirstRate, aStop);
  if (!result.IsOK())
    Close({});
  return result;
}

// The first driver of the name that has the template.
KrResult CLSession::StartDriver(const CLFullID& aTemplate, const std::stop_token& aStop) {
  KrResult failure{KrResult::Code::InvalidInput, "No CL Protocol driver " + aTemplate.fileName + " with the template " +
                                                     aTemplate.shortID + " is installed."};
  for (const CLDriverFile& file : ListCandidates(aTemplate)) {
    auto driver = std::make_unique<CLDriver>(file, mTimes, &mLine, mAbandoned.get_token());
    std::vector<std::string> templates;
    KrResult result = driver->Start(aStop);
    if (result.IsOK())
      result = driver->GetTemplates(templates, aStop);
    if (result == KrResult::Code::Aborted)
      return result;
    const bool isKnown = std::ranges::any_of(
        templates, [&](const std::string& aKnown) { return MatchesCLTemplate(aTemplate.shortID, aKnown); });
    if (isKnown) {
      mDriver = std::move(driver);
      return {};
    }
    if (!result.IsOK())
      failure = result;
    driver->Close();
  }
  return failure;
}

KrResult CLSession::FindCamera(const std::string& aTemplate, std::uint32_t aBaudRate, const std::stop_token& aStop) {
  CLSerial& serial = *mDriver->GetSerial();
  serial.ForgetFailure();
  if (const std::int32_t code = serial.SetRate(KrGetCLSpeedBit(aBaudRate)); code < 0)
    LogInfo("The line to the camera could not be set to " + std::to_string(aBaudRate) +
            " baud for a CL Protocol probe.");
  serial.Drop();
  CLDriver::Said said;
  const KrResult asked = mDriver->Probe(aTemplate, said, aStop);
  mCookie = said.code >= 0 ? said.cookie : 0; // Of a probe that was cancelled, too.
  if (KrResult result = Judge(asked, said, "Looking for the camera", aStop); !result.IsOK())
    return result;
  const std::string shortID = ToText(said.bytes).c_str(); // Up to its zero.
  if (mCookie == 0 || !IsCLShortID(shortID))
    return {KrResult::Code::SystemError, "The CL Protocol driver " + mDriver->GetFile().fileName +
                                             " found a camera whose identifier is none: \"" + MakeCLWords(shortID) +
                                             "\"."};
  if (!MatchesCLTemplate(shortID, aTemplate))
    return {KrResult::Code::NotFound, "The camera is " + shortID + ", and not " + aTemplate + '.'};
  mShortID = shortID;
  return {};
}

std::string CLSession::GetCameraID() const {
  return mDriver ? MakeCLFullID({mDriver->GetFile().directory, mDriver->GetFile().fileName, mShortID}) : std::string();
}

KrResult CLSession::GetXMLIDs(std::vector<std::string>& aXMLIDs, const std::stop_token& aStop) {
  CLDriver::Said said;
  const KrResult asked = mDriver->GetXMLIDs(mCookie, said, aStop);
  std::vector<std::string> all;
  if (!asked.IsOK() || said.code != CL_ERR_NO_XMLDESCRIPTION_FOUND) {
    if (KrResult result = Judge(asked, said, "Asking for its descriptions", aStop); !result.IsOK())
      return result;
    all = SplitCLList(ToText(said.bytes));
  }
  for (const CLXMLFile& file : ListCLXMLFiles(mDriver->GetFile()))
    all.push_back(file.xmlID);
  aXMLIDs = SelectCLXMLIDs(all, mShortID);
  if (aXMLIDs.empty())
    return {KrResult::Code::NotFound, "The CL Protocol camera " + mShortID + " has no description that is known."};
  return {};
}

KrResult CLSession::GoFast(const std::stop_token& aStop) {
  std::uint32_t rates = 0;
  CLDriver::Said said;
  if (KrResult result = mDriver->GetParam(mCookie, CLP_DEVICE_SUPPORTED_BAUDERATES, rates, said, aStop);
      !result.IsOK() || said.code < 0)
    return result;
  const std::uint32_t best = std::bit_floor(rates & mDriver->GetSerial()->GetSupportedRates());
  if (best <= KrGetCLSpeedBit(kCLFirstRate))
    return {};
  return SetRate(best, aStop);
}

KrResult CLSession::SetRate(std::uint32_t aBit, const std::stop_token& aStop) {
  CLDriver::Said said;
  mFastBit = aBit; // Before it is done: a camera that may have changed is put back.
  if (KrResult result = mDriver->SetParam(mCookie, CLP_DEVICE_BAUDERATE, aBit, said, aStop); !result.IsOK())
    return result;
  if (said.code >= 0)
    return {};
  LogInfo("The CL Protocol camera " + mShortID +
          " stays at its baud rate: " + mDriver->GetErrorWords(said.code, mCookie, aStop) + '.');
  mFastBit = 0;
  return {};
}

KrResult CLSession::ReadDescription(const std::string& aXMLID, KrGenDescription& aDescription,
                                    const std::stop_token& aStop) {
  const std::vector<CLXMLFile> files = ListCLXMLFiles(mDriver->GetFile());
  if (const auto file = std::ranges::find(files, aXMLID, &CLXMLFile::xmlID); file != files.end())
    return KrGenDescription::ReadFromFile(file->path, aDescription);
  CLDriver::Said said;
  const KrResult asked = mDriver->GetXMLDescription(mCookie, aXMLID, said, aStop);
  if (KrResult result = Judge(asked, said, "Reading a description", aStop); !result.IsOK())
    return result;
  return TakeDescription(ToText(said.bytes), aXMLID, aDescription);
}

void CLSession::Close(const std::stop_token& aStop) {
  if (!mDriver)
    return;
  const std::stop_callback onStop(aStop, [this] { Abandon(); });
  mDriver->BeginClosing();
  ReleaseCamera();
  mDriver->Close();
  mDriver.reset();
  mShortID.clear();
  if (const KrResult restored = mFormerRate.Restore(); !restored.IsOK())
    LogInfo(restored.GetDescription().ToUtf8());
}

// What the camera does not do any more is left: it may be gone.
void CLSession::ReleaseCamera() {
  CLDriver::Said said;
  KrResult result;
  if (mCookie != 0 && mFastBit != 0)
    result = mDriver->SetParam(mCookie, CLP_DEVICE_BAUDERATE, KrGetCLSpeedBit(kCLFirstRate), said, {});
  if (mCookie != 0 && mDriver->IsRunning())
    result = mDriver->Disconnect(mCookie, said, {});
  if (!result.IsOK())
    KrLogger("KrCameraBridge")
        .Log(KrLogLevel::Warning, {"CLSession::ReleaseCamera", "clsession"}, result.GetDescription());
  mCookie = 0;
}

std::uint64_t CLSession::GetLineMs(std::size_t aBytes) const {
  return GetRegisterLineMs(aBytes, mDriver->GetSerial()->GetRate());
}

KrResult CLSession::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) {
  CLDriver::Said said;
  const KrResult asked = mDriver->ReadRegister(mCookie, aAddress, aData.size(), said, aStop);
  KrResult result = JudgeAccess(asked, said, "Reading registers", aStop);
  if (result.IsOK()) {
    std::ranges::copy(said.bytes, aData.begin());
    mLastAddress = aAddress;
    mLastSize = aData.size();
  }
  return result;
}

KrResult CLSession::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) {
  CLDriver::Said said;
  const KrResult asked = mDriver->WriteRegister(mCookie, aAddress, aData, said, aStop);
  return JudgeAccess(asked, said, "Writing registers", aStop);
}

KrResult CLSession::Probe(const std::stop_token& aStop) {
  KrResult result{KrResult::Code::TimeLimitExceeded};
  if (mCookie != 0 && mLastSize > 0) {
    std::vector<std::uint8_t> again(mLastSize);
    result = Read(mLastAddress, again, aStop);
  }
  if (result != KrResult::Code::TimeLimitExceeded)
    return result;

  CLDriver::Said said;
  if (mCookie != 0)
    static_cast<void>(mDriver->Disconnect(std::exchange(mCookie, 0), said, aStop));
  const std::uint32_t fastBit = mFastBit;
  const std::string shortID = mShortID;
  result = FindCamera(shortID, kCLFirstRate, aStop);
  // It may have kept its rate where only the line was cut.
  if (result == KrResult::Code::NotFound && fastBit != 0)
    result = FindCamera(shortID, KrGetCLSpeed(fastBit), aStop);
  if (result.IsOK() && fastBit != 0)
    result = SetRate(fastBit, aStop);
  if (!result.IsOK() && !mDriver->IsRunning())
    return {KrResult::Code::ConnectionLost, result.GetDescription()};
  return result == KrResult::Code::NotFound ? KrResult(KrResult::Code::TimeLimitExceeded, result.GetDescription())
                                            : result;
}

// What a call comes to while a camera is being found and described.
KrResult CLSession::Judge(const KrResult& aResult, const CLDriver::Said& aSaid, const char* aAttempt,
                          const std::stop_token& aStop) {
  if (!aResult.IsOK() || aSaid.code >= 0)
    return aResult;
  const bool isLineLost = mDriver->GetSerial()->GetFailure() == KrResult::Code::ConnectionLost;
  const std::string words = std::string(aAttempt) + " by the CL Protocol driver " + mDriver->GetFile().fileName + ": " +
                            mDriver->GetErrorWords(aSaid.code, mCookie, aStop) + '.';
  if (isLineLost)
    return {KrResult::Code::ConnectionLost, words};
  const bool isMissing = TellsOfNoCamera(aSaid.code) || aSaid.code == CL_ERR_NO_XMLDESCRIPTION_FOUND;
  return {isMissing ? KrResult::Code::NotFound : KrResult::Code::SystemError, words};
}

// What an access to a connected camera comes to.
KrResult CLSession::JudgeAccess(const KrResult& aResult, const CLDriver::Said& aSaid, const char* aAttempt,
                                const std::stop_token& aStop) {
  if (!mDriver->IsRunning() && aResult != KrResult::Code::Aborted)
    return {KrResult::Code::ConnectionLost, aResult.GetDescription()};
  const KrResult result = Judge(aResult, aSaid, aAttempt, aStop);
  if (!aResult.IsOK() || aSaid.code >= 0 || result == KrResult::Code::ConnectionLost)
    return result;
  // A driver that has forgotten the camera is asked to find it again, as for one that is silent.
  const bool isSilent = TellsOfNoCamera(aSaid.code) || aSaid.code == CL_ERR_INVALID_COOKIE;
  return {isSilent ? KrResult::Code::TimeLimitExceeded : KrResult::Code::ProtocolError, result.GetDescription()};
}

} // namespace krcamerabridge
