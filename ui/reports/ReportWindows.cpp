#include "ui/reports/ReportWindows.h"

#include "ui/reports/MasterWizard.h"
#include "ui/reports/WaitWindow.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QUrl>

namespace aqx::ui {

namespace {

const char* const kCommandNames[] = {"mnuReportMaster", "mnuReportProtokol", "mnuReportPattern"};

bool OpenInDesktop(const QString& path) { return QDesktopServices::openUrl(QUrl::fromLocalFile(path)); }

// The wait window steps aside for every question and message of the
// command, so that no box stands behind it; the next file brings it back.
class BesideWaitWindow : public Prompts {
 public:
  BesideWaitWindow(Prompts& prompts, WaitWindow& wait) : prompts_(prompts), wait_(wait) {}
  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons, PromptIcon icon) override {
    wait_.finish();
    return prompts_.message(text, title, buttons, icon);
  }
  std::optional<QString> input(const QString& prompt, const QString& title, const QString& defaultText) override {
    wait_.finish();
    return prompts_.input(prompt, title, defaultText);
  }
  std::optional<QString> chooseOpenFile(const QString& title, const QString& folder, const QString& filter) override {
    wait_.finish();
    return prompts_.chooseOpenFile(title, folder, filter);
  }
  std::optional<QString> chooseSaveFile(const QString& title, const QString& folder, const QString& fileName,
                                        const QString& filter) override {
    wait_.finish();
    return prompts_.chooseSaveFile(title, folder, fileName, filter);
  }
  void notice(const QStringList& lines) override { prompts_.notice(lines); }

 private:
  Prompts& prompts_;
  WaitWindow& wait_;
};

}  // namespace

ReportWindows::ReportWindows(AppState& state, Prompts& prompts, const FileReaderTable& readers,
                             QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks)
    : QObject(frame), s_(state), prompts_(prompts), readers_(readers), actions_(actions), frame_(frame),
      hooks_(std::move(hooks)) {
  wait_ = new WaitWindow(frame);
  if (!hooks_.openWorkbook) hooks_.openWorkbook = OpenInDesktop;
}

ReportWindows::~ReportWindows() { delete wizard_.data(); }

MasterWizard* ReportWindows::wizard() const { return wizard_; }

QAction* ReportWindows::command(QMenu* menu, const char* name, const QString& caption, void (ReportWindows::*run)()) {
  auto* a = new QAction(caption, menu);
  a->setObjectName(QString::fromLatin1(name));
  connect(a, &QAction::triggered, this, run);
  menu->addAction(a);
  actions_.insert(a->objectName(), a);
  return a;
}

void ReportWindows::addCommands(QMenu* report) {
  command(report, kCommandNames[0], QStringLiteral("Мастер протокола"), &ReportWindows::onReportMaster);
  command(report, kCommandNames[1], QStringLiteral("Протокол"), &ReportWindows::onReportProtokol);
  command(report, kCommandNames[2], QStringLiteral("По шаблону"), &ReportWindows::onReportPattern);
}

void ReportWindows::refreshCommands(bool idle) {
  for (const char* name : kCommandNames)
    if (QAction* a = actions_.value(QString::fromLatin1(name))) a->setEnabled(idle && !running_);
}

void ReportWindows::setWorkbookOpener(std::function<bool(const QString& path)> open) {
  hooks_.openWorkbook = open ? std::move(open) : OpenInDesktop;
}

void ReportWindows::onReportProtokol() {
  run([](reports::ReportContext& ctx) { return reports::ReportProtokolCommand(ctx); }, reports::kProtocolTitle);
}

void ReportWindows::onReportPattern() {
  run([](reports::ReportContext& ctx) { return reports::ReportPatternCommand(ctx); }, reports::kProtocolTitle);
}

void ReportWindows::onReportMaster() {
  if (wizard_) {
    wizard_->raise();
    return;
  }
  const QString folder = s_.PathFileData.isEmpty() ? s_.InitDirOpen : QFileInfo(s_.PathFileData).absolutePath();
  wizard_ = new MasterWizard(prompts_, readers_, folder, frame_);
  connect(wizard_, &QDialog::finished, wizard_, &QObject::deleteLater);
  connect(wizard_, &QDialog::accepted, this, &ReportWindows::masterFinished);
  wizard_->show();
}

void ReportWindows::masterFinished() {
  const reports::MasterChoice choice = wizard_->choice();
  run([&choice](reports::ReportContext& ctx) { return reports::ReportMasterCommand(ctx, choice); },
      reports::kMasterTitle);
}

void ReportWindows::run(const std::function<reports::ReportResult(reports::ReportContext&)>& command,
                        const QString& title) {
  if (running_) return;
  running_ = true;
  refreshCommands(true);
  wait_->start(reports::kReportWaitText);
  BesideWaitWindow prompts(prompts_, *wait_);
  reports::ReportContext ctx{s_, prompts, readers_, [this](int done, int count) { return wait_->progress(done, count); }};
  if (hooks_.holdViews) hooks_.holdViews(true);
  last_ = command(ctx);
  wait_->finish();
  if (hooks_.holdViews) hooks_.holdViews(false);
  running_ = false;
  refreshCommands(true);
  // The last file read stays the recording, shown as after opening it.
  if (last_.recordingReplaced && hooks_.recordingLoaded) hooks_.recordingLoaded();
  if (last_.outcome != reports::ReportOutcome::Written) return;
  if (!hooks_.openWorkbook(last_.workbookPath))
    prompts_.tell(QStringLiteral("Протокол записан в файл %1, но открыть его не удалось: не найдена программа для "
                                 "работы с таблицами.")
                      .arg(QDir::toNativeSeparators(last_.workbookPath)),
                  title, PromptIcon::Information);
}

}  // namespace aqx::ui
