#include "tools/RenderSupport.h"

#include "files/FileReaders.h"
#include "ui/paint/PaintDrawList.h"

#include <QFile>
#include <QImage>

namespace aqx::tool {

std::unique_ptr<AppState> ReadRecording(ToolContext& ctx, const QString& path, const char* command) {
  const FileReadFn read = FindFileReader(StandardFileReaders(), path);
  if (!read) {
    Print(stderr, QStringLiteral("%1: '%2' is not a file type the program reads (aqx, zrk, rsl, wav)\n")
                      .arg(QString::fromLatin1(command), path));
    return nullptr;
  }
  auto state = std::make_unique<AppState>();
  state->PathFileData = path;
  state->BatchMode = true;
  if (!read(*state, *ctx.prompts)) return nullptr;
  RecountChannelUsedCount(*state);
  return state;
}

std::optional<int> IntOption(const QStringList& args, const QString& name, int fallback, int low, int high,
                             const char* command) {
  return IntOption(args, QString::fromLatin1(command), name, fallback, low, high);
}

bool SavePicture(const views::DrawList& picture, const QString& path) {
  const QImage image = ui::RenderDrawList(picture);
  // A temporary beside the target, renamed when complete: never a half
  // written picture under the asked name.
  const QString temporary = path + QStringLiteral(".part");
  if (!image.save(temporary, "PNG")) {
    QFile::remove(temporary);
    Print(stderr, QStringLiteral("render: cannot write '%1'\n").arg(path));
    return false;
  }
  QFile::remove(path);
  if (!QFile::rename(temporary, path)) {
    QFile::remove(temporary);
    Print(stderr, QStringLiteral("render: cannot write '%1'\n").arg(path));
    return false;
  }
  return true;
}

}  // namespace aqx::tool
