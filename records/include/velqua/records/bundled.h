// The switches bundled with Velqua: one folder per switch under examples/,
// holding its configuration in the JSON form as <name>/<name>.json. Found at
// run time so that the program works from a build tree and once installed.
#pragma once

#include <string>
#include <vector>

namespace velqua_records {

// The folders searched for bundled switches, in order: $VELQUA_EXAMPLES when
// set and not empty, the installed data folder (<prefix>/share/velqua/examples)
// and the source tree's examples/, as compiled in.
std::vector<std::string> ExamplesFolders();

struct BundledSwitch {
  std::string name;    // the folder's name, e.g. "kx-tda"
  std::string config;  // the path of its JSON form
};

// The bundled switches of the first of ExamplesFolders() that exists, by
// name; empty when none exists. A folder without <name>.json is not a switch.
std::vector<BundledSwitch> ListBundledSwitches();

// The configuration a -c argument names: an existing file, a path (it holds a
// '/' or an extension) as it stands, else a bundled switch's name. Throws
// Failure for a name no bundled switch has.
std::string ResolveConfig(const std::string& name_or_path);

// The extension list a bundled switch brings (<name>/extensions.txt beside
// its JSON form) when `name_or_path` names a bundled switch (as ResolveConfig
// takes it) and its folder holds one; "" otherwise. `-c kx-tda` thus reads
// account codes as the sample site lists them.
std::string BundledExtensionList(const std::string& name_or_path);

}  // namespace velqua_records
