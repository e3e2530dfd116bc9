#include "callrules.h"

#include <gmock/gmock.h>

namespace archcheck {
namespace {

struct Row {
  const char* name;
  const char* file;
  const char* source;
  const char* rule; ///< Null where nothing is broken; otherwise of line 2.
};

constexpr const char* kLibrary = "libraries/krsystem/a.cpp";
constexpr const char* kWindows = "libraries/krgui/frame/a.cpp";
constexpr const char* kViewer = "apps/krviewer/a.cpp";
constexpr const char* kDriverCode = "libraries/krcamerabridge/clprotocol/hostprocess.cpp";

constexpr Row kRows[] = {
    {"Shell", kLibrary, "\nint a = std::system(x);", "No shell is given anything, not system."},
    {"ShellInAProgram", kViewer, "\nreturn popen(x);", "No shell is given anything, not popen."},
    {"ShellOverALineEnd", kLibrary, "\nsystem\n(x);", "No shell is given anything, not system."},
    {"VariableOfThatName", kLibrary, "\nKrSystem system(x);", nullptr},
    {"MemberOfThatName", kLibrary, "\na.system(x); b->system(x);", nullptr},
    {"WordWithinAnother", kLibrary, "\nsubsystem(x); system_error(x);", nullptr},
    {"InAComment", kLibrary, "\n// system(x)\n/* popen(x) */ f(\"system(x)\");", nullptr},
    {"InATest", "tests/unit/a.cpp", "\nsystem(x);", nullptr},
    {"Process", kLibrary, "\nfork();", "Only drivers run in processes of their own, not fork."},
    {"ProcessOfADriver", kDriverCode, "\nfork(); posix_spawn(x); dlopen(x);", nullptr},
    {"Library", kViewer, "\nvoid* a = ::dlopen(x);", "Only drivers are loaded, in processes of their own, not dlopen."},
    {"ToolkitsProcess", kViewer, "\nQProcess a;", "Nothing is loaded or run for the user, not QProcess."},
    {"OtherProgram", kWindows, "\nQDesktopServices::openUrl(x);",
     "A library opens nothing in other programs, not QDesktopServices."},
    {"CopyWithoutSize", kLibrary, "\nstd::strcpy(x, y);", "What is written needs a size that is checked, not strcpy."},
    {"PrintWithoutSize", kLibrary, "\nsprintf(x, y);", "What is written needs a size that is checked, not sprintf."},
    {"PrintWithSize", kLibrary, "\nstd::snprintf(x, 1, y);", nullptr},
    {"TemporaryName", kLibrary, "\nmktemp(x);",
     "A temporary file is made with its name, as KrAtomicFile does, not mktemp."},
    {"Environment", kLibrary, "\nstd::getenv(x);",
     "A program with other rights may be led by its environment: use secure_getenv, not getenv."},
    {"SafeEnvironment", kLibrary, "\n::secure_getenv(x);", nullptr},
    {"Markup", kWindows, "\nview->setHtml(x);", "No text becomes markup, not setHtml."},
    {"FormatOfMarkup", kViewer, "\na.setTextFormat(Qt::RichText);",
     "No text is shown by what may take it for markup, not RichText."},
    {"Label", kWindows, "\nnew QLabel(x);",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"LabelWithoutParent", kViewer, "\na(new QLabel),",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"BaseOfALabel", kWindows, "\nA::A() : QLabel(x) {}",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"LabelOfPlainText", kWindows, "\nauto* a = new QLabel(x);\na->setTextFormat(Qt::PlainText);", nullptr},
    {"LabelOfAMember", kViewer, "A::A()\n: mText(new QLabel) {\nmText->setTextFormat(Qt::PlainText);", nullptr},
    {"LabelInAnArray", kViewer, "\na[i] = new QLabel(x);\na[i]->setTextFormat(Qt::PlainText);", nullptr},
    {"LabelBesideOneOfPlainText", kViewer, "\na = new QLabel(x); b = new QLabel;\nb->setTextFormat(Qt::PlainText);",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"LabelBeforeOneOfTheSameName", kViewer, "\na = new QLabel(x);\na = new QLabel;\na->setTextFormat(Qt::PlainText);",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"LabelWithAnotherOnesFormat", kViewer, "\na = new QLabel(x);\nba->setTextFormat(Qt::PlainText);",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"LabelWithoutName", kViewer, "\nlayout->addWidget(new QLabel(x));\na->setTextFormat(Qt::PlainText);",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"BaseOfAPlainLabel", kWindows, "\nA::A() : QLabel(x) {\nsetTextFormat(Qt::PlainText);}", nullptr},
    {"BaseOfALabelThatMakesAPlainOne", kWindows, "\nA::A() : QLabel(x) {\nbox.setTextFormat(Qt::PlainText);}",
     "A QLabel takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"PointerToALabel", kWindows, "\nQLabel* a = Find<QLabel>(b); const QLabel& c = d;", nullptr},
    {"MessageBox", kViewer, "\nQMessageBox box(x);",
     "A QMessageBox takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"CallOfABaseClass", kWindows, "\nvoid A::SetText() { QLabel::setText(x); }", nullptr},
    {"PlainMessageBox", kViewer, "\nQMessageBox box(x);\nbox.setTextFormat(Qt::PlainText);", nullptr},
    {"MessageBoxOfOneCall", kViewer, "\nQMessageBox::warning(x);",
     "A QMessageBox takes texts for markup unless its setTextFormat(Qt::PlainText) is called."},
    {"Tooltip", kWindows, "\na->setToolTip(x);",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"TooltipThatIsShown", kWindows, "\nQToolTip::showText(x, y);",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"TooltipOfAProgram", kViewer, "\na->setToolTip(x);",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"TooltipOfATab", kViewer, "\na->setTabToolTip(0, x);",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"TooltipBesideAPlainOne", kWindows, "\na->setToolTip(x); b->setToolTip(ToPlainToolTip(x));",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"PlainTooltipOfAProgram", kViewer, "\na->setToolTip(ToToolTip(x));", nullptr},
    {"Browser", kViewer, "\nQTextBrowser a;", "Only documents that are installed become markup, not QTextBrowser."},
    {"BrowserOfInstalledDocuments", "apps/krviewer/help/a.cpp", "\nQTextBrowser a;", nullptr},
    {"PlainTooltip", kWindows, "\na->setToolTip(ToPlainToolTip(x));", nullptr},
    {"TooltipThatIsNoLiteral", kWindows, "\na->setToolTip(QLatin1String(x.CStr()));",
     "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once."},
    {"LiteralTooltip", kWindows, "\na->setToolTip(QStringLiteral(\"x\"));", nullptr},
};

class CallRules : public testing::TestWithParam<Row> {};

TEST_P(CallRules, OfASource_NameWhatIsBrokenWithItsLine) {
  const std::vector<BrokenCall> broken = FindBrokenCalls(GetParam().file, GetParam().source);

  if (GetParam().rule == nullptr)
    EXPECT_THAT(broken, testing::IsEmpty());
  else
    EXPECT_THAT(broken, testing::ElementsAre(BrokenCall{2, GetParam().rule}));
}

INSTANTIATE_TEST_SUITE_P(Sources, CallRules, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(CallRulesOfOneFile, SeveralUses_AreInTheOrderOfTheLines) {
  EXPECT_THAT(FindBrokenCalls(kLibrary, "getenv(x);\n\nsystem(x);\ngetenv(x);"),
              testing::ElementsAre(testing::Field(&BrokenCall::line, 1), testing::Field(&BrokenCall::line, 3),
                                   testing::Field(&BrokenCall::line, 4)));
}

} // namespace
} // namespace archcheck
