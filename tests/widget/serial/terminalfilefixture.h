#pragma once
// What tests of the serial terminal's file transfers share: files to send, and waiting for the end of one.

#include "await.h"
#include "temporaryfolder.h"
#include "terminalfixture.h"

#include <string>

namespace krgui {

class TerminalFileTest : public TerminalTest {
protected:
  std::string MakeFile(const std::string& aBytes, const std::string& aName = "data.bin") {
    const std::string file = mFolder.GetFile(aName);
    TemporaryFolder::WriteFile(file, aBytes);
    return file;
  }
  void SendFile(const std::string& aPath) {
    Type(id::kFile, QString::fromStdString(aPath));
    Click(id::kSendFile);
  }
  [[nodiscard]] bool AwaitEnd() const {
    return WaitFor([&] { return Get(id::kSendFile).isEnabled() && Get(id::kSend).isEnabled(); });
  }
  /// Waits for what other threads do; the window takes no message meanwhile.
  template <typename Condition>
  [[nodiscard]] static bool AwaitOutsideTheWindow(Condition aCondition) {
    return krtest::Await(aCondition);
  }
  std::string GetUtf8() const { return QString::fromStdU16String(GetText()).toStdString(); }

  TemporaryFolder mFolder;
};

} // namespace krgui
