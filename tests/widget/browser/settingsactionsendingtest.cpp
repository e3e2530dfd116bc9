// Saving and restoring features that end before their end: by the user, or with the window or the device.

#include "settingsactionsfixture.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> gSmallestRefused{SIZE_MAX};

// Refuses, while it lives, memory for every object that takes more than a megabyte. A limit of the process would not
// do: a thread's heap may have as much to spare.
class LargeObjectsRefused {
public:
  LargeObjectsRefused() { gSmallestRefused = (std::size_t{1} << 20) + 1; }
  ~LargeObjectsRefused() { gSmallestRefused = SIZE_MAX; }
  LargeObjectsRefused(const LargeObjectsRefused&) = delete;
  LargeObjectsRefused& operator=(const LargeObjectsRefused&) = delete;
};

} // namespace

void* operator new(std::size_t aSize) {
  void* const memory = operator new(aSize, std::nothrow);
  if (memory == nullptr)
    throw std::bad_alloc();
  return memory;
}

// Sorting asks in this way.
void* operator new(std::size_t aSize, const std::nothrow_t&) noexcept {
  return aSize < gSmallestRefused ? std::malloc(std::max<std::size_t>(aSize, 1)) : nullptr;
}

void operator delete(void* aMemory) noexcept {
  std::free(aMemory);
}

void operator delete(void* aMemory, std::size_t) noexcept {
  std::free(aMemory);
}

namespace krgui {
namespace {

using testing::HasSubstr;

TEST_F(SettingsActions, Save_CancelledWhileReading_WritesNothing) {
  HeldDevice device(camera);
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"progress", [&](QWidget& aDialog) {
                                                                                device.Await();
                                                                                Click("Cancel")(aDialog);
                                                                                EXPECT_TRUE(aDialog.isVisible())
                                                                                    << "the work is still under way";
                                                                                device.LetGo();
                                                                              }}});

  EXPECT_TRUE(Save());

  EXPECT_TRUE(folder.GetNames().empty());
}

TEST_F(SettingsActions, Save_WithoutEnoughMemory_SaysSoAndWritesNothing) {
  const std::string large = std::to_string(2 << 20);
  DescribedCamera device(
      "<Register Name=\"Large\"><Streamable>Yes</Streamable><Address>" + large + "</Address><Length>" + large +
      "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>" + MakeInteger("Last", 0));
  const KrLogCapture log;
  std::string text;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"message", [&](QWidget& aDialog) {
                                                                                text = GetText(aDialog, "text");
                                                                                Click("OK")(aDialog);
                                                                              }}});

  {
    const LargeObjectsRefused refused;
    EXPECT_TRUE(SaveSettings(owner.get(), *device.array, {}));
  }

  EXPECT_THAT(text, HasSubstr("could not be brought to its end, perhaps for want of memory"));
  EXPECT_TRUE(folder.GetNames().empty());
}

TEST_F(SettingsActions, Restore_CancelledAtAStepBeforeOK_WritesNothing) {
  const std::string file = WriteFile("Width\t5\n");
  const std::vector<Answers::Answer> steps = {{"settingsfile", ChooseFile(file)}, {"settingscomparison", {}}};

  for (std::size_t last = 0; last < steps.size(); ++last) {
    std::vector<Answers::Answer> answers(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    answers.back().step = PressEscape();
    Answers user(answers);

    EXPECT_TRUE(Restore()) << last;

    EXPECT_EQ(GetByte(0), 0) << last;
    EXPECT_FALSE(hasWritten) << last;
  }
}

TEST_F(SettingsActions, Restore_CancelledWhileComparing_ShowsNothingMore) {
  const std::string file = WriteFile("Width\t5\n");
  HeldDevice device(camera);
  QPointer<QWidget> first;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"progress",
                    [&](QWidget& aDialog) {
                      device.Await();
                      QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
                      EXPECT_NE(aDialog.objectName(), QString());
                      device.LetGo();
                    },
                    "Comparing"}});

  EXPECT_TRUE(Restore());

  EXPECT_FALSE(hasWritten);
}

