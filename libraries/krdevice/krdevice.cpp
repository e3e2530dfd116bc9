#include "krdevice/krdevice.h"

#include "connectionfeatures.h"
#include "hostparameters.h"
#include "krbase/kreventsinks.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krdevicelifetime.h"
#include "krdevice/krdevicetolvanprotocol.h"
#include "krdevice/krdeviceu3v.h"
#include "krsystem/itransport.h"
#include "opendevices.h"

#include <array>
#include <exception>
#include <string>
#include <utility>
#include <variant>

#include <unistd.h>

struct KrDevice::Body : krsystem::IDeviceLinkSink {
  Body(KrDevice& aDevice, KrDeviceInfoType aType, std::unique_ptr<krsystem::IDeviceLink> aLink,
       krsystem::DeviceFields aFields, KrDeviceAccess aAccess)
      : device(aDevice), type(aType), fields(std::move(aFields)), link(std::move(aLink)),
        parameters(std::make_unique<Parameters>(*link, aAccess, aType, fields)),
        place(krdevice::OpenDevices::Get().Add(*link, [lock = &parameters->lock] { lock->ReleaseAtEnd(); })) {}
  ~Body() { Close(); }

  void Close();
  void Leave();
  void OnLinkLost(const KrResult& aReason) override {
    lifetime->OnLost();
    sinks.Notify([&](KrDeviceEventSink& aSink) { aSink.OnDeviceLost(&device, aReason); });
  }
  void OnLinkBack() override {
    sinks.Notify([&](KrDeviceEventSink& aSink) { aSink.OnDeviceBack(&device); });
  }

  struct Parameters {
    Parameters(krsystem::IDeviceLink& aLink, KrDeviceAccess aAccess, KrDeviceInfoType aType,
               const krsystem::DeviceFields& aFields)
        : port(aLink.GetRegisterPort()), array(aLink, port, aAccess == KrDeviceAccess::Monitor, aFields.displayID),
          connection(krdevice::GetConnectionModule(), [this, &aLink, &aFields, aAccess, aType] {
            return krdevice::ListConnectionFeatures({aType, aAccess, aFields, aLink, port, array, lock});
          }) {}

    krdevice::CountingPort port;
    krdevice::DeviceParameters array;
    krdevice::ParameterLock lock{array};
    krdevice::HostParameters connection;
  };

  KrDevice& device;
  const KrDeviceInfoType type; // Known here, since sinks may ask while the object of the kind is being destroyed.
  const pid_t process = getpid();
  const krsystem::DeviceFields fields;
  KrEventSinks<KrDeviceEventSink> sinks{"a device's event sink", "KrDevice", {"KrDevice::Notify", "krdevice"}};
  std::unique_ptr<krsystem::IDeviceLink> link; // Null once it is closed.
  std::unique_ptr<Parameters> parameters;      // The same; they stand on the link.
  const krdevice::OpenDevices::Place place;
  const std::shared_ptr<KrDeviceLifetime> lifetime = std::make_shared<KrDeviceLifetime>();
};

void KrDevice::Body::Close() {
  if (!link)
    return;
  krdevice::OpenDevices& devices = krdevice::OpenDevices::Get();
  if (process != getpid()) {
    // A forked child: the device is its parent's, whose threads it lacks.
    Leave();
    return;
  }
  lifetime->Refuse();
  // Whoever waits for an access, a sink for example, need not wait any more.
  parameters->connection.Close();
  parameters->array.Close();
  // No event may reach the application while its device goes.
  link->SetSink(nullptr);
  lifetime->WaitForUses();
  if (devices.BeginClosing(place)) {
    parameters.reset();
    link.reset();
  } else {
    // Still in use while the process ends.
    Leave();
  }
  devices.Remove(place);
}

// Leaves the link, and what stands on it, as it is.
void KrDevice::Body::Leave() {
  static_cast<void>(parameters.release());
  static_cast<void>(link.release());
}

