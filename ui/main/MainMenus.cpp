// The menus, toolbars and status bar of frmMain, with the captions the users
// know.

#include "core/ConfigKeys.h"
#include "ui/common/Icons.h"
#include "ui/common/OptionMenu.h"
#include "ui/main/MainWindow.h"
#include "ui/acquisition/MeasureCommands.h"
#include "ui/common/PanelBar.h"
#include "ui/main/Workspace.h"
#include "ui/reports/ReportWindows.h"
#include "ui/rotor/ShaftViews.h"
#include "ui/editing/RecordingEdits.h"
#include "ui/options/SupportWindows.h"
#include "ui/signal/SignalWindow.h"

#include <QActionGroup>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace aqx::ui {

namespace {

// Commands whose windows come with later versions stand in the menus,
// disabled, with this hint.
const char kLaterHint[] = "Команда станет доступна в следующих версиях программы";

}  // namespace

QAction* MainWindow::addCommand(QMenu* menu, const char* name, const QString& caption, void (MainWindow::*handler)(),
                                bool available) {
  auto* a = new QAction(caption, this);
  a->setObjectName(QString::fromLatin1(name));
  if (handler) connect(a, &QAction::triggered, this, handler);
  a->setEnabled(available);
  if (menu) menu->addAction(a);
  actions_.insert(a->objectName(), a);
  return a;
}

QAction* MainWindow::addLaterCommand(QMenu* menu, const char* name, const QString& caption) {
  QAction* a = addCommand(menu, name, caption, nullptr, false);
  a->setProperty("later", true);
  a->setToolTip(caption + QStringLiteral(" (") + QString::fromUtf8(kLaterHint).toLower() + QStringLiteral(")"));
  return a;
}

QAction* MainWindow::addToggle(QMenu* menu, const char* name, const QString& caption, void (MainWindow::*handler)()) {
  QAction* a = addCommand(menu, name, caption, handler);
  a->setCheckable(true);
  return a;
}

QAction* MainWindow::addCheck(QMenu* menu, const QString& name, const QString& caption,
                              std::function<void()> onClick, QActionGroup* group) {
  auto* a = new QAction(caption, group != nullptr ? static_cast<QObject*>(group) : this);
  a->setObjectName(name);
  a->setCheckable(true);
  connect(a, &QAction::triggered, this, std::move(onClick));
  menu->addAction(a);
  actions_.insert(name, a);
  return a;
}

void MainWindow::buildMenus() {
  buildFileMenu();
  buildViewMenu();
  buildOtherMenus();
  buildSignalMenu();
  // F10 opens the menu bar, as on other desktops.
  auto* menuKey = new QAction(this);
  menuKey->setObjectName(QStringLiteral("MenuBarKey"));
  menuKey->setShortcut(QKeySequence(Qt::Key_F10));
  connect(menuKey, &QAction::triggered, this, [this] {
    menuBar()->setFocus(Qt::MenuBarFocusReason);
    menuBar()->setActiveAction(menuBar()->actions().value(0));
  });
  addAction(menuKey);
  shaftViews_->buildPopupMenus();
}