TEST_F(SettingsActions, Restore_CancelledWhileWriting_LeavesWhatWasSetAndSaysHowMuchIsLeft) {
  const std::string file = WriteFile("Width\t5\nHeight\t6\n");
  HeldDevice device(camera, [](const RegisterAccessRecord& aRecord) { return aRecord.isWrite; });
  std::vector<std::string> rows;
  Answers answers({{"settingsfile", ChooseFile(file)},
                   {"settingscomparison", Click("Restore")},
                   {"progress",
                    [&](QWidget& aDialog) {
                      device.Await();
                      Click("Cancel")(aDialog);
                      device.LetGo();
                    }},
                   {"settingsproblems", [&](QWidget& aDialog) {
                      rows = GetRows(aDialog);
                      PressEscape()(aDialog);
                    }}});

  EXPECT_TRUE(Restore());

  EXPECT_EQ(GetByte(0), 5);
  EXPECT_EQ(GetByte(4), 0);
  EXPECT_THAT(rows, testing::Contains(HasSubstr("1 further settings were not tried")));
  EXPECT_TRUE(hasWritten);
}

class SettingsActionsEnding : public SettingsActions, public testing::WithParamInterface<const char*> {
protected:
  void End() {
    if (std::string(GetParam()) == "OwnerDeleted")
      owner.reset();
    else
      mEnd.request_stop();
  }
  Step EndAtOnce() {
    return [this](QWidget&) { End(); };
  }
  /// Begins anew for each of the dialogs, at which everything ends; what comes before it is answered as its steps say.
  void EndAtEach(const std::vector<Answers::Answer>& aSteps, const std::function<void(std::size_t aLast)>& aAct) {
    for (std::size_t last = 0; last < aSteps.size(); ++last) {
      SCOPED_TRACE(aSteps[last].dialog);
      owner = std::make_unique<QWidget>();
      owner->show();
      mEnd = {};
      std::vector<Answers::Answer> answers(aSteps.begin(), aSteps.begin() + static_cast<std::ptrdiff_t>(last) + 1);
      answers.back().step = EndAtOnce();
      Answers user(answers);

      aAct(last);

      EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
  }

  std::stop_source mEnd;
};

TEST_P(SettingsActionsEnding, SaveAtEachDialog_EndsWithoutAFile) {
  FailAtHeight(camera);
  const std::string file = folder.GetFile("old.txt");
  TemporaryFolder::WriteFile(file, "mine");
  const std::vector<Answers::Answer> steps = {
      {"settingsfile", ChooseFile(file)}, {"message", Click("Yes")}, {"settingsproblems", {}}};

  EndAtEach(steps, [&](std::size_t) {
    EXPECT_FALSE(Save(mEnd.get_token()));

    EXPECT_EQ(TemporaryFolder::ReadFile(file), "mine");
  });
}

TEST_P(SettingsActionsEnding, RestoreAtEachDialog_EndsWithoutWritingBeforeOK) {
  const std::string file = WriteFile("Width\tabc\n");
  const std::vector<Answers::Answer> steps = {
      {"settingsfile", ChooseFile(file)}, {"settingscomparison", Click("Restore")}, {"settingsproblems", {}}};

  EndAtEach(steps, [&](std::size_t aLast) {
    EXPECT_FALSE(Restore(mEnd.get_token()));

    EXPECT_EQ(hasWritten, aLast == 2);
  });
}

TEST_P(SettingsActionsEnding, WhileTheDeviceIsAsked_IsWaitedForAndEndsEverything) {
  HeldDevice device(camera);
  std::jthread release;
  Answers answers({{"settingsfile", ChooseFile(folder.GetFile("none.txt"))}, {"progress", [&](QWidget&) {
                                                                                device.Await();
                                                                                // The access comes to its end while the
                                                                                // window waits for it.
                                                                                release = std::jthread(
                                                                                    [&] { device.LetGo(); });
                                                                                End();
                                                                              }}});

  EXPECT_FALSE(Save(mEnd.get_token()));

  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(folder.GetNames().empty());
}

TEST_P(SettingsActionsEnding, BeforeItBegins_ShowsNothing) {
  mEnd.request_stop();

  EXPECT_FALSE(Save(mEnd.get_token()));
  EXPECT_FALSE(Restore(mEnd.get_token()));
}

INSTANTIATE_TEST_SUITE_P(Ways, SettingsActionsEnding, testing::Values("OwnerDeleted", "EndRequested"),
                         [](const auto& aInfo) { return std::string(aInfo.param); });

} // namespace
} // namespace krgui
