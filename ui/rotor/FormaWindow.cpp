#include "ui/rotor/FormaWindow.h"

#include "ui/common/CopyPicture.h"
#include "ui/common/PanelBar.h"
#include "ui/common/PictureWidget.h"

#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace aqx::ui {

namespace {

struct KindText {
  const char* objectName;
  const char* caption;
  const char* pictureName;
};

KindText TextOf(FormaKind kind) {
  switch (kind) {
    case FormaKind::Rotor: return {"frmViewFormaRotor", "Форма ротора", "pctForma"};
    case FormaKind::Diagram: return {"frmViewFormaRotorDiagram", "Диаграмма формы ротора", "pctDiagrama"};
    case FormaKind::Spectr: break;
  }
  return {"frmViewFormaRotorSpectr", "Спектр формы ротора", "pctSpectrForms"};
}

}  // namespace

ViewWindow FormaWindow::windowOf(FormaKind kind) {
  switch (kind) {
    case FormaKind::Rotor: return frmViewFormaRotor;
    case FormaKind::Diagram: return frmViewFormaRotorDiagram;
    case FormaKind::Spectr: break;
  }
  return frmViewFormaRotorSpectr;
}

FormaWindow::FormaWindow(ViewHost& host, FormaKind kind, std::function<void(QPoint)> popup, QWidget* parent)
    : QWidget(parent), host_(host), s_(host.state()), kind_(kind), popup_(std::move(popup)), font_(DefaultViewFont()) {
  const KindText text = TextOf(kind);
  setObjectName(QString::fromLatin1(text.objectName));
  setWindowTitle(QString::fromUtf8(text.caption));
  setMinimumSize(60, 60);
  metrics_ = std::make_unique<QtFontMetrics>(font_);
  picture_ = new PictureWidget(QString::fromLatin1(text.pictureName), font_, this);
  PictureWidget::Handlers handlers;
  handlers.press = [this](Qt::MouseButton b, QPoint) {
    if (b == Qt::RightButton && popup_) popup_(QCursor::pos());
  };
  picture_->setHandlers(std::move(handlers));
  hScroll_ = new QScrollBar(Qt::Horizontal, this);
  hScroll_->setObjectName(QStringLiteral("HScroll"));
  hScroll_->setToolTip(QStringLiteral("Форма: средняя и по оборотам"));
  hScroll_->setPageStep(1);
  connect(hScroll_, &QScrollBar::valueChanged, this, [this](int value) {
    if (syncing_) return;
    v_.HScroll = value;
    PrintToStatusbar();
    Build();
  });
  if (kind != FormaKind::Spectr) {
    vScroll_ = new QScrollBar(Qt::Vertical, this);
    vScroll_->setObjectName(QStringLiteral("VScroll"));
    vScroll_->setToolTip(kind == FormaKind::Rotor ? QStringLiteral("Процентов на кольцо")
                                                  : QStringLiteral("Диапазон, %"));
    vScroll_->setRange(views::kPercentPerRingMin, views::kPercentPerRingMax);
    vScroll_->setPageStep(1);
    vScroll_->setValue(v_.VScroll);
    connect(vScroll_, &QScrollBar::valueChanged, this, [this](int value) {
      if (syncing_) return;
      v_.VScroll = value;
      Build();
    });
  }
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar"));
  statusBar_->setPanels({{QStringLiteral("Form"), {}, QStringLiteral("Форма")},
                         {QStringLiteral("PrPi"), {}, QStringLiteral("Степень искажения формы")},
                         {QStringLiteral("NobForm"), {}, QStringLiteral("Частота вращения"), true, true, true}});
  s_.ViewOpenFlags[windowOf(kind)] = true;
}

FormaWindow::~FormaWindow() { s_.ViewOpenFlags[windowOf(kind_)] = false; }

const views::DrawList& FormaWindow::picture() const { return picture_->list(); }

void FormaWindow::InitData() {
  views::InitFormaData(host_.analysis().forma, v_);
  syncControls();
  PrintToStatusbar();
  Build();
}

void FormaWindow::PrintToStatusbar() {
  const views::FormaStatus st = views::PrintToStatusbar(host_.analysis().forma, v_.HScroll);
  statusBar_->setText(QStringLiteral("Form"), st.Form);
  statusBar_->setText(QStringLiteral("PrPi"), st.PrPi);
  statusBar_->setText(QStringLiteral("NobForm"), st.NobForm);
}

void FormaWindow::Build() {
  const views::FormaRotorResults& r = host_.analysis().forma;
  const views::FontMetrics& fm = metrics_->metrics();
  switch (kind_) {
    case FormaKind::Rotor: picture_->setPicture(views::DrawFormaRotor(s_, r, v_, fm)); break;
    case FormaKind::Diagram: picture_->setPicture(views::DrawFormaRotorDiagram(s_, r, v_, fm)); break;
    case FormaKind::Spectr: picture_->setPicture(views::DrawFormaSpectrForms(s_, r, v_, fm)); break;
  }
}

void FormaWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  layoutBars();
  InitData();
}

void FormaWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (!isVisible()) return;
  layoutBars();
  Build();
}

void FormaWindow::layoutBars() {
  const int bar = statusBar_->sizeHint().height();
  const int scroll = hScroll_->sizeHint().height();
  const int right = vScroll_ ? std::max(0, width() - scroll) : width();
  const int bottom = std::max(0, height() - bar - scroll);
  picture_->setGeometry(0, 0, right, bottom);
  hScroll_->setGeometry(0, bottom, right, scroll);
  if (vScroll_) vScroll_->setGeometry(right, 0, scroll, bottom + scroll);
  statusBar_->setGeometry(0, bottom + scroll, width(), bar);
  v_.widthPx = right;
  v_.heightPx = bottom;
}

void FormaWindow::syncControls() {
  syncing_ = true;
  {
    const QSignalBlocker b(hScroll_);
    hScroll_->setRange(0, v_.HScrollMax);
    hScroll_->setValue(v_.HScroll);
    if (vScroll_) vScroll_->setValue(v_.VScroll);
  }
  syncing_ = false;
}

QStringList FormaWindow::copyHeader() const {
  return views::FormaCopyHeader(s_, host_.vocabulary(), host_.analysis().forma, v_.HScroll, windowTitle());
}

QImage FormaWindow::CopyPictureImage() const {
  return ComposeCopyImage(copyHeader(), RenderDrawList(picture_->list(), font_), font_);
}

void FormaWindow::CopyPicture() {
  Build();
  PutPictureOnClipboard(CopyPictureImage(), copyHeader());
}

}  // namespace aqx::ui
