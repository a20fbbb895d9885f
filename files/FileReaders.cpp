#include "files/FileReaders.h"

#include "files/DataFile.h"
#include "files/ForeignFiles.h"
#include "files/Wave.h"

namespace aqx {

FileReaderTable StandardFileReaders() {
  return {
      {QStringLiteral("aqx"), ReadDataFile},
      {QStringLiteral("zrk"), ReadFileZRK},
      {QStringLiteral("rsl"), ReadFileRSL},
      {QStringLiteral("wav"), ReadFileWave},
  };
}

FileReaderTable HeaderFileReaders() {
  FileReaderTable table = StandardFileReaders();
  for (FileReader& r : table)
    if (r.read == ReadDataFile) r.read = ReadDataFileHeader;
  return table;
}

bool ReadLeavingDataFileSamples(FileReadFn read, AppState& state, Prompts& prompts,
                                std::optional<DataFileArea>& area) {
  area.reset();
  return read == ReadDataFile ? ReadDataFileLeavingSamples(state, prompts, area) : read(state, prompts);
}

}  // namespace aqx
