#include "tiffstream.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace krapps {

TiffStream::TiffStream(KrAtomicFile& aFile, bool aIsLarge) : mFile(aFile) {
  const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                 &TIFFOpenOptionsFree);
  if (!options)
    return;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &OnError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &OnWarning, this);
  mTiff.reset(TIFFClientOpenExt("frame", aIsLarge ? "w8" : "w", this, &OnRead, &OnWrite, &OnSeek, &OnClose, &OnSize,
                                nullptr, nullptr, options.get()));
}

KrResult TiffStream::Finish(const KrString& aFileName) {
  Note(mTiff && TIFFWriteDirectory(mTiff.get()) == 1);
  mTiff.reset();
  if (!mFileResult.IsOK() || mIsOK)
    return mFileResult;
  const KrString reason = mComplaint.empty() ? "there is not enough memory for it" : mComplaint;
  return {KrResult::Code::SystemError, "The file \"" + aFileName + "\" cannot be written: " + reason + "."};
}

// A file that is being made holds nothing that the library would need to read.
tmsize_t TiffStream::OnRead(thandle_t, void*, tmsize_t) {
  return 0;
}

tmsize_t TiffStream::OnWrite(thandle_t aStream, void* aBytes, tmsize_t aCount) {
  TiffStream& self = *static_cast<TiffStream*>(aStream);
  const auto count = static_cast<std::size_t>(aCount);
  if (self.mFileResult.IsOK())
    self.mFileResult = self.mFile.Write(aBytes, count);
  if (!self.mFileResult.IsOK())
    return -1;
  self.mPosition += count;
  self.mSize = std::max(self.mSize, self.mPosition);
  return aCount;
}

toff_t TiffStream::OnSeek(thandle_t aStream, toff_t aOffset, int aOrigin) {
  TiffStream& self = *static_cast<TiffStream*>(aStream);
  const std::uint64_t origin = aOrigin == SEEK_END ? self.mSize : aOrigin == SEEK_CUR ? self.mPosition : 0;
  if (self.mFileResult.IsOK())
    self.mFileResult = self.mFile.Seek(origin + aOffset);
  if (!self.mFileResult.IsOK())
    return static_cast<toff_t>(-1);
  self.mPosition = origin + aOffset;
  return self.mPosition;
}

int TiffStream::OnClose(thandle_t) {
  return 0;
}

toff_t TiffStream::OnSize(thandle_t aStream) {
  return static_cast<TiffStream*>(aStream)->mSize;
}

int TiffStream::OnWarning(TIFF*, void*, const char*, const char*, va_list) {
  return 1; // Dealt with: nothing is printed.
}

int TiffStream::OnError(TIFF*, void* aStream, const char*, const char* aFormat, va_list aArguments) {
  std::array<char, 512> text = {};
  std::vsnprintf(text.data(), text.size(), aFormat, aArguments);
  std::string& complaint = static_cast<TiffStream*>(aStream)->mComplaint;
  if (complaint.empty())
    complaint = text.data();
  return 1;
}

} // namespace krapps
