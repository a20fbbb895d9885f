// libAquilonixSound.so: the sound output of the player window through Qt
// Multimedia, loaded by OpenSoundOutput.

#include "ui/editing/SoundOutput.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QUrl>

namespace {

class QtSoundOutput final : public aqx::ui::SoundOutput {
 public:
  explicit QtSoundOutput(const QAudioDevice& device) : audio_(device) {
    player_.setAudioOutput(&audio_);
    QObject::connect(&player_, &QMediaPlayer::playbackStateChanged, &player_, [this](QMediaPlayer::PlaybackState st) {
      if (st == QMediaPlayer::StoppedState && onStopped) onStopped();
    });
  }
  ~QtSoundOutput() override { player_.stop(); }

  void play(const QString& wavePath) override {
    player_.setSource(QUrl::fromLocalFile(wavePath));
    player_.play();
  }
  void stop() override { player_.stop(); }
  void release() override { player_.setSource(QUrl()); }
  qint64 positionMs() const override { return player_.position(); }

 private:
  QAudioOutput audio_;  // before the player, which plays into it
  QMediaPlayer player_;
};

}  // namespace

extern "C" Q_DECL_EXPORT aqx::ui::SoundOutput* AqxOpenSoundOutput() {
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  if (device.isNull()) return nullptr;
  return new QtSoundOutput(device);
}
