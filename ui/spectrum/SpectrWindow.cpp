#include "ui/spectrum/SpectrWindow.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/PlainFile.h"
#include "ui/common/CopyPicture.h"
#include "ui/common/Icons.h"
#include "ui/common/OptionMenu.h"
#include "ui/common/PanelBar.h"
#include "ui/spectrum/ViewPicture.h"
#include "views/spectrum/SpectrumRefresh.h"

#include <QActionGroup>
#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QMenu>

namespace aqx::ui {

namespace {

const char* const kPanelKeys[] = {"Dimension", "Cursor", "Level", "TypeDiagram", "BlockSizeFFT", "Scale"};
static_assert(std::size(kPanelKeys) == static_cast<size_t>(views::SpectrPanel::kCount));

views::MouseButton ToViewButton(Qt::MouseButton b) {
  if (b == Qt::LeftButton) return views::MouseButton::Left;
  if (b == Qt::RightButton) return views::MouseButton::Right;
  return views::MouseButton::Other;
}

}  // namespace

SpectrWindow::SpectrWindow(ViewHost& host, Prompts& prompts, std::function<void()> openAnalyserSettings,
                           QWidget* parent)
    : QWidget(parent),
      host_(host),
      s_(host.state()),
      prompts_(prompts),
      openAnalyserSettings_(std::move(openAnalyserSettings)),
      font_(DefaultViewFont()) {
  setObjectName(QStringLiteral("frmViewSpectr"));
  setWindowTitle(QStringLiteral("Спектр"));
  setWindowIcon(MakeToolIcon(ToolIcon::Spectr));
  setMinimumSize(160, 120);
  metrics_ = std::make_unique<QtFontMetrics>(font_);
  picture_ = new ViewPicture(QStringLiteral("pctSpectr"), this);
  picture_->setFont(font_);
  picture_->pressed = [this](Qt::MouseButton b, QPointF) { pictureMousePress(b); };
  picture_->moved = [this](QPointF pos, bool) { pictureMouseMove(pos); };
  picture_->left = [this] { pictureLeave(); };
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar1"));
  statusBar_->setPanelKeys(kPanelKeys);
  statusBar_->setToolTipOf(QStringLiteral("Cursor"), QStringLiteral("Курсор: свободный или привязанный к линии"));
  statusBar_->setToolTipOf(QStringLiteral("TypeDiagram"), QStringLiteral("Гистограмма или график"));
  statusBar_->setToolTipOf(QStringLiteral("BlockSizeFFT"), QStringLiteral("Настройка спектрального анализа"));
  statusBar_->setToolTipOf(QStringLiteral("Scale"), QStringLiteral("Диапазон частот: левая кнопка - шире, правая - уже"));
  parameterBar_ = new PanelBar(this);
  parameterBar_->setObjectName(QStringLiteral("StatusBarParameter"));
  parameterBar_->setEqualWidths(true);
  connect(statusBar_, &PanelBar::panelClicked, this, &SpectrWindow::panelClicked);
  buildMenu();
  s_.ViewOpenFlags[frmViewSpectr] = true;
}

SpectrWindow::~SpectrWindow() {
  s_.ViewOpenFlags[frmViewSpectr] = false;
  SaveOptionSection(host_.settings(), s_, QString::fromLatin1(kSectionSpectr));
}

const views::DrawList& SpectrWindow::picture() const { return picture_->list(); }
QWidget* SpectrWindow::pictureWidget() const { return picture_; }

void SpectrWindow::buildMenu() {
  menu_ = new QMenu(QStringLiteral("Спектр"), this);
  menu_->setObjectName(QStringLiteral("mnuSpectr"));
  SettingsStore& store = host_.settings();
  const auto changed = [this] {
    refreshMenuChecks();
    layoutBars();
    BuildSpectr();
    OutStatusBarParameter();
  };
  AddOptionToggles(menu_, kSectionSpectr, 0, s_, store, actions_, changed);
  QMenu* cursor = menu_->addMenu(QStringLiteral("Курсор"));
  cursor->setObjectName(QStringLiteral("mnuSpectrCursor"));
  const std::pair<views::SpectrCursor, const char*> cursors[] = {{views::SpectrCursor::Free, "Свободный"},
                                                                  {views::SpectrCursor::Bound, "Привязанный"}};
  for (int i = 0; i < 2; ++i) {
    QAction* a = cursor->addAction(QString::fromUtf8(cursors[i].second));
    a->setObjectName(QStringLiteral("mnuSpectrCursor%1").arg(i));
    a->setCheckable(true);
    const views::SpectrCursor entry = cursors[i].first;
    connect(a, &QAction::triggered, this, [this, entry] { apply(views::SetSpectrCursor(s_, v_, entry)); });
    actions_.insert(a->objectName(), a);
  }
  QMenu* guides = menu_->addMenu(QStringLiteral("Линии-ориентиры"));
  guides->setObjectName(QStringLiteral("mnuSpectrLinesOrientir"));
  AddOptionToggles(guides, kSectionSpectr, 1, s_, store, actions_, changed);
  QMenu* count = guides->addMenu(QStringLiteral("Количество гармоник"));
  count->setObjectName(QStringLiteral("mnuSpectrGarmonicaN"));
  auto* countGroup = new QActionGroup(count);
  for (int n = 1; n <= 10; ++n) {
    QAction* a = count->addAction(QString::number(n));
    a->setObjectName(QStringLiteral("mnuSpectrGarmonicaN%1").arg(n));
    a->setCheckable(true);
    countGroup->addAction(a);
    connect(a, &QAction::triggered, this, [this, n] { apply(views::SpectrGarmonicaN(s_, n)); });
    actions_.insert(a->objectName(), a);
  }
  menu_->addSeparator();
  QMenu* type = menu_->addMenu(QStringLiteral("Тип диаграммы"));
  type->setObjectName(QStringLiteral("mnuSpectrViewType"));
  const char* const typeCaptions[] = {"Гистограмма", "График"};
  for (int i = 0; i < 2; ++i) {
    QAction* a = type->addAction(QString::fromUtf8(typeCaptions[i]));
    a->setObjectName(QStringLiteral("mnuSpectrViewType%1").arg(i));
    a->setCheckable(true);
    connect(a, &QAction::triggered, this, [this, i] {
      if (s_.options.spectr.SpectrViewType != i) apply(views::SpectrViewTypeChange(s_));
      refreshMenuChecks();
    });
    actions_.insert(a->objectName(), a);
  }
  QMenu* evaluation = menu_->addMenu(QStringLiteral("Оценка вибрации"));
  evaluation->setObjectName(QStringLiteral("mnuSpectrEvaluation"));
  const char* const classes[] = {"Опорные конструкции гидроагрегата", "Стальные конструкции статора",
                                 "Лобовые части обмотки статора"};
  for (int i = 1; i <= 3; ++i) {
    QAction* a = evaluation->addAction(QString::fromUtf8(classes[i - 1]));
    a->setObjectName(QStringLiteral("mnuSpectrEvaluation%1").arg(i));
    a->setCheckable(true);
    connect(a, &QAction::triggered, this, [this, i] { apply(views::SpectrEvaluationChange(s_, i)); });
    actions_.insert(a->objectName(), a);
  }
  QAction* integral = menu_->addAction(QStringLiteral("Интегрирование"));
  integral->setObjectName(QStringLiteral("mnuSpectrIntegral"));
  connect(integral, &QAction::triggered, this, [this] { apply(views::SpectrIntegral(s_, v_, host_.analysis())); });
  actions_.insert(integral->objectName(), integral);
  menu_->addSeparator();
  QAction* copy = menu_->addAction(MakeToolIcon(ToolIcon::Copy), QStringLiteral("Копировать рисунок"));
  copy->setObjectName(QStringLiteral("mnuSpectrCopy"));
  connect(copy, &QAction::triggered, this, &SpectrWindow::CopyPicture);
  actions_.insert(copy->objectName(), copy);
  QAction* lines = menu_->addAction(QStringLiteral("Копировать значения спектра"));
  lines->setObjectName(QStringLiteral("mnuSpectrCopyData"));
  connect(lines, &QAction::triggered, this, &SpectrWindow::CopyLines);
  actions_.insert(lines->objectName(), lines);
  QAction* csv = menu_->addAction(QStringLiteral("Сохранить спектр в файл CSV ..."));
  csv->setObjectName(QStringLiteral("mnuSpectrSaveCsv"));
  connect(csv, &QAction::triggered, this, &SpectrWindow::SaveLinesCsv);
  actions_.insert(csv->objectName(), csv);
  refreshMenuChecks();
}

void SpectrWindow::refreshMenuChecks() {
  RefreshOptionChecks(actions_, s_, kSectionSpectr);
  const views::SpectrCursor cursor = views::SpectrCursorOf(s_);
  actions_.value(QStringLiteral("mnuSpectrCursor0"))->setChecked(cursor == views::SpectrCursor::Free);
  actions_.value(QStringLiteral("mnuSpectrCursor1"))->setChecked(cursor == views::SpectrCursor::Bound);
  for (int i = 0; i < 2; ++i)
    actions_.value(QStringLiteral("mnuSpectrViewType%1").arg(i))->setChecked(s_.options.spectr.SpectrViewType == i);
  for (int i = 1; i <= 3; ++i)
    actions_.value(QStringLiteral("mnuSpectrEvaluation%1").arg(i))->setChecked(s_.options.spectr.Evaluation == i);
  for (int n = 1; n <= 10; ++n)
    actions_.value(QStringLiteral("mnuSpectrGarmonicaN%1").arg(n))->setChecked(s_.options.spectr.GarmonicaN == n);
  picture_->setCursor(cursor == views::SpectrCursor::None ? Qt::ArrowCursor : Qt::CrossCursor);
}

void SpectrWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  layoutBars();
}

void SpectrWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (isVisible()) layoutBars();
}

void SpectrWindow::layoutBars() {
  const int bar = statusBar_->sizeHint().height();
  int bottom = height();
  statusBar_->setVisible(s_.options.spectr.StatusBar);
  if (s_.options.spectr.StatusBar) {
    bottom -= bar;
    statusBar_->setGeometry(0, bottom, width(), bar);
  }
  parameterBar_->setVisible(s_.options.spectr.StatusBarParameter);
  if (s_.options.spectr.StatusBarParameter) {
    bottom -= bar;
    parameterBar_->setGeometry(0, bottom, width(), bar);
  }
  if (width() < 11 || bottom < 11) return;
  picture_->setGeometry(0, 0, width(), bottom);
  const bool sizeChanged = v_.widthPx != width() || v_.heightPx != bottom;
  v_.widthPx = width();
  v_.heightPx = bottom;
  if (sizeChanged || !shown_) {
    shown_ = true;
    BuildSpectr();
    OutStatusBarParameter();
  }
}

void SpectrWindow::installRefresh(views::ViewRegistry& registry) {
  views::SpectrWindowHooks hooks;
  hooks.fm = metrics_->metrics();
  hooks.showPicture = [this](views::DrawList&& list) { showPicture(std::move(list)); };
  hooks.showStatus = [this](views::SpectrStatus&& st) { showStatus(st); };
  hooks.showParameterBar = [this](views::ParameterBar&& bar) { showParameterBar(bar); };
  hooks.parameterBarWidthPx = [this] { return parameterBar_->width(); };
  views::InstallSpectrView(registry, s_, v_, host_.analysis(), std::move(hooks));
}

