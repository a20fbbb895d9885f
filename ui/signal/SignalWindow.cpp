#include "ui/signal/SignalWindow.h"
#include "core/ChannelPhysics.h"

#include "core/ConfigKeys.h"
#include "ui/common/CopyPicture.h"
#include "ui/common/PanelBar.h"
#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "views/parameters/ParameterSteps.h"
#include "views/signal/SignalRefresh.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace aqx::ui {

// pctSignal: shows the last drawn picture and the cross-hair over it, and
// passes the mouse on to the window.
class SignalPicture : public QWidget {
 public:
  explicit SignalPicture(SignalWindow& owner) : QWidget(&owner), owner_(owner) {
    setObjectName(QStringLiteral("pctSignal"));
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
  }

  void setPicture(views::DrawList list, const QFont& font) {
    list_ = std::move(list);
    image_ = RenderDrawList(list_, font);
    update();
  }
  void setOverlay(views::DrawList overlay) {
    overlay_ = std::move(overlay);
    update();
  }
  const views::DrawList& list() const { return list_; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    if (image_.isNull() || list_.width < views::kMinPicturePx || list_.height < views::kMinPicturePx) {
      p.fillRect(rect(), ToQColor(list_.background));
    } else {
      p.drawImage(0, 0, image_);
      if (image_.width() < width()) p.fillRect(QRect(image_.width(), 0, width() - image_.width(), height()), ToQColor(list_.background));
      if (image_.height() < height()) p.fillRect(QRect(0, image_.height(), width(), height() - image_.height()), ToQColor(list_.background));
    }
    // The cross-hair inverts what lies under it; the backing store of a
    // widget is a raster image, where the inverting ink works.
    PaintDrawListItems(p, overlay_, font());
  }
  void mousePressEvent(QMouseEvent* e) override {
    owner_.pictureMousePress(e->button(), e->position(), (e->modifiers() & Qt::ControlModifier) != 0);
  }
  void mouseMoveEvent(QMouseEvent* e) override {
    owner_.pictureMouseMove(e->position(), (e->buttons() & Qt::LeftButton) != 0);
  }
  void mouseReleaseEvent(QMouseEvent*) override { owner_.pictureMouseRelease(); }

 private:
  SignalWindow& owner_;
  views::DrawList list_;
  views::DrawList overlay_;
  QImage image_;
};

namespace {

const char* const kPanelKeys[] = {"Dimension", "Scale", "Window", "Center", "Cursor", "Level",
                                  "Select",    "SelectLen", "Y0", "BeginPoint", "SignalDataN"};
static_assert(std::size(kPanelKeys) == static_cast<size_t>(views::SignalPanel::kCount));

views::MouseButton ToViewButton(Qt::MouseButton b) {
  if (b == Qt::LeftButton) return views::MouseButton::Left;
  if (b == Qt::RightButton) return views::MouseButton::Right;
  return views::MouseButton::Other;
}

void Place(QWidget* w, const views::PixelRect& r) {
  w->setVisible(r.visible);
  if (r.visible) w->setGeometry(r.left, r.top, r.width, r.height);
}

}  // namespace

