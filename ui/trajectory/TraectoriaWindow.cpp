#include "ui/trajectory/TraectoriaWindow.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "ui/common/CopyPicture.h"
#include "ui/common/PanelBar.h"
#include "ui/common/PictureWidget.h"
#include "views/trajectory/TraectoriaRefresh.h"

#include <QProgressBar>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>

namespace aqx::ui {

namespace {

const char* const kPanelKeys[] = {"Dimension", "Window", "Cursor", "BeginPoint"};
static_assert(std::size(kPanelKeys) == static_cast<size_t>(views::TraectoriaPanel::kCount));

void Place(QWidget* w, const views::TraectoriaRect& r) {
  w->setVisible(r.visible);
  if (r.visible) w->setGeometry(r.left, r.top, std::max(0, r.width), std::max(0, r.height));
}

QScrollBar* Bar(Qt::Orientation o, const char* name, const QString& tip, QWidget* parent) {
  auto* bar = new QScrollBar(o, parent);
  bar->setObjectName(QString::fromLatin1(name));
  bar->setToolTip(tip);
  return bar;
}

}  // namespace

TraectoriaWindow::TraectoriaWindow(ViewHost& host, std::function<void(QPoint)> popup, QWidget* parent)
    : QWidget(parent), host_(host), s_(host.state()), popup_(std::move(popup)), font_(DefaultViewFont()) {
  setObjectName(QStringLiteral("frmViewTraectoria"));
  setWindowTitle(v_.Caption);
  setMinimumSize(80, 80);
  metrics_ = std::make_unique<QtFontMetrics>(font_);
  picture_ = new PictureWidget(QStringLiteral("pctTraectoria"), font_, this);
  PictureWidget::Handlers handlers;
  handlers.press = [this](Qt::MouseButton b, QPoint p) {
    const auto button = b == Qt::LeftButton    ? views::TraectoriaButton::Left
                        : b == Qt::RightButton ? views::TraectoriaButton::Right
                                               : views::TraectoriaButton::Other;
    apply(views::TraectoriaMouseDown(s_, v_, button, p.x(), p.y()));
  };
  handlers.move = [this](QPoint p, Qt::MouseButtons buttons) {
    apply(views::TraectoriaMouseMove(s_, v_, p.x(), p.y(), (buttons & Qt::LeftButton) != 0));
  };
  handlers.release = [this](Qt::MouseButton b) {
    if (b == Qt::LeftButton) apply(views::TraectoriaMouseUp(v_));
  };
  handlers.doubleClick = [this] { apply(views::TraectoriaDoubleClick(v_)); };
  picture_->setHandlers(std::move(handlers));

  sliderV_ = new QSlider(Qt::Vertical, this);
  sliderV_->setObjectName(QStringLiteral("SliderV"));
  sliderV_->setRange(-1, kAmplitudeScaleCount - 1);
  sliderV_->setPageStep(1);
  sliderV_->setTickPosition(QSlider::TicksRight);
  flatH_ = Bar(Qt::Horizontal, "FlatScrollBarH", QStringLiteral("Смещение по горизонтали"), this);
  flatV_ = Bar(Qt::Vertical, "FlatScrollBarV", QStringLiteral("Смещение по вертикали"), this);
  hScrollL_ = Bar(Qt::Horizontal, "HScrollL", QStringLiteral("Начало участка"), this);
  hScrollR_ = Bar(Qt::Horizontal, "HScrollR", QStringLiteral("Конец участка"), this);
  progress_ = new QProgressBar(this);
  progress_->setObjectName(QStringLiteral("ProgressBar1"));
  progress_->setTextVisible(false);
  progress_->hide();
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar1"));
  statusBar_->setPanelKeys(kPanelKeys);
  statusBar_->setToolTipOf(QStringLiteral("Cursor"), QStringLiteral("Курсор"));
  statusBar_->setToolTipOf(QStringLiteral("BeginPoint"), QStringLiteral("Начальная точка"));

  connect(sliderV_, &QSlider::valueChanged, this, [this](int value) {
    if (!syncing_) apply(views::TraectoriaSliderVChanged(v_, value));
  });
  const auto stretch = [this](bool left, int value) {
    if (syncing_ || !s_.ViewOpenFlags[frmViewTraectoria]) return;
    apply(left ? views::TraectoriaHScrollLChanged(v_, value) : views::TraectoriaHScrollRChanged(v_, value));
  };
  connect(hScrollL_, &QScrollBar::valueChanged, this, [stretch](int value) { stretch(true, value); });
  connect(hScrollR_, &QScrollBar::valueChanged, this, [stretch](int value) { stretch(false, value); });
  connect(flatH_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!syncing_) apply(views::TraectoriaFlatScrollChanged(v_, true, value));
  });
  connect(flatV_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!syncing_) apply(views::TraectoriaFlatScrollChanged(v_, false, value));
  });
  connect(statusBar_, &PanelBar::panelClicked, this, [this](const QString& key, Qt::MouseButton) {
    for (size_t i = 0; i < std::size(kPanelKeys); ++i)
      if (key == QLatin1String(kPanelKeys[i]))
        apply(views::TraectoriaPanelClicked(s_, v_, static_cast<views::TraectoriaPanel>(i)));
  });

  // On load: the peaks of the signal view's stretch, its stretch, the stored scale.
  s_.ViewOpenFlags[frmViewTraectoria] = true;
  views::AccountSignalMaxAll(s_);
  views::InitTraectoriaView(s_, v_);
  SetTypeMouseCursor();
}