void SpectrWindow::BuildSpectr() {
  if (v_.widthPx <= 0 || v_.heightPx <= 0) return;
  showPicture(views::BuildSpectr(s_, v_, host_.analysis(), metrics_->metrics()));
  showStatus(views::OutInfoToStatusBar(s_, v_));
}

void SpectrWindow::OutStatusBarParameter() {
  if (!s_.options.spectr.StatusBarParameter) return;
  views::AccountChannelProbeValues(s_, host_.analysis());
  showParameterBar(views::OutSpectrStatusBarParameter(s_, host_.analysis(), parameterBar_->width()));
}

void SpectrWindow::showPicture(views::DrawList&& list) {
  picture_->setPicture(std::move(list), font_);
  updateCrosshair();
}

void SpectrWindow::showStatus(const views::SpectrStatus& st) {
  for (size_t i = 0; i < st.text.size(); ++i) statusBar_->setText(QString::fromLatin1(kPanelKeys[i]), st.text[i]);
}

void SpectrWindow::showParameterBar(const views::ParameterBar& bar) { parameterBar_->showParameters(bar); }

void SpectrWindow::updateCrosshair() {
  views::DrawList overlay;
  views::AppendSpectrCrosshair(v_, overlay, metrics_->metrics());
  picture_->setOverlay(std::move(overlay));
}

