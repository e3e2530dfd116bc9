#include "bridge/ttysettings.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace krserial {

namespace {

// Rates that the system has a name for: programs that do not know free ones see others as none at all.
struct NamedSpeed {
  std::uint32_t baudRate;
  tcflag_t name;
};
constexpr NamedSpeed kNamedSpeeds[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
    {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
    {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
    {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
    {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000}};

constexpr std::array<tcflag_t, 4> kByteSizes = {CS5, CS6, CS7, CS8};
constexpr std::uint32_t kSmallestByte = 5;
constexpr std::array<tcflag_t, 3> kParities = {0, PARENB, PARENB | PARODD};

template <std::size_t N>
std::uint32_t FindFlag(const std::array<tcflag_t, N>& aFlags, tcflag_t aFlag) {
  return static_cast<std::uint32_t>(std::ranges::find(aFlags, aFlag) - aFlags.begin());
}

} // namespace

std::optional<TtySettings> TtySettings::Read(int aDescriptor) {
  TtySettings settings;
  return ioctl(aDescriptor, TCGETS2, &settings.mSettings) == 0 ? std::optional(settings) : std::nullopt;
}

bool TtySettings::Apply(int aDescriptor) const {
  return ioctl(aDescriptor, TCSETS2, &mSettings) == 0;
}

void TtySettings::MakeRaw() {
  PassBytes();
  // Whether modem lines fall when the port is closed stays as the system has it.
  mSettings.c_cflag = CREAD | CLOCAL | (mSettings.c_cflag & (HUPCL | CBAUD | CIBAUD | CSIZE));
}

void TtySettings::PassBytes() {
  mSettings.c_iflag = 0;
  mSettings.c_oflag = 0;
  mSettings.c_lflag = 0;
  mSettings.c_cc[VMIN] = 1;
  mSettings.c_cc[VTIME] = 0;
}

bool TtySettings::ArePassingBytes() const {
  return mSettings.c_iflag == 0 && mSettings.c_oflag == 0 && mSettings.c_lflag == 0 && mSettings.c_cc[VMIN] == 1 &&
         mSettings.c_cc[VTIME] == 0;
}

void TtySettings::Put(const KrSerialPortConfiguration& aConfiguration) {
  PutSpeed(aConfiguration.baudRate);
  mSettings.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB);
  mSettings.c_cflag |= kByteSizes[aConfiguration.byteSize - kSmallestByte];
  mSettings.c_cflag |= kParities[aConfiguration.parity];
  mSettings.c_cflag |= aConfiguration.stopBits == 2 ? static_cast<tcflag_t>(CSTOPB) : 0;
}

void TtySettings::PutSpeed(std::uint32_t aBaudRate) {
  const auto* const named = std::ranges::find(kNamedSpeeds, aBaudRate, &NamedSpeed::baudRate);
  mSettings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | CIBAUD);
  mSettings.c_cflag |= named == std::end(kNamedSpeeds) ? static_cast<tcflag_t>(BOTHER) : named->name;
  mSettings.c_ispeed = aBaudRate;
  mSettings.c_ospeed = aBaudRate;
}

KrSerialPortConfiguration TtySettings::Get() const {
  KrSerialPortConfiguration configuration;
  configuration.baudRate = GetSpeed();
  configuration.byteSize = kSmallestByte + FindFlag(kByteSizes, mSettings.c_cflag & CSIZE);
  // Any other parity, which no configuration has, comes out as one beyond them.
  const tcflag_t hasParity = mSettings.c_cflag & PARENB;
  configuration.parity = FindFlag(kParities, hasParity ? mSettings.c_cflag & (PARENB | PARODD | CMSPAR) : 0);
  configuration.stopBits = (mSettings.c_cflag & CSTOPB) ? 2 : 1;
  return configuration;
}

void TtySettings::TellChanges() {
  mSettings.c_lflag |= EXTPROC;
}

bool TtySettings::AreChangesTold() const {
  return (mSettings.c_lflag & EXTPROC) != 0;
}

bool IsNearEnough(const KrSerialPortConfiguration& aWanted, const KrSerialPortConfiguration& aTaken) {
  constexpr std::uint64_t kPercent = 3;
  const std::uint64_t wanted = aWanted.baudRate;
  const std::uint64_t taken = aTaken.baudRate;
  const std::uint64_t off = taken > wanted ? taken - wanted : wanted - taken;
  KrSerialPortConfiguration sameSpeed = aTaken;
  sameSpeed.baudRate = aWanted.baudRate;
  return sameSpeed == aWanted && off * 100 <= wanted * kPercent;
}

} // namespace krserial
