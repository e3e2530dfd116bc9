#include "serial/terminalfiles.h"

#include "frame/filequestion.h"
#include "frame/questionowner.h"
#include "krbase/kratomicfile.h"
#include "logic/serial/showntext.h"
#include "platform/messagebox.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QByteArray>

namespace krgui {

namespace {

constexpr QLatin1String kSendCaption("Send file data");
constexpr QLatin1String kSaveCaption("Save Transcript");

KrResult WriteWhole(const QString& aFile, const QByteArray& aBytes) {
  KrAtomicFile file;
  KrResult result = file.Open(ToKrString(aFile), KrAtomicFile::Existing::Replaced);
  if (result.IsOK())
    result = file.Write(aBytes.constData(), static_cast<std::size_t>(aBytes.size()));
  return result.IsOK() ? file.Commit() : result;
}

} // namespace

QString AskForFileToSend(QWidget* aOwner) {
  static QString& folder = *new QString; // Of the last one, within the process. Never destroyed.
  const QuestionOwner owner(aOwner, {});
  const QString file = AskForExistingFile(owner.GetWidget(),
                                          {.objectName = QStringLiteral("sendfile"), .caption = kSendCaption}, folder);
  if (file.size() <= kMostPathLetters || !owner.IsAlive())
    return owner.IsAlive() ? file : QString();
  ShowMessage(owner.GetWidget(),
              QStringLiteral("The file cannot be sent: its path has more than %1 characters.").arg(kMostPathLetters),
              kSendCaption, MessageIcon::Exclamation);
  return {};
}

void SaveTranscript(QWidget* aOwner, std::u16string_view aText) {
  static QString& folder = *new QString; // Of the last one, within the process. Never destroyed.
  // The text may go with the window.
  const QByteArray bytes = QString::fromStdU16String(MakeForeignText(aText)).toUtf8();
  const QuestionOwner owner(aOwner, {});
  const QString file = AskForFileToWrite(owner.GetWidget(),
                                         {.objectName = QStringLiteral("savetranscript"),
                                          .caption = kSaveCaption,
                                          .filters = {QStringLiteral("Text (*.txt)"), QStringLiteral("All files (*)")},
                                          .suffix = QStringLiteral("txt"),
                                          .name = QStringLiteral("transcript.txt")},
                                         folder);
  if (file.isEmpty() || !owner.IsAlive())
    return;
  if (const KrResult result = WriteWhole(file, bytes); !result.IsOK())
    ShowMessage(owner.GetWidget(),
                QStringLiteral("The transcript could not be saved. %1").arg(ToPlainLine(result.GetDescription())),
                kSaveCaption, MessageIcon::Stop);
}

} // namespace krgui
