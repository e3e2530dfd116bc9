// What the device does while an editor is open: other values, without asking it on the user interface's thread, and in
// the combo box with its list open.

#include "editorsfixture.h"

#include <atomic>
#include <thread>

namespace krgui {

namespace {

/// Every question goes to the device.
std::string MakeNodesWithoutCache() {
  const std::string port = "<pPort>Device</pPort>";
  std::string nodes = MakeEditorNodes();
  for (std::size_t at = nodes.find(port); at != std::string::npos; at = nodes.find(port, at)) {
    at += port.size();
    nodes.insert(at, "<Cachable>NoCache</Cachable>");
  }
  return nodes;
}

class EditorsDeviceTest : public EditorsTest {
protected:
  EditorsDeviceTest() : EditorsTest(MakeNodesWithoutCache()) {}

  /// The device has another value, which a refresh has read; nobody has told the row yet.
  void ChangeUnseen(const char* aName, std::uint64_t aAddress, std::initializer_list<std::uint8_t> aBytes) {
    camera.Poke(aAddress, aBytes);
    std::thread refresh([&] { Node(aName).Refresh(); });
    refresh.join();
  }
  /// How often this thread asks the device while a message is handled.
  int CountAccesses(const Message& aMessage) {
    std::atomic<int> accesses = 0;
    camera.port.SetFault([&accesses, here = std::this_thread::get_id()](const RegisterAccessRecord&) {
      accesses += std::this_thread::get_id() == here ? 1 : 0;
      return KrResult();
    });
    grid->HandleMessage(aMessage);
    camera.port.SetFault({});
    return accesses;
  }
  /// What the open editor shows.
  QString ShownText() {
    if (Combo() != nullptr) {
      return Combo()->currentText();
    }
    const QLineEdit* const editBox = NumberBox() != nullptr ? NumberBox() : TextBox();
    return editBox != nullptr ? editBox->text() : QStringLiteral("no editor");
  }
  void OpenList(const char* aName) {
    Enter(aName);
    QTest::keyClick(Combo(), Qt::Key_F4);
    ASSERT_TRUE(Combo()->IsListOpen());
  }
  void LeaveListByEscape() {
    QTest::keyClick(&Combo()->GetList(), Qt::Key_Escape);
    ActivateAgain();
  }
};

TEST_F(EditorsDeviceTest, NewValueOfTheSelectedRow_IsShownWithoutAskingTheDevice) {
  const struct {
    const char* name;
    std::uint64_t address;
    std::initializer_list<std::uint8_t> bytes;
    const char* shown;
  } rows[] = {{"OffsetX", 0x108, {5}, "5"},
              {"LineMask", 0x104, {0x1F}, "0x1F"},
              {"GevMACAddress", 0x110, {0x10, 0x27}, "10000"},
              {"GevCurrentIPAddress", 0x10C, {1, 0, 168, 192}, "192.168.0.1"},
              {"ExposureTime", 0x120, {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F}, "0.1"},
              {"DeviceUserID", 0x140, {'a', 'b'}, "ab"},
              {"PixelFormat", 0x118, {5}, "RGB8"},
              {"ReverseX", 0x11C, {1}, "True"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Select(row.name);
    ChangeUnseen(row.name, row.address, row.bytes);

    EXPECT_EQ(CountAccesses({kRowChangedMessage, Item(row.name), 0}), 0);

    EXPECT_EQ(ShownText(), row.shown);
  }
}

TEST_F(EditorsDeviceTest, ValueOfNoEntryThatIsOffered_ShowsNoChoice) {
  Select("PixelFormat");
  ChangeUnseen("PixelFormat", 0x118, {99});

  EXPECT_EQ(CountAccesses({kRowChangedMessage, Item("PixelFormat"), 0}), 0);

  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentIndex(), -1);
}

TEST_F(EditorsDeviceTest, ReadingThatFails_EmptiesAnEditorThatNobodyUses) {
  SetRegister(0x108, {42});
  Select("OffsetX");
  camera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == 0x108 ? KrResult(KrResult::Code::TimeLimitExceeded, "No answer.") : KrResult();
  });
  Node("OffsetX").OnParameterUpdate(nullptr);
  Pump();

  EXPECT_TRUE(Node("OffsetX").HasError());
  EXPECT_EQ(ShownText(), "");
}

// The combo box.

TEST_F(EditorsDeviceTest, ListLeftByEscape_ShowsWhatTheDeviceHasMeanwhileAndWritesNothing) {
  OpenList("PixelFormat");
  ChangeRegister(0x118, {5}, "PixelFormat");
  EXPECT_EQ(Combo()->currentText(), "Mono8") << "Not from under the user's hands.";

  LeaveListByEscape();
  EXPECT_EQ(ShownText(), "RGB8");
  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_EQ(camera.Peek(0x118, 1).front(), 5);
}

TEST_F(EditorsDeviceTest, ComboThatIsLeft_WritesWhatItShowsWhereTheDeviceHasAnotherValueUnseen) {
  Enter("PixelFormat");
  camera.Poke(0x118, {5});

  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
  EXPECT_EQ(camera.Peek(0x118, 1).front(), 1);
}

TEST_F(EditorsDeviceTest, ChoiceOfTheShownItem_IsWrittenWhenTheDeviceHasAnotherMeanwhile) {
  OpenList("PixelFormat");
  ChangeRegister(0x118, {5}, "PixelFormat");

  QTest::keyClick(&Combo()->GetList(), Qt::Key_Return);
  ActivateAgain();

  EXPECT_EQ(camera.Peek(0x118, 1).front(), 1);
}

TEST_F(EditorsDeviceTest, ChoiceByArrowsBeforeTheList_OutlivesItsEscape) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_Down);
  QTest::keyClick(Combo(), Qt::Key_F4);
  ChangeRegister(0x118, {5}, "PixelFormat");

  LeaveListByEscape();
  EXPECT_EQ(ShownText(), "Mono12");
  QTest::keyClick(Combo(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.Peek(0x118, 1).front(), 2);
}

TEST_F(EditorsDeviceTest, ComboWhoseListIsTakenAway_LeavesTheGridTheFocusWhenItIsShownAgain) {
  OpenList("PixelFormat");

  Fill();
  ActivateAgain();
  Select("PixelFormat");

  ASSERT_NE(Combo(), nullptr);
  EXPECT_FALSE(Combo()->hasFocus());
  EXPECT_TRUE(grid->hasFocus());
}

} // namespace

} // namespace krgui