SignalWindow::SignalWindow(ViewHost& host, QWidget* parent)
    : QWidget(parent), host_(host), s_(host.state()), font_(DefaultViewFont()) {
  setObjectName(QStringLiteral("frmViewSignal"));
  setWindowTitle(QStringLiteral("Сигнал"));
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 120);
  metrics_ = std::make_unique<QtFontMetrics>(font_);
  picture_ = new SignalPicture(*this);
  picture_->setFont(font_);

  sliderH_ = new QSlider(Qt::Horizontal, this);
  sliderH_->setObjectName(QStringLiteral("SliderH"));
  sliderH_->setTickPosition(QSlider::TicksBelow);
  sliderH_->setPageStep(1);
  sliderV_ = new QSlider(Qt::Vertical, this);
  sliderV_->setObjectName(QStringLiteral("SliderV"));
  sliderV_->setRange(-1, 17);
  sliderV_->setPageStep(1);
  sliderV_->setTickPosition(QSlider::TicksRight);
  hScroll_ = new QScrollBar(Qt::Horizontal, this);
  hScroll_->setObjectName(QStringLiteral("timeScroll"));
  vScroll_ = new QScrollBar(Qt::Vertical, this);
  vScroll_->setObjectName(QStringLiteral("VScroll1"));
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar1"));
  statusBar_->setPanelKeys(kPanelKeys);
  statusBar_->setToolTipOf(QStringLiteral("Dimension"), QStringLiteral("Масштаб по уровню: левая кнопка - крупнее, правая - мельче"));
  statusBar_->setToolTipOf(QStringLiteral("Scale"), QStringLiteral("Масштаб по времени: левая кнопка - крупнее, правая - мельче"));
  statusBar_->setToolTipOf(QStringLiteral("Center"), QStringLiteral("Линия центра"));
  statusBar_->setToolTipOf(QStringLiteral("Cursor"), QStringLiteral("Курсор: левая кнопка - свободный, правая - привязанный"));
  statusBar_->setToolTipOf(QStringLiteral("Y0"), QStringLiteral("Положение нулевой линии"));
  statusBar_->setToolTipOf(QStringLiteral("BeginPoint"), QStringLiteral("Начальная точка"));
  parameterBar_ = new PanelBar(this);
  parameterBar_->setObjectName(QStringLiteral("StatusBarParameter"));
  parameterBar_->setEqualWidths(true);

  connect(hScroll_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!syncing_) onHScroll(value, !hScroll_->isSliderDown());
  });
  connect(hScroll_, &QScrollBar::sliderReleased, this, [this] { onHScroll(hScroll_->value(), true); });
  connect(vScroll_, &QScrollBar::valueChanged, this, [this](int value) {
    if (!syncing_) apply(views::VScrollChanged(s_, v_, value));
  });
  connect(sliderH_, &QSlider::valueChanged, this, [this](int value) {
    if (!syncing_) onSliderH(value, sliderH_->isSliderDown());
  });
  connect(sliderH_, &QSlider::sliderReleased, this, [this] { onSliderH(sliderH_->value(), false); });
  connect(sliderV_, &QSlider::valueChanged, this, [this](int value) {
    if (!syncing_) apply(views::SliderVChanged(s_, v_, value));
  });
  connect(statusBar_, &PanelBar::panelClicked, this, &SignalWindow::statusPanelClicked);
  connect(parameterBar_, &PanelBar::barClicked, this, [this](Qt::MouseButton) { OutStatusBarParameter(); });

  // On load: the stored zoom, the first sample, "Авто" scale.
  s_.ViewFirst = 1;
  v_.SliderH = host_.settings().get(QString::fromLatin1(kSectionConfig), QStringLiteral("SliderH"), QStringLiteral("0")).toInt();
  refreshOptions();
  s_.ViewOpenFlags[frmViewSignal] = true;
}

SignalWindow::~SignalWindow() {
  s_.ViewOpenFlags[frmViewSignal] = false;
  SettingsStore& store = host_.settings();
  SettingsStore::Batch batch(store);
  for (int c = 1; c <= kMaxChannels; ++c) {
    WriteSetting(store, QString::fromLatin1(kSectionChannel), ChannelKey("ChannelYm", c), s_.channels.ChannelYm[c]);
    WriteSetting(store, QString::fromLatin1(kSectionChannel), ChannelKey("ChannelY", c), s_.channels.ChannelY[c]);
  }
  WriteSetting(store, QString::fromLatin1(kSectionConfig), QStringLiteral("SliderH"), static_cast<int32_t>(v_.SliderH));
}

const views::DrawList& SignalWindow::picture() const { return picture_->list(); }
QWidget* SignalWindow::pictureWidget() const { return picture_; }

void SignalWindow::refreshOptions() {
  picture_->setCursor(views::CrossPointer(s_) ? Qt::CrossCursor : Qt::ArrowCursor);
}

void SignalWindow::saveOptions() {
  SaveOptionSection(host_.settings(), s_, QString::fromLatin1(kSectionSignal));
  refreshOptions();
  host_.signalOptionsChanged();
}

void SignalWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  layoutBars();
}