void MainWindow::buildFileMenu() {
  fileMenu_ = menuBar()->addMenu(QStringLiteral("&Файл"));
  fileMenu_->setObjectName(QStringLiteral("mnuFile"));
  QAction* record = addCommand(fileMenu_, "mnuFileRecord", QStringLiteral("Пуск измерений"), &MainWindow::onFileRecord);
  record->setCheckable(true);
  record->setIcon(MakeToolIcon(ToolIcon::Record));
  record->setShortcut(QKeySequence(Qt::Key_F5));
  fileMenu_->addSeparator();
  QAction* open = addCommand(fileMenu_, "mnuFileOpen", QStringLiteral("Открыть ..."), &MainWindow::onFileOpen);
  open->setIcon(MakeToolIcon(ToolIcon::Open));
  open->setShortcut(QKeySequence::Open);
  QAction* save = addCommand(fileMenu_, "mnuFileSave", QStringLiteral("Сохранить ..."), &MainWindow::onFileSave);
  save->setIcon(MakeToolIcon(ToolIcon::Save));
  save->setShortcut(QKeySequence::Save);
  supportWindows_->addCommand(fileMenu_, "mnuFileFiles", QStringLiteral("Файлы"));
  fileMenu_->addSeparator();
  edits_->addCommand(fileMenu_, "mnuFileImport", QStringLiteral("Импорт"));
  edits_->addCommand(fileMenu_, "mnuFileExport", QStringLiteral("Экспорт"));
  fileMenu_->addSeparator();
  QAction* copy = addCommand(fileMenu_, "mnuFileCopy", QStringLiteral("Копировать"), &MainWindow::onFileCopy);
  copy->setIcon(MakeToolIcon(ToolIcon::Copy));
  copy->setShortcut(QKeySequence::Copy);
  QAction* property = supportWindows_->addCommand(fileMenu_, "mnuFileProperty", QStringLiteral("Свойства"));
  property->setIcon(MakeToolIcon(ToolIcon::FileData));
  fileMenu_->addSeparator()->setObjectName(QStringLiteral("mnuFileLine3"));
  for (int k = 1; k <= kRecentFileCount; ++k) {
    auto* a = new QAction(this);
    a->setObjectName(QStringLiteral("mnuFileRecentFile%1").arg(k));
    a->setVisible(false);
    connect(a, &QAction::triggered, this, [this, k] { onFileRecentFile(k); });
    fileMenu_->addAction(a);
    actions_.insert(a->objectName(), a);
    recentActions_.push_back(a);
  }
  recentLine_ = fileMenu_->addSeparator();
  recentLine_->setObjectName(QStringLiteral("mnuFileLineRecent"));
  recentLine_->setVisible(false);
  QAction* exit = addCommand(fileMenu_, "mnuFileExit", QStringLiteral("Выход"), &MainWindow::onFileExit);
  exit->setShortcut(QKeySequence(Qt::ALT | Qt::Key_F4));
}

