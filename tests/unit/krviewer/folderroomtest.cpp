#include "recording/folderroom.h"

#include "await.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using krviewer::FolderRoom;

namespace {

std::optional<FolderRoom::Answer> AwaitAnswer(FolderRoom& aRoom) {
  std::optional<FolderRoom::Answer> answer;
  EXPECT_TRUE(krtest::Await([&] {
    answer = aRoom.Take();
    return answer.has_value();
  }));
  return answer;
}

} // namespace

TEST(FolderRoom, FolderThatIsThere_HasItsDisksRoom) {
  const TemporaryFolder folder;
  FolderRoom room;

  room.Ask(folder.GetPath().string());

  const std::optional<FolderRoom::Answer> answer = AwaitAnswer(room);
  ASSERT_TRUE(answer.has_value());
  EXPECT_EQ(answer->folder, folder.GetPath().string());
  EXPECT_TRUE(answer->freeBytes.has_value());
  EXPECT_FALSE(room.Take().has_value()); // Once.
}

TEST(FolderRoom, NoFolder_HasNone) {
  const TemporaryFolder folder;
  for (const std::string& name : {std::string(), folder.GetFile("none")}) {
    FolderRoom room;

    room.Ask(name);

    const std::optional<FolderRoom::Answer> answer = AwaitAnswer(room);
    ASSERT_TRUE(answer.has_value()) << name;
    EXPECT_FALSE(answer->freeBytes.has_value()) << name;
  }
}

TEST(FolderRoom, AskedForAnotherMeanwhile_AnswersTheFirstAndCanBeAskedAgain) {
  const TemporaryFolder folder;
  FolderRoom room;
  room.Ask(folder.GetPath().string());

  room.Ask("");
  ASSERT_TRUE(AwaitAnswer(room).value_or(FolderRoom::Answer{}).freeBytes.has_value());
  room.Ask("");

  EXPECT_FALSE(AwaitAnswer(room).value_or(FolderRoom::Answer{"", 1}).freeBytes.has_value());
}
