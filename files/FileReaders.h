#pragma once
// The readers of every file type the program opens, by extension, for
// OpenFile, the tool and the protocol master.

#include "core/ReaderTable.h"

namespace aqx {

FileReaderTable StandardFileReaders();
// The same for a command that prints the header alone: a data file's
// samples are then not read (ReadDataFileHeader).
FileReaderTable HeaderFileReaders();

}  // namespace aqx
