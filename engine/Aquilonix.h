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

/* The module behind these functions is the built-in virtual module unless
 * AQX_MODULE=replay (AQX_REPLAY_FILE names the .aqx file to play); both are
 * steered by the AQX_VIRTUAL_* environment variables listed in
 * engine/acquisition/ModuleSettings.cpp.
 *
 * StartPotok: opens the module, sets the channel table (the channels with
 * Channel = 1 among the first 16 or 32, ranges from Volume), a clock divider
 * for FreqDescR per channel and the synchronisation (SynchroAdChannel from
 * 1), starts the acquisition thread and returns once the module runs.
 * FreqDescR comes back as the rate the module really runs at, ModuleText
 * (17 bytes) as "E140 <serial>". BufferLength is the rows per transfer. */
AQX_API int32_t StartPotok(int32_t ChannelUsedCount, const int32_t* Channel, const int32_t* Volume,
                           int32_t SignalDataN, int32_t* FreqDescR, int32_t BufferLength,
                           int32_t InputMode, int32_t SynchroAdType, int32_t SynchroAdMode,
                           int32_t SynchroAdChannel, int32_t SynchroAdPorog, char* ModuleText,
                           int32_t ChannelDifferential);
/* The newest SignalDataN rows into the channels' columns (rows 1.. hold the
 * rows acquired so far, the rest of the cycle is zero until it is full).
 * Never waits for the module. */
AQX_API void CopySignalData(int16_t* SignalData);
/* Stops the module and the thread; a failure of the thread (20) is told
 * here when the stop itself went well. */
AQX_API int32_t StopPotok(void);
/* Outside any run: acquires `rows` rows of every channel (the ranges and the
 * connection of the last start) and writes the 32 mean codes. */
AQX_API int32_t ReadDataChannels(double* ChannelMeans, int32_t rows);

/* ---- Continuous recording to a file ---------------------------------- */

/* Starts the module and the recording thread, which appends raw rows of the
 * channels that are on, interleaved in ascending channel order, to the file
 * behind its first headerBytes bytes; the header region is never changed.
 * The data reach the disk at least twice a second. SolidClerData non-zero
 * drops rows already behind the header; otherwise new rows follow them. */
AQX_API int32_t ReadDataToFile(const char* fileName, int32_t headerBytes, int32_t RecordBuffer,
                               int32_t maxModuleFrequencyHz, double frequencyKHz,
                               int32_t ChannelUsedCount, const int32_t* Channel,
                               const int32_t* Volume, int32_t InputMode, int32_t SynchroAdType,
                               int32_t SynchroAdMode, int32_t SynchroAdChannel,
                               int32_t SynchroAdPorog, char* ModuleText,
                               int32_t ChannelDifferential, int32_t maxRows,
                               int32_t SolidClerData);
/* The block being written (maxRows rows a block, as at the start) into
 * SignalData: its rows so far, then zeros; SolidBlockCount and SolidBlockN
 * both become the number of that block. */
AQX_API void CopySignalDataDllRDTF(int16_t* SignalData, int32_t maxRows, int32_t* SolidBlockCount,
                                   int32_t* SolidBlockN, const int32_t* Channel);
/* 0 while the recording runs; once it has ended by itself, the error number
 * (27 the file could not be written, 20 the module failed). */
AQX_API int32_t EndRDTF(void);
/* Ends the recording and closes the file; the number of a failure of the
 * thread when the stop itself went well. */
AQX_API int32_t StopRDTF(void);
/* Size of the recorded file in bytes (after the stop, of the last one). */
AQX_API double InformationFileData(void);
/* Reads SignalDataN rows of block blockNumber (from 1; it begins at row
 * (blockNumber-1) * SignalDataN * SolidBlockM of the file), every
 * SolidBlockM-th row, behind dataOffset header bytes. Rows past the end of
 * the file come back as zeros. */