void MainWindow::buildViewMenu() {
  QMenu* view = menuBar()->addMenu(QStringLiteral("&Вид"));
  view->setObjectName(QStringLiteral("mnuView"));
  AddOptionToggles(view, kSectionConfig, 0, s_, store_, actions_, [this] { applyBars(); });
  view->addSeparator();
  QAction* signal = addToggle(view, "mnuViewSignal", QStringLiteral("Сигнал"), &MainWindow::onViewSignal);
  signal->setIcon(MakeToolIcon(ToolIcon::Signal));
  addToggle(view, "mnuViewSpectr", QStringLiteral("Спектр"), &MainWindow::onViewSpectr)->setIcon(MakeToolIcon(ToolIcon::Spectr));
  addToggle(view, "mnuViewSpectrum", QStringLiteral("Каскад спектров"), &MainWindow::onViewSpectrum)
      ->setIcon(MakeToolIcon(ToolIcon::Spectrum));
  shaftViews_->addViewCommands(view);
  QAction* parameters = addToggle(view, "mnuViewParameters", QStringLiteral("Параметры"), &MainWindow::onViewParameters);
  parameters->setIcon(MakeToolIcon(ToolIcon::Parameters));
  view->addSeparator();
  QMenu* channels = view->addMenu(QStringLiteral("&Каналы"));
  channels->setObjectName(QStringLiteral("mnuViewChannels"));
  for (int c = 1; c <= kMaxChannels; ++c) {
    addCheck(channels, QStringLiteral("mnuViewChannel%1").arg(c), QStringLiteral("Канал №%1").arg(c),
             [this, c] { SelectActiveChannel(c); });
  }
  QMenu* blocks = view->addMenu(QStringLiteral("&Блоки"));
  blocks->setObjectName(QStringLiteral("mnuViewBlock"));
  struct BlockEntry {
    const char* name;
    const char* caption;
    SolidBlockCommand command;
  };
  const BlockEntry blockCommands[] = {{"mnuViewBlockFirst", "Первый", SolidBlockCommand::First},
                                      {"mnuViewBlockPrevious", "Предыдущий", SolidBlockCommand::Previous},
                                      {"mnuViewBlockNext", "Следующий", SolidBlockCommand::Next},
                                      {"mnuViewBlockLast", "Последний", SolidBlockCommand::Last},
                                      {"mnuViewBlockMin", "Минимальный", SolidBlockCommand::Min},
                                      {"mnuViewBlockMinus", "Уменьшить", SolidBlockCommand::Minus},
                                      {"mnuViewBlockPlus", "Увеличить", SolidBlockCommand::Plus},
                                      {"mnuViewBlockMax", "Максимальный", SolidBlockCommand::Max}};
  for (const BlockEntry& b : blockCommands) {
    QAction* a = addCommand(blocks, b.name, QString::fromUtf8(b.caption), nullptr, false);
    const SolidBlockCommand command = b.command;
    connect(a, &QAction::triggered, this, [this, command] { onViewBlock(command); });
  }
  addToggle(view, "mnuViewImposition", QStringLiteral("Наложение сигналов"), &MainWindow::onViewImposition)
      ->setIcon(MakeToolIcon(ToolIcon::Imposition));
  edits_->addCommand(view, "mnuViewMarker", QStringLiteral("Маркеры"));
  measure_->addCommand(view, "mnuViewStatusFile", QStringLiteral("Информация файла данных"));
  view->addSeparator();
  QMenu* styles = view->addMenu(QStringLiteral("С&тиль"));
  styles->setObjectName(QStringLiteral("mnuViewStyles"));
  auto* styleGroup = new QActionGroup(this);
  for (int k = 0; k < kViewStyleCount; ++k) {
    addCheck(styles, QStringLiteral("mnuViewStyle%1").arg(k), ViewStyleDefinition(k).caption,
             [this, k] { onViewStyle(k); }, styleGroup);
  }
  QMenu* colors = view->addMenu(QStringLiteral("&Фон окон"));
  colors->setObjectName(QStringLiteral("mnuViewColorsBack"));
  auto* colorGroup = new QActionGroup(this);
  const QStringList captions = ColorBackCaptions();
  for (int k = 0; k < captions.size(); ++k) {
    addCheck(colors, QStringLiteral("mnuViewColorBack%1").arg(k), captions[k], [this, k] { ColorBack(k); },
             colorGroup);
  }
}

