#pragma once
// Diagnostics: records on named channels, each with the function, source file and line that its writer states.
// Where records go (standard error by default) is decided here; what is worth a record is left to the callers.

#include "krbase/krstring.h"

#include <memory>
#include <vector>

/// How much a record matters, in rising order.
enum class KrLogLevel { Debug, Info, Warning, Error };

/// Where a record says that it comes from. The texts and the line are literals of the caller, not the compiler's.
struct KrLogSite {
  const char* function; ///< For example "Wnd::DoEvents".
  const char* file;     ///< The source file's base name without its ending, for example "wnd".
  int line = 0;         ///< 0 where no line is stated.
};

/// One record as a capture receives it.
struct KrLogRecord {
  KrLogLevel level;  ///< How much it matters.
  KrString channel;  ///< The logger's channel.
  KrString function; ///< As in KrLogSite.
  KrString file;     ///< As in KrLogSite.
  int line;          ///< As in KrLogSite.
  KrString text;     ///< What was logged.
};

/// A writer of records on one channel.
///
/// Thread: any; records of several threads do not mix.
/// Ownership: holds no resource; a logger is cheap to construct wherever it is needed.
///
///     KrLogger("KrGUILib").Log(KrLogLevel::Error, {"Wnd::DoEvents", "wnd", 223}, "The window is not currently open.");
class KR_EXPORT KrLogger {
public:
  /// A logger that writes on a channel, for example "KrGUILib".
  explicit KrLogger(const KrString& aChannel);

  /// Writes a record; nothing in texts is markup or a format. A line has 16 KiB of a text at most, a capture has all.
  void Log(KrLogLevel aLevel, const KrLogSite& aSite, const KrString& aText) const;

  /// The least level that is written to standard error; Warning until it is set. Captures receive every level.
  static void SetLevel(KrLogLevel aLevel);
  /// The least level that is written to standard error.
  static KrLogLevel GetLevel();

private:
  KrString mChannel;
};

/// Collects the records that are written while it lives, instead of their going to standard error.
///
/// Thread: any; records of every thread are collected. Captures nest: only the innermost receives.
class KR_EXPORT KrLogCapture {
public:
  KrLogCapture();
  ~KrLogCapture();
  KrLogCapture(const KrLogCapture&) = delete;
  KrLogCapture& operator=(const KrLogCapture&) = delete;

  /// The records so far, in the order in which they were written.
  std::vector<KrLogRecord> GetRecords() const;
  /// True when a record has this level and exactly this text.
  bool Contains(KrLogLevel aLevel, const KrString& aText) const;
  /// Forgets the records so far.
  void Clear();

  struct Store;

private:
  std::shared_ptr<Store> mStore;
};