AQX_API int32_t ReadSolidBlock(int32_t SignalDataN, int32_t ChannelUsedCount, int32_t dataOffset,
                               int32_t blockNumber, const char* fileName,
                               int32_t ChannelDifferential, const int32_t* Channel,
                               int16_t* SignalData, int32_t SolidBlockM);

/* ---- Digital lines --------------------------------------------------- */

/* The output lines keep their state between calls. */
AQX_API int32_t DigitalLinesEnableTtlOut(int32_t enable);
AQX_API int32_t DigitalLinesTtlIn(int32_t* state);
AQX_API int32_t DigitalLinesTtlOut(int32_t state);

/* ---- Signal processing, spectrum, shaft marker, rotor form ----------- */
/*
 * Amplitude conventions (every number below that the views and protocols
 * print follows them):
 * - "Units" of a channel are code * 1.25 / Ku: millivolts at the +-10 V range
 *   over the sensor factor, micrometres for run-out and vibration. The range
 *   gain 4^Volume is not taken out, as in the readings of the views.
 * - The amplitude of a spectrum line or a probe frequency (SpectrAmplitude,
 *   SpectrMax, ProbeAmplitude, AccountSpectr) is PEAK-TO-PEAK ("размах", twice
 *   the peak) of the sinusoid at that frequency, for run-out, vibration and
 *   every other channel type alike. Line 0 holds the constant component: its
 *   magnitude in SpectrAmplitude, its signed value in SpectrReal.
 * - Band levels (BandMax, BandMean) are peak-to-peak swings of the signal
 *   limited to the band, in the same units.
 * - Phase is in degrees, 0 <= phase < 360: a component of peak-to-peak A and
 *   phase p at frequency f is (A/2)*cos(2*pi*f*(t - t0) - p), so p is the lag
 *   from the reference instant t0 to its positive peak. t0 is the first shaft
 *   mark inside the analysed stretch, or its first sample when no mark is.
 * - Rotor form values are percent of the form's mean RMS EMF; the harmonics of
 *   a form are PEAK amplitudes (the offset of the form's circle), see
 *   FormaRotorAccount.
 *
 * Arguments out of range never make the library read or write outside the
 * arrays described here: SignalDataN is held to 0..1,048,576, rows to
 * 1..SignalDataN, a reversed or empty stretch gives the "empty" result told
 * at each function, a missing (null) required array makes the call return at
 * once with no more than the empty results it describes, and optional arrays
 * may be null.
 *
 * Per-channel arrays hold 32 entries, channel c (from 1) at index c-1. Rows
 * (samples) are numbered from 1. All spectra use a Hann window per block with
 * its amplitude loss corrected, except FFT/AccountSpectr, which transform the
 * samples as they are.
 */

#define AQX_MAX_SHAFT_MARKS 10001
/* Capacity of SpectrAmplitude, SpectrPhase and SpectrReal (lines 0..524,287). */
#define AQX_SPECTRUM_LINES 524288
#define AQX_PROBE_ENTRIES 7  /* ProbeFreq: channel c (from 1) at (c-1)*7 + 0..6 */
#define AQX_PROBE_RESULTS 8  /* ProbeAmplitude, ProbePhase */
#define AQX_FILTER_ENTRIES 4 /* Filter: channel c at (c-1)*4 + 0..3 */
#define AQX_BANDS 4
#define AQX_SPECTRUM_COLUMNS 10001
#define AQX_FORMA_FORMS 100    /* form 0 = average, 1..99 single forms */
#define AQX_FORMA_POLES 200    /* poles 1..199 at index 1..199, index 0 unused */
#define AQX_FORMA_HARMONICS 10 /* harmonics 1..9 at index 1..9, index 0 unused */

/* Results of FormaRotorAccount other than 0 (success). */
#define AQX_FORMA_NO_TURN_PROBE 101  /* no channel on of type "Виток" */
#define AQX_FORMA_NO_MARKER 102      /* no channel on of type "Отметчик" */
#define AQX_FORMA_NO_REVOLUTION 103  /* fewer than two shaft marks found */
#define AQX_FORMA_BAD_POLES 104      /* Polus not 2..199 and not found from the EMF */
#define AQX_FORMA_BAD_ARGUMENTS 105  /* a required array is missing or FreqDesc <= 0 */

