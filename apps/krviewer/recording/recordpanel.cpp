#include "recording/recordpanel.h"

#include "recording/filenames.h"
#include "recording/recordingtexts.h"
#include "recording/savingfolder.h"
#include "window/failurebox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace krviewer {

namespace {

constexpr std::chrono::milliseconds kLookInterval{100};
constexpr qint64 kRoomIntervalMs = 2000;
constexpr int kPerMille = 1000;
constexpr int kMost = std::numeric_limits<int>::max();

QString ToQString(const std::string& aText) {
  return QString::fromStdString(aText);
}

QLabel* MakeLabel(const char* aName) {
  auto* const label = new QLabel;
  label->setObjectName(QString::fromLatin1(aName));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

QProgressBar* MakeBar(const char* aName) {
  auto* const bar = new QProgressBar;
  bar->setObjectName(QString::fromLatin1(aName));
  bar->setRange(0, kPerMille);
  return bar;
}

int GetPerMille(std::uint64_t aPart, std::uint64_t aWhole) {
  const double part = aWhole == 0 ? 0 : static_cast<double>(aPart) / static_cast<double>(aWhole);
  return static_cast<int>(std::clamp(part, 0.0, 1.0) * kPerMille);
}

} // namespace

RecordPanel::RecordPanel(Recorder& aRecorder, const QString& aCamera, const KrString& aDeviceID, QWidget* aParent)
    : QWidget(aParent), mRecorder(aRecorder), mCamera(aCamera), mDeviceID(aDeviceID) {
  setObjectName(QStringLiteral("recordPanel"));
  // Where there is little room it is scrolled rather than squeezed.
  auto* const content = new QWidget;
  auto* const area = new QScrollArea;
  area->setWidget(content);
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus); // What is in it has the focus.
  auto* const whole = new QVBoxLayout(this);
  whole->setContentsMargins({});
  whole->addWidget(area);
  auto* const rows = new QVBoxLayout(content);
  mSettings = new QWidget;
  auto* const settings = new QFormLayout(mSettings);
  settings->setContentsMargins({});
  AddPlace(*settings);
  AddLimits(*settings);
  rows->addWidget(mSettings);
  mButton = new QPushButton;
  mButton->setObjectName(QStringLiteral("recordButton"));
  connect(mButton, &QPushButton::clicked, this, &RecordPanel::StartOrStop);
  rows->addWidget(mButton);
  auto* const progress = new QFormLayout;
  AddProgress(*progress);
  rows->addLayout(progress);
  rows->addStretch();

  RecordSettings settingsAtFirst;
  settingsAtFirst.folder = FindFolder(QStandardPaths::MoviesLocation);
  WriteControls(settingsAtFirst);
  ProposeName();
  LookAgain();
  connect(&mTimer, &QTimer::timeout, this, &RecordPanel::LookAgain);
}

void RecordPanel::AddPlace(QFormLayout& aForm) {
  auto* const row = new QHBoxLayout;
  mFolder = new QLineEdit;
  mFolder->setObjectName(QStringLiteral("recordFolder"));
  mFolder->setAccessibleName(tr("Folder"));
  connect(mFolder, &QLineEdit::textChanged, this, [this] { mRoomAge.invalidate(); });
  auto* const browse = new QToolButton;
  browse->setText(QStringLiteral("..."));
  browse->setObjectName(QStringLiteral("recordBrowse"));
  browse->setAccessibleName(tr("Choose the folder"));
  browse->setFocusPolicy(Qt::StrongFocus);
  connect(browse, &QToolButton::clicked, this, &RecordPanel::Browse);
  row->addWidget(mFolder, 1);
  row->addWidget(browse);
  auto* const label = new QLabel(tr("Fol&der"));
  label->setTextFormat(Qt::PlainText);
  label->setBuddy(mFolder);
  aForm.addRow(label, row);
  mName = new QLineEdit;
  mName->setObjectName(QStringLiteral("recordName"));
  mName->setToolTip(tr("The recording's own folder, which is made in the one above."));
  aForm.addRow(tr("&Name"), mName);
  mFormat = new QComboBox;
  mFormat->setObjectName(QStringLiteral("recordFormat"));
  mFormat->addItem(tr("Raw: every bit, fastest"), static_cast<int>(krapps::FrameFileFormat::Raw));
  mFormat->addItem(tr("TIFF: every bit, for other programs"), static_cast<int>(krapps::FrameFileFormat::TIFF));
  mFormat->addItem(tr("PNG: as shown, slowest"), static_cast<int>(krapps::FrameFileFormat::PNG));
  mFormat->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  aForm.addRow(tr("F&ormat"), mFormat);
}

