// A feature browser of the application's own: the library's property grid and search field in a layout with buttons and
// a text for the description. The first camera is taken; with --simulate those of the built-in simulated lab count as
// well.

#include "krdevice/krdevice.h"
#include "krgui/genbrowsersearchbar.h"
#include "krgui/propertiesctrl.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>
#include <QGridLayout>
#include <QPushButton>
#include <QTextEdit>

#include <iostream>
#include <set>
#include <string_view>

namespace {

// Texts of a camera are plain text but for <b>…</b>: nothing else in them may become mark-up.
QString ToRichText(const KrString& aText) {
  return QString::fromUtf8(aText.CStr())
      .toHtmlEscaped()
      .replace("&lt;b&gt;", "<b>")
      .replace("&lt;/b&gt;", "</b>")
      .replace("\n", "<br>");
}

class OwnBrowser : public QWidget {
public:
  explicit OwnBrowser(KrGenParameterArray& aArray) {
    auto* const layout = new QGridLayout(this);
    auto* const next = new QPushButton("&Next");
    layout->addWidget(mSearchBar, 0, 0);
    layout->addWidget(next, 0, 1);
    layout->addWidget(mGrid, 1, 0, 1, 2);
    layout->addWidget(mDescription, 2, 0, 1, 2);
    layout->setRowStretch(1, 3);
    layout->setRowStretch(2, 1);
    mDescription->setReadOnly(true);
    connect(next, &QPushButton::clicked, mSearchBar, &GenBrowserSearchBar::MoveToNextOccurence);
    mGrid->SetSelectionHandler([this] { ShowDescription(); });
    Fill(aArray);
  }

private:
  // Every feature for experts under its first category. Rows follow their features by themselves once they were read.
  void Fill(KrGenParameterArray& aArray) {
    std::uint64_t categoryRow = 0;
    KrString last;
    for (std::size_t index = 0; index < aArray.GetCount(); ++index) {
      KrGenParameter& feature = *aArray[index];
      if (!feature.IsVisible(KrGenVisibility::Expert))
        continue;
      const KrString name = QString::fromUtf8(feature.GetCategory().CStr()).section('\\', -1).toStdString();
      KrGenCategory* const category = aArray.GetCategory(name);
      if (category && name != last)
        categoryRow = mGrid->AppendCategory(0, name, *category);
      last = name;
      mGrid->AppendFeature(categoryRow, feature.GetName(), feature);
    }
    mGrid->SetVisibility(KrGenVisibility::Expert);
    mGrid->Refresh();
  }

  void ShowDescription() { mDescription->setHtml(ToRichText(mGrid->GetDescription(mGrid->GetSelected()))); }

  PropertiesCtrl* mGrid = new PropertiesCtrl;
  GenBrowserSearchBar* mSearchBar = new GenBrowserSearchBar(nullptr, mGrid);
  QTextEdit* mDescription = new QTextEdit;
};

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: own_browser [--simulate]\n";
    return 0;
  }
  QApplication application(argc, argv);
  KrSystem system;
  KrResult result = KrInstallTransports({.simulation = options.contains("--simulate")});
  if (result.IsOK())
    result = system.Find();
  const KrDeviceInfo* const info = result.IsOK() ? system.GetDeviceInfo(0) : nullptr;
  std::unique_ptr<KrDevice> device; // Ends after the widget that shows its features.
  KrGenParameterArray* array = nullptr;
  if (info)
    result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
  if (device)
    result = device->GetParameters(array);
  if (!array) {
    std::cerr << "No camera can be shown. Try --simulate. " << result.GetDescription().CStr() << '\n';
    return 1;
  }
  OwnBrowser browser(*array);
  browser.setWindowTitle(QString::fromUtf8(device->GetDisplayID().CStr()));
  browser.resize(500, 700);
  browser.show();
  return QApplication::exec();
}
