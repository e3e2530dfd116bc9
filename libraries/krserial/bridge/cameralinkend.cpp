#include "bridge/cameralinkend.h"

#include "bridge/cameraserver.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace krserial {

struct CameraLinkEnd::Body {
  Body(std::unique_ptr<KrCLPublication> aPublication, krbase::WakeEvent aWake, bool aHasPort)
      : server(std::move(aPublication), std::move(aWake), aHasPort),
        thread([this](const std::stop_token& aStop) { server.Serve(aStop); }) {}

  CameraServer server;
  std::jthread thread; ///< Ends before the server does.
};

CameraLinkEnd::CameraLinkEnd(std::unique_ptr<Body> aBody) : mBody(std::move(aBody)) {}

CameraLinkEnd::~CameraLinkEnd() = default;

KrResult CameraLinkEnd::Open(const KrString& aName, bool aHasPort, std::unique_ptr<CameraLinkEnd>& aEnd) {
  krbase::WakeEvent wake;
  if (!wake.IsOpen())
    return {KrResult::Code::SystemError,
            "Publishing a Camera Link port failed: " + std::generic_category().message(errno) + "."};
  std::unique_ptr<KrCLPublication> publication;
  if (KrResult made = KrCLPublication::Make(aName, publication); !made.IsOK())
    return made;
  try {
    aEnd.reset(new CameraLinkEnd(std::make_unique<Body>(std::move(publication), std::move(wake), aHasPort)));
  } catch (const std::system_error& error) {
    return {KrResult::Code::SystemError,
            std::string("Publishing a Camera Link port failed, as no thread could be started: ") + error.what()};
  }
  return {};
}

KrString CameraLinkEnd::GetName() const {
  return mBody->server.GetName();
}

KrResult CameraLinkEnd::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead,
                             const std::stop_token& aStop) {
  return mBody->server.Take(aBytes, aSize, aRead, aStop);
}

KrResult CameraLinkEnd::Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                              const std::stop_token& aStop) {
  return mBody->server.Give(aBytes, aSize, aWritten, aStop);
}

bool CameraLinkEnd::AsksForEmptiness() const {
  return mBody->server.AsksForEmptiness();
}

void CameraLinkEnd::TellEmpty() {
  mBody->server.TellEmpty();
}

KrResult CameraLinkEnd::Recover(const std::stop_token& aStop, const TellHindrance&) {
  return aStop.stop_requested() ? KrResult::Code::Aborted : KrResult::Code::OK;
}

KrResult CameraLinkEnd::Configure(const KrSerialPortConfiguration&) {
  return {};
}

void CameraLinkEnd::SetSpeedRequest(SpeedRequest aRequest) {
  mBody->server.SetSpeedRequest(std::move(aRequest));
}

void CameraLinkEnd::TellSpeed(const DevicePortSpeed& aSpeed) {
  mBody->server.TellSpeed(aSpeed);
}

} // namespace krserial
