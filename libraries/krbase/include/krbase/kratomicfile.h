#pragma once
// A file that is there as a whole or not at all: configurations and pictures are saved through it, so that neither a
// full disk nor a power cut leaves half of one. What the bytes mean is left to the writer.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

/// Writes a file under a temporary name in the same folder and gives it its name at the end.
///
/// Thread: one at a time. Objects of several threads or processes may write one name at once: the last to commit wins,
/// and whoever opens the name reads one of the whole files. A reader that has the old file open keeps reading that.
/// Ownership: owns the temporary file and removes it where Commit was not called or failed. A process that is killed
/// meanwhile leaves it behind, as ".kr-" with sixteen hexadecimal digits and ".tmp".
///
///     KrAtomicFile file;
///     KrResult result = file.Open("settings.xml", KrAtomicFile::Existing::Replaced);
///     if (result.IsOK())
///       result = file.Write(text.data(), text.size());
///     if (result.IsOK())
///       result = file.Commit();
class KR_EXPORT KrAtomicFile {
public:
  /// What becomes of a file that has the name already.
  enum class Existing { Replaced, Kept };
  /// Whether the bytes are on the disk when Commit returns, or wherever the system keeps them until it writes them: a
  /// crash of the program harms neither, a power cut may harm the second, which is faster by far.
  enum class Flushing { ToDisk, LeftToSystem };
  /// Hears of bytes that have got on: those that the system has taken, and once more those that are flushed.
  using Progress = std::function<void(std::uint64_t aBytes)>;

  KrAtomicFile();
  /// Gives up what was not committed.
  ~KrAtomicFile();
  KrAtomicFile(const KrAtomicFile&) = delete;
  KrAtomicFile& operator=(const KrAtomicFile&) = delete;

  /// Has Write and Commit call this on their thread every few megabytes, so that a file that takes long is told from a
  /// disk that does not answer. Holds for all files from then on; with null nobody hears any more.
  void SetProgress(Progress aProgress) { mProgress = std::move(aProgress); }
  /// Makes the temporary file. One that is to replace another can be read by its owner alone until Commit gives it
  /// the other's rights, and its owner and group where the process may; another has the rights that the process gives
  /// new files. Access control lists and extended attributes are not taken over. Symbolic links are followed to the
  /// file that they lead to. What was begun before is given up. InvalidInput for an empty name and for a name of what
  /// is no file; with Existing::Kept WrongState for a name that is taken; NotFound for a folder that does not exist,
  /// AccessDenied where the system forbids it, otherwise SystemError. Every description names the file and holds the
  /// system's text.
  KrResult Open(const KrString& aFileName, Existing aExisting);
  /// Writes at the position, which moves on. WrongState when nothing is open; SystemError when the bytes do not get
  /// into the file, for example because the disk is full.
  KrResult Write(const void* aBytes, std::size_t aCount);
  /// Moves the position, in bytes from the file's start; a gap that is never written reads as zeros.
  KrResult Seek(std::uint64_t aPosition);
  /// Flushes the bytes to the disk, if asked to, then gives the file its name in one step, and closes it. After any
  /// error the file that had the name is as it was. With Existing::Kept a name that was taken meanwhile gives
  /// WrongState.
  KrResult Commit(Flushing aFlushing = Flushing::ToDisk);
  /// Removes the temporary file; nothing happens when there is none.
  void Discard();

private:
  struct Body;
  std::unique_ptr<Body> mBody;
  Progress mProgress;
};
