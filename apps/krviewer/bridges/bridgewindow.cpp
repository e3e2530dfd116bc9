#include "bridges/bridgewindow.h"

#include <utility>

namespace krviewer {

void BridgeWindow::TakeDevice(LentDevice& aDevice) {
  const std::uint64_t loan = GetLoan();
  const KrResult set = SetUp(aDevice);
  if (!IsLent(loan))
    return;
  if (!set.IsOK())
    TellFailure(BridgeNews::NotTakenUp, set);
  else if (!mKept.GetWanted().IsEmpty())
    StartWanted(BridgeNews::NotTakenUp);
}

void BridgeWindow::DropDevice() {
  // What a call of this that has not returned yet has taken out, is kept already.
  if (!std::exchange(mIsKept, true))
    mKept.Keep(GetNow());
  TakeOut();
  mIsKept = false;
}

void BridgeWindow::LookAgain() {
  FollowFile();
  if (HasDevice() && !IsWorking() && mKept.HasFailed())
    mKept.NoteChange(GetNow());
}

// Until they have started they are wanted, whatever becomes of the device meanwhile.
void BridgeWindow::StartWanted(BridgeNews aNews) {
  const KrPropertyList wanted = mKept.GetWanted();
  mKept.NoteStart({}, GetPorts());
  Start(wanted, aNews);
}

void BridgeWindow::NoteStart(BridgeNews aNews, const KrStringList& aErrors) {
  mKept.NoteStart(GetNow(), GetPorts());
  if (!aErrors.IsEmpty())
    TellLines(aNews, aErrors);
}

// Bridges that are being taken up when their setup has been read, as the device is back, are waited for.
void BridgeWindow::FollowFile() {
  if (mFile.IsWriting() || !IsWorking())
    mFile.Follow();
}

void BridgeWindow::LeaveFile() {
  FollowFile();
  if (!mFile.IsWriting())
    return;
  mFile.Leave();
  TellFailure(BridgeNews::NotSaved,
              {KrResult::Code::TimeLimitExceeded, "The disk of the file \"" + mFile.GetName() +
                                                      "\" did not answer, and nobody waited for it any longer."});
}

void BridgeWindow::LoadSetup(const KrString& aFileName) {
  mFile.Read(aFileName,
             [this](const KrResult& aResult, const KrConfigurationReader& aContent) { TakeSetup(aResult, aContent); });
}

void BridgeWindow::TakeSetup(const KrResult& aResult, const KrConfigurationReader& aContent) {
  KrPropertyList bridges;
  const KrResult result = aResult.IsOK() ? ReadSetup(aContent, bridges) : aResult;
  if (!result.IsOK())
    return TellFailure(BridgeNews::NotLoaded, result);
  mKept.Want(bridges);
  if (HasDevice())
    StartWanted(BridgeNews::NotAllLoaded);
}

void BridgeWindow::SaveSetup(const KrString& aFileName) {
  if (HasDevice())
    SaveNow(aFileName);
  else
    WriteSetupFile(aFileName, mKept.GetWanted());
}

void BridgeWindow::WriteFile(const KrString& aFileName, const KrPropertyList& aNow) {
  WriteSetupFile(aFileName, mKept.GetSetup(aNow));
}

void BridgeWindow::WriteSetupFile(const KrString& aFileName, const KrPropertyList& aBridges) {
  KrConfigurationWriter writer;
  if (const KrResult result = WriteSetup(aBridges, writer); !result.IsOK())
    return TellFailure(BridgeNews::NotSaved, result);
  mFile.Write(aFileName, writer, [this](const KrResult& aResult) {
    if (!aResult.IsOK())
      TellFailure(BridgeNews::NotSaved, aResult);
  });
}

void BridgeWindow::TellLines(BridgeNews aNews, const KrStringList& aLines) const {
  if (mTell)
    mTell(aNews, aLines);
}

void BridgeWindow::TellFailure(BridgeNews aNews, const KrResult& aResult) const {
  KrStringList lines;
  lines.Add(aResult.GetCodeString() + ": " + aResult.GetDescription());
  TellLines(aNews, lines);
}

} // namespace krviewer