/* For every channel with Channel = 1, over rows ViewFirst..ViewLast of the
 * store (held to 1..1,048,576): SignalOffset = mean code (the constant
 * component), SignalMaxValue = largest |code|, SignalMeanValue = mean code,
 * SignalCurrentValue = code of the last row. All codes, rounded half to even.
 * An empty stretch gives 0 in all four. Returns 0. */
AQX_API int32_t AccountSignalMax(const int16_t* SignalData, int32_t ViewFirst, int32_t ViewLast,
                                 int32_t* SignalMaxValue, const int32_t* Channel,
                                 int32_t* SignalOffset, int32_t* SignalMeanValue,
                                 int32_t* SignalCurrentValue);

/* Over rows 1..SignalDataN of every channel with Channel = 1. Returns 1 when a
 * code of such a channel reaches the end of the ADC scale (>= 8191 or
 * <= -8192), else 0. For run-out channels (Type 0) the gap in micrometres is
 * Clearance + (code - KS) * 1.25 / Ku; ClearanceLow[c-1] is set to 1 when the
 * least gap is under ValueClearenceMin, ClearanceHigh[c-1] when the greatest
 * is over ValueClearenceMax. Entries of other channels are not touched.
 * SignalMaxValue is not read (may be null). */
AQX_API int32_t ControlClearance(int32_t SignalDataN, const int16_t* SignalData,
                                 const int32_t* Channel, const int32_t* Type, const float* KS,
                                 const float* Ku, int32_t Clearance, int32_t* ClearanceLow,
                                 int32_t* ClearanceHigh, const int32_t* SignalMaxValue,
                                 int32_t ValueClearenceMin, int32_t ValueClearenceMax);

/* Zero-phase low pass at 20 Hz (the run-out band 0-20 Hz), in place on rows
 * 1..SignalDataN of every channel with Channel = 1 and Type 0. Same filter
 * design as the ФНЧ entry of AccountFilter. SpectrRe and SpectrIm are not
 * used (may be null); the library keeps its own work memory. */
AQX_API void FilterSensorBienie(const int32_t* Channel, const int32_t* Type, int32_t SignalDataN,
                                double* SpectrRe, double* SpectrIm, int16_t* SignalData,
                                int32_t FreqDesc);

/* Applies the filter table in place to rows 1..SignalDataN of every channel
 * with Channel = 1, sampled at frequencyHz. Entries (Hz; -1, 0, negative or
 * at/above frequencyHz/2 mean "none"), applied in this order:
 *   [0] ФВЧ  high pass: Butterworth of order 4 run forward and backward, the
 *            cut-off being the -3 dB point of the whole zero-phase response;
 *   [1] ФНЧ  low pass, the same way (with [0] below [1] the pair is a band pass);
 *   [2] Фикс rejection of that one frequency: second-order notch, Q = 30
 *            (single-pass -3 dB width f/30), forward and backward;
 *   [3] Тунель narrow band pass around that frequency: second-order resonator,
 *            Q = 10, forward and backward (gain 1 at the frequency).
 * The record is extended at both ends by a prediction from its edge samples
 * (autoregressive model, so oscillations go on in phase), long enough for
 * the filters to settle: the record's edges carry no start-up transient. Results
 * are rounded half to even and held to the int16 range. BlockSizeFFT,
 * SpectrRe and SpectrIm are not used (may be null). */
AQX_API void AccountFilter(const int32_t* Channel, const float* Filter, double* SpectrRe,
                           double* SpectrIm, int16_t* SignalData, int32_t SignalDataN,
                           int32_t frequencyHz, int32_t BlockSizeFFT);

