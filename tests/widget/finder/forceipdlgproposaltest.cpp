// The free address that the dialog that sets a device's IP address proposes: what is filled in, and what the user may
// do while it is being looked for.

#include "forceipdlgfixture.h"

#include "await.h"

namespace krgui {

namespace {

/// Answers that all asked addresses up to a last field are used.
auto UseUpTo(std::uint32_t aLastField) {
  return [aLastField](const std::vector<std::uint32_t>& aAddresses, const std::stop_token&,
                      std::vector<std::uint32_t>& aUsed) {
    for (const std::uint32_t address : aAddresses) {
      if ((address & 0xFFU) <= aLastField) {
        aUsed.push_back(address);
      }
    }
    return KrResult();
  };
}

/// Answers when it is cancelled.
KrResult WaitForCancel(const std::vector<std::uint32_t>&, const std::stop_token& aCancel, std::vector<std::uint32_t>&) {
  EXPECT_TRUE(krtest::Await([&] { return aCancel.stop_requested(); }));
  return KrResult::Code::Aborted;
}

TEST_F(ForceIPDlgTest, Propose_FillsInAFreeAddressWithoutComplaint) {
  MakeSystem();
  transport->findUsed = UseUpTo(11);

  const ModalResult result = Run([](QWidget& aDialog) {
    auto* propose = Get<QPushButton>(aDialog, 1140);
    QTest::mouseClick(propose, Qt::LeftButton);
    EXPECT_TRUE(WaitFor([&] { return propose->isEnabled(); }));

    EXPECT_EQ(propose->text(), QStringLiteral("Propose a free address"));
    const std::uint32_t address = Get<IPAddressControl>(aDialog, 1038)->GetAddress();
    EXPECT_EQ(address >> 8U, 0xC0A801U);
    EXPECT_GT(address & 0xFFU, 11U);
    EXPECT_EQ(GetError(aDialog, 1003), "");
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_EQ(transport->configured.size(), 4U);
}

TEST_F(ForceIPDlgTest, TypedWhileItLooks_KeepsWhatWasTyped) {
  MakeSystem();
  std::latch mayAnswer{1};
  transport->findUsed = [&](const auto&, const std::stop_token&, auto&) {
    mayAnswer.wait();
    return KrResult();
  };

  (void)Run([&](QWidget& aDialog) {
    auto* propose = Get<QPushButton>(aDialog, 1140);
    QTest::mouseClick(propose, Qt::LeftButton);
    EXPECT_FALSE(propose->isEnabled());
    EXPECT_EQ(propose->text(), QStringLiteral("Looking…"));
    EXPECT_EQ(GetFocusedField(aDialog), 3) << "the user can type at once";
    Type("77");
    mayAnswer.count_down();
    EXPECT_TRUE(WaitFor([&] { return propose->isEnabled(); }));

    EXPECT_EQ(GetAddress(aDialog, 1038), "192.168.1.77");
    Press(aDialog, Qt::Key_Escape);
  });
}

TEST_F(ForceIPDlgTest, NobodyCanBeAsked_SaysWhy) {
  MakeSystem({{"0.0.0.0", "0.0.0.0"}});
  std::string text;

  (void)Run([&](QWidget& aDialog) {
    AnswerBox(text, Qt::Key_Return);
    QTest::mouseClick(Get(aDialog, 1140), Qt::LeftButton);
    EXPECT_TRUE(WaitFor([&] { return !text.empty(); }));
    EXPECT_TRUE(Get(aDialog, 1140)->isEnabled());
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_THAT(text, testing::StartsWith("[Warning] Error: "));
  EXPECT_THAT(text, testing::HasSubstr("no address"));
}

TEST_F(ForceIPDlgTest, ClosedWhileItLooks_CancelsAndJoins) {
  MakeSystem();
  transport->findUsed = WaitForCancel;

  const ModalResult result = Run([](QWidget& aDialog) {
    QTest::mouseClick(Get(aDialog, 1140), Qt::LeftButton);
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(result, ModalResult::Cancel);
}

TEST_F(ForceIPDlgTest, OKWhileItLooks_SendsWhatWasTyped) {
  MakeSystem();
  transport->findUsed = WaitForCancel;

  const ModalResult result = Run([](QWidget& aDialog) {
    QTest::mouseClick(Get(aDialog, 1140), Qt::LeftButton);
    Type("33");
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured, testing::Contains(KrString("192.168.1.33")));
}

} // namespace

} // namespace krgui
