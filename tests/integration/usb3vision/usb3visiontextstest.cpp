// What a device says of itself, read through the real libusb from a device that umockdev plays: sysfs, device file and
// control transfers are those of a tree and a recording that were put together, not taken from hardware.

#include "programrun.h"
#include "temporaryfolder.h"
#include "usbrecording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using testing::HasSubstr;

constexpr std::uint16_t kEnglish = 0x0409;

class Usb3VisionTexts : public testing::Test {
protected:
  // Runs the probe on the host with one camera; gives what it printed.
  std::string RunProbe(const UsbRecording& aRecording) {
    const std::filesystem::path recording = mFolder.GetPath() / "recording.pcap";
    std::ofstream(recording, std::ios::binary) << aRecording.GetBytes();
    // The address sanitizer wants to be loaded in front of what umockdev loads.
    ProgramRun run("/usr/bin/env",
                   {"ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0", "umockdev-run", "--device",
                    USB_TREES "/superspeed.tree", "--pcap",
                    "/sys/devices/pci0000:00/0000:00:14.0/usb2/2-1=" + recording.string(), "--", USB_PROBE});
    EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
    return run.GetOutput();
  }

  TemporaryFolder mFolder;
};

TEST_F(Usb3VisionTexts, Discover_DeviceThatAnswers_TellsItsOwnTexts) {
  UsbRecording recording(2, 5);
  recording.AddStringDescriptor(0, 0, MakeStringDescriptor(u"\u0409"));
  const std::u16string_view texts[] = {u"F05500A01234", u"Example Optics GmbH", u"EO-2048M",   u"EO",
                                       u"1.4.2",        u"made for tests",      u"A0001234/7", u"oben \u00fc"};
  std::uint8_t index = 4;
  for (const std::u16string_view text : texts)
    recording.AddStringDescriptor(index++, kEnglish, MakeStringDescriptor(text));

  const std::string output = RunProbe(recording);

  EXPECT_EQ(output, "interfaces=1\nid=f055:0301:A0001234\nguid=F05500A01234\nvendor=Example Optics GmbH\n"
                    "model=EO-2048M\nfamily=EO\nversion=1.4.2\ninfo=made for tests\nserial=A0001234/7\n"
                    "name=oben \xC3\xBC\ndriver=1\n");
}

TEST_F(Usb3VisionTexts, Discover_DeviceThatLacksATextItNames_TellsTheOthers) {
  UsbRecording recording(2, 5);
  recording.AddStringDescriptor(0, 0, MakeStringDescriptor(u"\u0409"));
  recording.AddStringDescriptor(4, kEnglish, MakeStringDescriptor(u"F05500A01234"));
  for (std::uint8_t index = 5; index < 11; ++index)
    recording.AddStringDescriptor(index, kEnglish, std::nullopt);
  recording.AddStringDescriptor(11, kEnglish, MakeStringDescriptor(u"top left"));

  const std::string output = RunProbe(recording);

  EXPECT_THAT(output, HasSubstr("guid=F05500A01234\nvendor=Example Optics\nmodel=EO-2048\nfamily=\nversion=1.04\n"));
  EXPECT_THAT(output, HasSubstr("name=top left\n"));
}

TEST_F(Usb3VisionTexts, Discover_DeviceWithoutTexts_TellsWhatTheKernelKnows) {
  UsbRecording recording(2, 5);
  recording.AddStringDescriptor(0, 0, std::nullopt);

  const std::string output = RunProbe(recording);

  EXPECT_THAT(output, HasSubstr("guid=(F0550301-A0001234, derived)\nvendor=Example Optics\nmodel=EO-2048\n"));
  EXPECT_THAT(output, HasSubstr("driver=1\n"));
}

} // namespace