/* Delays channel `channel` (from 1) by angleDegrees/360 of a revolution
 * (negative: advances). Each whole revolution between two consecutive marks
 * is rotated within itself; the part before the first mark and after the
 * last is shifted in time by the same part of the nearest revolution, taking
 * its samples one revolution further on or back. Angles are reduced modulo
 * 360. Fewer than two usable marks, a channel outside 1..32 or a non-finite
 * angle: nothing changes. */
AQX_API void ShiftSignal(int16_t* SignalData, int32_t SignalDataN, int32_t channel,
                         double angleDegrees, int32_t ShaftMarkCount, const int32_t* ShaftMarks);

/* Keeps the whole revolutions from the first mark to the last one (K =
 * marks - 1 revolutions, S = last - first samples) and stretches them by
 * linear interpolation over rows 1..SignalDataN of every channel with
 * Channel = 1, so the record starts at a mark and holds exactly K revolutions.
 * Then FreqDesc = round(FreqDesc * SignalDataN / S), StepDesc = FreqDesc /
 * SignalDataN, FreqOneGarmonic = K * FreqDesc / SignalDataN (the first
 * harmonic falls on line K). CutResult = K and CutFlag = 1 when done; with
 * fewer than two marks inside 1..SignalDataN, or S < 2, nothing changes and
 * CutResult = CutFlag = 0. FreqDescR and FreqRotorN are not read. */
AQX_API void CutSignal(int16_t* SignalData, int32_t SignalDataN, const int32_t* Channel,
                       int32_t ShaftMarkCount, const int32_t* ShaftMarks, int32_t* CutResult,
                       int32_t* FreqDesc, int32_t FreqDescR, double* StepDesc,
                       double* FreqOneGarmonic, double FreqRotorN, int32_t* CutFlag);

/* destination[i] = code of row first + i of channel `channel` (from 1), as
 * a double, for the rows firstRow..lastRow held to 1..1,048,576 (first is
 * the held firstRow). The destination must hold lastRow - firstRow + 1
 * values; nothing is written for an empty stretch or a channel outside 1..32. */
AQX_API void CopyData(double* destination, const int16_t* SignalData, int32_t firstRow,
                      int32_t lastRow, int32_t channel);

/* Thinning of rows firstRow..lastRow (held to 1..SignalDataN) of channel
 * `channel` (from 0) to widthPixels columns (held to 1..1,048,576).
 * The four scale values:
 *   PixelsPerSample   sample i of the stretch (from 0) falls on column
 *                     floor(i * PixelsPerSample), held to the last column; <= 0
 *                     or not finite: widthPixels / (number of rows);
 *   PixelsPerUnit     vertical pixels per unit of the channel;
 *   millivoltsPerCode 1.25 for the module's codes;
 *   heightPixels      ordinates are held to -heightPixels..2*heightPixels so
 *                     the polyline stays drawable (<= 0: only to the int32 range).
 * With k = PixelsPerUnit / Ku, base = round(SignalOffset * millivoltsPerCode
 * * k + centreLine) and z = round(4^Volume * Zero) a code lands at
 * y = round(base - (millivoltsPerCode * code - z) * k), exactly as the signal
 * view draws a sample. output[2*x] is the least and output[2*x+1] the
 * greatest y of the samples on column x: no sample's extreme is lost. A column
 * with no sample repeats the last y drawn before it (centreLine at the start).
 * Ku, Zero, Volume and SignalOffset may be null (1, 0, 0, 0); pass a null
 * SignalOffset (or zeros) to draw without the offset. An empty stretch or a
 * channel outside 0..31 gives centreLine in every column. Returns 0. */
AQX_API int32_t AccountDataBuildSignal(int32_t widthPixels, int32_t centreLine,
                                       double PixelsPerSample, double PixelsPerUnit,
                                       double millivoltsPerCode, double heightPixels,
                                       int32_t channel, const int16_t* SignalData,
                                       int32_t SignalDataN, int32_t firstRow, int32_t lastRow,
                                       const float* Ku, const int32_t* Zero,
                                       const int32_t* Volume, const int32_t* SignalOffset,
                                       int32_t* output);

