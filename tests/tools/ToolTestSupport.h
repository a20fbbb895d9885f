#pragma once
// Runs one tool command with scripted prompts and catches what it prints.

#include "core/Prompts.h"
#include "tools/ToolCommand.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <cstdio>

namespace aqx::tool {

inline int RunToolCommand(int (*command)(ToolContext&), const QStringList& args, Prompts& prompts,
                          QString& out, const QString& settings = {}) {
  ToolContext ctx;
  ctx.args = args;
  ctx.settingsFile = settings;
  ctx.prompts = &prompts;
  FILE* stream = std::tmpfile();
  ctx.out = stream;
  const int rc = command(ctx);
  std::fflush(stream);
  std::rewind(stream);
  QByteArray bytes;
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, stream)) > 0;)
    bytes.append(buffer, static_cast<qsizetype>(n));
  std::fclose(stream);
  out = QString::fromUtf8(bytes);
  return rc;
}

struct ToolRun {
  int exitCode = -1;
  QString out;
  QString err;
};

// The tool as the user runs it, in a process of its own (painting needs a
// GUI application, offscreen here).
inline ToolRun RunTool(const QStringList& args) {
  QProcess tool;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
  tool.setProcessEnvironment(env);
  tool.start(QStringLiteral(AQX_BINARY_DIR "/tools/aquilonix-tool"), args);
  tool.waitForFinished(120000);
  return {tool.exitStatus() == QProcess::NormalExit ? tool.exitCode() : -1,
          QString::fromUtf8(tool.readAllStandardOutput()), QString::fromUtf8(tool.readAllStandardError())};
}

}  // namespace aqx::tool
