#include "ui/acquisition/ModuleWindows.h"

#include "core/EngineErrors.h"
#include "engine/Aquilonix.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QVBoxLayout>

#include <cstring>
#include <vector>

#include <dlfcn.h>

namespace aqx::ui {

namespace {

constexpr size_t kInfoBlocks = 8;
constexpr size_t kInfoBlockBytes = 1001;
constexpr int kLines = 16;

// The engine's file as the system loaded it ("libAquilonix.so.1").
QString EngineLibraryName() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&AquilonixVersionDLL), &info) != 0 && info.dli_fname)
    return QFileInfo(QFile::decodeName(info.dli_fname)).fileName();
  return QStringLiteral("libAquilonix.so");
}

}  // namespace

QString AdcInformationText(Prompts& prompts) {
  int32_t major = 0, minor = 0, build = 0;
  AquilonixVersionDLL(&major, &minor, &build);
  QString text =
      QStringLiteral("Библиотека %1 версии %2.%3.%4\n").arg(EngineLibraryName()).arg(major).arg(minor).arg(build);
  std::vector<char> buffers(kInfoBlocks * kInfoBlockBytes, '\0');
  const int32_t result = MainInfoE140(buffers.data());
  if (result != 0) {
    ShowEngineError(prompts, result);
    return text + QStringLiteral("> Нет данных АЦП!!!");
  }
  QStringDecoder decoder("windows-1251");
  for (size_t i = 0; i < kInfoBlocks; ++i) {
    const char* block = buffers.data() + i * kInfoBlockBytes;
    // Byte 10 is a line break, every other byte a letter of the module's
    // code page; the fifth block runs on into the sixth.
    text += decoder.decode(QByteArrayView(block, static_cast<qsizetype>(strnlen(block, kInfoBlockBytes))));
    if (i != 4) text += QStringLiteral("\n\n");
  }
  return text;
}

InfoAdcWindow::InfoAdcWindow(Prompts& prompts, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmViewInfoADC"));
  setWindowTitle(QStringLiteral("Информация АЦП"));
  setAttribute(Qt::WA_DeleteOnClose);
  txtInfo_ = new QPlainTextEdit(this);
  txtInfo_->setObjectName(QStringLiteral("txtInfo"));
  txtInfo_->setReadOnly(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setText(QStringLiteral("Закрыть"));
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(txtInfo_);
  layout->addWidget(buttons);
  resize(520, 460);
  txtInfo_->setPlainText(AdcInformationText(prompts));
}

QString InfoAdcWindow::text() const { return txtInfo_->toPlainText(); }

DigitalLinesWindow::DigitalLinesWindow(Prompts& prompts, QWidget* parent) : QDialog(parent), prompts_(prompts) {
  setObjectName(QStringLiteral("frmDigitalLines"));
  setWindowTitle(QStringLiteral("Цифровые линии"));
  setAttribute(Qt::WA_DeleteOnClose);
  auto* inputs = new QGroupBox(QStringLiteral("Входы"), this);
  auto* outputs = new QGroupBox(QStringLiteral("Выходы"), this);
  auto* inGrid = new QGridLayout(inputs);
  auto* outGrid = new QGridLayout(outputs);
  for (int line = 0; line < kLines; ++line) {
    const QString number = QString::number(line);
    auto* in = new QCheckBox(number, inputs);
    in->setObjectName(QStringLiteral("chkCnannelIn%1").arg(line));
    // The inputs are read, not set.
    in->setAttribute(Qt::WA_TransparentForMouseEvents);
    in->setFocusPolicy(Qt::NoFocus);
    auto* out = new QCheckBox(number, outputs);
    out->setObjectName(QStringLiteral("chkCnannelOut%1").arg(line));
    inGrid->addWidget(in, line / 8, line % 8);
    outGrid->addWidget(out, line / 8, line % 8);
    chkChannelIn_[static_cast<size_t>(line)] = in;
    chkChannelOut_[static_cast<size_t>(line)] = out;
  }
  chkEnable_ = new QCheckBox(QStringLiteral("Выходы включены"), this);
  chkEnable_->setObjectName(QStringLiteral("chkDigitalLinesEnable"));
  connect(chkEnable_, &QCheckBox::clicked, this, &DigitalLinesWindow::chkDigitalLinesEnable);
  auto* cmdRead = new QPushButton(QStringLiteral("Прочитать"), this);
  cmdRead->setObjectName(QStringLiteral("cmdRead"));
  connect(cmdRead, &QPushButton::clicked, this, &DigitalLinesWindow::cmdRead);
  auto* cmdRecord = new QPushButton(QStringLiteral("Записать"), this);
  cmdRecord->setObjectName(QStringLiteral("cmdRecord"));
  connect(cmdRecord, &QPushButton::clicked, this, &DigitalLinesWindow::cmdRecord);
  auto* cmdClose = new QPushButton(QStringLiteral("Закрыть"), this);
  cmdClose->setObjectName(QStringLiteral("cmdClose"));
  connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdRead);
  buttons->addWidget(cmdRecord);
  buttons->addStretch();
  buttons->addWidget(cmdClose);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(inputs);
  layout->addWidget(outputs);
  layout->addWidget(chkEnable_);
  layout->addLayout(buttons);
}

void DigitalLinesWindow::cmdRead() {
  int32_t state = 0;
  const int32_t result = DigitalLinesTtlIn(&state);
  if (result != 0) {
    ShowEngineError(prompts_, result);
    return;
  }
  for (int line = 0; line < kLines; ++line) input(line)->setChecked((state >> line) & 1);
}

void DigitalLinesWindow::cmdRecord() {
  int32_t state = 0;
  for (int line = 0; line < kLines; ++line)
    if (output(line)->isChecked()) state |= 1 << line;
  const int32_t result = DigitalLinesTtlOut(state);
  if (result != 0) ShowEngineError(prompts_, result);
}

void DigitalLinesWindow::chkDigitalLinesEnable(bool enable) {
  const int32_t result = DigitalLinesEnableTtlOut(enable ? -1 : 0);
  if (result != 0) ShowEngineError(prompts_, result);
}

}  // namespace aqx::ui
