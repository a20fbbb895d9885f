#include "tools/ToolCommand.h"

namespace aqx::tool {

// One declaration and one row per command.
int RunVersion(ToolContext& ctx);
int RunRender(ToolContext& ctx);
int RunInfo(ToolContext& ctx);
int RunDump(ToolContext& ctx);
int RunConvert(ToolContext& ctx);
int RunExportWav(ToolContext& ctx);
int RunConfig(ToolContext& ctx);
int RunDemo(ToolContext& ctx);
int RunRecord(ToolContext& ctx);
int RunProtocol(ToolContext& ctx);
int RunProtocolMaster(ToolContext& ctx);
int RunProtocolTemplate(ToolContext& ctx);
int RunSpectrum(ToolContext& ctx);
int RunRotorForm(ToolContext& ctx);
int RunRecordRates(ToolContext& ctx);

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
    {"spectrum", "spectrum FILE --channel C [--first A --last B] [--json] [--csv OUT]  what the spectrum window shows", RunSpectrum},
    {"rotor-form", "rotor-form FILE [--channel C] [--json]  rotor form: pole by pole EMF of every revolution and their average", RunRotorForm},
    {"record", "record OUT.aqx --mode cyclic|solid --seconds S  measurement run with the settings' channels", RunRecord},
    {"record-rates", "record-rates --poles P --mains F --revolutions N --samples S [--channels C] [--refresh T]  "
     "sampling of a cyclic run from the unit's poles and mains", RunRecordRates},
    {"protocol", "protocol FOLDER OUT.xlsx     protocol of the recordings of a folder", RunProtocol},
    {"protocol-master", "protocol-master OUT.xlsx FILE... [--channels \"A;B\"] [--parameters \"P;Q\"] [--list]  "
     "the master's table of chosen channels and parameters", RunProtocolMaster},
    {"protocol-template", "protocol-template FOLDER FORM.xlsx OUT.xlsx  a station's form filled from a folder",
     RunProtocolTemplate},
};
}  // namespace

std::span<const ToolCommand> CommandTable() { return kCommands; }

}  // namespace aqx::tool
