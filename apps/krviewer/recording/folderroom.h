#pragma once
// How much room a folder's disk has, asked for beside whoever wants to know: a network folder whose server is gone may
// not answer for minutes. What is said of it is left to the panel.

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace krviewer {

/// Thread: one. Ownership: the thread that asks owns what it writes to, so that nobody waits for it, not even the end.
class FolderRoom {
public:
  struct Answer {
    std::string folder;
    std::optional<std::uint64_t> freeBytes; ///< Nothing where there is no such folder.
  };

  /// Begins to ask; nothing happens while a folder does not answer.
  void Ask(const std::string& aFolder);
  /// The answer, once.
  std::optional<Answer> Take();

private:
  struct Question {
    std::mutex mutex; ///< Guards the answer.
    std::optional<Answer> answer;
  };

  std::shared_ptr<Question> mQuestion; ///< Null while nothing is asked.
};

} // namespace krviewer
