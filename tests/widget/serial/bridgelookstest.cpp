// The serial bridge manager's looks: title and limits, what is seen at every size, light and dark, and the dialogs.

#include "bridgefixture.h"
#include "contrast.h"
#include "darkpalette.h"
#include "logic/serial/baudrates.h"

#include <QGroupBox>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Looks : public BridgeTest {
protected:
  ~Looks() override {
    mWindow.reset();
    QApplication::setFont(mFont);
    QApplication::setPalette(mPalette);
  }

  void SetSize(int aWidth, int aHeight) {
    mWindow->SetPosition(0, 0, aWidth, aHeight);
    ASSERT_TRUE(WaitFor([&] { return mWindow->GetWidget()->size() == QSize(aWidth, aHeight); }));
  }
  /// Opens a window anew in a font, on a port that is linked.
  void OpenAt(int aPoints) {
    mWindow = std::make_unique<KrSerialBridgeManagerWnd>();
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), aPoints));
    SetRates({"9600", "115200", "921600"});
    OpenOnSerial1();
    Link(COM12);
  }
  std::vector<QWidget*> GetControls() const {
    std::vector<QWidget*> controls;
    for (QWidget* widget : mWindow->GetWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (widget->property("controlID").toInt() > 0)
        controls.push_back(widget);
    }
    return controls;
  }
  static bool HasRoom(const QWidget& aWidget) {
    if (const auto* box = qobject_cast<const QComboBox*>(&aWidget)) {
      QStyleOptionComboBox option;
      option.initFrom(box);
      const QRect room = box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box);
      return room.width() >= box->fontMetrics().horizontalAdvance(box->currentText()) &&
             room.height() >= box->fontMetrics().height();
    }
    if (qobject_cast<const QRadioButton*>(&aWidget))
      return aWidget.width() >= aWidget.sizeHint().width() && aWidget.height() >= aWidget.sizeHint().height();
    const QString title = aWidget.property("title").toString();
    const QString text = title.isEmpty() ? aWidget.property("text").toString() : title;
    const QSize needed = aWidget.fontMetrics().size(Qt::TextShowMnemonic, text);
    return aWidget.width() >= needed.width() && aWidget.height() >= needed.height();
  }

  const QFont mFont = QApplication::font();
  const QPalette mPalette = QApplication::palette();
};

constexpr QSize kSizes[] = {{500, 300}, {500, 600}, {640, 480}, {800, 300}, {800, 600}};

} // namespace

TEST_F(Looks, Title_IsSetFromTheBeginning) {
  EXPECT_STREQ(mWindow->GetTitle().CStr(), "Serial Communication Bridge");

  Open();

  EXPECT_EQ(mWindow->GetWidget()->windowTitle(), "Serial Communication Bridge");
}

TEST_F(Looks, Size_IsLimited) {
  Open();

  mWindow->SetPosition(0, 0, 10, 10);
  EXPECT_EQ(mWindow->GetWidget()->size(), QSize(500, 300));
  mWindow->SetPosition(0, 0, 2000, 2000);
  EXPECT_EQ(mWindow->GetWidget()->size(), QSize(800, 600));
}

TEST_F(Looks, Controls_AreCalledAsTheyShould) {
  Open();
  std::vector<std::string> titles;
  for (const QGroupBox* box : mWindow->GetWidget()->findChildren<QGroupBox*>())
    titles.push_back(box->title().toStdString());
  EXPECT_THAT(titles, testing::UnorderedElementsAre("Port Selection", "Bridge Setup", "Available/Selected Baud Rates",
                                                    "Statistics"));
  for (std::size_t index = 0; index < kBaudRates.size(); ++index)
    EXPECT_EQ(GetText(id::kRates[index]), FormatBaudRate(kBaudRates[index]).ToUtf8());
  const std::pair<int, const char*> texts[] = {{id::kNone, "None"},
                                               {id::kCOMPortLink, "Serial COM Port Link"},
                                               {id::kCameraLink, "Camera Link DLL"},
                                               {id::kConfigure, "Configure..."},
                                               {id::kReset, "Reset"}};
  for (const auto& [control, text] : texts)
    EXPECT_EQ(Get<QAbstractButton>(control).text().remove(QLatin1Char('&')), text);
  EXPECT_EQ(Get<QLabel>(id::kCOMPortLabel).text().remove(QLatin1Char('&')), "Port");
}

