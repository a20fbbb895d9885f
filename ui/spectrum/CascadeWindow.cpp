#include "ui/spectrum/CascadeWindow.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "ui/common/CopyPicture.h"
#include "ui/common/Icons.h"
#include "ui/common/OptionMenu.h"
#include "ui/common/PanelBar.h"
#include "ui/spectrum/ViewPicture.h"
#include "views/spectrum/SpectrumRefresh.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QToolBar>

namespace aqx::ui {

namespace {
const QString kCornerSection = QString::fromLatin1(kSectionTraectoria);
}  // namespace

CascadeWindow::CascadeWindow(ViewHost& host, QWidget* parent)
    : QWidget(parent), host_(host), s_(host.state()), font_(DefaultViewFont()) {
  setObjectName(QStringLiteral("frmViewSpectrum"));
  setWindowIcon(MakeToolIcon(ToolIcon::Spectrum));
  setMinimumSize(200, 160);
  toolbar_ = new QToolBar(this);
  toolbar_->setObjectName(QStringLiteral("Toolbar"));
  toolbar_->setIconSize(QSize(16, 16));
  plus_ = toolbar_->addAction(QStringLiteral("+"));
  plus_->setObjectName(QStringLiteral("Plus"));
  plus_->setToolTip(QStringLiteral("Больше спектров"));
  minus_ = toolbar_->addAction(QStringLiteral("−"));
  minus_->setObjectName(QStringLiteral("Minus"));
  minus_->setToolTip(QStringLiteral("Меньше спектров"));
  connect(plus_, &QAction::triggered, this, &CascadeWindow::Plus);
  connect(minus_, &QAction::triggered, this, &CascadeWindow::Minus);
  picture_ = new ViewPicture(QStringLiteral("pctSpectrum"), this);
  picture_->setFont(font_);
  picture_->pressed = [this](Qt::MouseButton b, QPointF pos) { pictureMousePress(b, pos); };
  picture_->moved = [this](QPointF pos, bool held) { pictureMouseMove(pos, held); };
  picture_->released = [this] { pictureMouseRelease(); };
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar1"));
  statusBar_->setPanels({{QStringLiteral("Dimension"), {}, {}}, {QStringLiteral("TypeDiagram"), {}, QStringLiteral("Гистограмма или график"), true, true, true}});
  connect(statusBar_, &PanelBar::panelClicked, this, [this](const QString& key, Qt::MouseButton) {
    if (key != QLatin1String("TypeDiagram")) return;
    // SpectrumViewTypeChange.
    s_.options.spectrum.SpectrumViewType = s_.options.spectrum.SpectrumViewType == 0 ? 1 : 0;
    SaveOption(host_.settings(), s_, QString::fromLatin1(kSectionSpectrum), QStringLiteral("SpectrumViewType"));
    showPicture(views::DrawCascade(s_, v_));
    OutInfoToStatusBar();
  });
  menu_ = new QMenu(QStringLiteral("Каскад спектров"), this);
  menu_->setObjectName(QStringLiteral("mnuSpectrum"));
  QHash<QString, QAction*> actions;
  AddOptionToggles(menu_, kSectionSpectrum, 0, s_, host_.settings(), actions, [this] { layoutBars(); });
  QAction* copy = menu_->addAction(MakeToolIcon(ToolIcon::Copy), QStringLiteral("Копировать рисунок"));
  copy->setObjectName(QStringLiteral("mnuSpectrumCopy"));
  connect(copy, &QAction::triggered, this, &CascadeWindow::CopyPicture);
  const SettingsStore& store = host_.settings();
  ratioX_ = ParseSettingDouble(store.get(kCornerSection, QStringLiteral("Xc"), QStringLiteral("1,4")), store.locale()).value_or(1.4);
  ratioY_ = ParseSettingDouble(store.get(kCornerSection, QStringLiteral("Yc"), QStringLiteral("1,9")), store.locale()).value_or(1.9);
  OutCaption();
  s_.ViewOpenFlags[frmViewSpectrum] = true;
}

CascadeWindow::~CascadeWindow() {
  s_.ViewOpenFlags[frmViewSpectrum] = false;
  if (placed_) SaveCordinates();
}

const views::DrawList& CascadeWindow::picture() const { return picture_->list(); }
QWidget* CascadeWindow::pictureWidget() const { return picture_; }

void CascadeWindow::OutCaption() {
  setWindowTitle(views::CascadeCaption(v_.CascadeN));
  plus_->setEnabled(v_.CascadeN < views::kCascadeMaxParts);
  minus_->setEnabled(v_.CascadeN > views::kCascadeMinParts);
}

void CascadeWindow::OutInfoToStatusBar() {
  const auto [dimension, type] = views::CascadeStatusTexts(s_);
  statusBar_->setText(QStringLiteral("Dimension"), dimension);
  statusBar_->setText(QStringLiteral("TypeDiagram"), type);
}

void CascadeWindow::SaveCordinates() {
  const auto [rx, ry] = views::CornerRatios(v_);
  SettingsStore& store = host_.settings();
  SettingsStore::Batch batch(store);
  WriteSetting(store, kCornerSection, QStringLiteral("Xc"), rx);
  WriteSetting(store, kCornerSection, QStringLiteral("Yc"), ry);
}

void CascadeWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  layoutBars();
}

void CascadeWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (isVisible()) layoutBars();
}

void CascadeWindow::layoutBars() {
  const int top = toolbar_->sizeHint().height();
  toolbar_->setGeometry(0, 0, width(), top);
  int bottom = height();
  statusBar_->setVisible(s_.options.spectrum.StatusBar);
  if (s_.options.spectrum.StatusBar) {
    const int bar = statusBar_->sizeHint().height();
    bottom -= bar;
    statusBar_->setGeometry(0, bottom, width(), bar);
  }
  if (width() < 11 || bottom - top < 11) return;
  picture_->setGeometry(0, top, width(), bottom - top);
  const int w = width();
  const int h = bottom - top;
  if (w == v_.widthPx && h == v_.heightPx && placed_) return;
  // The corner keeps its place relative to the picture.
  const auto ratios = placed_ ? views::CornerRatios(v_) : std::make_pair(ratioX_, ratioY_);
  v_.widthPx = w;
  v_.heightPx = h;
  views::PlaceCorner(v_, ratios.first, ratios.second);
  placed_ = true;
  BuildCascadeSpectrum();
}

void CascadeWindow::installRefresh(views::ViewRegistry& registry) {
  views::CascadeWindowHooks hooks;
  hooks.showPicture = [this](views::DrawList&& list) { showPicture(std::move(list)); };
  hooks.showStatus = [this] { OutInfoToStatusBar(); };
  views::InstallCascadeView(registry, s_, v_, std::move(hooks));
}

void CascadeWindow::BuildCascadeSpectrum() {
  if (v_.widthPx <= 0 || v_.heightPx <= 0) return;
  views::PrepareCascade(s_, v_);
  showPicture(views::DrawCascade(s_, v_));
  OutInfoToStatusBar();
}

void CascadeWindow::showPicture(views::DrawList&& list) { picture_->setPicture(std::move(list), font_); }

void CascadeWindow::Plus() {
  v_.CascadeN = views::CascadePlus(v_.CascadeN);
  OutCaption();
  BuildCascadeSpectrum();
}

void CascadeWindow::Minus() {
  v_.CascadeN = views::CascadeMinus(v_.CascadeN);
  OutCaption();
  BuildCascadeSpectrum();
}

void CascadeWindow::pictureMousePress(Qt::MouseButton button, QPointF pos) {
  if (button == Qt::RightButton) {
    menu_->popup(QCursor::pos());
    return;
  }
  if (button != Qt::LeftButton) return;
  v_.Dragging = true;
  pictureMouseMove(pos, true);
}

void CascadeWindow::pictureMouseMove(QPointF pos, bool leftHeld) {
  if (!leftHeld || !v_.Dragging) return;
  if (!views::CornerAccepted(v_.widthPx, v_.heightPx, pos.x(), pos.y())) return;
  v_.Xc = static_cast<int>(pos.x());
  v_.Yc = static_cast<int>(pos.y());
  // While dragging only the box follows; the parts are made anew on release.
  views::DrawList box = views::DrawCascade(s_, v_);
  showPicture(std::move(box));
}

void CascadeWindow::pictureMouseRelease() {
  if (!v_.Dragging) return;
  v_.Dragging = false;
  SaveCordinates();
  BuildCascadeSpectrum();
}

QImage CascadeWindow::CopyPictureImage() {
  CopyHeader header;
  header.diagramType = views::CascadeCaption(v_.CascadeN);
  const QStringList lines = CopyHeaderLines(s_, host_.vocabulary(), header);
  return ComposeCopyImage(lines, RenderDrawList(picture_->list(), font_), font_);
}

void CascadeWindow::CopyPicture() {
  CopyHeader header;
  header.diagramType = views::CascadeCaption(v_.CascadeN);
  PutPictureOnClipboard(CopyPictureImage(), CopyHeaderLines(s_, host_.vocabulary(), header));
}

}  // namespace aqx::ui
