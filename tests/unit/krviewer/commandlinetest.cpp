#include "commandline.h"

#include <gtest/gtest.h>

using krviewer::CommandLine;
using krviewer::CommandLineStatus;

namespace {

CommandLineStatus Parse(const QStringList& aArguments, CommandLine& aCommandLine) {
  QString text;
  return krviewer::ParseCommandLine(aArguments, aCommandLine, text);
}

} // namespace

TEST(ParseCommandLine, NoArguments_LetTheUserPickACameraAndShowItForEver) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({}, commandLine), CommandLineStatus::Run);

  EXPECT_TRUE(commandLine.devices.isEmpty());
  EXPECT_FALSE(commandLine.simulate);
  EXPECT_EQ(commandLine.frames, 0u);
  EXPECT_EQ(commandLine.seconds, 0u);
  EXPECT_TRUE(commandLine.screenshotFolder.isEmpty());
  EXPECT_FALSE(commandLine.IsBatch());
}

TEST(ParseCommandLine, EveryOption_IsTaken) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"--device", "127.0.0.1", "--frames", "100", "--seconds", "7", "--screenshot", "out", "--simulate",
                   "--headless"},
                  commandLine),
            CommandLineStatus::Run);

  EXPECT_EQ(commandLine.devices, QStringList{"127.0.0.1"});
  EXPECT_EQ(commandLine.frames, 100u);
  EXPECT_EQ(commandLine.seconds, 7u);
  EXPECT_EQ(commandLine.screenshotFolder, "out");
  EXPECT_TRUE(commandLine.simulate);
  EXPECT_TRUE(commandLine.headless);
}

TEST(ParseCommandLine, ArgumentThatIsAFile_IsADescriptionAndOtherwiseADevice) {
  struct Row {
    const char* name;
    QString argument;
    bool isFile;
  };
  for (const Row& row : {Row{"a description", "camera.xml", true}, Row{"a zipped one", "folder/camera.zip", true},
                         Row{"capitals", "CAMERA.XML", true}, Row{"a file that is there", "/proc/self/status", true},
                         Row{"a folder", "/proc/self", false}, Row{"a name", "sim-mono", false},
                         Row{"an address", "192.168.1.20", false}, Row{"nothing before the point", ".xml", false}}) {
    SCOPED_TRACE(row.name);
    CommandLine commandLine;

    EXPECT_EQ(Parse({row.argument, "--headless", "--screenshot", "out"}, commandLine), CommandLineStatus::Run);

    EXPECT_EQ(commandLine.descriptionFile, row.isFile ? row.argument : QString());
    EXPECT_EQ(commandLine.devices, row.isFile ? QStringList() : QStringList{row.argument});
    EXPECT_EQ(commandLine.screenshotFolder, "out");
  }
}

TEST(ParseCommandLine, SeveralCameras_AreTakenInTheirOrder) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"third", "--device", "first", "--device", "second", "fourth"}, commandLine), CommandLineStatus::Run);

  EXPECT_EQ(commandLine.devices, (QStringList{"first", "second", "third", "fourth"}));
}

TEST(ParseCommandLine, RunWithAnEndOfItsOwn_IsABatch) {
  for (const QStringList& arguments :
       {QStringList{"--headless"}, QStringList{"--frames", "1"}, QStringList{"--seconds", "1"}}) {
    CommandLine commandLine;

    EXPECT_EQ(Parse(arguments, commandLine), CommandLineStatus::Run);

    EXPECT_TRUE(commandLine.IsBatch()) << arguments.join(' ').toStdString();
  }
}

TEST(ParseCommandLine, Lab_ImpliesTheSimulation) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"--lab", "lab.yaml"}, commandLine), CommandLineStatus::Run);

  EXPECT_EQ(commandLine.labFile, "lab.yaml");
  EXPECT_TRUE(commandLine.simulate);
}

TEST(ParseCommandLine, WhatCannotBeUnderstood_IsNamed) {
  struct Row {
    QStringList arguments;
    const char* named;
  };
  for (const Row& row :
       {Row{{"--frames", "0"}, "\"0\""}, Row{{"--frames", "-3"}, "\"-3\""}, Row{{"--frames", "many"}, "\"many\""},
        Row{{"--seconds", "0"}, "\"0\""}, Row{{"--seconds", "1.5"}, "\"1.5\""},
        Row{{"--seconds", "4294967296"}, "4294967296"}, Row{{"--colour"}, "colour"},
        Row{{"c.xml", "camera"}, "\"camera\""}, Row{{"c.xml", "d.xml"}, "\"d.xml\""},
        Row{{"--seconds", "3", "c.xml"}, "\"c.xml\""}, Row{{"--device", "camera", "c.xml"}, "\"c.xml\""},
        Row{{"--simulate", "c.xml"}, "\"c.xml\""}, Row{{"--frames", "3", "c.xml"}, "\"c.xml\""},
        Row{{"--device"}, "device"}, Row{{"--device", ""}, "--device"}, Row{{"--screenshot", ""}, "--screenshot"},
        Row{{"--lab", ""}, "--lab"}, Row{{"-style", ""}, "--style"}, Row{{"-platform", "xcb"}, "'platform'"}}) {
    CommandLine commandLine;
    QString text;

    const CommandLineStatus status = krviewer::ParseCommandLine(row.arguments, commandLine, text);

    EXPECT_EQ(status, CommandLineStatus::Error) << row.named;
    EXPECT_TRUE(text.contains(row.named)) << text.toStdString();
    EXPECT_TRUE(text.contains("--help"));
  }
}

TEST(ParseCommandLine, Style_IsTakenAsOtherProgramsOfTheToolkitTakeIt) {
  for (const QStringList& arguments : {QStringList{"-style", "Fusion"}, QStringList{"--style=Fusion"}}) {
    CommandLine commandLine;

    EXPECT_EQ(Parse(arguments, commandLine), CommandLineStatus::Run);

    EXPECT_EQ(commandLine.style, "Fusion");
  }
}

TEST(ParseCommandLine, Help_NamesEveryOption) {
  CommandLine commandLine;
  QString text;

  EXPECT_EQ(krviewer::ParseCommandLine({"--help"}, commandLine, text), CommandLineStatus::Help);
  EXPECT_EQ(Parse({"-h"}, commandLine), CommandLineStatus::Help);

  EXPECT_TRUE(text.contains("krviewer [options] [DEVICE...|FILE.xml]")) << text.toStdString();
  for (const char* option :
       {"--device", "--simulate", "--lab", "--frames", "--seconds", "--screenshot", "--headless", "--style"})
    EXPECT_TRUE(text.contains(option)) << option;
}

TEST(ParseCommandLine, Version_IsAsked) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"--version"}, commandLine), CommandLineStatus::Version);
}
