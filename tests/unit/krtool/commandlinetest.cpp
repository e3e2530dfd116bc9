#include "commandline.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using Arguments = std::vector<std::string>;
using testing::HasSubstr;

TEST(CommandLine, List_TakesItsOptions) {
  const ParsedCommandLine parsed = ParseCommandLine({"list", "--json", "--simulate", "--timeout", "250"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.verb, Verb::List);
  EXPECT_TRUE(parsed.commandLine.json);
  EXPECT_TRUE(parsed.commandLine.simulate);
  EXPECT_EQ(parsed.commandLine.timeoutMs, 250U);
}

TEST(CommandLine, Lab_ImpliesTheSimulation) {
  const ParsedCommandLine parsed = ParseCommandLine({"list", "--lab", "lab.yaml"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.labFile, "lab.yaml");
  EXPECT_TRUE(parsed.commandLine.simulate);
}

TEST(CommandLine, LabBesideTheSimulation_TakesThePlaceOfTheBuiltInOne) {
  const ParsedCommandLine parsed = ParseCommandLine({"list", "--simulate", "--lab", "lab.yaml"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.labFile, "lab.yaml");
  EXPECT_TRUE(parsed.commandLine.simulate);
  EXPECT_THAT(GetHelpText(), HasSubstr("in place of the built-in one"));
}

TEST(CommandLine, Synopses_NameTheLabBesideTheSimulation) {
  const std::string help = GetHelpText();
  const std::string synopses = help.substr(0, help.find("Options:"));
  std::size_t simulations = 0;

  for (std::size_t at = synopses.find("--simulate"); at != std::string::npos;
       at = synopses.find("--simulate", at + 1)) {
    EXPECT_EQ(synopses.substr(at, 24), "--simulate | --lab FILE]") << at;
    ++simulations;
  }

  EXPECT_EQ(simulations, 13U);
}

TEST(CommandLine, ListAlone_LeavesEverythingAtItsDefault) {
  const ParsedCommandLine parsed = ParseCommandLine({"list"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_FALSE(parsed.commandLine.json);
  EXPECT_FALSE(parsed.commandLine.simulate);
  EXPECT_FALSE(parsed.commandLine.timeoutMs.has_value());
}

TEST(CommandLine, ListThatWatchesOrDiagnoses_TakesTheOptionForIt) {
  const ParsedCommandLine watching = ParseCommandLine({"list", "--watch", "--json", "--timeout", "3000"});
  const ParsedCommandLine diagnosing = ParseCommandLine({"list", "--diagnose"});

  EXPECT_EQ(watching.error + diagnosing.error, "");
  EXPECT_TRUE(watching.commandLine.watch && watching.commandLine.json && !watching.commandLine.diagnose);
  EXPECT_TRUE(diagnosing.commandLine.diagnose && !diagnosing.commandLine.watch);
}

TEST(CommandLine, IPAlone_ChangesNothing) {
  const ParsedCommandLine parsed = ParseCommandLine({"ip", "cam", "--json"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.verb, Verb::IP);
  EXPECT_EQ(parsed.commandLine.device, "cam");
  EXPECT_FALSE(parsed.commandLine.ip.sets);
  EXPECT_FALSE(parsed.commandLine.ip.ChangesLasting());
}

TEST(CommandLine, IPThatSets_TakesAddressMaskAndGateway) {
  const ParsedCommandLine parsed = ParseCommandLine({"ip", "cam", "--set", "192.168.1.20", "--mask", "255.255.255.0",
                                                     "--gateway=192.168.1.1", "--adapter", "eth1", "--force"});

  EXPECT_EQ(parsed.error, "");
  const IPWish& ip = parsed.commandLine.ip;
  EXPECT_TRUE(ip.sets);
  EXPECT_EQ(ip.address, 0xC0A80114U);
  EXPECT_EQ(ip.mask, 0xFFFFFF00U);
  EXPECT_EQ(ip.gateway, 0xC0A80101U);
  EXPECT_EQ(ip.adapter, "eth1");
  EXPECT_FALSE(ip.ChangesLasting());
  EXPECT_TRUE(parsed.commandLine.force);
}

TEST(CommandLine, IPThatSetsAutomatically_HasNoAddressOfTheUsers) {
  const ParsedCommandLine parsed = ParseCommandLine({"ip", "cam", "--set", "auto"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_TRUE(parsed.commandLine.ip.sets);
  EXPECT_FALSE(parsed.commandLine.ip.address);
}

TEST(CommandLine, IPForGood_TakesAddressAndWays) {
  const ParsedCommandLine on = ParseCommandLine(
      {"ip", "cam", "--persistent", "10.0.0.7", "--mask", "255.0.0.0", "--dhcp", "off", "--link-local", "on"});
  const ParsedCommandLine off = ParseCommandLine({"ip", "cam", "--persistent", "off"});

  EXPECT_EQ(on.error + off.error, "");
  EXPECT_EQ(on.commandLine.ip.persistent, true);
  EXPECT_EQ(on.commandLine.ip.persistentAddress, 0x0A000007U);
  EXPECT_EQ(on.commandLine.ip.dhcp, false);
  EXPECT_EQ(on.commandLine.ip.linkLocal, true);
  EXPECT_EQ(off.commandLine.ip.persistent, false);
  EXPECT_FALSE(off.commandLine.ip.persistentAddress);
  EXPECT_TRUE(off.commandLine.ip.ChangesLasting());
}

TEST(CommandLine, Stream_TakesDeviceAndFramesInAnyOrder) {
  for (const Arguments& arguments :
       {Arguments{"stream", "cam", "--frames", "7"}, Arguments{"stream", "--frames=7", "cam"}}) {
    const ParsedCommandLine parsed = ParseCommandLine(arguments);

    EXPECT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.commandLine.verb, Verb::Stream);
    EXPECT_EQ(parsed.commandLine.device, "cam");
    EXPECT_EQ(parsed.commandLine.frames, 7U);
  }
}

TEST(CommandLine, SaveFrame_TakesDeviceThenFile) {
  const ParsedCommandLine parsed =
      ParseCommandLine({"save-frame", "cam", "--pixel-format", "Mono12p", "a.b/shot.TIF", "--force", "--timeout=5"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.verb, Verb::SaveFrame);
  EXPECT_EQ(parsed.commandLine.device, "cam");
  EXPECT_EQ(parsed.commandLine.file, "a.b/shot.TIF");
  EXPECT_EQ(parsed.commandLine.format, krapps::FrameFileFormat::TIFF);
  EXPECT_EQ(parsed.commandLine.pixelFormat, "Mono12p");
  EXPECT_TRUE(parsed.commandLine.force);
  EXPECT_EQ(parsed.commandLine.timeoutMs, 5U);
}

TEST(CommandLine, FormatOption_PrevailsOverTheFilesName) {
  const ParsedCommandLine parsed = ParseCommandLine({"save-frame", "cam", "shot.png", "--format", "raw"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.format, krapps::FrameFileFormat::Raw);
  EXPECT_FALSE(parsed.commandLine.force);
}

TEST(CommandLine, Features_TakesItsOptions) {
  const ParsedCommandLine parsed =
      ParseCommandLine({"features", "cam.xml", "--category", "ImageFormatControl", "--visibility=expert", "--faults",
                        "--simulate", "--module", "stream"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.verb, Verb::Features);
  EXPECT_EQ(parsed.commandLine.device, "cam.xml");
  EXPECT_EQ(parsed.commandLine.category, "ImageFormatControl");
  EXPECT_EQ(parsed.commandLine.visibility, KrGenVisibility::Expert);
  EXPECT_TRUE(parsed.commandLine.faults);
  EXPECT_EQ(parsed.commandLine.module, FeatureModule::Stream);
}

TEST(CommandLine, FeaturesAlone_ShowsAllThatIsForPeople) {
  const ParsedCommandLine parsed = ParseCommandLine({"features", "cam"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.category, "");
  EXPECT_EQ(parsed.commandLine.visibility, KrGenVisibility::Invisible);
}

TEST(CommandLine, Get_TakesSeveralNames) {
  const ParsedCommandLine parsed = ParseCommandLine({"get", "cam", "Width", "Height"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.names, (Arguments{"Width", "Height"}));
}

TEST(CommandLine, Set_TakesNamesAndValuesNegativeAndEmptyOnesToo) {
  const ParsedCommandLine parsed = ParseCommandLine(
      {"set", "cam", "Offset", "-5", "Level", "-1.5e3", "--timeout", "9", "UserID", "", "Gain", "-inf"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.names, (Arguments{"Offset", "-5", "Level", "-1.5e3", "UserID", "", "Gain", "-inf"}));
  EXPECT_EQ(parsed.commandLine.timeoutMs, 9U);
}

TEST(CommandLine, ValueThatLooksLikeAnOption_IsTakenBehindTwoDashes) {
  const ParsedCommandLine parsed = ParseCommandLine({"set", "cam", "--", "UserID", "--help"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.names, (Arguments{"UserID", "--help"}));
}

TEST(CommandLine, Xml_TakesAFileOrNone) {
  const ParsedCommandLine toFile = ParseCommandLine({"xml", "cam", "cam.xml", "--force"});
  const ParsedCommandLine toOutput = ParseCommandLine({"xml", "cam"});

  EXPECT_EQ(toFile.error + toOutput.error, "");
  EXPECT_EQ(toFile.commandLine.file, "cam.xml");
  EXPECT_TRUE(toFile.commandLine.force);
  EXPECT_EQ(toOutput.commandLine.file, "");
}

TEST(CommandLine, SaveAndLoad_TakeDeviceThenFile) {
  for (const char* command : {"save", "load"}) {
    const ParsedCommandLine parsed = ParseCommandLine({command, "cam", "settings.txt", "--simulate"});

    EXPECT_EQ(parsed.error, "") << command;
    EXPECT_EQ(parsed.commandLine.device, "cam");
    EXPECT_EQ(parsed.commandLine.file, "settings.txt");
  }
}

TEST(CommandLine, NameThatLooksLikeAnOption_IsTakenBehindTwoDashes) {
  const ParsedCommandLine parsed = ParseCommandLine({"stream", "--frames", "1", "--", "--help"});

  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.commandLine.device, "--help");
}

TEST(CommandLine, HelpAndVersion_AreTakenAnywhere) {
  EXPECT_EQ(ParseCommandLine({"--help"}).commandLine.verb, Verb::Help);
  EXPECT_EQ(ParseCommandLine({"list", "-h"}).commandLine.verb, Verb::Help);
  EXPECT_EQ(ParseCommandLine({"help"}).commandLine.verb, Verb::Help);
  EXPECT_EQ(ParseCommandLine({"help", "stream"}).commandLine.verb, Verb::Help);
  EXPECT_EQ(ParseCommandLine({"--version"}).commandLine.verb, Verb::Version);
}

struct Mistake {
  const char* name;
  Arguments arguments;
  const char* complaint;
};

class WrongCommandLine : public testing::TestWithParam<Mistake> {};

TEST_P(WrongCommandLine, IsToldWithWhatIsWrong) {
  EXPECT_THAT(ParseCommandLine(GetParam().arguments).error, HasSubstr(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Mistakes, WrongCommandLine,
    testing::Values(
        Mistake{"NoCommand", {}, "command is missing"}, Mistake{"UnknownCommand", {"show"}, "\"show\""},
        Mistake{"UnknownOption", {"list", "--all"}, "--all"},
        Mistake{"WatchAndDiagnose", {"list", "--watch", "--diagnose"}, "do not go together"},
        Mistake{"IPWithoutDevice", {"ip"}, "DEVICE"},
        Mistake{"IPWithTextForAnAddress", {"ip", "cam", "--set", "camera"}, "or auto, not \"camera\""},
        Mistake{"IPWithLeadingZeros",
                {"ip", "cam", "--set", "010.020.030.040"},
                "without leading zeros, or auto, not \"010.020.030.040\""},
        Mistake{"IPWithLeadingZeroInTheLastField", {"ip", "cam", "--persistent", "10.0.0.07"}, "leading zeros"},
        Mistake{"IPWithLeadingZeroInTheMask",
                {"ip", "cam", "--set", "10.0.0.7", "--mask", "255.00.0.0"},
                "--mask wants a mask as in"},
        Mistake{"TwoLabs", {"list", "--lab", "a.yaml", "--lab", "b.yaml"}, "--lab is given twice"},
        Mistake{"IPWithShortMask", {"ip", "cam", "--set", "10.0.0.2", "--mask", "24"}, "--mask wants a mask as in"},
        Mistake{"IPWithMaskAlone", {"ip", "cam", "--mask", "255.0.0.0"}, "belong to an address"},
        Mistake{
            "IPWithGatewayForNoAddress", {"ip", "cam", "--persistent", "off", "--gateway", "10.0.0.1"}, "belong to"},
        Mistake{"IPWithUnknownSwitch", {"ip", "cam", "--dhcp", "yes"}, "--dhcp wants on or off, not \"yes\""},
        Mistake{"IPWithEmptyAdapter", {"ip", "cam", "--adapter="}, "the name of an adapter"},
        Mistake{"SetForList", {"list", "--set", "auto"}, "takes no --set"},
        Mistake{"WatchForStream", {"stream", "cam", "--frames", "2", "--watch"}, "takes no --watch"},
        Mistake{"OptionOfAnotherCommand", {"list", "--frames", "3"}, "takes no --frames"},
        Mistake{"JsonForStream", {"stream", "cam", "--frames", "3", "--json"}, "takes no --json"},
        Mistake{"FlagWithValue", {"list", "--json=yes"}, "takes no value"},
        Mistake{"ListWithDevice", {"list", "cam"}, "\"cam\""},
        Mistake{"StreamWithoutDevice", {"stream", "--frames", "3"}, "DEVICE"},
        Mistake{"EmptyDevice", {"stream", "", "--frames", "3"}, "DEVICE"},
        Mistake{"TwoDevices", {"stream", "a", "b", "--frames", "3"}, "\"b\""},
        Mistake{"StreamWithoutFrames", {"stream", "cam"}, "--frames N"},
        Mistake{"NoFrames", {"stream", "cam", "--frames", "0"}, "\"0\""},
        Mistake{"NegativeFrames", {"stream", "cam", "--frames", "-3"}, "\"-3\""},
        Mistake{"TextForFrames", {"stream", "cam", "--frames", "3x"}, "\"3x\""},
        Mistake{"FramesBeyondNumbers", {"stream", "cam", "--frames", "99999999999999999999"}, "--frames wants"},
        Mistake{"SaveFrameWithoutDevice", {"save-frame"}, "DEVICE"},
        Mistake{"SaveFrameWithoutFile", {"save-frame", "cam"}, "FILE"},
        Mistake{"EmptyFile", {"save-frame", "cam", ""}, "FILE is empty"},
        Mistake{"TwoFiles", {"save-frame", "cam", "a.png", "b.png"}, "\"b.png\""},
        Mistake{
            "UnknownExtension",
            {"save-frame", "cam", "a.jpg"},
            "no ending of a format that can be written. Give it one, or --format: png (.png), tiff (.tiff or .tif), "
            "raw (.raw)"},
        Mistake{"NoExtension", {"save-frame", "cam", "shot"}, "\"shot\""},
        Mistake{"UnknownFormat", {"save-frame", "cam", "a.png", "--format", "jpg"}, "png, tiff or raw"},
        Mistake{"EmptyPixelFormat", {"save-frame", "cam", "a.png", "--pixel-format", ""}, "pixel format"},
        Mistake{"FramesOfASavedFrame", {"save-frame", "cam", "a.png", "--frames", "2"}, "takes no --frames"},
        Mistake{"ForceForStream", {"stream", "cam", "--frames", "2", "--force"}, "takes no --force"},
        Mistake{"FeaturesWithoutDevice", {"features"}, "DEVICE"},
        Mistake{"UnknownVisibility", {"features", "cam", "--visibility", "Everybody"}, "Beginner, Expert, Guru or"},
        Mistake{"UnknownModule", {"features", "cam", "--module", "host"}, "device, stream or transport"},
        Mistake{"ModuleForSet", {"set", "cam", "Width", "4", "--module", "stream"}, "takes no --module"},
        Mistake{"EmptyCategory", {"features", "cam", "--category="}, "the name of a category"},
        Mistake{"ForceForLoad", {"load", "cam", "a", "--force"}, "takes no --force"},
        Mistake{"FaultsForGet", {"get", "cam", "Width", "--faults"}, "takes no --faults"},
        Mistake{"GetWithoutName", {"get", "cam"}, "NAME of a feature"},
        Mistake{"GetWithEmptyName", {"get", "cam", ""}, "NAME is empty"},
        Mistake{"NegativeNumberForAName", {"get", "cam", "-5"}, "no option -5"},
        Mistake{"SetWithoutName", {"set", "cam"}, "NAME of a feature"},
        Mistake{"SetWithoutValue", {"set", "cam", "Width", "1", "Height"}, "VALUE for \"Height\""},
        Mistake{"OptionForAValue", {"set", "cam", "Width", "--json"}, "takes no --json"},
        Mistake{"ExecuteTwoCommands", {"execute", "cam", "A", "B"}, "\"B\""},
        Mistake{"ExecuteWithoutName", {"execute", "cam"}, "NAME of a feature"},
        Mistake{"SaveWithoutFile", {"save", "cam"}, "FILE"}, Mistake{"LoadWithoutFile", {"load", "cam"}, "FILE"},
        Mistake{"XmlWithTwoFiles", {"xml", "cam", "a", "b"}, "\"b\""},
        Mistake{"MissingValue", {"list", "--timeout"}, "--timeout wants"},
        Mistake{"TimeoutZero", {"list", "--timeout", "0"}, "--timeout wants"},
        Mistake{"TimeoutTooLong", {"list", "--timeout", "3600001"}, "--timeout wants"}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(CommandLine, Help_NamesEveryCommandAndOption) {
  const std::string help = GetHelpText();

  for (const char* word : {"krtool list",
                           "krtool ip DEVICE",
                           "--set ADDRESS",
                           "--persistent ADDRESS",
                           "--mask M",
                           "--gateway G",
                           "--dhcp on|off",
                           "--link-local on|off",
                           "--adapter NAME",
                           "--watch",
                           "--diagnose",
                           "krtool stream DEVICE",
                           "krtool save-frame DEVICE FILE",
                           "krtool features DEVICE|FILE.xml",
                           "krtool entries DEVICE|FILE.xml NAME",
                           "All of them where it is not given",
                           "are shown as \"?\"",
                           "does not outlast it",
                           "krtool ports DEVICE",
                           "krtool get DEVICE|FILE.xml NAME",
                           "krtool set DEVICE NAME VALUE",
                           "krtool execute DEVICE NAME",
                           "krtool xml DEVICE|FILE.zip [FILE]",
                           "krtool save DEVICE FILE",
                           "krtool load DEVICE FILE",
                           "--category C",
                           "--visibility V",
                           "--faults",
                           "--module MODULE",
                           "--force",
                           "--format FORMAT",
                           "--pixel-format NAME",
                           "--frames N",
                           "--json",
                           "--lab FILE",
                           "--simulate",
                           "--timeout MS",
                           "--help",
                           "--version",
                           "MAC"})
    EXPECT_THAT(help, HasSubstr(word));
}

} // namespace
} // namespace krtool