/* Shaft marker detector on the first channel with Channel = 1 and Type 3,
 * over ViewFirst..ViewLast and, when SelectFirst > 0 and SelectLast >
 * SelectFirst, only inside the selection.
 * - Level in codes; OtmetchickDirect 1 = a mark where the signal rises to the
 *   level, 0 = where it falls to it. With OtmetchickAuto = 1 the level is
 *   the midpoint between the signal's resting value (median) and the extreme
 *   of its pulses, the direction is the side the pulses go to, and both are
 *   written back.
 * - OtmetchickNoise: hysteresis in codes, the signal must come back by that
 *   much past the level before the next mark (auto: at least a quarter of
 *   the pulse height).
 * - OtmetchickDrebezg: samples after a mark in which no further mark is taken;
 *   at least a quarter of the rated revolution (60 * FreqDesc / FreqRotorN)
 *   when FreqRotorN > 0.
 * ShaftMarks gets the row of each mark (the first sample at the level), at
 * most 10,001 of them; ShaftMarkCount their number. Speeds come from the
 * intervals between marks, with the crossing instants interpolated between
 * samples: RotorSpeedMin/Max in revolutions per minute, RotorPercentMin/Max
 * in percent of FreqRotorN (rounded). With fewer than two marks the speeds
 * and percents are 0; without a marker channel the count is 0 too.
 * ShaftMarks may be null (only the count and speeds). Returns 0. */
AQX_API int32_t Otmetchick(const int16_t* SignalData, int32_t SignalDataN, const int32_t* Channel,
                           const int32_t* Type, int32_t* ShaftMarkCount, int32_t* ShaftMarks,
                           int32_t FreqDesc, double FreqRotorN, double* RotorSpeedMin,
                           double* RotorSpeedMax, int32_t* RotorPercentMin,
                           int32_t* RotorPercentMax, int32_t OtmetchickAuto,
                           int32_t* OtmetchickLevel, int32_t* OtmetchickDirect, int32_t ViewFirst,
                           int32_t ViewLast, int32_t SelectFirst, int32_t SelectLast,
                           int32_t OtmetchickDrebezg, int32_t OtmetchickNoise);

/* In-place discrete Fourier transform of the first L complex points
 * (SpectrRe + i*SpectrIm), L = n, or BlockSizeFFT when 0 < BlockSizeFFT < n.
 * direction 1: forward, sum x[k]*exp(-2*pi*i*j*k/L); -1: backward with
 * exp(+...), divided by L so that it undoes the forward one. Other directions
 * or n < 1 (n is held to 1,048,576): nothing. */
AQX_API void FFT(double* SpectrRe, double* SpectrIm, int32_t n, int32_t direction,
                 int32_t BlockSizeFFT);

/* Peak-to-peak amplitude spectrum of one block transformed by FFT (no
 * window), L as in FFT: lines 0..round(L/2)-1, line k = 4*|X[k]|/L * 1.25/Ku
 * (line 0: |X[0]|/L * 1.25/Ku). SpectrMax = the largest line, rounded. */
AQX_API void AccountSpectr(const double* SpectrRe, const double* SpectrIm,
                           double* SpectrAmplitude, int32_t BlockSizeFFT, float Ku,
                           int32_t* SpectrMax, int32_t n);