QSpinBox* RecordPanel::AddNumber(QFormLayout& aForm, const QString& aLabel, const char* aName, int aMost,
                                 const QString& aSuffix, const QString& aZeroText) {
  auto* const box = new QSpinBox;
  box->setObjectName(QString::fromLatin1(aName));
  box->setRange(aZeroText.isEmpty() ? 1 : 0, aMost);
  box->setSpecialValueText(aZeroText);
  box->setSuffix(aSuffix);
  auto* const label = new QLabel(aLabel);
  label->setTextFormat(Qt::PlainText);
  label->setBuddy(box);
  aForm.addRow(label, box);
  return box;
}

void RecordPanel::AddLimits(QFormLayout& aForm) {
  const QString noLimit = tr("no limit");
  mMostFrames = AddNumber(aForm, tr("End after frames"), "recordMostFrames", kMost, {}, noLimit);
  mMostSeconds = AddNumber(aForm, tr("or after time"), "recordMostSeconds", kMost, tr(" s"), noLimit);
  mMostDisk = AddNumber(aForm, tr("Write at most"), "recordMostDisk", kMost, tr(" MB"), noLimit);
  mFreeDisk = AddNumber(aForm, tr("Leave on disk"), "recordFreeDisk", kMost, tr(" MB free"), tr("nothing"));
  mEveryNth = AddNumber(aForm, tr("Take"), "recordEveryNth", kMost, {}, {});
  mEveryNth->setPrefix(tr("one frame of "));
  mEveryNth->setSpecialValueText(tr("every frame"));
  mQueue = AddNumber(aForm, tr("Memory"), "recordQueue", 1'000'000, tr(" MB"), {});
  mQueue->setToolTip(tr("Frames wait here for a disk that is slower than the camera for a while."));
  mIncomplete = new QCheckBox(tr("Incomplete frames, too"));
  mIncomplete->setObjectName(QStringLiteral("recordIncomplete"));
  aForm.addRow(mIncomplete);
}

void RecordPanel::AddProgress(QFormLayout& aForm) {
  mState = MakeLabel("recordState");
  mDone = MakeBar("recordDone");
  mWritten = MakeLabel("recordWritten");
  mFilled = MakeBar("recordFilled");
  mRoom = MakeLabel("recordRoom");
  mLosses = MakeLabel("recordLosses");
  aForm.addRow(mState);
  aForm.addRow(mDone);
  aForm.addRow(tr("Written"), mWritten);
  aForm.addRow(tr("Memory"), mFilled);
  aForm.addRow(tr("Free on disk"), mRoom);
  aForm.addRow(mLosses);
  mDone->setAccessibleName(tr("Part of the recording"));
  mFilled->setAccessibleName(tr("Memory in use"));
}

void RecordPanel::ProposeName() {
  mProposedName = ToQString(MakeRecordingName(mCamera.toStdString(), QDateTime::currentSecsSinceEpoch()));
  mName->setText(mProposedName);
  mName->setCursorPosition(0); // A long name shows its beginning.
}

void RecordPanel::Browse() {
  if (mDialog)
    return mDialog->activateWindow();
  mDialog = new QFileDialog(this, tr("Folder for Recordings"), mFolder->text());
  mDialog->setAttribute(Qt::WA_DeleteOnClose);
  mDialog->setFileMode(QFileDialog::Directory);
  mDialog->setOption(QFileDialog::ShowDirsOnly);
  connect(mDialog, &QFileDialog::fileSelected, mFolder, &QLineEdit::setText);
  mDialog->open();
}

RecordSettings RecordPanel::ReadControls() const {
  RecordSettings settings;
  settings.folder = mFolder->text();
  settings.format = static_cast<krapps::FrameFileFormat>(mFormat->currentData().toInt());
  settings.takesIncomplete = mIncomplete->isChecked();
  settings.everyNth = mEveryNth->value();
  settings.mostFrames = mMostFrames->value();
  settings.mostSeconds = mMostSeconds->value();
  settings.mostDiskMB = mMostDisk->value();
  settings.freeDiskMB = mFreeDisk->value();
  settings.queueMB = mQueue->value();
  return settings;
}

void RecordPanel::WriteControls(const RecordSettings& aSettings) {
  mFolder->setText(aSettings.folder);
  mFormat->setCurrentIndex(mFormat->findData(static_cast<int>(aSettings.format)));
  mIncomplete->setChecked(aSettings.takesIncomplete);
  mEveryNth->setValue(aSettings.everyNth);
  mMostFrames->setValue(aSettings.mostFrames);
  mMostSeconds->setValue(aSettings.mostSeconds);
  mMostDisk->setValue(aSettings.mostDiskMB);
  mFreeDisk->setValue(aSettings.freeDiskMB);
  mQueue->setValue(aSettings.queueMB);
}

