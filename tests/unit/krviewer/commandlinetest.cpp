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

  EXPECT_TRUE(commandLine.device.isEmpty());
  EXPECT_FALSE(commandLine.simulate);
  EXPECT_EQ(commandLine.frames, 0u);
  EXPECT_TRUE(commandLine.screenshotFolder.isEmpty());
}

TEST(ParseCommandLine, EveryOption_IsTaken) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"--device", "127.0.0.1", "--frames", "100", "--screenshot", "out", "--simulate", "--headless"},
                  commandLine),
            CommandLineStatus::Run);

  EXPECT_EQ(commandLine.device, "127.0.0.1");
  EXPECT_EQ(commandLine.frames, 100u);
  EXPECT_EQ(commandLine.screenshotFolder, "out");
  EXPECT_TRUE(commandLine.simulate);
  EXPECT_TRUE(commandLine.headless);
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
        Row{{"--colour"}, "colour"}, Row{{"camera"}, "\"camera\""}, Row{{"--device"}, "device"},
        Row{{"--device", ""}, "--device"}, Row{{"--screenshot", ""}, "--screenshot"}, Row{{"--lab", ""}, "--lab"}}) {
    CommandLine commandLine;
    QString text;

    const CommandLineStatus status = krviewer::ParseCommandLine(row.arguments, commandLine, text);

    EXPECT_EQ(status, CommandLineStatus::Error) << row.named;
    EXPECT_TRUE(text.contains(row.named)) << text.toStdString();
    EXPECT_TRUE(text.contains("--help"));
  }
}

TEST(ParseCommandLine, Help_NamesEveryOption) {
  CommandLine commandLine;
  QString text;

  EXPECT_EQ(krviewer::ParseCommandLine({"--help"}, commandLine, text), CommandLineStatus::Help);

  EXPECT_TRUE(text.contains("krviewer [options]")) << text.toStdString();
  for (const char* option : {"--device", "--simulate", "--lab", "--frames", "--screenshot", "--headless"})
    EXPECT_TRUE(text.contains(option)) << option;
}

TEST(ParseCommandLine, Version_IsAsked) {
  CommandLine commandLine;

  EXPECT_EQ(Parse({"--version"}, commandLine), CommandLineStatus::Version);
}
