// What the editor's routes read and write beyond the record road: base64 for
// the files that travel in JSON, the cable drawing as SVG, a bundled switch's
// and a stored switch's records as samples, and the folder where the server
// keeps the configurations it stores for switches.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/store/store.h"

namespace velqua_web {

std::string EncodeBase64(const std::string& bytes);
// Throws ApiError 400 for text that is not base64.
std::string DecodeBase64(const std::string& text);

// The library's drawing of the cable of `port` ("rj45", "db9", "db25"), with
// English texts, as SVG. Throws ApiError 400 for another port.
std::string WiringSvg(const velqua::clsCfgConmut& cfg, const std::string& port);

// The sample records a bundled switch ships beside its configuration
// (records.txt), as UTF-8 lines; at most 500, empty when it has none.
std::vector<std::string> BundledSamples(const std::string& config_path);

// The switch's `last` most recent stored calls' records, then up to `last`
// of its unrecognised ones, as lines (a multi-line call gives its lines).
std::vector<std::string> StoredSamples(velqua_store::Store& store, const std::string& name,
                                       int64_t last);

// Writes the JSON form of a switch's configuration into the configurations
// folder ($VELQUA_CONFIGS, else $XDG_DATA_HOME/velqua/configs, else
// ~/.local/share/velqua/configs) as <switch>.json, replacing the last one
// whole; returns its path. Throws velqua_records::Failure naming the path.
std::string StoreConfigFile(const std::string& switch_name, const std::string& json);

}  // namespace velqua_web
