#include "tools/Commands.h"

namespace aqx::tool {

// One row per command; the functions are declared in tools/Commands.h.

namespace {
const ToolCommand kCommands[] = {
    {"version", "version                      program version", RunVersion},
    {"render", "render signal|spectrum|cascade|trajectory|rotor-form|rotor-diagram|rotor-spectrum FILE OUT.png [--width W --height H --channel C --first A --last B --form N]  a view as a picture", RunRender},
    {"info", "info FILE [--json]           header and channel table of a recording", RunInfo},
    {"dump", "dump FILE --channel C [--first A] [--last B]  codes of one channel, one per line", RunDump},
    {"convert", "convert IN OUT               any readable file to a data file of the current layout", RunConvert},
    {"export-wav", "export-wav IN OUT.wav         recorded channels of any readable file as WAVE", RunExportWav},
    {"config", "config list|save|restore|rename|delete  named configurations of the settings", RunConfig},
    {"demo", "demo OUT.aqx [--seconds S]   demonstration recording of the virtual module", RunDemo},
    {"fft-wisdom", "fft-wisdom [OUT] [--largest N]  measured FFT plans up to N points (2^20), read by the program at start", RunFftWisdom},
    {"spectrum", "spectrum FILE --channel C [--first A --last B] [--json] [--csv OUT]  what the spectrum window shows", RunSpectrum},
    {"rotor-form", "rotor-form FILE [--channel C] [--json]  rotor form: pole by pole EMF of every revolution and their average", RunRotorForm},
    {"edit", "edit IN OUT.aqx cut|smooth|zero|copy-to ROW|shift ANGLE|reaccount [--channel C --first A --last B]  "
     "an edit of the signal menu; edit IN values: the values as text", RunEdit},
    {"record", "record OUT.aqx --mode cyclic|solid --seconds S  measurement run with the settings' channels", RunRecord},
    {"record-rates", "record-rates --poles P --mains F --revolutions N --samples S [--channels C] [--refresh T]  "
     "sampling of a cyclic run from the unit's poles and mains", RunRecordRates},
    {"protocol", "protocol FOLDER OUT.xlsx [--files A,B --channels \"A;B\" --parameters \"P;Q\" | --template FORM.xlsx]  "
     "protocol of the recordings of a folder, the master's table of chosen ones, or a station's form filled", RunProtocol},
    {"protocol-master", "protocol-master OUT.xlsx FILE... [--channels \"A;B\"] [--parameters \"P;Q\"] [--list]  "
     "the master's table of chosen channels and parameters", RunProtocolMaster},
    {"protocol-template", "protocol-template FOLDER FORM.xlsx OUT.xlsx  a station's form filled from a folder",
     RunProtocolTemplate},
};
}  // namespace

std::span<const ToolCommand> CommandTable() { return kCommands; }

}  // namespace aqx::tool
