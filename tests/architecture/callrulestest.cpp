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

constexpr const char* kTooltip = "A tooltip that is no literal goes through ToPlainToolTip or ToToolTip at once.";

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
    {"CopyOfTheProcess", kLibrary, "\nclone(x);", "Only drivers run in processes of their own, not clone."},
    {"FunctionOfThatName", kWindows, "\nQIconEngine* clone() const override;", nullptr},
    {"ProcessOfGLib", kLibrary, "\ng_spawn_async(x);",
     "Only drivers run in processes of their own, not g_spawn_async."},
    {"ModuleOfGLib", kLibrary, "\ng_module_open_full(x);",
     "Only drivers are loaded, in processes of their own, not g_module_open_full."},
    {"ProgramOfGLib", kViewer, "\ng_app_info_launch_uris(x);",
     "Only links of documents that are installed are opened in other programs, not g_app_info_launch_uris."},
    {"WordThatEndsSo", kLibrary, "\nmy_g_spawn_async(x);", nullptr},
    {"Library", kViewer, "\nvoid* a = ::dlopen(x);", "Only drivers are loaded, in processes of their own, not dlopen."},
    {"ToolkitsProcess", kViewer, "\nQProcess a;", "Nothing is loaded or run for the user, not QProcess."},
    {"OtherProgram", kWindows, "\nQDesktopServices::openUrl(x);",
     "Only links of documents that are installed are opened in other programs, not QDesktopServices."},
    {"OtherProgramOfAProgram", kViewer, "\nQDesktopServices::openUrl(x);",
     "Only links of documents that are installed are opened in other programs, not QDesktopServices."},
    {"LinkOfInstalledDocuments", "apps/krviewer/help/a.cpp", "\nQDesktopServices::openUrl(x);", nullptr},
    {"CopyWithoutSize", kLibrary, "\nstd::strcpy(x, y);", "What is written needs a size that is checked, not strcpy."},
    {"PrintWithoutSize", kLibrary, "\nsprintf(x, y);", "What is written needs a size that is checked, not sprintf."},
    {"PrintWithSize", kLibrary, "\nstd::snprintf(x, 1, y);", nullptr},
    {"TemporaryName", kLibrary, "\nmktemp(x);",
     "A temporary file is made with its name, as KrAtomicFile does, not mktemp."},
    {"Environment", kLibrary, "\nstd::getenv(x);",
     "A program with other rights may be led by its environment: use secure_getenv, not getenv."},
    {"EnvironmentByTheToolkit", kWindows, "\nqEnvironmentVariableIsSet(x);",
     "A program with other rights may be led by its environment: use secure_getenv, not qEnvironmentVariableIsSet."},
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
    {"Tooltip", kWindows, "\na->setToolTip(x);", kTooltip},
    {"TooltipThatIsShown", kWindows, "\nQToolTip::showText(x, y);", kTooltip},
    {"TooltipOfAProgram", kViewer, "\na->setToolTip(x);", kTooltip},
    {"TooltipOfATab", kViewer, "\na->setTabToolTip(0, x);", kTooltip},
    {"TooltipBesideAPlainOne", kWindows, "\na->setToolTip(x); b->setToolTip(ToPlainToolTip(x));", kTooltip},
    {"PlainTooltipOfAProgram", kViewer, "\na->setToolTip(ToToolTip(x));", nullptr},
    {"Browser", kViewer, "\nQTextBrowser a;", "Only documents that are installed become markup, not QTextBrowser."},
    {"BrowserOfInstalledDocuments", "apps/krviewer/help/a.cpp", "\nQTextBrowser a;", nullptr},
    {"PlainTooltip", kWindows, "\na->setToolTip(ToPlainToolTip(x));", nullptr},
    {"TooltipThatIsNoLiteral", kWindows, "\na->setToolTip(QLatin1String(x.CStr()));", kTooltip},
    {"LiteralTooltip", kWindows, "\na->setToolTip(QStringLiteral(\"x\"\n\"y, z\"));", nullptr},
    {"TooltipOfACString", kWindows, "\na->setToolTip(QLatin1String(aText));", nullptr},
    {"TooltipOfALiteralWithAText", kWindows, "\na->setToolTip(QStringLiteral(\"%1\").arg(x));", kTooltip},
    {"TooltipOfALiteralAndAText", kWindows, "\na->setToolTip(tr(\"x\") + y);", kTooltip},
    {"TooltipOfATextAndAPlainOne", kWindows, "\na->setToolTip(x + ToToolTip(y));", kTooltip},
    {"TooltipOfAFunctionThatEndsSo", kWindows, "\na->setToolTip(ToStr(\"\"));", kTooltip},
    {"TooltipOfTwoCases", kWindows, "\na->setToolTip(b::c(d) ? QString() : ToToolTip(x));", nullptr},
    {"TooltipOfOneCaseThatIsPlain", kWindows, "\na->setToolTip(b ? x : ToToolTip(x));", kTooltip},
    {"TooltipOfAColumn", kWindows, "\na->setToolTip(1, x);", kTooltip},
    {"PlainTooltipOfAPlace", kWindows, "\nQToolTip::showText(a, ToToolTip(x), this, b(c, d));", nullptr},
    {"TooltipOfAPlaceBesideAPlainText", kWindows, "\nQToolTip::showText(a, x, ToToolTip(x));", kTooltip},
    {"TooltipOfAnEntry", kWindows, "\nbox.setItemData(a(b), x, Qt::ToolTipRole);", kTooltip},
    {"PlainTooltipOfAnEntry", kWindows, "\nbox.setItemData(a(b), ToPlainToolTip(x), Qt::ToolTipRole);", nullptr},
    {"TooltipOfAnItem", kWindows, "\nitem.setData(Qt::ToolTipRole, x);", kTooltip},
    {"TooltipThatIsRead", kWindows, "\na = box.itemData(b, Qt::ToolTipRole);", nullptr},
    {"TooltipOfAModel", kWindows, "\nif (aRole == Qt::ToolTipRole) {\nb = c;\nreturn b; }", kTooltip},
    {"TooltipOfAModelsCase", kWindows, "\ncase Qt::ToolTipRole:\nreturn a;", kTooltip},
    {"PlainTooltipOfAModel", kWindows,
     "\nif (aRole == Qt::ToolTipRole) {\nreturn a ? QVariant() : QVariant(ToPlainToolTip(b(c)));}", nullptr},
    {"RowOfAForm", kViewer, "\nform.addRow(aText, box);",
     "A row of a form is named by a literal or by a label of plain text."},
    {"RowOfALiteralAndAText", kViewer, "\nform.addRow(tr(\"%1\").arg(x), box);",
     "A row of a form is named by a literal or by a label of plain text."},
    {"RowOfALiteral", kViewer, "\nform.addRow(tr(\"x\"), box); form.addRow(box);", nullptr},
    {"RowOfAPlainLabel", kViewer, "\nauto* a = new QLabel(x);\na->setTextFormat(Qt::PlainText); form.addRow(a, box);",
     nullptr},
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