/* Spectrum of channel `channel` (from 1) over the selection when both its ends
 * are set, else over ViewFirst..ViewLast, rows held to 1..min(SignalDataN,
 * maxRows). With n rows: one block of L = n when BlockSizeFFT <= 0 or >= n,
 * otherwise blocks of L = BlockSizeFFT with half overlap (the tail shorter than a
 * block is left out). Each block is Hann-windowed; with StatusFilterConst
 * non-zero its mean is removed first (line 0 becomes 0). Amplitudes are the
 * mean of the blocks' amplitudes; phase and SpectrReal (the in-phase part,
 * amplitude * cos(phase)) come from the block average of the lines referred
 * to t0, so they are exact for components that repeat with the revolution.
 * StepDesc = FreqDesc / L, SpectrLineCount = round(L / 2) (at most 524,288),
 * SpectrMax = the largest amplitude, rounded. Fewer than 2 rows:
 * SpectrLineCount = 0, SpectrMax = 0, StepDesc unchanged. FreqDesc <= 0 counts
 * as 1. SpectrRe, SpectrIm, SignalOffset, Type and the last flag are not
 * read (may be null); SpectrPhase and SpectrReal may be null, and what is
 * null is not worked out. */
AQX_API void AccountSpectrFull(double* SpectrRe, double* SpectrIm, double* SpectrPhase,
                               double* SpectrReal, double* SpectrAmplitude, int32_t SelectFirst,
                               int32_t SelectLast, int32_t ViewFirst, int32_t ViewLast,
                               int32_t maxRows, int32_t SignalDataN, const int16_t* SignalData,
                               int32_t channel, const int32_t* SignalOffset, const int32_t* Type,
                               int32_t StatusFilterConst, int32_t BlockSizeFFT, double* StepDesc,
                               int32_t FreqDesc, int32_t* SpectrLineCount, int32_t* SpectrMax,
                               const float* Ku, int32_t ShaftMarkCount, const int32_t* ShaftMarks,
                               int32_t flag);

/* The spectrum of AccountSpectrFull (same stretch, block rule, units, line 0,
 * averaging and phase reference) with another smoothing window and block
 * overlap: windowIndex as FillBpfWindow (0 or any other: no window), the
 * periodic form of the window over each block, its amplitude loss corrected
 * (a sinusoid on a line reads its peak-to-peak amplitude whatever the
 * window); blocks start every L * (100 - overlapPercent) / 100 rows, the
 * overlap held to 0..99. With StatusFilterConst non-zero each block's mean is
 * removed before the window. SpectrPhase and SpectrReal may be null. */
AQX_API void AccountSpectrWindow(double* SpectrPhase, double* SpectrReal, double* SpectrAmplitude,
                                 int32_t SelectFirst, int32_t SelectLast, int32_t ViewFirst,
                                 int32_t ViewLast, int32_t SignalDataN, const int16_t* SignalData,
                                 int32_t channel, int32_t StatusFilterConst, int32_t BlockSizeFFT,
                                 int32_t windowIndex, int32_t overlapPercent, double* StepDesc,
                                 int32_t FreqDesc, int32_t* SpectrLineCount, int32_t* SpectrMax,
                                 const float* Ku, int32_t ShaftMarkCount, const int32_t* ShaftMarks);

/* Multiplies rows 1..SignalDataN of all 32 columns in place by the smoothing
 * window of that index (peak 1, published formulas, symmetric over the rows):
 * 1 Hanning, 2 Hamming, 3 Blackman, 4 Bartlett, 5 Blackman-Harris (4 terms),
 * 6 flat top, 7 Nuttall, 8 Blackman-Nuttall. Other indices: nothing. */
AQX_API void FillBpfWindow(int16_t* SignalData, int32_t SignalDataN, int32_t windowIndex);

/* One integration in place: line k (k >= 1) is divided by 2*pi*k*StepDesc,
 * line 0 becomes 0 (acceleration to velocity, velocity to displacement; the
 * unit stays the caller's). SpectrMax = the new largest line, rounded.
 * SpectrLineCount is held to 0..524,288; StepDesc <= 0: nothing. */
AQX_API void IntegralSpectr(double* SpectrAmplitude, int32_t SpectrLineCount, double StepDesc,
                            int32_t* SpectrMax);