void SpectrWindow::apply(const views::SpectrAction& a) {
  if (a.optionsChanged) {
    SaveOptionSection(host_.settings(), s_, QString::fromLatin1(kSectionSpectr));
    refreshMenuChecks();
  }
  if (a.scaleChanged) SaveScaleSpectr(host_.settings(), s_);
  if (a.viewRefresh) host_.viewRefresh(false);
  if (a.redraw && !a.viewRefresh) BuildSpectr();
  if (a.crosshair) updateCrosshair();
  if (a.statusBar) showStatus(views::OutInfoToStatusBar(s_, v_));
  if (a.popupMenu) {
    refreshMenuChecks();
    menu_->popup(QCursor::pos());
  }
  if (a.analyserSettings && openAnalyserSettings_) openAnalyserSettings_();
}

void SpectrWindow::pictureMousePress(Qt::MouseButton button) { apply(views::SpectrMouseDown(s_, v_, ToViewButton(button))); }

void SpectrWindow::pictureMouseMove(QPointF pos) {
  apply(views::SpectrMouseMove(s_, v_, host_.analysis(), pos.x(), pos.y()));
}

void SpectrWindow::pictureLeave() { apply(views::SpectrMouseLeave(v_)); }

void SpectrWindow::panelClicked(const QString& key, Qt::MouseButton button) {
  for (size_t i = 0; i < std::size(kPanelKeys); ++i) {
    if (key != QLatin1String(kPanelKeys[i])) continue;
    apply(views::SpectrPanelClicked(s_, v_, static_cast<views::SpectrPanel>(i), ToViewButton(button)));
    return;
  }
}

namespace {

CopyHeader SpectrCopyHeader(const AppState& s, const QString& parameters) {
  CopyHeader header;
  header.diagramType = QStringLiteral("Спектр (") +
                       (s.options.spectr.SpectrViewType == 0 ? QStringLiteral("гистограмма") : QStringLiteral("график")) +
                       QStringLiteral(")");
  header.parameterText = parameters;
  return header;
}

}  // namespace

QImage SpectrWindow::CopyPictureImage() {
  const QStringList lines = CopyHeaderLines(s_, host_.vocabulary(), SpectrCopyHeader(s_, parameterBar_->joinedText()));
  v_.Copying = true;
  const views::DrawList list = views::DrawSpectr(s_, v_, host_.analysis(), metrics_->metrics());
  v_.Copying = false;
  return ComposeCopyImage(lines, RenderDrawList(list, font_), font_);
}

void SpectrWindow::CopyPicture() {
  const QStringList lines = CopyHeaderLines(s_, host_.vocabulary(), SpectrCopyHeader(s_, parameterBar_->joinedText()));
  PutPictureOnClipboard(CopyPictureImage(), lines);
}

void SpectrWindow::CopyLines() {
  const views::AnalysisResults& r = host_.analysis();
  QGuiApplication::clipboard()->setText(
      views::SpectrumLinesText(r, s_.SpectrLineCount, s_.StepDesc, QLatin1Char('\t'), true));
}

void SpectrWindow::SaveLinesCsv() {
  const auto path = prompts_.chooseSaveFile(QStringLiteral("Сохранить спектр"), s_.InitDirSave,
                                            QStringLiteral("spectr.csv"), QStringLiteral("Файлы CSV (*.csv)|*.csv"));
  if (!path || path->isEmpty()) return;
  const QByteArray bytes =
      views::SpectrumLinesText(host_.analysis(), s_.SpectrLineCount, s_.StepDesc, QLatin1Char(';'), false).toUtf8();
  int error = 0;
  if (!ReplaceFileContents(*path, std::span<const char>(bytes.constData(), static_cast<size_t>(bytes.size())), error)) {
    prompts_.tell(QStringLiteral("Не удалось записать файл \"%1\": %2.").arg(*path, ReasonOfError(error, true)),
                  QStringLiteral("Ошибка"), PromptIcon::Critical);
  }
}

}  // namespace aqx::ui
