#include "viewersession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

// The first label that a pattern fits, taken apart.
QRegularExpressionMatch FindLabel(AccessibleProgram& aScreen, const QString& aPattern) {
  const QRegularExpression pattern(aPattern);
  QRegularExpressionMatch match;
  aScreen.Find([&](const AccessibleItem& aItem) {
    match = aItem.role == "label" ? pattern.match(aItem.name) : QRegularExpressionMatch();
    return match.hasMatch();
  });
  return match;
}

} // namespace

void ViewerSession::Start(const QStringList& aArguments, const std::function<void()>& aInChild) {
  End();
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("HOME", GetPath(""));
  environment.insert("XDG_CONFIG_HOME", GetPath("config"));
  mUser = std::make_unique<ProgramUser>(KRVIEWER_PATH, aArguments, environment, aInChild);
}

void ViewerSession::End() {
  if (mUser && mUser->IsRunning()) {
    mUser->Interrupt();
    EXPECT_EQ(mUser->AwaitEnd(), 0) << mUser->GetErrors().toStdString();
  }
  mUser.reset();
}

QString ViewerSession::WriteFile(const QString& aName, const QByteArray& aText) const {
  QFile file(GetPath(aName));
  EXPECT_TRUE(QFileInfo(file).dir().mkpath(".") && file.open(QIODevice::WriteOnly) && file.write(aText) == aText.size())
      << file.errorString().toStdString();
  return file.fileName();
}

bool ViewerSession::AwaitStreaming(const QString& aCamera) {
  return User().AwaitWindow(aCamera) && User().Await(aCamera + " streaming", [&] {
    return User()
               .GetScreen()
               .Find([&](const AccessibleItem& aItem) { return aItem.role == "frame" && aItem.name == aCamera; })
               .has_value() &&
           (GetFrames() > 0 || GetFrameRate() > 0);
  });
}

long long ViewerSession::GetFrames() {
  const QRegularExpressionMatch match = FindLabel(User().GetScreen(), "^([0-9]+) frames?$");
  return match.hasMatch() ? match.captured(1).toLongLong() : -1;
}

// A narrow window has room for this one, but not for how many there were.
double ViewerSession::GetFrameRate() {
  const QRegularExpressionMatch match = FindLabel(User().GetScreen(), "^([0-9.]+) frames/s$");
  return match.hasMatch() ? match.captured(1).toDouble() : -1;
}

bool ViewerSession::AwaitMoreFrames() {
  const long long before = GetFrames();
  // Where there is no room for their number, the rate, which falls to zero soon after the last one, tells of them.
  return User().Await("more frames than " + QString::number(before),
                      [&] { return GetFrames() > before || (before < 0 && GetFrameRate() > 0); });
}

std::optional<QPoint> ViewerSession::GetPixel() {
  const QRegularExpressionMatch match = FindLabel(User().GetScreen(), "^x ([0-9]+)  y ([0-9]+)");
  return match.hasMatch() ? std::optional(QPoint(match.captured(1).toInt(), match.captured(2).toInt())) : std::nullopt;
}

QRect ViewerSession::GetPicturePlace() {
  const std::optional<AccessibleItem> picture = User().AwaitControl("filler", "Camera image");
  return picture ? User().GetScreen().GetPlace(*picture) : QRect();
}

bool ViewerSession::SetFeature(const QString& aName, const QString& aValue) {
  if (!User().Click("tree item", aName))
    return false;
  User().Press("Return");
  QString editor;
  const bool isEditing = User().Await("the editor of " + aName, [&] {
    editor = User().GetFocused().role;
    return editor == "text" || editor == "spin box" || editor == "combo box";
  });
  if (!isEditing)
    return false;
  if (editor != "combo box")
    User().Press("ctrl+a");
  User().Type(aValue);
  User().Press("Return");
  return User().Await(aName + " = " + aValue, [&] { return GetFeature(aName).startsWith(aValue); });
}

QString ViewerSession::GetFeature(const QString& aName) {
  bool isNext = false;
  const std::optional<AccessibleItem> cell = User().GetScreen().Find([&](const AccessibleItem& aItem) {
    const bool isIt = isNext && aItem.role == "cell";
    isNext = aItem.role == "tree item" && aItem.name == aName;
    return isIt;
  });
  return cell ? cell->name : QString();
}

bool ViewerSession::Fill(const QString& aField, const QString& aText) {
  const auto isField = [&](const AccessibleItem& aItem) {
    return aItem.isEnabled && aItem.name == aField && (aItem.role == "text" || aItem.role == "spin box");
  };
  std::optional<AccessibleItem> field;
  if (!User().Await("the field " + aField, [&] { return (field = User().GetScreen().Find(isField)).has_value(); }))
    return false;
  User().Click(User().GetScreen().GetPlace(*field).center());
  if (!User().AwaitFocus(aField))
    return false;
  User().Press("ctrl+a");
  User().Type(aText);
  User().Press("Tab");
  return true;
}

QString ViewerSession::ReadFeature(const QString& aCamera, const QString& aName) {
  QProcess process;
  process.start(KRTOOL_PATH, {"get", aCamera, aName});
  EXPECT_TRUE(process.waitForFinished(ProgramUser::kLimitMs));
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}
