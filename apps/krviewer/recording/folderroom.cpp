#include "recording/folderroom.h"

#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace krviewer {

namespace {

std::optional<std::uint64_t> LookForRoom(const std::string& aFolder) {
  std::error_code error;
  if (aFolder.empty() || !std::filesystem::is_directory(aFolder, error))
    return std::nullopt;
  const std::filesystem::space_info room = std::filesystem::space(aFolder, error);
  return error ? std::nullopt : std::optional<std::uint64_t>(room.available);
}

} // namespace

void FolderRoom::Ask(const std::string& aFolder) {
  if (mQuestion)
    return;
  mQuestion = std::make_shared<Question>();
  std::thread([question = mQuestion, folder = aFolder] {
    FolderRoom::Answer answer{folder, LookForRoom(folder)};
    const std::lock_guard lock(question->mutex);
    question->answer = std::move(answer);
  }).detach(); // It may be waiting for ever.
}

std::optional<FolderRoom::Answer> FolderRoom::Take() {
  if (!mQuestion)
    return std::nullopt;
  std::optional<Answer> answer;
  {
    const std::lock_guard lock(mQuestion->mutex);
    answer = std::exchange(mQuestion->answer, std::nullopt);
  }
  if (answer)
    mQuestion = nullptr;
  return answer;
}

} // namespace krviewer
