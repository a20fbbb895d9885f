// frmMain's commands of the spectrum family: the spectrum and cascade views,
// the analyser settings, the probe and filter tables, the evaluation window.

#include "ui/editing/RecordingEdits.h"
#include "ui/main/MainWindow.h"
#include "ui/setup/SetupDialogs.h"
#include "ui/spectrum/CascadeWindow.h"
#include "ui/spectrum/SpectrWindow.h"

#include <QAction>
#include <QCoreApplication>
#include <QMdiSubWindow>

namespace aqx::ui {

SpectrWindow* MainWindow::spectrWindow() const {
  return spectrSub_ ? qobject_cast<SpectrWindow*>(spectrSub_->widget()) : nullptr;
}

CascadeWindow* MainWindow::cascadeWindow() const {
  return cascadeSub_ ? qobject_cast<CascadeWindow*>(cascadeSub_->widget()) : nullptr;
}

FrequencyTableDialog* MainWindow::setupProbe() const { return setupProbe_; }
FrequencyTableDialog* MainWindow::setupFilter() const { return setupFilter_; }

QWidget* MainWindow::makeSpectrumView(int window) {
  if (window == frmViewSpectrum) return new CascadeWindow(*this);
  return new SpectrWindow(*this, prompts_, [this] { onSetupSpectrumAnalyser(); });
}

void MainWindow::onViewSpectr() {
  if (spectrWindow()) {
    closeView(frmViewSpectr);
  } else if (hasData()) {
    openView(frmViewSpectr);
    ViewRefresh();
  }
  RefreshToolbarMainMenu();
}

void MainWindow::onViewSpectrum() {
  if (cascadeWindow()) {
    closeView(frmViewSpectrum);
  } else if (hasData()) {
    openView(frmViewSpectrum);
    ViewRefresh();
  }
  RefreshToolbarMainMenu();
}

void MainWindow::installSpectrumRefresh(views::ViewRegistry& registry) {
  if (SpectrWindow* w = spectrWindow()) w->installRefresh(registry);
  if (CascadeWindow* w = cascadeWindow()) w->installRefresh(registry);
  registry.setupProbeOpen = setupProbe_ != nullptr;
  registry.setupFilterOpen = setupFilter_ != nullptr;
  registry[views::RefreshStep::ReloadSetupProbeFilter] = [this] {
    if (setupProbe_) setupProbe_->Reload();
    if (setupFilter_) setupFilter_->Reload();
  };
}

namespace {

SetupContext MakeContext(AppState& s, SettingsStore& store, Prompts& prompts, MainWindow& main) {
  return SetupContext{s, store, prompts,
                      [&main] {
                        main.ViewRefresh(false);
                        main.RefreshToolbarMainMenu();  // undo of a filtering
                      },
                      [&main] { return main.action(QStringLiteral("mnuFileRecord"))->isChecked(); },
                      main.recordingEdits() ? &main.recordingEdits()->history() : nullptr};
}

// One window of a kind: a second command brings the first forward.
template <class Dialog, class Make>
void ShowOne(QPointer<Dialog>& slot, Make make) {
  if (!slot) {
    slot = make();
    slot->setAttribute(Qt::WA_DeleteOnClose);
  }
  slot->show();
  slot->raise();
  slot->activateWindow();
}

}  // namespace

void MainWindow::onSetupCheckF() {
  ShowOne(setupProbe_, [this] {
    return new FrequencyTableDialog(FrequencyTable::Probe, MakeContext(s_, store_, prompts_, *this), this);
  });
}

void MainWindow::onSetupFiltr() {
  if (measuring_) return;
  ShowOne(setupFilter_, [this] {
    return new FrequencyTableDialog(FrequencyTable::Filter, MakeContext(s_, store_, prompts_, *this), this);
  });
}

void MainWindow::onSetupSpectrumAnalyser() {
  // Modal to the frame, but the command returns at once (the refresh runs
  // from the dialog's Apply).
  auto* dialog = new SpectrumAnalyserDialog(MakeContext(s_, store_, prompts_, *this), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setModal(true);
  dialog->show();
}

void MainWindow::onServiceEvaluation() {
  auto* dialog = new EvaluationDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

}  // namespace aqx::ui