TraectoriaWindow::~TraectoriaWindow() {
  s_.ViewOpenFlags[frmViewTraectoria] = false;
  s_.options.traectoria.ScaleXY = v_.ScaleXY;
  if (const SettingKey* key = FindSettingKey(QString::fromLatin1(kSectionTraectoria), QStringLiteral("ScaleXY")))
    WriteSettingKey(host_.settings(), *key, s_);
}

const views::DrawList& TraectoriaWindow::picture() const { return picture_->list(); }

void TraectoriaWindow::installRefresh(views::ViewRegistry& registry) {
  views::TraectoriaWindowHooks hooks;
  hooks.fm = metrics_->metrics();
  hooks.showPicture = [this](views::DrawList&& list) { show(std::move(list)); };
  hooks.showStatus = [this](views::TraectoriaStatus&& st) { showStatus(st); };
  hooks.controlsChanged = [this] { syncControls(); };
  views::InstallTraectoriaView(registry, s_, v_, host_.analysis(), std::move(hooks));
}

void TraectoriaWindow::BuildTraectoria() {
  if (v_.widthPx <= 0 || v_.heightPx <= 0) return;
  show(views::BuildTraectoria(s_, host_.analysis(), v_, metrics_->metrics()));
  OutInfoToStatusBar();
  syncControls();
}

void TraectoriaWindow::show(views::DrawList&& list) {
  picture_->setPicture(std::move(list));
  updateCrosshair();
}

void TraectoriaWindow::OutInfoToStatusBar() { showStatus(views::OutInfoToStatusBar(s_, v_)); }

void TraectoriaWindow::showStatus(const views::TraectoriaStatus& st) {
  for (size_t i = 0; i < st.text.size(); ++i) statusBar_->setText(QString::fromLatin1(kPanelKeys[i]), st.text[i]);
}

void TraectoriaWindow::SetTypeMouseCursor() {
  switch (views::PointerOf(s_, v_)) {
    case views::TraectoriaPointer::Arrow: picture_->setCursor(Qt::ArrowCursor); break;
    case views::TraectoriaPointer::OpenHand: picture_->setCursor(Qt::OpenHandCursor); break;
    case views::TraectoriaPointer::ClosedHand: picture_->setCursor(Qt::ClosedHandCursor); break;
  }
}

void TraectoriaWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  LayoutForSize();
}

void TraectoriaWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (isVisible()) LayoutForSize();
}

void TraectoriaWindow::LayoutForSize() {
  views::TraectoriaBarSizes sizes;
  sizes.statusBarPx = statusBar_->sizeHint().height();
  sizes.scrollPx = hScrollL_->sizeHint().height();
  sizes.sliderPx = std::max(22, sliderV_->sizeHint().width());
  const views::TraectoriaLayout l = views::TraectoriaLayoutForSize(width(), height(), s_.options.traectoria.StatusBar, sizes);
  // The bars' changes while the window is laid out are not the user's.
  syncing_ = true;
  Place(picture_, l.picture);
  Place(sliderV_, l.sliderV);
  Place(flatH_, l.flatScrollBarH);
  Place(flatV_, l.flatScrollBarV);
  Place(hScrollL_, l.hScrollL);
  Place(hScrollR_, l.hScrollR);
  progress_->setGeometry(l.progressBar.left, l.progressBar.top, l.progressBar.width, l.progressBar.height);
  Place(statusBar_, l.statusBar);
  views::ResizeTraectoria(v_, l.picture.width, l.picture.height);
  syncing_ = false;
  BuildTraectoria();
}