/* Measured FFT plans kept in a file (FFTW wisdom). LoadFftWisdom reads
 * one: transforms planned afterwards take a measured plan where the file
 * holds one for their size, the rest the estimated plan (1; 0 when the file
 * cannot be read). A null path forgets what was read: estimated plans again. MakeFftWisdom measures the real transforms of every power
 * of two from 16 to largestSize (up to AQX_SIGNAL_ROWS; about a minute in
 * all) and writes them to the file through a temporary (1; 0 on failure).
 * Results agree with the estimated plans' to rounding. */
AQX_API int32_t LoadFftWisdom(const char* path);
AQX_API int32_t MakeFftWisdom(const char* path, int32_t largestSize);

/* Reads the spectrum of AccountSpectrFull at 8 frequencies: entry 0 at
 * FreqOneGarmonic, entries 1..7 at the probe table of FirstChannelActive
 * (from 1). Amplitude (peak-to-peak, rounded) and phase (degrees 0..359,
 * rounded) between two lines come from both neighbours through the Hann
 * window's line shape, exact for a sinusoid at the probe frequency in a
 * single-block spectrum referred to its first sample. Empty entries (<= 0),
 * frequencies outside the lines, or a channel outside 1..32 give 0 and 0.
 * ProbeType and Type are not read (may be null); SpectrReal may be null.
 * Returns 0. */
AQX_API int32_t AccountProbe(int32_t FirstChannelActive, int32_t SpectrLineCount,
                             int32_t* ProbeAmplitude, int32_t* ProbePhase, const float* ProbeFreq,
                             const int32_t* ProbeType, const int32_t* Type,
                             double FreqOneGarmonic, double StepDesc,
                             const double* SpectrAmplitude, const double* SpectrPhase,
                             const double* SpectrReal);

/* Band levels of channel `channel` (from 1) over the same stretch as
 * AccountSpectrFull. Entry 0: 0-200 Hz, 1: 0-1 Hz (0-20 Hz for a run-out
 * channel, Type 0, which the run-out panel prints), 2: 1-30 Hz, 3: 30-200 Hz.
 * The signal limited to each band (the Butterworth high and low passes of
 * AccountFilter, zero phase, -3 dB at the band's edges; a 0 Hz edge is no
 * filter, an edge above half the sampling frequency none either, and a band
 * lying wholly above it gives 0) is cut into revolutions between consecutive
 * marks, or into nominal revolutions of 60/FreqRotorN s without marks (the
 * whole stretch when neither is known); the 0-1 Hz band joins them to at
 * least 1 s. BandMax = the largest and BandMean = the mean peak-to-peak swing
 * over these pieces, in units, rounded. The sampling frequency is StepDesc *
 * L (L the block length AccountSpectrFull used), so call this after
 * AccountSpectrFull on the same stretch. Empty stretch or StepDesc <= 0:
 * all 0. SpectrRe, SpectrIm, SpectrPhase, SpectrReal and SpectrLineCount
 * are not used (may be null). */
AQX_API void AccountVolumeField(int32_t channel, const float* Ku, const int32_t* Type,
                                int32_t ViewFirst, int32_t ViewLast, int32_t SelectFirst,
                                int32_t SelectLast, const int16_t* SignalData, int32_t* BandMax,
                                int32_t* BandMean, int32_t SignalDataN, double* SpectrRe,
                                double* SpectrIm, double* SpectrPhase, double* SpectrReal,
                                double StepDesc, int32_t SpectrLineCount, double FreqRotorN,
                                int32_t BlockSizeFFT, int32_t ShaftMarkCount,
                                const int32_t* ShaftMarks);

