#pragma once
// The TIFF library writing into an atomic file, with its complaints kept instead of printed.

#include "krbase/kratomicfile.h"

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>

namespace krapps {

/// One TIFF file that is written.
///
/// Thread: one at a time. Ownership: borrows the file, which must be open and outlive it.
class TiffStream {
public:
  /// aIsLarge chooses the form of TIFF that may be longer than 4 GiB.
  TiffStream(KrAtomicFile& aFile, bool aIsLarge);
  TiffStream(const TiffStream&) = delete;
  TiffStream& operator=(const TiffStream&) = delete;

  /// The library's handle; null when it could not be made.
  TIFF* Get() const { return mTiff.get(); }
  /// Keeps the first failure of what the library returned.
  void Note(bool aIsOK) { mIsOK = mIsOK && aIsOK; }
  /// Writes what is left and gives up the handle. What all the writing came to: the file's error, or what the library
  /// complained of.
  KrResult Finish(const KrString& aFileName);

private:
  struct Closer {
    void operator()(TIFF* aTiff) const { TIFFClose(aTiff); }
  };

  static tmsize_t OnRead(thandle_t, void*, tmsize_t);
  static tmsize_t OnWrite(thandle_t aStream, void* aBytes, tmsize_t aCount);
  static toff_t OnSeek(thandle_t aStream, toff_t aOffset, int aOrigin);
  static int OnClose(thandle_t);
  static toff_t OnSize(thandle_t aStream);
  static int OnWarning(TIFF*, void*, const char*, const char*, va_list);
  static int OnError(TIFF*, void* aStream, const char*, const char* aFormat, va_list aArguments);

  KrAtomicFile& mFile;
  std::uint64_t mPosition = 0;
  std::uint64_t mSize = 0;
  bool mIsOK = true;
  KrResult mFileResult;
  std::string mComplaint;
  std::unique_ptr<TIFF, Closer> mTiff; // Last: closing it may still write.
};

} // namespace krapps