void TraectoriaWindow::optionsChanged() {
  SetTypeMouseCursor();
  // Only the status bar moves the bars (and centres the plane).
  if (statusBar_->isVisible() != s_.options.traectoria.StatusBar) {
    LayoutForSize();
  } else {
    BuildTraectoria();
  }
}

void TraectoriaWindow::syncControls() {
  syncing_ = true;
  {
    const QSignalBlocker b1(sliderV_), b2(flatH_), b3(flatV_), b4(hScrollL_), b5(hScrollR_);
    setWindowTitle(v_.Caption);
    sliderV_->setValue(v_.SliderV);
    sliderV_->setToolTip(v_.SliderVToolTip);
    flatH_->setRange(v_.FlatScrollBarHMin, v_.FlatScrollBarHMax);
    flatH_->setValue(v_.FlatScrollBarH);
    flatV_->setRange(v_.FlatScrollBarVMin, v_.FlatScrollBarVMax);
    flatV_->setValue(v_.FlatScrollBarV);
    hScrollL_->setRange(v_.HScrollLMin, std::max(v_.HScrollLMin, v_.HScrollLMax));
    hScrollL_->setValue(v_.HScrollL);
    hScrollR_->setRange(v_.HScrollRMin, std::max(v_.HScrollRMin, v_.HScrollRMax));
    hScrollR_->setValue(v_.HScrollR);
    for (QWidget* w : std::initializer_list<QWidget*>{sliderV_, flatH_, flatV_, hScrollL_, hScrollR_})
      w->setEnabled(v_.ControlsEnabled);
  }
  syncing_ = false;
}

void TraectoriaWindow::updateCrosshair() {
  views::DrawList overlay;
  views::AppendTraectoriaCrosshair(v_, overlay);
  picture_->setOverlay(std::move(overlay));
}

void TraectoriaWindow::apply(const views::TraectoriaAction& a) {
  // The popup takes its check marks from the state as it opens.
  if (a.optionsChanged) SaveOptionSection(host_.settings(), s_, QString::fromLatin1(kSectionTraectoria));
  if (a.pointer) SetTypeMouseCursor();
  if (a.slowDraw) {
    slowDraw();
    return;
  }
  if (a.redraw) BuildTraectoria();
  if (a.crosshair) updateCrosshair();
  if (a.statusBar) OutInfoToStatusBar();
  if (a.controls) syncControls();
  if (a.popupMenu && popup_) popup_(QCursor::pos());
}

void TraectoriaWindow::slowDraw() {
  if (v_.widthPx <= 0 || v_.heightPx <= 0) return;
  views::PrepareTraectoria(s_, host_.analysis(), v_);
  const bool orbit = v_.Paired && !s_.options.traectoria.TraectoriaFirstGarmonic && v_.BeginSample < v_.EndSample;
  if (!orbit) {
    BuildTraectoria();
    return;
  }
  v_.SlowDraw = true;
  hScrollL_->hide();
  hScrollR_->hide();
  progress_->setRange(v_.BeginSample, v_.EndSample);
  progress_->show();
  // Fifty pictures along the stretch; the spokes come as the orbit
  // reaches their marks.
  constexpr int kFrames = 50;
  const double step = (v_.EndSample - v_.BeginSample) / static_cast<double>(kFrames);
  for (int k = 1; k <= kFrames; ++k) {
    const int last = k == kFrames ? v_.EndSample : v_.BeginSample + static_cast<int>(k * step);
    picture_->setPicture(views::DrawTraectoria(s_, v_, metrics_->metrics(), last));
    progress_->setValue(last);
    picture_->repaint();
    progress_->repaint();
  }
  progress_->hide();
  hScrollL_->show();
  hScrollR_->show();
  v_.SlowDraw = false;
  BuildTraectoria();
}

QImage TraectoriaWindow::CopyPictureImage() const {
  const QStringList lines = views::TraectoriaCopyHeader(s_, host_.vocabulary(), v_);
  return ComposeCopyImage(lines, RenderDrawList(picture_->list(), font_), font_);
}

void TraectoriaWindow::CopyPicture() {
  BuildTraectoria();
  PutPictureOnClipboard(CopyPictureImage(), views::TraectoriaCopyHeader(s_, host_.vocabulary(), v_));
}

}  // namespace aqx::ui
