#pragma once
// Runs one tool command with scripted prompts and catches what it prints.

#include "core/Prompts.h"
#include "tools/ToolCommand.h"

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

}  // namespace aqx::tool