/* Thinning of the spectrum for the decade axis of the spectrum view.
 * Screen size: widthPixels W (held to 1..10,001) and heightPixels H; scale:
 * unitsPerPixel U and gridDivisions G. decadeDivisions go in as 10, 9, 9, 9
 * (divisions of the decades 0-10, 10-100, 100-1000, 1000-10000 Hz; <= 0
 * takes those values); a decade is shown while the divisions so far fit in G,
 * and decade d spans W * decadeDivisions[d] / G pixels. Out: decadeDivisions
 * of decades not shown become 0, decadeStartPixels[d] = the x where decade d
 * begins (W past the last shown). columnY (AQX_SPECTRUM_COLUMNS capacity)
 * gets for each x in 0..W-1 the y = round(H - A/U), held to 0..H, of the
 * largest line A (lines k >= 1 at k * StepDesc Hz) on that column; a column
 * without a line gets H for viewType 0 (bars) and the value interpolated
 * between the neighbouring lines otherwise (a continuous line). ViewFlag = 1
 * when the columns were written, 0 when not (W, H, U, G, StepDesc <= 0, no
 * lines, missing arrays). FreqDesc, SignalDataN, ViewFirst and ViewLast are
 * not read. Returns 0. */
AQX_API int32_t AccountDataBuildSpectr(int32_t FreqDesc, int32_t widthPixels,
                                       int32_t heightPixels, double unitsPerPixel,
                                       int32_t gridDivisions, int32_t SignalDataN,
                                       const double* SpectrAmplitude, int32_t SpectrLineCount,
                                       int32_t ViewFirst, int32_t ViewLast, double StepDesc,
                                       int32_t viewType, double* decadeStartPixels,
                                       int32_t* decadeDivisions, int32_t* ViewFlag,
                                       int32_t* columnY);

/* Rotor form from the first channel on of type "Виток" (4), cut into
 * revolutions at the marks the library finds itself (automatic detector) on
 * the first channel on of type "Отметчик" (3), over rows 1..SignalDataN.
 * Each revolution is split into Polus equal pole sections whose boundaries
 * are put on the zero crossings of the EMF; pole 1 is the first section
 * after the mark. Polus is set to the number of EMF half-waves per
 * revolution when that number is the same in at least 80% of the
 * revolutions and differs from it. FormaRotorN = revolutions used (<= 99).
 * Layout (form f: 0 = average of the single forms 1..FormaRotorN):
 *   FormaSpeed[f], FormaRms[f], FormaDistortion[f]               (100)
 *   FormaPoleRms[f*200 + p], FormaPolePercent[f*200 + p], p=1..Polus (20,000)
 *   FormaPoleMin[p], FormaPoleMax[p]                              (200)
 *   FormaGarmonicAmplitude[f*10 + n], FormaGarmonicPhase[f*10 + n], n=1..9
 * FormaPoleRms: RMS of the section about the revolution's mean, millivolts at
 * the module input (code * 1.25); FormaRms: mean of the form's poles;
 * FormaPolePercent = 100 * (PoleRms - FormaRms) / FormaRms; FormaDistortion =
 * greatest minus least pole percent of the form; FormaPoleMin/Max: least and
 * greatest percent of the pole over the single forms; harmonic n of a form:
 * the form's percents are A_n * cos(n * 2*pi*(p-1)/Polus + phase_n) summed,
 * A_n peak percent, phase_n degrees 0..360; FormaSpeed in revolutions per
 * minute; FormaRotorResult = the largest harmonic amplitude of all forms (1
 * when all are 0). Unused entries are 0. windowHandle is not used: the library
 * shows nothing. Returns 0 or one of AQX_FORMA_*; on failure FormaRotorN =
 * 0, FormaRotorResult = 0 and the arrays are left as they were. */
AQX_API int32_t FormaRotorAccount(int64_t windowHandle, const int16_t* SignalData,
                                  int32_t SignalDataN, const int32_t* Channel, const int32_t* Type,
                                  int32_t FreqDesc, int32_t* Polus, int32_t* FormaRotorN,
                                  double* FormaSpeed, double* FormaPoleRms,
                                  double* FormaPolePercent, double* FormaRms,
                                  double* FormaDistortion, double* FormaPoleMin,
                                  double* FormaPoleMax, double* FormaGarmonicAmplitude,
                                  double* FormaGarmonicPhase, double* FormaRotorResult);

#ifdef __cplusplus
}
#endif

#endif /* AQUILONIX_ENGINE_H */