void RecordPanel::RestoreState(const QByteArray& aState) {
  RecordSettings settings = ReadControls();
  settings.Restore(aState);
  WriteControls(settings);
}

void RecordPanel::StartOrStop() {
  if (mRecorder.IsBusy()) {
    mRecorder.Stop();
    return LookAgain();
  }
  if (mFolder->text().isEmpty() || mName->text().trimmed().isEmpty())
    return ShowFailure(this, tr("Record"),
                       {KrResult::Code::InvalidInput, "A recording needs a folder and a name. Enter both."});
  if (mName->text() == mProposedName)
    ProposeName(); // It holds the time, which has gone on.
  const RecordSettings settings = ReadControls();
  const KrResult started = mRecorder.Start(settings.MakeOptions(mName->text().trimmed(), mDeviceID));
  if (!started.IsOK())
    return ShowFailure(this, tr("Record"), started);
  mStarted = settings;
  LookAgain();
}

void RecordPanel::SetCamera(const QString& aCamera, const KrString& aDeviceID) {
  mCamera = aCamera;
  mDeviceID = aDeviceID;
  // What the user has typed stays.
  if (!mRecorder.IsBusy() && mName->text() == mProposedName)
    ProposeName();
}

void RecordPanel::SetCameraThere(bool aIsThere) {
  if (std::exchange(mIsCameraThere, aIsThere) != aIsThere)
    LookAgain();
}

void RecordPanel::showEvent(QShowEvent* aEvent) {
  QWidget::showEvent(aEvent);
  LookAgain();
  mTimer.start(kLookInterval);
}

void RecordPanel::hideEvent(QHideEvent* aEvent) {
  QWidget::hideEvent(aEvent);
  mTimer.stop();
}

void RecordPanel::LookAgain() {
  const RecordingProgress progress = mRecorder.GetProgress();
  const bool isBusy = progress.state == RecordingState::Recording || progress.state == RecordingState::Finishing;
  mSettings->setEnabled(!isBusy);
  mButton->setText(isBusy ? tr("Stop Record&ing") : tr("Start Record&ing"));
  mButton->setEnabled(isBusy ? progress.state == RecordingState::Recording : mIsCameraThere);
  // The name is taken now, unless the recording could not begin: then what was typed is there to be mended.
  if (mWasBusy && !isBusy && CouldBegin(progress))
    ProposeName();
  mWasBusy = isBusy;
  ShowProgress(progress);
}

void RecordPanel::ShowProgress(const RecordingProgress& aProgress) {
  const bool hasBegun = aProgress.state != RecordingState::Idle;
  const QString state = ToQString(DescribeState(aProgress));
  mState->setText(hasBegun ? state : tr("Nothing was recorded yet."));
  mWritten->setText(ToQString(DescribeWritten(aProgress.counts)));
  mLosses->setText(hasBegun ? ToQString(DescribeLosses(aProgress)) : QString());
  QFont font = mLosses->font();
  font.setBold(HasLosses(aProgress.counts));
  mLosses->setFont(font);
  ShowBars(aProgress);
  ShowFreeRoom(aProgress);
}

void RecordPanel::ShowBars(const RecordingProgress& aProgress) {
  const int frames = GetPerMille(aProgress.counts.written, static_cast<std::uint64_t>(mStarted.mostFrames));
  const int time = GetPerMille(aProgress.elapsedMs, static_cast<std::uint64_t>(mStarted.mostSeconds) * 1000);
  // Without a limit there is no part of the whole.
  mDone->setVisible(mStarted.mostFrames > 0 || mStarted.mostSeconds > 0);
  mDone->setValue(std::max(frames, time));
  constexpr std::uint64_t kBytesPerMB = 1'000'000;
  mFilled->setValue(GetPerMille(aProgress.queuedBytes, static_cast<std::uint64_t>(mStarted.queueMB) * kBytesPerMB));
}

// While it records the recorder knows; else the file system is asked now and then.
void RecordPanel::ShowFreeRoom(const RecordingProgress& aProgress) {
  if (aProgress.state == RecordingState::Recording && aProgress.freeDiskBytes > 0) {
    mRoomAge.invalidate();
    return mRoom->setText(ToQString(FormatBytes(aProgress.freeDiskBytes)));
  }
  const std::string folder = mFolder->text().toStdString();
  if (const std::optional<FolderRoom::Answer> answer = mFolderRoom.Take(); answer && answer->folder == folder)
    mRoom->setText(answer->freeBytes ? ToQString(FormatBytes(*answer->freeBytes)) : tr("There is no such folder."));
  if (mRoomAge.isValid() && mRoomAge.elapsed() < kRoomIntervalMs)
    return;
  mRoomAge.start();
  mFolderRoom.Ask(folder);
}

} // namespace krviewer
