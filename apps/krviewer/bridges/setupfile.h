#pragma once
// The file of a setup, read or written on a thread of its own: its disk may keep silent for any time. What a setup is,
// and what becomes of it, is left to whoever asks.

#include "backgroundcall.h"
#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"

#include <functional>

namespace krviewer {

/// One file at a time. What was begun to be written is written in any case: destruction waits for it, unless it was
/// left; what is read is waited for by nobody.
///
/// Thread: one. Ownership: owns its thread, but for one that was left.
class SetupFile {
public:
  using ThenRead = std::function<void(const KrResult& aResult, const KrConfigurationReader& aContent)>;
  using ThenWritten = std::function<void(const KrResult& aResult)>;

  SetupFile() = default;
  ~SetupFile();
  SetupFile(const SetupFile&) = delete;
  SetupFile& operator=(const SetupFile&) = delete;

  /// Begins to read a file; none may be in use. aThen follows from Follow.
  void Read(const KrString& aName, ThenRead aThen);
  /// Begins to write one, with the same rules.
  void Write(const KrString& aName, const KrConfigurationWriter& aContent, ThenWritten aThen);

  bool IsInUse() const { return mCall.IsRunning(); }
  bool IsWriting() const { return IsInUse() && mIsWritten; }
  /// Of the file that is in use, or was last.
  const KrString& GetName() const { return mName; }
  /// Does what follows a file that is read or written; to be called often.
  void Follow() { mCall.Follow(); }
  /// Waits for what is being written, and does what follows it.
  void AwaitWritten();
  /// Lets go of a file whose disk may never answer: nothing follows.
  void Leave() { mCall.Leave(); }

private:
  void Start(const KrString& aName, bool aIsWritten, BackgroundCall::Work aWork, std::function<void()> aThen);

  KrString mName;
  bool mIsWritten = false;
  BackgroundCall mCall;
};

} // namespace krviewer