namespace {

using DevicePointer = std::unique_ptr<KrDevice>;
using LinkPointer = std::unique_ptr<krsystem::IDeviceLink>;

template <typename Device>
DevicePointer Make(LinkPointer aLink, krsystem::DeviceFields aFields, KrDeviceAccess aAccess) {
  return std::make_unique<Device>(std::move(aLink), std::move(aFields), aAccess);
}

// How the fields of a device's kind are had from its object, and what it is when it is open.
struct Kind {
  KrDeviceInfoType type;
  krsystem::AnyDeviceFields (*getFields)(const KrDeviceInfo&);
  DevicePointer (*make)(LinkPointer, krsystem::DeviceFields, KrDeviceAccess);
};

template <typename Info>
krsystem::AnyDeviceFields GetFields(const KrDeviceInfo& aInfo) {
  return static_cast<const Info&>(aInfo).GetFields();
}

constexpr std::array<Kind, 3> kKinds = {{
    {KrDeviceInfoType::GEV, GetFields<KrDeviceInfoGEV>, Make<KrDeviceGEV>},
    {KrDeviceInfoType::TolvanProtocol, GetFields<KrDeviceInfoTolvanProtocol>, Make<KrDeviceTolvanProtocol>},
    {KrDeviceInfoType::U3V, GetFields<KrDeviceInfoU3V>, Make<KrDeviceU3V>},
}};

const Kind* FindKind(KrDeviceInfoType aType) {
  for (const Kind& kind : kKinds) {
    if (kind.type == aType)
      return &kind;
  }
  return nullptr;
}

// What every kind has, cut out of the fields of one.
krsystem::DeviceFields GetCommonFields(const krsystem::AnyDeviceFields& aFields) {
  return std::visit([](const krsystem::DeviceFields& aKind) { return aKind; }, aFields);
}

krsystem::InterfaceFields GetInterfaceFields(const KrInterface* aInterface) {
  if (const auto* adapter = dynamic_cast<const KrNetworkAdapter*>(aInterface))
    return adapter->GetFields();
  if (const auto* controller = dynamic_cast<const KrUSBHostController*>(aInterface))
    return controller->GetFields();
  return {};
}

krsystem::DeviceAccess ToTransport(KrDeviceAccess aAccess) {
  switch (aAccess) {
  case KrDeviceAccess::Monitor:
    return krsystem::DeviceAccess::Monitor;
  case KrDeviceAccess::Control:
    return krsystem::DeviceAccess::Control;
  case KrDeviceAccess::Exclusive:
    break;
  }
  return krsystem::DeviceAccess::Exclusive;
}

// While it lives, the process' end waits for the device that is being opened.
class Opening {
public:
  Opening() : mIsAllowed(krdevice::OpenDevices::Get().BeginOpening(mPlace)) {}
  ~Opening() {
    if (mIsAllowed)
      krdevice::OpenDevices::Get().Remove(mPlace);
  }
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;

  bool IsAllowed() const { return mIsAllowed; }

private:
  krdevice::OpenDevices::Place mPlace = 0;
  const bool mIsAllowed;
};

KrResult OpenKind(const KrDeviceInfo& aInfo, const Kind& aKind, KrDeviceAccess aAccess, DevicePointer& aDevice) {
  const Opening opening;
  if (!opening.IsAllowed())
    return {KrResult::Code::Aborted, "Opening " + aInfo.GetDisplayID() + ": the process is about to end."};
  const std::shared_ptr<krsystem::ITransport> transport = aInfo.GetTransport();
  if (!transport)
    return {KrResult::Code::NotSupported,
            "Opening " + aInfo.GetDisplayID() + ": it was found by no transport; look for devices with KrSystem."};
  LinkPointer link;
  const krsystem::AnyDeviceFields fields = aKind.getFields(aInfo);
  const KrResult result = transport->Open(GetInterfaceFields(aInfo.GetInterface()), fields, ToTransport(aAccess), link);
  if (!result.IsOK())
    return result;
  if (!link)
    return {KrResult::Code::ProtocolError, "Opening " + aInfo.GetDisplayID() + ": its transport gave no link to it."};
  aDevice = aKind.make(std::move(link), GetCommonFields(fields), aAccess);
  return {};
}

} // namespace