TEST_F(Looks, EveryText_HasRoomAtEverySizeAndFont) {
  for (const int points : {9, 12}) {
    OpenAt(points);
    for (const QSize& size : kSizes) {
      SetSize(size.width(), size.height());
      for (const QWidget* control : GetControls()) {
        SCOPED_TRACE(testing::Message() << points << " points, " << size.width() << " x " << size.height() << ", "
                                        << control->objectName().toStdString());
        EXPECT_TRUE(mWindow->GetWidget()->rect().contains(control->geometry()));
        EXPECT_TRUE(HasRoom(*control));
      }
    }
  }
}

TEST_F(Looks, Controls_ShareNoPixels) {
  for (const int points : {9, 12}) {
    OpenAt(points);
    for (const QSize& size : kSizes) {
      SetSize(size.width(), size.height());
      const std::vector<QWidget*> controls = GetControls();
      for (const QWidget* one : controls) {
        for (const QWidget* other : controls) {
          const bool isBox = qobject_cast<const QGroupBox*>(one) || qobject_cast<const QGroupBox*>(other);
          EXPECT_TRUE(one == other || isBox || !one->geometry().intersects(other->geometry()))
              << points << " " << size.width() << " x " << size.height() << " " << one->objectName().toStdString()
              << " " << other->objectName().toStdString();
        }
      }
    }
  }
}

TEST_F(Looks, LongName_GivesWayToAnEllipsisAndIsKept) {
  OpenAt(12);
  SetSize(500, 300);
  Click(id::kCameraLink);
  const auto& name = Get<QLabel>(id::kCameraLinkName);

  EXPECT_EQ(name.text(), "Model X 00:11:22:33:44:55-Serial1");
  const QRect room = name.geometry();
  const QImage image = mWindow->GetWidget()->grab(QRect(room.right() + 1, room.top(), 2, room.height())).toImage();
  const QColor ground = image.pixelColor(0, 0);
  for (int y = 0; y < image.height(); ++y)
    EXPECT_EQ(image.pixelColor(0, y), ground) << "nothing is drawn beside it";
}

TEST_F(Looks, DisabledRates_CanBeReadAndToldFromOthersInLightAndDark) {
  for (const QPalette& palette : {QPalette(QColor(239, 239, 239), QColor(239, 239, 239)), MakeDarkPalette()}) {
    QApplication::setPalette(palette);
    OpenAt(9);
    ASSERT_EQ(GetRates().substr(1, 1), "-");

    const double disabled = GetContrast(Get(id::kRates[1]).grab().toImage());
    const double enabled = GetContrast(Get(id::kRates[9]).grab().toImage());

    EXPECT_GE(disabled, 3.0);
    EXPECT_GE(enabled, 4.5);
    EXPECT_GE(enabled, disabled * 1.5);
  }
}

TEST_F(Looks, RateDialog_SaysWhyAndOffersEightRates) {
  OpenOnSerial1();
  std::string title;
  std::string text;
  std::vector<std::string> entries;
  std::string selected;
  DuringNextModalLoop([&](QWidget& aDialog) {
    auto& list = *aDialog.findChild<QComboBox*>(QStringLiteral("control%1").arg(id::kDeviceBaudRate));
    title = aDialog.windowTitle().toStdString();
    text = aDialog.findChild<QLabel*>(QStringLiteral("control%1").arg(id::kDeviceBaudRateText))->text().toStdString();
    entries = GetEntries(list);
    selected = list.currentText().toStdString();
    list.setCurrentText(QStringLiteral("460800 baud"));
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  Click(id::kCameraLink);

  EXPECT_EQ(title, "Device Serial Port Baud Rate");
  EXPECT_EQ(text, "The baud rate of the device serial port cannot be accessed through its GenICam interface.\n\n"
                  "Select the baud rate of the device serial port:");
  EXPECT_THAT(entries, ElementsAre("9600 baud", "19200 baud", "38400 baud", "57600 baud", "115200 baud", "230400 baud",
                                   "460800 baud", "921600 baud"));
  EXPECT_EQ(selected, "9600 baud");
  EXPECT_EQ(GetRates(), "--------B-");
}

TEST_F(Looks, Dialogs_ClipNoText) {
  for (const int points : {9, 12}) {
    OpenAt(points);
    const auto check = [points](QWidget& aDialog) {
      for (const QWidget* widget : aDialog.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const bool isWrapped = label != nullptr && label->wordWrap();
        EXPECT_TRUE(isWrapped ? label->heightForWidth(label->width()) <= label->height() : HasRoom(*widget))
            << points << " " << widget->objectName().toStdString();
      }
      QTest::keyClick(&aDialog, Qt::Key_Escape);
    };
    DuringNextModalLoop(check);
    Click(id::kConfigure);
    PickPort(Bulk0);
    DuringNextModalLoop(check);
    Click(id::kCameraLink);
  }
}

} // namespace krgui
