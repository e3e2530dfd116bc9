#include "serial/serialcomportconfigdlg.h"

#include "krserial/krserialbridge.h"
#include "logic/serial/baudrates.h"
#include "platform/toqstring.h"
#include "res/templates.h"
#include "serial/serialbridgeids.h"

#include <QComboBox>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krgui {

namespace {

/// A list, the field that is chosen in it, and its entries; those of the rates are the bridge's.
struct ListRow {
  int id;
  std::uint32_t KrSerialPortConfiguration::*field;
  struct Entry {
    const char* text;
    std::uint32_t value;
  } entries[3];
};

constexpr ListRow kLists[] = {
    {bridgeid::kBaudRate, &KrSerialPortConfiguration::baudRate, {}},
    {bridgeid::kParity, &KrSerialPortConfiguration::parity, {{"None", 0}, {"Even", 1}, {"Odd", 2}}},
    {bridgeid::kByteSize, &KrSerialPortConfiguration::byteSize, {{"7 bits", 7}, {"8 bits", 8}}},
    {bridgeid::kStopBits, &KrSerialPortConfiguration::stopBits, {{"1 bit", 1}, {"2 bits", 2}}},
};

constexpr auto kNothingChosen = static_cast<std::uint32_t>(-1);

/// What the bridge's port can have; all that is usual where it cannot tell.
std::vector<std::uint32_t> GetOfferedRates(const KrSerialBridge& aBridge) {
  std::vector<std::uint32_t> rates;
  for (std::size_t index = 0; index < aBridge.GetSupportedBaudRateCount(); ++index)
    rates.push_back(aBridge.GetSupportedBaudRate(index));
  if (rates.empty())
    rates.assign(kBaudRates.begin(), kBaudRates.end());
  return rates;
}

} // namespace

SerialCOMPortConfigDlg::SerialCOMPortConfigDlg(const KrSerialPortConfiguration& aConfiguration,
                                               const KrSerialBridge& aBridge, QWidget* aOwner)
    : ModalDialog(kCOMPortConfigTemplateID, aOwner), mConfiguration(aConfiguration) {
  for (const ListRow& row : kLists) {
    auto& list = *GetControl<QComboBox>(row.id);
    if (row.id == bridgeid::kBaudRate) {
      for (const std::uint32_t rate : GetOfferedRates(aBridge))
        list.addItem(ToQString(FormatBaudRate(rate)), rate);
    }
    for (const ListRow::Entry& entry : row.entries) {
      if (entry.text != nullptr)
        list.addItem(QString::fromLatin1(entry.text), entry.value);
    }
    list.setCurrentIndex(list.findData(mConfiguration.*row.field));
  }
}

SerialCOMPortConfigDlg::~SerialCOMPortConfigDlg() = default;

void SerialCOMPortConfigDlg::OnOK() {
  for (const ListRow& row : kLists) {
    const QVariant chosen = GetControl<QComboBox>(row.id)->currentData();
    mConfiguration.*row.field = chosen.isValid() ? chosen.toUInt() : kNothingChosen;
  }
  EndDialog(ModalResult::OK);
}

} // namespace krgui
