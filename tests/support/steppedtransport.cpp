#include "steppedtransport.h"

#include <array>
#include <cstdio>
#include <string>
#include <utility>

namespace krtest {

namespace {

using namespace krsystem;

std::string DescribeAccess(const char* aWhat, std::uint64_t aAddress, std::size_t aLength) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%s %zu bytes at 0x%llX", aWhat, aLength,
                static_cast<unsigned long long>(aAddress));
  return text.data();
}

class SteppedPort final : public IKrRegisterPort {
public:
  SteppedPort(IKrRegisterPort& aPort, Steps& aSteps) : mPort(aPort), mSteps(aSteps) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    return mSteps.Take(DescribeAccess("reading", aAddress, aLength),
                       [&] { return mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel); });
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    return mSteps.Take(DescribeAccess("writing", aAddress, aLength),
                       [&] { return mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel); });
  }

private:
  IKrRegisterPort& mPort;
  Steps& mSteps;
};

class SteppedSource final : public IBufferSource {
public:
  SteppedSource(IBufferSource& aSource, Steps& aSteps) : mSource(aSource), mSteps(aSteps) {}

  KrResult GetPayloadSize(std::uint64_t& aBytes) override {
    return mSteps.Take("asking for the payload's size", [&] { return mSource.GetPayloadSize(aBytes); });
  }
  KrResult Queue(KrBuffer* aBuffer) override { return mSource.Queue(aBuffer); }
  KrResult Start() override {
    return mSteps.Take("starting the stream", [&] { return mSource.Start(); });
  }
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) override {
    return mSteps.Take("awaiting a frame", [&] { return mSource.Retrieve(aBuffer, aTimeoutMs, aCancel); });
  }
  void Stop() override {
    (void)mSteps.Take("stopping the stream", [] { return KrResult(); }); // Whatever happens, it is stopped.
    mSource.Stop();
  }
  SourceStatistics GetStatistics() const override { return mSource.GetStatistics(); }
  SourceBuffers CountBuffers() const override { return mSource.CountBuffers(); }
  HostFeatures ListFeatures() override { return mSource.ListFeatures(); }

private:
  IBufferSource& mSource;
  Steps& mSteps;
};

class SteppedChannel final : public IByteChannel {
public:
  SteppedChannel(std::shared_ptr<IByteChannel> aChannel, Steps& aSteps)
      : mChannel(std::move(aChannel)), mSteps(aSteps) {}

  KrResult Open() override {
    return mSteps.Take("opening a line", [&] { return mChannel->Open(); });
  }
  void Close() override { mChannel->Close(); }
  // Only what came is a step: how often nothing comes is the host's pace.
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    KrResult result = mChannel->Read(aBytes, aSize, aRead, aTimeoutMs, aCancel);
    if (!result.IsOK())
      return result;
    result = Take("reading " + std::to_string(aRead) + " bytes of a line", [] { return KrResult(); });
    aRead = result.IsOK() ? aRead : 0;
    return result;
  }
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    aWritten = 0;
    return Take("writing " + std::to_string(aSize) + " bytes to a line",
                [&] { return mChannel->Write(aBytes, aSize, aWritten, aTimeoutMs, aCancel); });
  }

private:
  // Registers alone are silent: of a line, time that passes is no failure.
  KrResult Take(const std::string& aWhat, const std::function<KrResult()>& aRun) {
    const KrResult fault = mSteps.Take(aWhat, [] { return KrResult(); });
    return fault.IsOK() || fault == KrResult::Code::TimeLimitExceeded ? aRun() : fault;
  }

  const std::shared_ptr<IByteChannel> mChannel;
  Steps& mSteps;
};

class SteppedLink final : public IDeviceLink {
public:
  SteppedLink(std::unique_ptr<IDeviceLink> aLink, Steps& aSteps)
      : mLink(std::move(aLink)), mSteps(aSteps), mPort(mLink->GetRegisterPort(), aSteps) {
    if (IBufferSource* const source = mLink->GetBufferSource(0))
      mSource = std::make_unique<SteppedSource>(*source, aSteps);
  }