void MainWindow::buildOtherMenus() {
  QMenu* report = menuBar()->addMenu(QStringLiteral("&Отчет"));
  report->setObjectName(QStringLiteral("mnuReport"));
  reportWindows_->addCommands(report);

  QMenu* setup = menuBar()->addMenu(QStringLiteral("&Настройка"));
  setup->setObjectName(QStringLiteral("mnuSetup"));
  struct SetupEntry {
    const char* name;
    const char* caption;
    void (MainWindow::*handler)();  // null: a later version's
  };
  const SetupEntry setupCommands[] = {
      {"mnuSetupChannels", "Настройка каналов", nullptr},
      {"mnuSetupObject", "Описание режима", nullptr},
      {"mnuSetupRecord", "Установка записи", nullptr},
      {"mnuSetupCheckF", "Проверочные частоты", &MainWindow::onSetupCheckF},
      {"mnuSetupFiltr", "Фильтр", &MainWindow::onSetupFiltr},
      {"mnuSetupSpectrumAnalyser", "Спектральный анализ", &MainWindow::onSetupSpectrumAnalyser},
      {"mnuSetupOtmetchick", "Отметчик", nullptr},
      {"mnuSetupReAccount", "Вырезка эффективного сигнала", nullptr},
      {"mnuSetupConfigs", "Конфигурации", nullptr},
      {"mnuSetupParameters", "Параметры", nullptr}};
  for (const SetupEntry& e : setupCommands) {
    if (e.handler) {
      addCommand(setup, e.name, QString::fromUtf8(e.caption), e.handler);
    } else if (!supportWindows_->addCommand(setup, e.name, QString::fromUtf8(e.caption))) {
      addLaterCommand(setup, e.name, QString::fromUtf8(e.caption));
    }
  }
  edits_->adoptCommand("mnuSetupReAccount");
  edits_->adoptCommand("mnuSetupObject");
  measure_->adoptSetupCommands();

  QMenu* service = menuBar()->addMenu(QStringLiteral("С&ервис"));
  service->setObjectName(QStringLiteral("mnuService"));
  measure_->addCommand(service, "mnuServiceLineka", QStringLiteral("Линейка"));
  addCommand(service, "mnuServiceEvaluation", QStringLiteral("Оценка"), &MainWindow::onServiceEvaluation);
  measure_->addCommand(service, "mnuServiceDetectSensor", QStringLiteral("Тарировка датчиков биения"));
  measure_->addCommand(service, "mnuServiceOtm", QStringLiteral("Искуственный отметчик"));
  addCommand(service, "mnuHelpADC", QStringLiteral("Информация АЦП"), &MainWindow::onHelpADC)->setCheckable(true);
  addCommand(service, "mnuServiceDigitalLines", QStringLiteral("Цифровые линии"), &MainWindow::onServiceDigitalLines);
  edits_->addCommand(service, "mnuServicePlayerSound", QStringLiteral("Проигрыватель"));
  actions_.value(QStringLiteral("mnuHelpADC"))->setIcon(MakeToolIcon(ToolIcon::ADC));

  QMenu* window = menuBar()->addMenu(QStringLiteral("О&кно"));
  window->setObjectName(QStringLiteral("mnuWindow"));
  addCommand(window, "mnuWindowArrange0", QStringLiteral("Каскад"), &MainWindow::onWindowCascade);
  addCommand(window, "mnuWindowArrange1", QStringLiteral("Мозаика (горизонталь)"), &MainWindow::onWindowTileAcross);
  addCommand(window, "mnuWindowArrange2", QStringLiteral("Мозаика (вертикаль)"), &MainWindow::onWindowTileSideBySide);
  window->addSeparator();
  addCommand(window, "mnuWindowClose", QStringLiteral("Закрыть все окна"), &MainWindow::onWindowClose);

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Справка"));
  help->setObjectName(QStringLiteral("mnuHelp"));
  supportWindows_->addCommand(help, "mnuHelpContents", QStringLiteral("Содержание"));
  supportWindows_->addCommand(help, "mnuHelpSearch", QStringLiteral("Поиск"));
  supportWindows_->addCommand(help, "mnuHelpOnHelp", QStringLiteral("Как получить помощь"));
  help->addSeparator();
  supportWindows_->addCommand(help, "mnuHelpAdvice", QStringLiteral("Совет дня"));
  help->addSeparator();
  addCommand(help, "mnuHelpAbout", QStringLiteral("О программе"), &MainWindow::onHelpAbout);
}