void SignalWindow::layoutBars() {
  const int bar = statusBar_->sizeHint().height();
  views::SignalBarSizes sizes;
  sizes.statusBarPx = bar;
  sizes.parameterBarPx = bar;
  sizes.scrollPx = hScroll_->sizeHint().height();
  sizes.sliderPx = std::max(22, sliderH_->sizeHint().height());
  const views::SignalLayout layout = views::LayoutForSize(width(), height(), s_.options.signal, sizes);
  if (!layout.moved) return;
  Place(picture_, layout.picture);
  Place(sliderH_, layout.sliderH);
  Place(sliderV_, layout.sliderV);
  Place(hScroll_, layout.hScroll);
  Place(vScroll_, layout.vScroll);
  Place(statusBar_, layout.statusBar);
  Place(parameterBar_, layout.statusBarParameter);
  const bool sizeChanged = v_.widthPx != layout.picture.width || v_.heightPx != layout.picture.height;
  v_.widthPx = layout.picture.width;
  v_.heightPx = layout.picture.height;
  if (!initialised_) {
    initialised_ = true;
    views::InitSignalView(s_, v_);
    views::ConfigSliderH(s_, v_);
    views::SetY0(s_, v_);
    views::AccountChannelY0(s_, v_);
    BuildSignal();
    OutStatusBarParameter();
  } else if (sizeChanged) {
    views::AccountChannelY0(s_, v_);
    BuildSignal();
    OutStatusBarParameter();
  }
}

void SignalWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (isVisible()) layoutBars();
}

void SignalWindow::installRefresh(views::ViewRegistry& registry) {
  refreshOptions();
  views::SignalWindowHooks hooks;
  hooks.fm = metrics_->metrics();
  hooks.showPicture = [this](views::DrawList&& list) { showPicture(std::move(list)); };
  hooks.showStatus = [this](views::SignalStatus&& st) { showStatus(st); };
  hooks.showParameterBar = [this](views::ParameterBar&& bar) { showParameterBar(bar); };
  hooks.parameterBarWidthPx = [this] { return parameterBar_->width(); };
  hooks.controlsChanged = [this] { syncControls(); };
  views::InstallSignalView(registry, s_, v_, host_.analysis(), std::move(hooks));
  // The band levels of the parameter bar are the dearest part of a live
  // refresh: during a run they are computed four times a second, over the
  // stretch in view then, rather than on every tick; no one reads faster.
  if (!registry.runOn) {
    parameterBarAge_.invalidate();
  } else if (parameterBarAge_.isValid() && parameterBarAge_.elapsed() < 250) {
    registry[views::RefreshStep::SignalStatusBarParameter] = nullptr;
  } else {
    parameterBarAge_.start();
  }
}

void SignalWindow::showPicture(views::DrawList&& list) {
  picture_->setPicture(std::move(list), font_);
  host_.showRotorSpeed(v_.FreqRotorVisible, v_.RotorSpeedText);
  updateCrosshair();
  syncControls();
}

void SignalWindow::showStatus(const views::SignalStatus& st) {
  for (size_t i = 0; i < st.text.size(); ++i) statusBar_->setText(QString::fromLatin1(kPanelKeys[i]), st.text[i]);
  statusBar_->setEnabledOf(QStringLiteral("BeginPoint"), st.beginPointEnabled);
  host_.signalStatusChanged(st);
}

void SignalWindow::showParameterBar(const views::ParameterBar& bar) { parameterBar_->showParameters(bar); }

void SignalWindow::BuildSignal() {
  refreshOptions();
  if (v_.widthPx <= 0 || v_.heightPx <= 0) return;
  showPicture(views::BuildSignal(s_, v_, metrics_->metrics()));
  outInfoToStatusBar();
}

void SignalWindow::OutStatusBarParameter() {
  if (!s_.options.signal.StatusBarParameter || !parameterBar_->isVisible()) return;
  showParameterBar(views::OutStatusBarParameter(s_, v_, host_.analysis(), parameterBar_->width()));
}

void SignalWindow::ResetValueElements() {
  views::ResetValueElements(v_);
  v_.CentreSample = std::max(1, s_.SignalDataN / 2);
  views::SetMaxValueMas(s_, v_);
  views::ConfigSliderH(s_, v_);
  syncControls();
}

