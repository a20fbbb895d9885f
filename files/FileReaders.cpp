#include "files/FileReaders.h"

#include "files/DataFile.h"

namespace aqx {

FileReaderTable StandardFileReaders() {
  return {
      {QStringLiteral("aqx"), ReadDataFile},
  };
}

}  // namespace aqx
