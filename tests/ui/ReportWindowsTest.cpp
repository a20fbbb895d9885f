// The report commands from the menu: the protocol and the template under
// the wait window (with its cancel), the master's five steps forward and
// back, the written workbook handed to the opener, and the last file of the
// folder left as the recording shown.

#include "UiTestSupport.h"

#include "reports/XlsxWorkbook.h"
#include "ui/reports/MasterWizard.h"
#include "ui/reports/ReportWindows.h"
#include "ui/reports/WaitWindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QMdiArea>
#include <QPushButton>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using uitest::Workbench;

class ReportMenu : public ::testing::Test {
 protected:
  Workbench w;
  QStringList opened;
  ui::ReportWindows* reports = nullptr;

  void SetUp() override {
    ASSERT_TRUE(QDir(w.dir.path()).mkpath(QStringLiteral("run")));
    for (const char* name : {"a.aqx", "b.aqx", "c.aqx"}) ASSERT_TRUE(uitest::WriteRecording(folder(name), 4096, 4));
    ASSERT_TRUE(w.window->OpenFile(folder("a.aqx")));
    reports = w.window->reportWindows();
    reports->setWorkbookOpener([this](const QString& path) {
      opened.push_back(path);
      return true;
    });
    w.prompts.shown.clear();
  }
  QString folder(const char* name) const { return w.path(QStringLiteral("run/") + QString::fromLatin1(name)); }
  void Trigger(const char* name) { w.window->action(QString::fromLatin1(name))->trigger(); }
  QByteArray Bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
  }
};

TEST_F(ReportMenu, ProtocolIsWrittenOpenedAndLeavesTheLastFileShown) {
  for (const char* name : {"mnuReportMaster", "mnuReportProtokol", "mnuReportPattern"})
    EXPECT_TRUE(w.window->action(QString::fromLatin1(name))->isEnabled()) << name;
  std::vector<std::pair<int, int>> steps;
  QObject::connect(reports->waitWindow(), &ui::WaitWindow::progressed, [&](int done, int count) {
    steps.emplace_back(done, count);
    EXPECT_TRUE(reports->waitWindow()->isVisible());
    EXPECT_FALSE(w.window->action(QStringLiteral("mnuReportProtokol"))->isEnabled());
  });
  w.prompts.answers = {PromptAnswer::Yes};
  w.prompts.texts = {folder("протокол")};
  Trigger("mnuReportProtokol");

  EXPECT_EQ(reports->lastResult().outcome, reports::ReportOutcome::Written);
  EXPECT_EQ(opened, QStringList{folder("протокол.xlsx")});
  EXPECT_TRUE(QFile::exists(folder("протокол.xlsx")));
  EXPECT_EQ(steps, (std::vector<std::pair<int, int>>{{0, 3}, {1, 3}, {2, 3}, {3, 3}}));
  EXPECT_FALSE(reports->waitWindow()->isVisible());
  EXPECT_EQ(w.state->PathFileData, folder("c.aqx"));
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuReportProtokol"))->isEnabled());
  EXPECT_FALSE(w.window->mdiArea()->subWindowList().isEmpty());
  EXPECT_TRUE(w.window->mdiArea()->updatesEnabled());
}

TEST_F(ReportMenu, CancelInTheMiddleWritesNothingAndOpensNothing) {
  QObject::connect(reports->waitWindow(), &ui::WaitWindow::progressed, [&](int done, int) {
    if (done == 1) reports->waitWindow()->cancelButton()->click();
  });
  w.prompts.answers = {PromptAnswer::Yes};
  w.prompts.texts = {folder("протокол.xlsx")};
  Trigger("mnuReportProtokol");
  EXPECT_EQ(reports->lastResult().outcome, reports::ReportOutcome::Cancelled);
  EXPECT_FALSE(QFile::exists(folder("протокол.xlsx")));
  EXPECT_TRUE(opened.isEmpty());
  EXPECT_FALSE(reports->waitWindow()->isVisible());
  EXPECT_EQ(w.state->PathFileData, folder("a.aqx"));  // the one file read before the cancel
}

