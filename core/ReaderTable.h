#pragma once
// The readers that OpenFile dispatches to, by the last three letters of the
// path. Core only knows the shape of the table; files/ fills it, so that core
// stays below the file formats.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QString>

#include <vector>

namespace aqx {

// Reads state.PathFileData into the state. Returns true when the recording in
// memory was replaced; on false the failure has been told to the user.
using FileReadFn = bool (*)(AppState& state, Prompts& prompts);

struct FileReader {
  QString extension;  // lower case, three letters: "aqx", "zrk", "rsl", "wav"
  FileReadFn read = nullptr;
};

using FileReaderTable = std::vector<FileReader>;

// The reader for a path by its last three letters (case-insensitive), or null.
inline FileReadFn FindFileReader(const FileReaderTable& table, const QString& path) {
  const QString ext = path.right(3).toLower();
  for (const FileReader& r : table)
    if (r.extension == ext) return r.read;
  return nullptr;
}

}  // namespace aqx
