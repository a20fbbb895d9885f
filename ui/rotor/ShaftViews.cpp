#include "ui/rotor/ShaftViews.h"

#include "core/ConfigKeys.h"
#include "ui/common/Icons.h"
#include "ui/common/OptionMenu.h"
#include "ui/rotor/ConsoleWindow.h"
#include "ui/rotor/SpicaWindow.h"
#include "ui/trajectory/TraectoriaWindow.h"
#include "views/rotor/RotorRefresh.h"
#include "views/rotor/RotorView.h"

#include <QAction>
#include <QActionGroup>
#include <QMdiSubWindow>
#include <QMenu>

namespace aqx::ui {

namespace {

constexpr FormaKind kFormaKinds[] = {FormaKind::Rotor, FormaKind::Diagram, FormaKind::Spectr};

int FormaSlot(int window) {
  switch (window) {
    case frmViewFormaRotor: return 0;
    case frmViewFormaRotorDiagram: return 1;
    case frmViewFormaRotorSpectr: return 2;
    default: return -1;
  }
}

const char* ViewCommandOf(int window) {
  switch (window) {
    case frmViewTraectoria: return "mnuViewTraectoria";
    case frmViewFormaRotor: return "mnuViewFormaRotor";
    case frmViewFormaRotorDiagram: return "mnuViewFormaRotorDiagram";
    default: return "mnuViewFormaRotorSpectr";
  }
}

constexpr int kShaftWindows[] = {frmViewTraectoria, frmViewFormaRotor, frmViewFormaRotorDiagram, frmViewFormaRotorSpectr};

}  // namespace

ShaftViews::ShaftViews(ViewHost& host, Prompts& prompts, QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks)
    : QObject(frame), host_(host), s_(host.state()), prompts_(prompts), actions_(actions), frame_(frame),
      hooks_(std::move(hooks)) {}

ShaftViews::~ShaftViews() { closeAll(); }

QAction* ShaftViews::command(QMenu* menu, const char* name, const QString& caption, std::function<void()> run) {
  auto* a = new QAction(caption, menu);
  a->setObjectName(QString::fromLatin1(name));
  connect(a, &QAction::triggered, this, std::move(run));
  menu->addAction(a);
  actions_.insert(a->objectName(), a);
  return a;
}

QAction* ShaftViews::choice(QMenu* menu, QActionGroup* group, const char* key, int value, const QString& caption) {
  const QString name = QStringLiteral("mnu%1%2").arg(QString::fromLatin1(key)).arg(value);
  QAction* a = command(menu, name.toLatin1().constData(), caption, [this, key, value] {
    const SettingKey* row = FindSettingKey(QString::fromLatin1(kSectionFormaRotor), QString::fromLatin1(key));
    if (!row) return;
    const SettingField field = row->field(s_);
    if (auto* target = std::get_if<int32_t*>(&field)) **target = value;
    WriteSettingKey(host_.settings(), *row, s_);
    formaOptionsChanged();
  });
  a->setCheckable(true);
  group->addAction(a);
  choices_.emplace_back(a, value);
  return a;
}

void ShaftViews::addViewCommands(QMenu* view) {
  const std::pair<int, ToolIcon> icons[] = {{frmViewTraectoria, ToolIcon::Traectoria},
                                            {frmViewFormaRotor, ToolIcon::FormaRotor},
                                            {frmViewFormaRotorDiagram, ToolIcon::FormaRotorDiagram},
                                            {frmViewFormaRotorSpectr, ToolIcon::FormaRotorSpectr}};
  const char* const captions[] = {"Траектория", "Форма ротора", "Диаграмма формы ротора", "Спектр формы ротора"};
  for (size_t i = 0; i < std::size(icons); ++i) {
    const int window = icons[i].first;
    QAction* a = command(view, ViewCommandOf(window), QString::fromUtf8(captions[i]), [this, window] { toggleView(window); });
    a->setCheckable(true);
    a->setIcon(MakeToolIcon(icons[i].second));
    a->setToolTip(a->text());
    a->setEnabled(false);
  }
}

void ShaftViews::buildPopupMenus() {
  SettingsStore& store = host_.settings();
  traectoriaMenu_ = new QMenu(QStringLiteral("Траектория"), frame_);
  traectoriaMenu_->setObjectName(QStringLiteral("mnuTraectoria"));
  const auto traectoriaChanged = [this] {
    if (TraectoriaWindow* w = traectoriaWindow()) w->optionsChanged();
  };
  for (int group = 0; group <= 2; ++group) {
    AddOptionToggles(traectoriaMenu_, kSectionTraectoria, group, s_, store, actions_, traectoriaChanged);
    traectoriaMenu_->addSeparator();
  }
  command(traectoriaMenu_, "mnuTraectoriaCopy", QStringLiteral("Копировать рисунок"), [this] {
    if (TraectoriaWindow* w = traectoriaWindow()) w->CopyPicture();
  })->setIcon(MakeToolIcon(ToolIcon::Copy));

  const auto copyOf = [this](FormaKind kind) {
    return [this, kind] {
      if (FormaWindow* w = formaWindow(kind)) w->CopyPicture();
    };
  };
  const auto changed = [this] { formaOptionsChanged(); };
  formaRotorMenu_ = new QMenu(QStringLiteral("Форма ротора"), frame_);
  formaRotorMenu_->setObjectName(QStringLiteral("mnuFormaRotorS"));
  auto* view = new QActionGroup(this);
  choice(formaRotorMenu_, view, "FormaView", 0, QStringLiteral("Прямоугольная"));
  choice(formaRotorMenu_, view, "FormaView", 1, QStringLiteral("Линейная"));
  formaRotorMenu_->addSeparator();
  AddOptionToggles(formaRotorMenu_, kSectionFormaRotor, 0, s_, store, actions_, changed);
  formaRotorMenu_->addSeparator();
  command(formaRotorMenu_, "mnuFormRotorSpica", QStringLiteral("Спицы"), [this] { showSpicaSettings(); });
  command(formaRotorMenu_, "mnuFormaConsole", QStringLiteral("Консоль"), [this] { showConsole(); });
  command(formaRotorMenu_, "mnuFormaCopy", QStringLiteral("Копировать"), copyOf(FormaKind::Rotor))
      ->setIcon(MakeToolIcon(ToolIcon::Copy));

  formaDiagramMenu_ = new QMenu(QStringLiteral("Диаграмма формы ротора"), frame_);
  formaDiagramMenu_->setObjectName(QStringLiteral("mnuFormaRotorDiagrams"));
  auto* type = new QActionGroup(this);
  choice(formaDiagramMenu_, type, "DiagramaViewType", 1, QStringLiteral("Гистограмма"));
  choice(formaDiagramMenu_, type, "DiagramaViewType", 2, QStringLiteral("Диаграмма"));
  formaDiagramMenu_->addSeparator();
  auto* extent = new QActionGroup(this);
  choice(formaDiagramMenu_, extent, "DiagramaView", 1, QStringLiteral("Стандартная"));
  choice(formaDiagramMenu_, extent, "DiagramaView", 2, QStringLiteral("Расширенная"));
  formaDiagramMenu_->addSeparator();
  AddOptionToggles(formaDiagramMenu_, kSectionFormaRotor, 1, s_, store, actions_, changed);
  formaDiagramMenu_->addSeparator();
  command(formaDiagramMenu_, "mnuFormaRotorDiagramConsole", QStringLiteral("Консоль"), [this] { showConsole(); });
  command(formaDiagramMenu_, "mnuDiagramaCopy", QStringLiteral("Копировать"), copyOf(FormaKind::Diagram))
      ->setIcon(MakeToolIcon(ToolIcon::Copy));

  formaSpectrMenu_ = new QMenu(QStringLiteral("Спектр формы ротора"), frame_);
  formaSpectrMenu_->setObjectName(QStringLiteral("mnuFormaRotorSpectrs"));
  AddOptionToggles(formaSpectrMenu_, kSectionFormaRotor, 2, s_, store, actions_, changed);
  formaSpectrMenu_->addSeparator();
  command(formaSpectrMenu_, "mnuSpectrFormsConsole", QStringLiteral("Консоль"), [this] { showConsole(); });
  command(formaSpectrMenu_, "mnuSpectrFormsCopy", QStringLiteral("Копировать"), copyOf(FormaKind::Spectr))
      ->setIcon(MakeToolIcon(ToolIcon::Copy));
  refreshPopupChecks();
}

bool ShaftViews::handles(int window) const {
  return window == frmViewTraectoria || FormaSlot(window) >= 0;
}

QPointer<QMdiSubWindow>* ShaftViews::slot(int window) {
  if (window == frmViewTraectoria) return &traectoriaSub_;
  const int k = FormaSlot(window);
  return k >= 0 ? &formaSubs_[static_cast<size_t>(k)] : nullptr;
}

QWidget* ShaftViews::createContent(int window) {
  const auto popup = [this, window](QPoint pos) { showPopup(window, pos); };
  if (window == frmViewTraectoria) return new TraectoriaWindow(host_, popup);
  const int k = FormaSlot(window);
  if (k < 0) return nullptr;
  return new FormaWindow(host_, kFormaKinds[k], popup);
}

void ShaftViews::closeAll() {
  for (int window : kShaftWindows)
    if (QPointer<QMdiSubWindow>* sub = slot(window); sub && *sub) delete sub->data();
  delete console_.data();
  delete spica_.data();
}

TraectoriaWindow* ShaftViews::traectoriaWindow() const {
  return traectoriaSub_ ? qobject_cast<TraectoriaWindow*>(traectoriaSub_->widget()) : nullptr;
}

FormaWindow* ShaftViews::formaWindow(FormaKind kind) const {
  const QPointer<QMdiSubWindow>& sub = formaSubs_[static_cast<size_t>(FormaSlot(FormaWindow::windowOf(kind)))];
  return sub ? qobject_cast<FormaWindow*>(sub->widget()) : nullptr;
}

ConsoleWindow* ShaftViews::console() const { return console_; }
SpicaWindow* ShaftViews::spicaWindow() const { return spica_; }

QMenu* ShaftViews::popupMenu(int window) const {
  switch (window) {
    case frmViewTraectoria: return traectoriaMenu_;
    case frmViewFormaRotor: return formaRotorMenu_;
    case frmViewFormaRotorDiagram: return formaDiagramMenu_;
    case frmViewFormaRotorSpectr: return formaSpectrMenu_;
    default: return nullptr;
  }
}

void ShaftViews::toggleView(int window) {
  QPointer<QMdiSubWindow>* sub = slot(window);
  if (!sub) return;
  if (*sub) {
    hooks_.closeView(window);
  } else if (window == frmViewTraectoria) {
    hooks_.openView(window);
    hooks_.viewRefresh();
  } else {
    // The form stands while another of its windows is open; else it is
    // computed first, and nothing opens without one.
    if (!views::FormaRotorDataStands(s_)) {
      const int result = views::RunFormaRotorAccount(s_, host_.analysis().forma);
      if (result != 0) {
        prompts_.tell(views::FormaRotorFailureText(result, s_), QString::fromUtf8(views::kFormaRotorTitle),
                      PromptIcon::Exclamation);
        hooks_.refreshToolbars();
        return;
      }
    }
    hooks_.openView(window);
  }
  hooks_.refreshToolbars();
}

void ShaftViews::installRefresh(views::ViewRegistry& registry) {
  if (TraectoriaWindow* w = traectoriaWindow()) w->installRefresh(registry);
  views::FormaWindowHooks hooks;
  std::function<void()>* targets[] = {&hooks.formaRotorInitData, &hooks.diagramInitData, &hooks.spectrInitData};
  for (size_t k = 0; k < std::size(kFormaKinds); ++k)
    if (FormaWindow* w = formaWindow(kFormaKinds[k])) *targets[k] = [w] { w->InitData(); };
  views::InstallFormaRotorViews(registry, s_, host_.analysis().forma, std::move(hooks));
}

bool ShaftViews::copyPicture(QWidget* content) {
  if (auto* w = qobject_cast<TraectoriaWindow*>(content)) {
    w->CopyPicture();
    return true;
  }
  if (auto* w = qobject_cast<FormaWindow*>(content)) {
    w->CopyPicture();
    return true;
  }
  return false;
}

void ShaftViews::refreshCommands(bool data) {
  for (int window : kShaftWindows) actions_.value(QString::fromLatin1(ViewCommandOf(window)))->setEnabled(data);
  updateChecks();
}

void ShaftViews::updateChecks() {
  for (int window : kShaftWindows) {
    QPointer<QMdiSubWindow>* sub = slot(window);
    actions_.value(QString::fromLatin1(ViewCommandOf(window)))->setChecked(sub && *sub);
  }
}

void ShaftViews::refreshPopupChecks() {
  RefreshOptionChecks(actions_, s_, kSectionTraectoria);
  RefreshOptionChecks(actions_, s_, kSectionFormaRotor);
  const FormaRotorOptions& o = s_.options.formaRotor;
  for (const auto& [a, value] : choices_) {
    const QString name = a->objectName();
    const int current = name.startsWith(QStringLiteral("mnuFormaView"))       ? o.FormaView
                        : name.startsWith(QStringLiteral("mnuDiagramaViewType")) ? o.DiagramaViewType
                                                                               : o.DiagramaView;
    a->setChecked(current == value);
  }
}

void ShaftViews::showPopup(int window, const QPoint& globalPos) {
  refreshPopupChecks();
  if (QMenu* menu = popupMenu(window)) menu->popup(globalPos);
}

void ShaftViews::formaOptionsChanged() {
  refreshPopupChecks();
  for (FormaKind kind : kFormaKinds)
    if (FormaWindow* w = formaWindow(kind)) w->Build();
}

void ShaftViews::showConsole() {
  if (!console_) console_ = new ConsoleWindow(s_, frame_);
  console_->showText(QString::fromUtf8(views::kFormaRotorTitle),
                     views::FormaRotorConsoleText(s_, host_.analysis().forma));
  console_->show();
  console_->raise();
}

void ShaftViews::showSpicaSettings() {
  if (spica_) {
    spica_->raise();
    spica_->activateWindow();
    return;
  }
  spica_ = new SpicaWindow(s_, host_.settings(), [this] { formaOptionsChanged(); }, frame_);
  spica_->show();
}

}  // namespace aqx::ui
