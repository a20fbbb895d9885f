// aquilonix: the window program. The splash window shows while the start
// routine runs; the main window then takes over, with the one shared state
// the program owns for its whole run.

#include "core/AppState.h"
#include "core/FftWisdomPath.h"
#include "core/Settings.h"
#include "core/Startup.h"
#include "core/Vocabulary.h"
#include "engine/Aquilonix.h"
#include "files/FileReaders.h"
#include "ui/main/MainWindow.h"
#include "ui/common/QtPrompts.h"
#include "ui/main/SplashPictures.h"
#include "ui/main/StartWindow.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QPointer>
#include <QTranslator>

#include <memory>

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QString::fromLatin1(aqx::kApplicationName));
  QApplication::setOrganizationName(QString::fromLatin1(aqx::kApplicationName));

  // Standard dialogs (file choice) in Russian where the translations exist.
  QTranslator qtTranslator;
  if (qtTranslator.load(QLocale(QLocale::Russian), QStringLiteral("qtbase"), QStringLiteral("_"),
                        QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QApplication::installTranslator(&qtTranslator);

  // The command line is one path, perhaps with blanks, perhaps in quotes.
  QStringList words = QApplication::arguments();
  words.removeFirst();
  const QString commandLine = words.join(QLatin1Char(' '));

  // Measured FFT plans where this machine has them (a missing file is normal).
  LoadFftWisdom(QFile::encodeName(aqx::DefaultFftWisdomPath()).constData());

  auto state = std::make_unique<aqx::AppState>();
  aqx::IniSettingsStore store(aqx::DefaultSettingsPath());
  aqx::ui::QtPrompts prompts;
  store.setFailureReporter(&prompts);
  store.reportReadProblem();
  aqx::Vocabulary vocabulary;
  const aqx::FileReaderTable readers = aqx::StandardFileReaders();
  std::unique_ptr<aqx::ui::MainWindow> mainWindow;

  // Closed, the splash window goes with its picture and its window memory.
  auto* splash = new aqx::ui::StartWindow(aqx::NextStartUpPicture(store, aqx::ui::kSplashPictureCount));
  splash->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(splash, &aqx::ui::StartWindow::speedLoad, splash, [&, splash] {
    splash->setProgress(25);
    aqx::SpeedLoad(*state, store, vocabulary);
    splash->setProgress(50);
    mainWindow = std::make_unique<aqx::ui::MainWindow>(*state, store, prompts, vocabulary, readers);
    prompts.setOwner(mainWindow.get());
    mainWindow->load();
    splash->setProgress(90);
    mainWindow->show();
    splash->setProgress(100);
    mainWindow->loadStartFile(commandLine);
    splash->close();
  });
  const QPointer<aqx::ui::StartWindow> splashLeft(splash);
  splash->show();
  const int result = QApplication::exec();
  delete splashLeft.data();
  mainWindow.reset();
  return result;
}