TEST_F(ReportMenu, TemplateIsFilledIntoANewFileAndTheFormKept) {
  reports::ProtocolTable form;
  form.set(1, 1, QStringLiteral("Aquilonix/Холостой ход без возбуждения/1/Турбинный подшипник/+X/ОУ/С"));
  QString error;
  const QString formPath = w.path(QStringLiteral("форма.xlsx"));
  ASSERT_TRUE(reports::WriteProtocolWorkbook(form, formPath, error)) << error.toStdString();
  const QByteArray formBytes = Bytes(formPath);

  w.prompts.texts = {formPath, folder("заполнено.xlsx")};
  Trigger("mnuReportPattern");
  EXPECT_EQ(reports->lastResult().outcome, reports::ReportOutcome::Written);
  EXPECT_EQ(w.prompts.shown.front().title, QStringLiteral("Открыть шаблон"));
  EXPECT_EQ(opened, QStringList{folder("заполнено.xlsx")});
  EXPECT_NE(Bytes(folder("заполнено.xlsx")), formBytes);
  EXPECT_EQ(Bytes(formPath), formBytes);
  EXPECT_EQ(w.state->PathFileData, folder("c.aqx"));

  // A form that is no workbook: told, nothing read, nothing opened.
  w.prompts.shown.clear();
  opened.clear();
  w.prompts.texts = {folder("b.aqx")};
  Trigger("mnuReportPattern");
  EXPECT_EQ(reports->lastResult().outcome, reports::ReportOutcome::Failed);
  EXPECT_EQ(w.prompts.messages().size(), 1u);
  EXPECT_TRUE(opened.isEmpty());
}

TEST_F(ReportMenu, MasterWalksItsStepsForwardAndBack) {
  Trigger("mnuReportMaster");
  ui::MasterWizard* m = reports->wizard();
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->windowTitle(), QStringLiteral("Мастер протокола (Шаг 1/5)"));
  EXPECT_FALSE(m->backButton()->isEnabled());
  EXPECT_FALSE(m->next());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Отсутствуют файлы для формирования протокола!"));

  m->addPaths({w.path(QStringLiteral("run"))});  // a folder adds its recordings
  m->addPaths({folder("b.aqx")});               // once each
  EXPECT_EQ(m->files(), (QStringList{folder("a.aqx"), folder("b.aqx"), folder("c.aqx")}));
  ASSERT_TRUE(m->next());
  EXPECT_EQ(m->windowTitle(), QStringLiteral("Мастер протокола (Шаг 2/5)"));
  m->fileOrder()->move(2, -2);  // c first
  ASSERT_TRUE(m->next());
  QListWidget* channels = m->channelList()->list();
  ASSERT_EQ(channels->count(), 4);
  EXPECT_EQ(channels->item(0)->text(), QStringLiteral("Биение - Турбинный подшипник - +X"));
  m->channelList()->setAllChecked(false);
  EXPECT_FALSE(m->next());
  channels->item(1)->setCheckState(Qt::Checked);
  m->channelList()->move(1, -1);
  // Back and forward again: the choices of the later steps stay.
  m->back();
  m->back();
  EXPECT_EQ(m->step(), 1);
  ASSERT_TRUE(m->next());
  ASSERT_TRUE(m->next());
  EXPECT_EQ(m->channelList()->chosen(), std::vector<int>{1});
  ASSERT_TRUE(m->next());
  EXPECT_EQ(m->windowTitle(), QStringLiteral("Мастер протокола (Шаг 4/5)"));
  QListWidget* parameters = m->parameterList()->list();
  ASSERT_EQ(parameters->count(), 14);
  m->parameterList()->setAllChecked(false);
  EXPECT_FALSE(m->next());
  parameters->item(3)->setCheckState(Qt::Checked);  // ОУ (сред.)
  parameters->item(2)->setCheckState(Qt::Checked);  // ОУ (макс.)
  m->parameterList()->move(3, -3);
  ASSERT_TRUE(m->next());
  EXPECT_EQ(m->nextButton()->text(), QStringLiteral("Готово"));
  EXPECT_TRUE(m->summaryText().endsWith(QStringLiteral("Обрабатываемые каналы:\n\tВибрация - Турбинный подшипник - +X\n"
                                                       "Обрабатываемые параметры:\n\tОУ (сред.)\n\tОУ (макс.)\n")));
  EXPECT_TRUE(m->summaryText().startsWith(QStringLiteral("Обрабатываемые файлы:\n\t") +
                                          QDir::toNativeSeparators(folder("c.aqx"))));

  w.prompts.texts = {folder("мастер.xlsx")};
  m->nextButton()->click();
  EXPECT_EQ(reports->lastResult().outcome, reports::ReportOutcome::Written);
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Протокол успешно сформирован."));
  EXPECT_EQ(opened, QStringList{folder("мастер.xlsx")});
  EXPECT_EQ(w.state->PathFileData, folder("b.aqx"));  // the last in the chosen order
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(reports->wizard(), nullptr);
}

TEST_F(ReportMenu, MasterCancelledAtAnyStepDoesNothing) {
  Trigger("mnuReportMaster");
  ui::MasterWizard* m = reports->wizard();
  ASSERT_NE(m, nullptr);
  m->addPaths({folder("a.aqx")});
  ASSERT_TRUE(m->next());
  ASSERT_TRUE(m->next());
  m->cancelButton()->click();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(reports->wizard(), nullptr);
  EXPECT_TRUE(opened.isEmpty());
  EXPECT_EQ(w.state->PathFileData, folder("a.aqx"));
  EXPECT_EQ(w.prompts.messages().size(), 0u);
}

}  // namespace
}  // namespace aqx
