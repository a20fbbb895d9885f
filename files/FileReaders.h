#pragma once
// The readers of every file type the program opens, by extension, for
// OpenFile, the tool and the protocol master.

#include "core/ReaderTable.h"

#include <optional>

namespace aqx {

FileReaderTable StandardFileReaders();
// The same for a command that prints the header alone: a data file's
// samples are then not read (ReadDataFileHeader).
FileReaderTable HeaderFileReaders();

struct DataFileArea;  // files/DataFile.h

// Reads with `read`, one of StandardFileReaders', for a command that moves
// the samples on by itself: an ordinary data file's samples stay in the file
// and `area` says where (ReadDataFileLeavingSamples); any other file comes
// into the store and `area` stays empty.
bool ReadLeavingDataFileSamples(FileReadFn read, AppState& state, Prompts& prompts,
                                std::optional<DataFileArea>& area);

}  // namespace aqx