void SignalWindow::FollowNewestRow(int newestRow, int startRows) {
  views::FollowNewestRow(s_, v_, newestRow, startRows);
  syncControls();
}

void SignalWindow::RefreshElementsImposition() {
  views::RefreshElementsImposition(s_, v_);
  syncControls();
}

void SignalWindow::optionsChanged() {
  refreshOptions();
  layoutBars();
  BuildSignal();
  OutStatusBarParameter();
}

void SignalWindow::SetTypeCursor(views::SignalCursor entry) {
  apply(views::SetTypeCursorViewSignal(s_, v_, entry));
}

void SignalWindow::SignalLineCenter() { apply(views::SignalLineCenter(s_)); }

void SignalWindow::SignalBeginPoint() {
  const int c = std::clamp(s_.FirstChannelActive, 1, kMaxChannels);
  if (!BeginPointApplies(s_.channels.Type[c], s_.options.parameters.StatusFilterConst, s_.AccountOffset)) return;
  apply(views::SignalBeginPoint(s_));
}

void SignalWindow::apply(const views::SignalAction& a) {
  if (a.optionsChanged) saveOptions();
  // The redraw runs the shaft marker detector on the new stretch; the
  // parameter bar that the cheaper refresh rebuilds reads its speed.
  if (a.redraw && !a.viewRefresh) BuildSignal();
  if (a.viewRefresh) {
    host_.viewRefresh(false);
  } else if (a.cheapRefresh) {
    host_.viewRefresh(true);
  }
  if (a.crosshair) updateCrosshair();
  if (a.statusBar) outInfoToStatusBar();
  if (a.controls) syncControls();
  if (a.popupMenu) host_.showSignalPopup(QCursor::pos());
  if (a.colorProperty && colorPropertyChanged) colorPropertyChanged();
}

void SignalWindow::updateCrosshair() {
  views::DrawList overlay;
  views::AppendCrosshair(v_, overlay);
  views::AppendZoomBox(v_, overlay);
  picture_->setOverlay(std::move(overlay));
}

void SignalWindow::syncControls() {
  syncing_ = true;
  {
    const QSignalBlocker b1(sliderH_), b2(sliderV_), b3(hScroll_), b4(vScroll_);
    sliderH_->setRange(0, std::max(0, v_.SliderHMax));
    if (!sliderH_->isSliderDown()) sliderH_->setValue(v_.SliderH);
    sliderH_->setToolTip(v_.SliderHToolTip);
    sliderV_->setValue(v_.SliderV);
    sliderV_->setToolTip(v_.SliderVToolTip);
    hScroll_->setRange(v_.timeScrollMin, std::max(v_.timeScrollMin, v_.timeScrollMax));
    hScroll_->setPageStep(std::max(1, v_.timeScrollLargeChange));
    if (!hScroll_->isSliderDown()) hScroll_->setValue(v_.timeScroll);
    vScroll_->setRange(v_.VScrollMin, std::max(v_.VScrollMin, v_.VScrollMax));
    vScroll_->setPageStep(std::max(1, v_.heightPx / 10));
    vScroll_->setValue(v_.VScroll1);
  }
  syncing_ = false;
}

void SignalWindow::outInfoToStatusBar() { showStatus(views::OutInfoToStatusBar(s_, v_)); }

void SignalWindow::onHScroll(int value, bool finished) { apply(views::HScrollChanged(s_, v_, value, finished)); }

void SignalWindow::onSliderH(int value, bool scrolling) {
  const views::SignalAction a = views::SliderHChanged(s_, v_, value, scrolling);
  if (scrolling) {
    sliderH_->setToolTip(v_.SliderHToolTip);
    QToolTip::showText(QCursor::pos(), v_.SliderHToolTip, sliderH_);
    return;
  }
  apply(a);
}

void SignalWindow::statusPanelClicked(const QString& key, Qt::MouseButton button) {
  for (size_t i = 0; i < std::size(kPanelKeys); ++i) {
    if (key != QLatin1String(kPanelKeys[i])) continue;
    apply(views::StatusPanelClicked(s_, v_, static_cast<views::SignalPanel>(i), ToViewButton(button)));
    return;
  }
}

