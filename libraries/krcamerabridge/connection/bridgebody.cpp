#include "connection/bridgebody.h"

#include "connection/grabberfeatures.h"
#include "krbase/krlogger.h"
#include "krdevice/krdeviceadapter.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "line/devicelinespeed.h"
#include "saved/savedbridge.h"
#include "sync/unanswered.h"

#include <filesystem>
#include <system_error>

namespace krcamerabridge {

namespace {

/// Ends what the parameters wait for when a call is ended.
class ParameterCall {
public:
  ParameterCall(KrGenParameterArray& aParameters, const std::stop_token& aStop)
      : mStop(aStop), mOnStop(aStop, [&aParameters] { aParameters.Cancel(); }) {}

  KrGenProgress GetProgress() const {
    return [this](std::size_t, std::size_t) { return !mStop.stop_requested(); };
  }

private:
  const std::stop_token mStop;
  const std::stop_callback<std::function<void()>> mOnStop;
};

/// The lines of what could not be loaded, and the first failure.
class LoadErrors {
public:
  LoadErrors(const KrString& aName, KrStringList& aLines) : mPrefix("Camera bridge " + aName + ": "), mLines(aLines) {}

  void Add(const KrResult& aResult, const KrStringList& aLines) {
    for (const KrString& line : aLines)
      mLines.Add(mPrefix + line);
    if (mFirst.IsOK() && !aResult.IsOK())
      mFirst = KrResult(aResult.GetCode(), mPrefix + aResult.GetDescription());
  }
  void Add(const KrResult& aResult, const KrString& aAttempt = {}) {
    if (aResult.IsOK())
      return;
    KrStringList lines;
    lines.Add(aAttempt + aResult.GetDescription());
    Add(aResult, lines);
  }
  const KrResult& GetFirst() const { return mFirst; }

private:
  const KrString mPrefix;
  KrStringList& mLines;
  KrResult mFirst;
};

// The path from the root of the file system, as the directory that it starts from now may be another when it is used
// again. Links, and what goes up behind one, stay as they are.
KrString MakeAbsolute(const KrString& aPath) {
  if (aPath.IsEmpty())
    return aPath;
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(aPath.CStr(), error);
  if (error)
    return aPath;
  std::filesystem::path path;
  for (const std::filesystem::path& part : absolute)
    if (part != ".")
      path /= part;
  return path.string();
}

/// What aCall gives; SystemError where the host has no thread that it needs.
template <typename Call>
KrResult CallWithThreads(Call aCall) {
  try {
    return aCall();
  } catch (const std::system_error& error) {
    return {KrResult::Code::SystemError,
            KrString("The host has no thread for the camera; end other programs: ") + error.what()};
  }
}

KrResult TellUnconnected(const KrString& aAttempt) {
  return {KrResult::Code::WrongState, aAttempt + ": the camera bridge is not connected."};
}

} // namespace

BridgeBody::BridgeBody(KrDevice* aDevice, KrDeviceSerial aPort, KrStream* aStream)
    : mDevice(aDevice), mPort(aPort), mLine(std::make_unique<DeviceLineSpeed>(mDevice, aPort)),
      mSync(mDevice, aStream) {}

BridgeBody::~BridgeBody() {
  Disconnect();
}

// A device that has been closed has no name.
KrString BridgeBody::NameCamera() const {
  KrString name = GetPortName(mPort);
  [[maybe_unused]] const KrResult named = mDevice.Use([&name](KrDevice& aDevice) {
    name += " of " + aDevice.GetDisplayID();
    return KrResult();
  });
  return name;
}

KrResult BridgeBody::OpenLine() {
  return mDevice.Use([this](KrDevice& aDevice) {
    KrDeviceAdapter adapter(aDevice);
    return mLine.Open(adapter, mPort);
  });
}

KrResult BridgeBody::ExplainSilence(const KrResult& aFailure) const {
  return mDevice.Use([&aFailure](KrDevice& aDevice) {
    KrDeviceAdapter adapter(aDevice);
    return krcamerabridge::ExplainSilence(aFailure, adapter);
  });
}

KrResult BridgeBody::AskUnconnected(const Question& aQuestion) {
  const std::stop_token stop = mCall.Begin();
  if (mConnection)
    return {KrResult::Code::WrongState, "The camera bridge is connected; disconnect it before asking for cameras."};
  if (KrResult result = OpenLine(); !result.IsOK())
    return result;
  KrResult result = CallWithThreads([&] { return aQuestion(mLine, stop); });
  mLine.Close();
  return result.IsOK() ? result : ExplainSilence(result);
}

KrResult BridgeBody::Connect(const CameraChoice& aChoice) {
  return Connect(aChoice, mCall.Begin());
}

KrResult BridgeBody::Connect(const CameraChoice& aChoice, const std::stop_token& aStop) {
  Disconnect(aStop);
  const auto openLine = [this](ICameraLine*& aLine) {
    aLine = &mLine;
    return OpenLine();
  };
  KrStringList mistakes;
  CameraChoice choice = aChoice;
  choice.path = MakeAbsolute(aChoice.path);
  KrResult result = CallWithThreads([&] {
    return CameraConnection::Open(choice, {openLine, aStop, mistakes, NameCamera(), mAnswers}, mConnection);
  });
  if (aChoice.way == &kCameraFileWay)
    mMistakes = mistakes;
  if (!result.IsOK()) {
    mLine.Close();
    // A camera file that is not there says nothing of the camera.
    const bool isOfFile = aChoice.way == &kCameraFileWay && result == KrResult::Code::NotFound;
    return isOfFile ? result : ExplainSilence(result);
  }
  if (KrResult attached = mSync.Attach(mConnection->GetParameters()); !attached.IsOK()) {
    Disconnect(aStop);
    return attached;
  }
  SetChoice(choice);
  mIsConnected = true;
  return {};
}

void BridgeBody::Disconnect(const std::stop_token& aStop) {
  mIsConnected = false;
  SetChoice({});
  mSync.Detach();
  if (mConnection)
    mConnection->Close(aStop);
  mConnection.reset();
  mAnswers.Forget();
  mLine.Close();
}

KrResult BridgeBody::GetCameraState() const {
  if (!mIsConnected)
    return {};
  // The loss of the device is known before anybody asks the camera.
  KrResult device = mDevice.Use([](KrDevice& aDevice) -> KrResult {
    if (aDevice.IsConnected())
      return {};
    return {KrResult::Code::ConnectionLost, aDevice.GetDisplayID() +
                                                " does not answer any more. Check its cable and its power, and open "
                                                "it anew when it is back."};
  });
  return device.IsOK() ? mAnswers.GetFailure() : device;
}

KrResult BridgeBody::CheckWay(const CameraWay& aWay) const {
  if (mConnection && mConnection->GetChoice().way == &aWay)
    return {};
  return {KrResult::Code::WrongState, KrString("The camera bridge is not connected by ") + aWay.name + "."};
}

KrResult BridgeBody::SetSource(const KrString& aSource) {
  if (!aSource.IsEmpty()) {
    KrResult result = mDevice.Use([&](KrDevice& aDevice) {
      KrDeviceAdapter adapter(aDevice);
      return CheckSource(adapter, aSource);
    });
    if (!result.IsOK())
      return result;
  }
  mSync.SetSource(aSource);
  return {};
}

KrResult BridgeBody::Save(const KrString& aName, KrConfigurationWriter& aWriter) {
  const KrString attempt = "Saving the camera bridge " + aName;
  const std::stop_token stop = mCall.Begin();
  if (!mConnection)
    return TellUnconnected(attempt);
  SavedBridge saved{.choice = mConnection->GetChoice(), .source = mSync.GetSource(), .isSyncOn = mSync.IsOn()};
  KrStringList problems;
  KrGenParameterArray& parameters = mConnection->GetParameters();
  const ParameterCall call(parameters, stop);
  const KrResult stored = parameters.StoreSettings(saved.settings, problems, call.GetProgress());
  if (IsUnanswered(stored))
    return {stored.GetCode(), attempt + ": " + stored.GetDescription()};
  if (stop.stop_requested())
    return {KrResult::Code::Aborted, attempt + " was cancelled."};
  for (const KrString& problem : problems)
    KrLogger("KrCameraBridge")
        .Log(KrLogLevel::Warning, {"KrCameraBridge::Save", "bridgebody"}, attempt + ": " + problem);
  return aWriter.Store(aName, StoreBridge(saved));
}

KrResult BridgeBody::SaveConnection(const KrString& aName, KrConfigurationWriter& aWriter) const {
  const SavedBridge saved{.choice = GetChoice(), .source = mSync.GetSource(), .isSyncOn = mSync.IsOn()};
  if (!saved.choice.way)
    return TellUnconnected("Saving the connection of the camera bridge " + aName);
  return aWriter.Store(aName, StoreBridge(saved));
}

void BridgeBody::SetChoice(const CameraChoice& aChoice) {
  const std::lock_guard lock(mChoiceMutex);
  mChoice = aChoice;
}

CameraChoice BridgeBody::GetChoice() const {
  const std::lock_guard lock(mChoiceMutex);
  return mChoice;
}

KrResult BridgeBody::Load(const KrString& aName, const KrConfigurationReader& aReader, KrStringList& aErrors) {
  const std::stop_token stop = mCall.Begin();
  LoadErrors errors(aName, aErrors);
  KrPropertyList properties;
  if (const KrResult result = aReader.Restore(aName, properties); !result.IsOK()) {
    errors.Add(result);
    return errors.GetFirst();
  }
  Disconnect(stop);
  SavedBridge saved;
  KrStringList lines;
  const KrResult read = RestoreBridge(properties, saved, lines);
  errors.Add(read, lines);
  // The device is set once, when the camera has its values back.
  mSync.SetOn(false);
  mSync.SetSource({}); // Another camera's source is none for this one.
  const KrResult chosen = SetSource(saved.source);
  errors.Add(chosen);
  if (saved.choice.way) {
    const KrResult connected = Connect(saved.choice, stop);
    errors.Add(connected, KrString("Connecting by ") + saved.choice.way->name + ": ");
    KrStringList problems;
    if (connected.IsOK())
      errors.Add(RestoreSettings(saved.settings, stop, problems), problems);
  }
  // Without its source the camera's size would be carried to whichever source is selected.
  mSync.SetOn(chosen.IsOK() && saved.isSyncOn.value_or(false));
  return errors.GetFirst();
}

KrResult BridgeBody::RestoreSettings(const KrGenSettings& aSettings, const std::stop_token& aStop,
                                     KrStringList& aProblems) {
  KrGenParameterArray& parameters = mConnection->GetParameters();
  const ParameterCall call(parameters, aStop);
  KrResult result = parameters.RestoreSettings(aSettings, aProblems, call.GetProgress());
  if (result == KrResult::Code::Aborted)
    aProblems.Add("The camera's features were not all set, as loading was ended.");
  return result;
}

} // namespace krcamerabridge
