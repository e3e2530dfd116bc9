// The script that gives each run a display of its own, also where several run in network namespaces of their own.

#include "await.h"

#include <QCoreApplication>
#include <QProcess>

#include <gtest/gtest.h>

#include <string>

namespace {

const int kLimitMs = krtest::GetGenerousMs();
const QString kScripts = QStringLiteral(KR_SCRIPT_FOLDER);

/// A run of the script that says which display it has, and keeps it until the test ends.
class ScriptRun {
public:
  explicit ScriptRun(bool aHasNetwork) {
    QStringList command;
    if (aHasNetwork)
      command << kScripts + QStringLiteral("/with-network.sh");
    command << kScripts + QStringLiteral("/with-display.sh") << QStringLiteral("--without-window-manager")
            << QStringLiteral("sh") << QStringLiteral("-c") << QStringLiteral("echo \"$DISPLAY\"; read line");
    mProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    mProcess.start(command.takeFirst(), command);
  }
  ~ScriptRun() { (void)End(); }

  std::string ReadDisplay() {
    while (!mProcess.canReadLine() && mProcess.waitForReadyRead(kLimitMs)) {
    }
    return mProcess.readLine().trimmed().toStdString();
  }
  bool End() {
    mProcess.closeWriteChannel();
    return mProcess.waitForFinished(kLimitMs);
  }

private:
  QProcess mProcess;
};

TEST(DisplayNumber, RunsAtOnceInNetworksOfTheirOwn_HaveDisplaysOfTheirOwn) {
  ScriptRun one(true);
  ScriptRun other(true);
  ScriptRun plain(false);

  const std::string first = one.ReadDisplay();
  const std::string second = other.ReadDisplay();
  const std::string third = plain.ReadDisplay();

  EXPECT_EQ(first.substr(0, 1), ":");
  EXPECT_NE(first, second);
  EXPECT_NE(first, third);
  EXPECT_NE(second, third);
}

TEST(DisplayNumber, OfARunThatHasEnded_IsTakenAgain) {
  // Among nobody else's displays: the folder of their sockets is empty in there.
  const QString alone = QStringLiteral("mount -t tmpfs -o mode=1777 none /tmp/.X11-unix && "
                                       "\"$0\" sh -c 'echo $DISPLAY' && \"$0\" sh -c 'echo $DISPLAY'");
  QProcess runs;
  runs.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  runs.start(kScripts + QStringLiteral("/with-network.sh"),
             {QStringLiteral("unshare"), QStringLiteral("--mount"), QStringLiteral("sh"), QStringLiteral("-c"), alone,
              kScripts + QStringLiteral("/with-display.sh")});

  ASSERT_TRUE(runs.waitForFinished(kLimitMs));

  EXPECT_EQ(runs.exitCode(), 0);
  EXPECT_EQ(runs.readAllStandardOutput().toStdString(), ":1000\n:1000\n");
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments);
  const QCoreApplication application(aArgumentCount, aArguments);
  return RUN_ALL_TESTS();
}