  IKrRegisterPort& GetRegisterPort() override { return mPort; }
  IBufferSource* GetBufferSource(std::uint32_t aChannel) override { return aChannel == 0 ? mSource.get() : nullptr; }
  KrGenBootstrap GetBootstrap() const override { return mLink->GetBootstrap(); }
  std::shared_ptr<IByteChannel> GetByteChannel(std::uint32_t aNumber) override {
    std::shared_ptr<IByteChannel> channel = mLink->GetByteChannel(aNumber);
    return channel ? std::make_shared<SteppedChannel>(std::move(channel), mSteps) : nullptr;
  }
  HostFeatures ListFeatures() override { return mLink->ListFeatures(); }
  void GiveBackControl() override { mLink->GiveBackControl(); }
  bool IsConnected() const override { return mLink->IsConnected(); }
  void SetSink(IDeviceLinkSink* aSink) override { mLink->SetSink(aSink); }

private:
  const std::unique_ptr<IDeviceLink> mLink;
  Steps& mSteps;
  SteppedPort mPort;
  std::unique_ptr<SteppedSource> mSource;
};

class SteppedTransport final : public ITransport {
public:
  SteppedTransport(std::shared_ptr<ITransport> aTransport, Steps& aSteps)
      : mTransport(std::move(aTransport)), mSteps(aSteps) {}

  KrString GetName() const override { return mTransport->GetName(); }
  KrResult ListInterfaces(std::vector<InterfaceFields>& aInterfaces) override {
    return mSteps.Take("listing the interfaces", [&] { return mTransport->ListInterfaces(aInterfaces); });
  }
  KrResult Discover(const std::vector<InterfaceFields>& aInterfaces, const DiscoveryRequest& aRequest,
                    const DeviceReport& aReport) override {
    const DeviceReport report = [&](std::size_t aIndex, const AnyDeviceFields& aDevice) {
      const KrResult heard = mSteps.Take("a device's answer", [] { return KrResult(); });
      if (heard.IsOK())
        aReport(aIndex, aDevice);
    };
    return mSteps.Take("discovering", [&] { return mTransport->Discover(aInterfaces, aRequest, report); });
  }
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, InterfaceFields& aInterface,
                       AnyDeviceFields& aDevice) override {
    return mSteps.Take("asking an address",
                       [&] { return mTransport->FindAddress(aAddress, aTimeoutMs, aInterface, aDevice); });
  }
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override {
    return mSteps.Take("setting an address", [&] { return mTransport->ConfigureIP(aMAC, aAddress, aMask, aGateway); });
  }
  KrResult GetAccessType(const AnyDeviceFields& aDevice, AccessType& aType) override {
    return mSteps.Take("asking who controls a device", [&] { return mTransport->GetAccessType(aDevice, aType); });
  }
  KrResult Open(const InterfaceFields& aInterface, const AnyDeviceFields& aDevice, DeviceAccess aAccess,
                std::unique_ptr<IDeviceLink>& aLink) override {
    std::unique_ptr<IDeviceLink> link;
    const KrResult opened =
        mSteps.Take("opening a device", [&] { return mTransport->Open(aInterface, aDevice, aAccess, link); });
    if (opened.IsOK())
      aLink = std::make_unique<SteppedLink>(std::move(link), mSteps);
    return opened;
  }
  KrResult ReadHost(HostReadings& aReadings) override {
    return mSteps.Take("reading the host", [&] { return mTransport->ReadHost(aReadings); });
  }
  KrResult FindUsedAddresses(const InterfaceFields& aInterface, const std::vector<std::uint32_t>& aAddresses,
                             std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                             std::vector<std::uint32_t>& aUsed) override {
    return mTransport->FindUsedAddresses(aInterface, aAddresses, aTimeoutMs, aCancel, aUsed);
  }

private:
  const std::shared_ptr<ITransport> mTransport;
  Steps& mSteps;
};

} // namespace

std::shared_ptr<ITransport> MakeSteppedTransport(std::shared_ptr<ITransport> aTransport, Steps& aSteps) {
  return std::make_shared<SteppedTransport>(std::move(aTransport), aSteps);
}

} // namespace krtest