void MainWindow::buildSignalMenu() {
  // The popup of the signal view; it never stands in the menu bar.
  signalMenu_ = new QMenu(QStringLiteral("Сигнал"), this);
  signalMenu_->setObjectName(QStringLiteral("mnuSignal"));
  const auto optionsChanged = [this] {
    refreshSignalMenuChecks();
    if (SignalWindow* w = signalWindow()) w->optionsChanged();
  };
  AddOptionToggles(signalMenu_, kSectionSignal, 0, s_, store_, actions_, optionsChanged);
  QMenu* cursor = signalMenu_->addMenu(QStringLiteral("&Курсор"));
  cursor->setObjectName(QStringLiteral("mnuSignalCursor"));
  const char* const cursorCaptions[] = {"Свободный", "Привязанный"};
  for (int entry = 0; entry < 2; ++entry) {
    addCheck(cursor, QStringLiteral("mnuSignalCursor%1").arg(entry), QString::fromUtf8(cursorCaptions[entry]),
             [this, entry] { onSignalCursor(entry); });
  }
  signalMenu_->addSeparator();
  AddOptionToggles(signalMenu_, kSectionSignal, 1, s_, store_, actions_, optionsChanged);
  signalMenu_->addSeparator();
  // Zoom history and the whole record; the keys work wherever the frame has
  // the focus.
  QAction* back = addCommand(signalMenu_, "mnuSignalZoomBack", QStringLiteral("Предыдущий масштаб"),
                             &MainWindow::onSignalZoomBack);
  back->setShortcuts({QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::ALT | Qt::Key_Left)});
  QAction* all = addCommand(signalMenu_, "mnuSignalShowAll", QStringLiteral("Вся запись"), &MainWindow::onSignalShowAll);
  all->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
  addAction(back);
  addAction(all);
  signalMenu_->addSeparator();
  addCommand(signalMenu_, "mnuSignalCopyPicture", QStringLiteral("Копировать рисунок"), &MainWindow::onSignalCopy)
      ->setIcon(MakeToolIcon(ToolIcon::Copy));
  signalMenu_->addSeparator();
  edits_->addSignalCommands(signalMenu_);
}

void MainWindow::buildToolbars() {
  toolbarMain_ = addToolBar(QStringLiteral("Панель инструментов"));
  toolbarMain_->setObjectName(QStringLiteral("ToolbarMain"));
  toolbarMain_->setIconSize(QSize(24, 24));
  auto button = [this](const char* key, const char* command, ToolIcon icon, const QString& tip) {
    QAction* a = actions_.value(QString::fromLatin1(command));
    a->setIcon(MakeToolIcon(icon));
    toolbarMain_->addAction(a);
    if (QWidget* w = toolbarMain_->widgetForAction(a)) w->setObjectName(QString::fromLatin1(key));
    if (!tip.isEmpty() && !a->property("later").toBool()) a->setToolTip(tip);
  };
  button("Record", "mnuFileRecord", ToolIcon::Record, QStringLiteral("Пуск измерений"));
  toolbarMain_->addSeparator();
  button("Open", "mnuFileOpen", ToolIcon::Open, QStringLiteral("Открыть файл данных"));
  button("Save", "mnuFileSave", ToolIcon::Save, QStringLiteral("Сохранить файл данных"));
  button("FileData", "mnuFileProperty", ToolIcon::FileData, QString());
  button("Copy", "mnuFileCopy", ToolIcon::Copy, QStringLiteral("Копировать рисунок активного окна"));
  toolbarMain_->addSeparator();
  button("Signal", "mnuViewSignal", ToolIcon::Signal, QStringLiteral("Сигнал"));
  button("Spectr", "mnuViewSpectr", ToolIcon::Spectr, QStringLiteral("Спектр"));
  button("Spectrum", "mnuViewSpectrum", ToolIcon::Spectrum, QStringLiteral("Каскад спектров"));
  button("Traectoria", "mnuViewTraectoria", ToolIcon::Traectoria, QStringLiteral("Траектория"));
  button("FormaRotorDiagram", "mnuViewFormaRotorDiagram", ToolIcon::FormaRotorDiagram, QStringLiteral("Диаграмма формы ротора"));
  button("FormaRotorSpectr", "mnuViewFormaRotorSpectr", ToolIcon::FormaRotorSpectr, QStringLiteral("Спектр формы ротора"));
  button("Parameters", "mnuViewParameters", ToolIcon::Parameters, QStringLiteral("Параметры"));
  button("ADC", "mnuHelpADC", ToolIcon::ADC, QStringLiteral("Информация АЦП"));
  toolbarMain_->addSeparator();
  button("BlockFirst", "mnuViewBlockFirst", ToolIcon::BlockFirst, QString());
  button("BlockPrevious", "mnuViewBlockPrevious", ToolIcon::BlockPrevious, QString());
  // Read-only boxes of the block toolbar; the block commands fill them.
  auto box = [this](const char* name, const QString& text, const QString& tip, int widthPx) {
    auto* edit = new QLineEdit(text, this);
    edit->setObjectName(QString::fromLatin1(name));
    edit->setToolTip(tip);
    edit->setReadOnly(true);
    edit->setAlignment(Qt::AlignCenter);
    edit->setFixedWidth(widthPx);
    toolbarMain_->addWidget(edit);
    return edit;
  };
  txtBlock_ = box("txtBlock", QStringLiteral("1"), QStringLiteral("Активный блок / Количество блоков"), 64);
  button("BlockNext", "mnuViewBlockNext", ToolIcon::BlockNext, QString());
  button("BlockLast", "mnuViewBlockLast", ToolIcon::BlockLast, QString());
  button("BlockMinus", "mnuViewBlockMinus", ToolIcon::BlockMinus, QString());
  txtSolidBlockM_ = box("txtSolidBlockM", QStringLiteral("1:1"), QStringLiteral("Масштаб блоков"), 48);
  button("BlockPlus", "mnuViewBlockPlus", ToolIcon::BlockPlus, QString());
  button("BlockMin", "mnuViewBlockMin", ToolIcon::BlockMin, QString());
  button("BlockMax", "mnuViewBlockMax", ToolIcon::BlockMax, QString());

  addToolBarBreak();
  toolbarChannels_ = addToolBar(QStringLiteral("Панель каналов"));
  toolbarChannels_->setObjectName(QStringLiteral("ToolbarChannels"));
  toolbarChannels_->setIconSize(QSize(24, 24));
  for (int c = 1; c <= kMaxChannels; ++c) {
    auto* b = new QToolButton(this);
    b->setObjectName(QStringLiteral("Ch%1").arg(c));
    b->setCheckable(true);
    b->setAutoRaise(true);
    connect(b, &QToolButton::clicked, this, [this, c] { SelectActiveChannel(c); });
    channelButtons_[static_cast<size_t>(c - 1)] = b;
    QAction* holder = toolbarChannels_->addWidget(b);
    holder->setObjectName(QStringLiteral("ChHolder%1").arg(c));
  }
  toolbarChannels_->addSeparator();
  toolbarChannels_->addAction(actions_.value(QStringLiteral("mnuViewImposition")));
  if (QWidget* w = toolbarChannels_->widgetForAction(actions_.value(QStringLiteral("mnuViewImposition"))))
    w->setObjectName(QStringLiteral("Imposition"));
}