KrResult KrDevice::Open(const KrDeviceInfo& aInfo, KrDeviceAccess aAccess, std::unique_ptr<KrDevice>& aDevice) {
  const Kind* const kind = FindKind(aInfo.GetType());
  if (!kind)
    return {KrResult::Code::NotSupported, "Opening " + aInfo.GetDisplayID() + ": it is no camera that can be opened."};
  try {
    return OpenKind(aInfo, *kind, aAccess, aDevice);
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError,
            "Opening " + aInfo.GetDisplayID() + " was ended by an exception: " + std::string(error.what())};
  } catch (...) {
    return {KrResult::Code::SystemError,
            "Opening " + aInfo.GetDisplayID() + " was ended by an exception of unknown type."};
  }
}

KrDevice::KrDevice(KrDeviceInfoType aType, std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
                   KrDeviceAccess aAccess)
    : mBody(std::make_unique<Body>(*this, aType, std::move(aLink), std::move(aFields), aAccess)) {
  mBody->link->SetSink(mBody.get());
}

KrDevice::~KrDevice() {
  // Before the body goes: until this returns a sink may ask the device.
  mBody->Close();
}

KrDeviceInfoType KrDevice::GetType() const {
  return mBody->type;
}

const KrString& KrDevice::GetDisplayID() const {
  return mBody->fields.displayID;
}

const KrString& KrDevice::GetUniqueID() const {
  return mBody->fields.uniqueID;
}

const KrString& KrDevice::GetVendorName() const {
  return mBody->fields.vendorName;
}

const KrString& KrDevice::GetModelName() const {
  return mBody->fields.modelName;
}

const KrString& KrDevice::GetSerialNumber() const {
  return mBody->fields.serialNumber;
}

const KrString& KrDevice::GetUserDefinedName() const {
  return mBody->fields.userDefinedName;
}

IKrRegisterPort& KrDevice::GetRegisterPort() {
  return mBody->parameters->port;
}

krsystem::IBufferSource* KrDevice::GetBufferSource(std::uint32_t aChannel) {
  return mBody->link->GetBufferSource(aChannel);
}

KrResult KrDevice::GetParameters(KrGenParameterArray*& aParameters) {
  return mBody->parameters->array.Get(aParameters);
}

KrGenParameterArray* KrDevice::GetParameters() {
  KrGenParameterArray* parameters = nullptr;
  return GetParameters(parameters).IsOK() ? parameters : nullptr;
}

KrResult KrDevice::SetDescription(const KrGenDescription& aDescription) {
  return mBody->parameters->array.SetDescription(aDescription);
}

KrResult KrDevice::ReadDescription(KrGenDescription& aDescription) {
  return mBody->parameters->array.ReadDescription(aDescription);
}

KrResult KrDevice::GetTransportParameters(KrGenParameterArray*& aParameters) {
  return mBody->parameters->connection.Get(aParameters);
}

void KrDevice::OnStreamsChanged() {
  mBody->parameters->connection.ForgetValues();
}

krdevice::ParameterLock& KrDevice::GetParameterLock() {
  return mBody->parameters->lock;
}

std::shared_ptr<krsystem::IByteChannel> KrDevice::GetByteChannel(std::uint32_t aNumber) {
  return mBody->link->GetByteChannel(aNumber);
}

std::shared_ptr<KrDeviceLifetime> KrDevice::GetLifetime() const {
  return mBody->lifetime;
}

bool KrDevice::IsConnected() const {
  return mBody->link->IsConnected();
}

KrResult KrDevice::RegisterEventSink(KrDeviceEventSink* aSink) {
  return mBody->sinks.Register(aSink);
}

KrResult KrDevice::UnregisterEventSink(KrDeviceEventSink* aSink) {
  return mBody->sinks.Unregister(aSink);
}
