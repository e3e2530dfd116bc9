#pragma once
// An open device for the windows that ask through IKrDeviceAdapter. Decides nothing but what a device without
// parameters answers.

#include "krdevice/ikrdeviceadapter.h"

/// The adapter of a KrDevice.
///
/// Thread: any.
/// Ownership: borrows the device, which must outlive it.
///
///     KrDeviceAdapter adapter(*device);
///     KrStringList rates;
///     if (adapter.HasParameter("UartBaudRate"))
///       KrResult result = adapter.GetEnumEntries("UartBaudRate", rates);
class KR_EXPORT KrDeviceAdapter : public IKrDeviceAdapter {
public:
  /// An adapter to a device, which it borrows.
  explicit KrDeviceAdapter(KrDevice& aDevice);
  ~KrDeviceAdapter() override;

  bool HasParameter(const KrString& aName) override;
  bool IsParameterAvailable(const KrString& aName) override;
  KrResult GetEnumEntries(const KrString& aName, KrStringList& aEntries) override;
  KrResult GetEnumValue(const KrString& aName, KrString& aValue) override;
  /// As IKrDeviceAdapter says.
  KrResult SetEnumValue(const KrString& aName, const KrString& aValue) override;
  /// As IKrDeviceAdapter says.
  KrResult GetBooleanValue(const KrString& aName, bool& aValue) override;
  /// As IKrDeviceAdapter says.
  KrResult SetBooleanValue(const KrString& aName, bool aValue) override;
  /// The model's name and the device's unique ID, which is a GigE Vision device's MAC address.
  KrString GetDeviceText() const override;
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override;
  KrDevice* GetDevice() override { return &mDevice; }

private:
  KrDevice& mDevice;
};