void MainWindow::buildStatusBar() {
  status_ = new PanelBar(this);
  status_->setObjectName(QStringLiteral("StatusBar"));
  std::vector<PanelBar::Panel> panels;
  for (const char* key : {"DateTime", "Station", "Agregat", "Mode", "Type", "Place", "FreqRotor"})
    panels.push_back({QString::fromLatin1(key), {}, {}});
  panels.push_back({QStringLiteral("PathFileData"), {}, QStringLiteral("Файл данных"), true, true, true, 80, Qt::ElideMiddle});
  status_->setPanels(std::move(panels));
  status_->setToolTipOf(QStringLiteral("DateTime"), QStringLiteral("Дата и время записи"));
  status_->setToolTipOf(QStringLiteral("Station"), QStringLiteral("Станция"));
  status_->setToolTipOf(QStringLiteral("Agregat"), QStringLiteral("Гидроагрегат"));
  status_->setToolTipOf(QStringLiteral("Mode"), QStringLiteral("Режим"));
  status_->setToolTipOf(QStringLiteral("Type"), QStringLiteral("Тип датчика активного канала"));
  status_->setToolTipOf(QStringLiteral("Place"), QStringLiteral("Место и направление активного канала"));
  status_->setToolTipOf(QStringLiteral("FreqRotor"), QStringLiteral("Частота вращения"));
  status_->setVisibleOf(QStringLiteral("FreqRotor"), false);
  statusBar()->setObjectName(QStringLiteral("StatusBarFrame"));
  statusBar()->addWidget(status_, 1);
  statusBar()->setSizeGripEnabled(true);
}

}  // namespace aqx::ui
