// The script that gives each run a display of its own, also where several run in network namespaces of their own.

#include <QCoreApplication>
#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

constexpr int kLimitMs = 60'000;

/// A run of the script that says which display it has, and keeps it until the test ends.
class ScriptRun {
public:
  explicit ScriptRun(bool aHasNetwork) {
    const QString scripts = QStringLiteral(KR_SCRIPT_FOLDER);
    QStringList command;
    if (aHasNetwork)
      command << scripts + QStringLiteral("/with-network.sh");
    command << scripts + QStringLiteral("/with-display.sh") << QStringLiteral("--without-window-manager")
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
  std::string before;
  {
    ScriptRun ended(true);
    before = ended.ReadDisplay();
    ASSERT_TRUE(ended.End());
  }
  // Others may have taken it meanwhile; then its socket file is theirs.
  const std::string socket = "/tmp/.X11-unix/X" + before.substr(1);

  ScriptRun later(false);
  const std::string after = later.ReadDisplay();

  EXPECT_TRUE(after == before || std::filesystem::exists(socket)) << before << ' ' << after;
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  testing::InitGoogleTest(&aArgumentCount, aArguments);
  const QCoreApplication application(aArgumentCount, aArguments);
  return RUN_ALL_TESTS();
}
