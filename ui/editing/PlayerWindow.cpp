#include "ui/editing/PlayerWindow.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "files/Wave.h"
#include "ui/common/PictureWidget.h"
#include "ui/editing/SoundOutput.h"
#include "views/edit/PlayerPicture.h"

#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>

namespace aqx::ui {

PlayerWindow::PlayerWindow(AppState& state, SettingsStore& store, Prompts& prompts, QWidget* parent)
    : QDialog(parent), s_(state), store_(store), prompts_(prompts) {
  setObjectName(QStringLiteral("frmPlayerSound"));
  setWindowTitle(QStringLiteral("Проигрыватель"));
  setAttribute(Qt::WA_DeleteOnClose);
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
  QDir().mkpath(cache);
  path_ = QDir(cache).filePath(QStringLiteral("Aquilonix.wav"));

  cmbFreqDescWave_ = new QComboBox(this);
  cmbFreqDescWave_->setObjectName(QStringLiteral("cmbFreqDescWave"));
  for (const views::WaveRate& r : views::kWaveRates) cmbFreqDescWave_->addItem(QString::fromUtf8(r.text));
  cmbFreqDescWave_->setCurrentIndex(views::WaveRateRow(s_));
  connect(cmbFreqDescWave_, &QComboBox::activated, this, &PlayerWindow::rateChosen);
  pctSignal_ = new PictureWidget(QStringLiteral("pctSignal"), font(), this);
  pctSignal_->setMinimumSize(400, 120);
  txtInfo_ = new QLabel(this);
  txtInfo_->setObjectName(QStringLiteral("txtInfo"));
  lblSound_ = new QLabel(this);
  lblSound_->setObjectName(QStringLiteral("lblSound"));
  lblSound_->setWordWrap(true);
  cmdPlay_ = new QPushButton(QStringLiteral("Пуск"), this);
  cmdPlay_->setObjectName(QStringLiteral("cmdPlay"));
  connect(cmdPlay_, &QPushButton::clicked, this, [this] { playing_ ? cmdStop() : cmdPlay(); });
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::close);

  auto* top = new QHBoxLayout;
  top->addWidget(new QLabel(QStringLiteral("Частота преобразования"), this));
  top->addWidget(cmbFreqDescWave_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(txtInfo_, 1);
  buttons->addWidget(cmdPlay_);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(pctSignal_, 1);
  layout->addWidget(lblSound_);
  layout->addLayout(buttons);
  resize(560, 300);

  timer1_ = new QTimer(this);
  timer1_->setObjectName(QStringLiteral("Timer1"));
  timer1_->setInterval(50);
  connect(timer1_, &QTimer::timeout, this, &PlayerWindow::tick);

  // Without a sound output the window still writes and draws the file.
  sound_ = OpenSoundOutput();
  if (sound_) {
    sound_->onStopped = [this] {
      if (playing_) cmdStop();
    };
  } else {
    lblSound_->setText(QStringLiteral("Звуковое устройство не найдено: воспроизведение на этом компьютере невозможно. "
                                      "Файл для прослушивания другой программой: ") +
                       QDir::toNativeSeparators(path_));
  }
  BuildWaveFile();
}

PlayerWindow::~PlayerWindow() {
  if (sound_) {
    sound_->onStopped = nullptr;
    sound_->stop();
  }
}

void PlayerWindow::rateChosen(int row) {
  s_.options.config.FreqDescWaveN = row;
  SaveOption(store_, s_, QLatin1String(kSectionConfig), QStringLiteral("FreqDescWaveN"));
  cmdStop();
  BuildWaveFile();
}

void PlayerWindow::BuildWaveFile() {
  const int row = views::WaveRateRow(s_);
  if (sound_) sound_->release();
  written_ = WriteWaveChannel(s_, s_.FirstChannelActive, path_,
                              views::kWaveRates[static_cast<size_t>(row)].samplesPerSecond, prompts_,
                              windowTitle());
  playSeconds_ = views::PlaySeconds(s_, row);
  txtInfo_->setText(views::PlayerInfoText(s_, row));
  cmdPlay_->setEnabled(written_);
  drawPicture(-1.0);
}

void PlayerWindow::cmdPlay() {
  if (!written_) return;
  if (!sound_) {
    prompts_.tell(QStringLiteral("Звуковое устройство не найдено: воспроизведение невозможно.\n"
                                 "Файл для прослушивания записан:\n") +
                      QDir::toNativeSeparators(path_),
                  windowTitle(), PromptIcon::Exclamation);
    return;
  }
  sound_->play(path_);
  playing_ = true;
  cmdPlay_->setText(QStringLiteral("Стоп"));
  clock_.start();
  timer1_->start();
}

void PlayerWindow::cmdStop() {
  playing_ = false;
  if (sound_) sound_->stop();
  timer1_->stop();
  cmdPlay_->setText(QStringLiteral("Пуск"));
  drawPicture(-1.0);
}

void PlayerWindow::tick() {
  const qint64 playedMs = sound_ ? sound_->positionMs() : 0;
  const double seconds = playedMs > 0 ? playedMs / 1000.0 : clock_.elapsed() / 1000.0;
  if (playSeconds_ <= 0.0 || seconds >= playSeconds_) {
    cmdStop();
    return;
  }
  drawPicture(seconds / playSeconds_);
}

void PlayerWindow::drawPicture(double position) {
  pctSignal_->setPicture(views::PlayerPicture(s_, s_.FirstChannelActive, pctSignal_->width(), pctSignal_->height(), position));
}

void PlayerWindow::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  drawPicture(-1.0);
}

}  // namespace aqx::ui