void SignalWindow::pictureMousePress(Qt::MouseButton button, QPointF pos, bool zoomBox) {
  setFocus();
  // Ctrl with the left button draws the box of a zoom.
  if (zoomBox && button == Qt::LeftButton) {
    views::StartZoomBox(v_, pos.x());
    return;
  }
  apply(views::MouseDown(s_, v_, ToViewButton(button), pos.x(), pos.y()));
}

void SignalWindow::pictureMouseMove(QPointF pos, bool leftHeld) {
  if (v_.ZoomBoxFrom >= 0) {
    if (leftHeld) views::DragZoomBox(v_, pos.x());
    updateCrosshair();
    return;
  }
  apply(views::MouseMove(s_, v_, pos.x(), pos.y(), leftHeld));
}

void SignalWindow::pictureMouseRelease() {
  if (v_.ZoomBoxFrom >= 0) {
    apply(views::EndZoomBox(s_, v_));
    return;
  }
  apply(views::MouseUp(s_, v_));
}

void SignalWindow::ZoomBack() { apply(views::ZoomBack(s_, v_)); }
void SignalWindow::ShowAll() { apply(views::ShowAll(s_, v_)); }

void SignalWindow::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left: onHScroll(v_.timeScroll - std::max(1, v_.timeScrollLargeChange / 8), true); break;
    case Qt::Key_Right: onHScroll(v_.timeScroll + std::max(1, v_.timeScrollLargeChange / 8), true); break;
    case Qt::Key_PageUp: onHScroll(v_.timeScroll - std::max(1, v_.timeScrollLargeChange), true); break;
    case Qt::Key_PageDown: onHScroll(v_.timeScroll + std::max(1, v_.timeScrollLargeChange), true); break;
    case Qt::Key_Home: onHScroll(v_.timeScrollMin, true); break;
    case Qt::Key_End: onHScroll(v_.timeScrollMax, true); break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      if (v_.SliderH < v_.SliderHMax) onSliderH(v_.SliderH + 1, false);
      break;
    case Qt::Key_Minus:
      if (v_.SliderH > 0) onSliderH(v_.SliderH - 1, false);
      break;
    default: QWidget::keyPressEvent(event); return;
  }
  event->accept();
}

void SignalWindow::wheelEvent(QWheelEvent* event) {
  const QPoint delta = event->angleDelta();
  const int steps = (delta.y() != 0 ? delta.y() : delta.x()) / 120;
  if (steps == 0) return;
  // Shift (or a sideways wheel) moves along the record; the wheel itself
  // zooms round the sample under the pointer.
  if ((event->modifiers() & Qt::ShiftModifier) || delta.y() == 0) {
    apply(views::PanBy(s_, v_, -steps * std::max(1, v_.widthPx / 8)));
  } else {
    const QPointF at = picture_->mapFrom(this, event->position());
    apply(views::ZoomAround(s_, v_, at.x(), steps));
  }
  event->accept();
}

namespace {

CopyHeader SignalCopyHeader(const AppState& s, const views::SignalViewState& v) {
  CopyHeader header;
  header.rotorSpeedText = FirstMarkerChannel(s) != 0 ? v.RotorSpeedText : QString();
  header.diagramType = QStringLiteral("Сигнал");
  if (s.options.signal.StatusBarParameter) header.parameterText = v.ChannelParameterText[std::clamp(s.FirstChannelActive, 1, kMaxChannels)];
  return header;
}

}  // namespace

QImage SignalWindow::CopyPictureImage() {
  const QStringList lines = CopyHeaderLines(s_, host_.vocabulary(), SignalCopyHeader(s_, v_));
  return ComposeCopyImage(lines, RenderDrawList(picture_->list(), font_), font_);
}

void SignalWindow::CopyPicture() {
  const QStringList lines = CopyHeaderLines(s_, host_.vocabulary(), SignalCopyHeader(s_, v_));
  PutPictureOnClipboard(ComposeCopyImage(lines, RenderDrawList(picture_->list(), font_), font_), lines);
}

}  // namespace aqx::ui
