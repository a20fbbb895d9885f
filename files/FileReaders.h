#pragma once
// The readers of every file type the program opens, by extension, for
// OpenFile, the tool and the protocol master.

#include "core/FileReaders.h"

namespace aqx {

FileReaderTable StandardFileReaders();

}  // namespace aqx
