#include "acquisition/payloadwatch.h"

namespace krviewer {

namespace {

constexpr const char* kSize = "PayloadSize";
/// Not every description says that the size stands on these.
constexpr const char* kFollowed[] = {kSize, "Width", "Height", "PixelFormat", "ChunkModeActive"};

} // namespace

void PayloadWatch::Follow(KrGenParameterArray& aParameters) {
  Leave();
  if (!aParameters.GetInteger(kSize))
    return;
  mParameters = &aParameters;
  for (const char* const name : kFollowed)
    if (KrGenParameter* const parameter = aParameters.Get(name); parameter && parameter->RegisterEventSink(this).IsOK())
      mFollowed.push_back(parameter);
}

void PayloadWatch::Leave() {
  for (KrGenParameter* const parameter : mFollowed)
    (void)parameter->UnregisterEventSink(this); // It is registered since Follow.
  mFollowed.clear();
  mParameters = nullptr;
  mStartBytes.reset();
  mHasChange = false;
}

void PayloadWatch::NoteStart() {
  mHasChange = false; // Before it is read, so that no change falls in between.
  mStartBytes = mParameters ? ReadSize() : std::nullopt;
}

bool PayloadWatch::HasGrown() {
  if (!mStartBytes || !mHasChange.exchange(false))
    return false;
  const std::optional<std::int64_t> bytes = ReadSize();
  return bytes && *bytes > *mStartBytes;
}

void PayloadWatch::OnParameterUpdate(KrGenParameter*) {
  mHasChange = true;
}

// Nothing where the camera does not answer: its loss is told by others.
std::optional<std::int64_t> PayloadWatch::ReadSize() {
  std::int64_t bytes = 0;
  if (!mParameters->Invalidate(kSize).IsOK() || !mParameters->GetInteger(kSize)->GetValue(bytes).IsOK())
    return std::nullopt;
  return bytes;
}

} // namespace krviewer
