/* Aquilonix engine library (libAquilonix.so): every numeric routine over the
 * samples and all access to the acquisition module, behind plain C functions.
 *
 * Conventions of the whole interface:
 * - Integers are signed 32-bit, "Single" is float, "Double" is double.
 * - An array argument is the address of its first element; the library reads
 *   or writes through it and frees nothing it is given.
 * - Channels are 1..32 for the user and 0..31 as array indices.
 * - SignalData is 1,048,576 rows of 32 int16 codes: sample s (from 1) of
 *   channel c (from 1) at element (s-1)*32 + (c-1).
 * - Unless stated otherwise a function returns an error number, 0 = success.
 * - Strings are zero-ended single-byte text; the library may rewrite them.
 */
#ifndef AQUILONIX_ENGINE_H
#define AQUILONIX_ENGINE_H

#include <stdint.h>

#if defined(AQX_ENGINE_BUILD)
#define AQX_API __attribute__((visibility("default")))
#else
#define AQX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define AQX_SIGNAL_ROWS 1048576
#define AQX_SIGNAL_COLUMNS 32

/* ---- Version and module information ---------------------------------- */

AQX_API void AquilonixVersionDLL(int32_t* major, int32_t* minor, int32_t* build);
/* Eight buffers of 1,001 bytes, laid one after another (8 * 1001 bytes), each
 * taking a zero-ended block of text; byte 10 is a line break. */
AQX_API int32_t MainInfoE140(char* buffers);

/* ---- Continuous acquisition (cyclic mode) ---------------------------- */

AQX_API int32_t StartPotok(int32_t ChannelUsedCount, const int32_t* Channel, const int32_t* Volume,
                           int32_t SignalDataN, int32_t* FreqDescR, int32_t BufferLength,
                           int32_t InputMode, int32_t SynchroAdType, int32_t SynchroAdMode,
                           int32_t SynchroAdChannel, int32_t SynchroAdPorog, char* ModuleText,
                           int32_t ChannelDifferential);
AQX_API void CopySignalData(int16_t* SignalData);
AQX_API int32_t StopPotok(void);
/* ChannelMeans: 32 doubles. */
AQX_API int32_t ReadDataChannels(double* ChannelMeans, int32_t rows);

/* ---- Continuous recording to a file ---------------------------------- */

AQX_API int32_t ReadDataToFile(const char* fileName, int32_t headerBytes, int32_t RecordBuffer,
                               int32_t maxModuleFrequencyHz, double frequencyKHz,
                               int32_t ChannelUsedCount, const int32_t* Channel,
                               const int32_t* Volume, int32_t InputMode, int32_t SynchroAdType,
                               int32_t SynchroAdMode, int32_t SynchroAdChannel,
                               int32_t SynchroAdPorog, char* ModuleText,
                               int32_t ChannelDifferential, int32_t maxRows,
                               int32_t SolidClerData);
AQX_API void CopySignalDataDllRDTF(int16_t* SignalData, int32_t maxRows, int32_t* SolidBlockCount,
                                   int32_t* SolidBlockN, const int32_t* Channel);
AQX_API int32_t EndRDTF(void);
AQX_API int32_t StopRDTF(void);
AQX_API double InformationFileData(void);
AQX_API int32_t ReadSolidBlock(int32_t SignalDataN, int32_t ChannelUsedCount, int32_t dataOffset,
                               int32_t firstSample, const char* fileName,
                               int32_t ChannelDifferential, const int32_t* Channel,
                               int16_t* SignalData, int32_t SolidBlockM);

/* ---- Digital lines --------------------------------------------------- */

AQX_API int32_t DigitalLinesEnableTtlOut(int32_t enable);
AQX_API int32_t DigitalLinesTtlIn(int32_t* state);
AQX_API int32_t DigitalLinesTtlOut(int32_t state);

/* ---- Signal processing, spectrum, shaft marker, rotor form ----------- */
/* (declared below by the numeric part of the library) */

#ifdef __cplusplus
}
#endif

#endif /* AQUILONIX_ENGINE_H */
