// Translating stored records again with a corrected configuration.
#include <filesystem>
#include <memory>

#include "velqua/records/bundled.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_form.h"
#include "velqua/records/translation.h"
#include "velqua/store/extension_list.h"
#include "velqua/store/import.h"

namespace velqua_store {
namespace {

// Records read and rewritten a transaction at a time.
constexpr int64_t kChunk = 5000;

// Keeps the one row a Record call writes.
struct LastRow : velqua_records::RowSink {
  velqua_records::Row row;
  void Write(const velqua_records::Row& r) override {
    row = r;
    row.text = {};
  }
};

void Add(RewriteResult& total, const RewriteResult& part) {
  total.unchanged += part.unchanged;
  total.updated += part.updated;
  total.recognised += part.recognised;
  total.unrecognised += part.unrecognised;
  for (const auto& [column, n] : part.changed) total.changed[column] += n;
}

}  // namespace

RewriteResult Retranslate(Store& store, const std::string& switch_name, const std::string& config,
                          const std::string& extensions, bool random_extensions, bool dry_run) {
  const std::optional<SwitchInfo> sw = store.FindSwitch(switch_name);
  if (!sw) throw StoreError("database '" + store.name() + "' has no switch '" + switch_name + "'");
  const SwitchExtensionList list(extensions, sw->extension_list, config);
  const std::string file = velqua_records::ResolveConfig(config);
  velqua_records::SwitchConfig loaded = velqua_records::LoadSwitchConfig(file);
  if (!dry_run) {
    store.PutSwitch({switch_name, std::filesystem::absolute(file).string(), ConfigHash(file), "",
                     list.to_keep()});
  }
  LastRow sink;
  velqua_records::Translation translation(
      loaded.cfg, sink, {"", list.path(), false, loaded.form, !random_extensions});
  RewriteResult total;
  // Records that move during the run land above these ids and are not read again.
  const int64_t last_ids[] = {store.LastStoredId(switch_name, true),
                              store.LastStoredId(switch_name, false)};
  for (const bool calls : {true, false}) {
    const int64_t last = last_ids[calls ? 0 : 1];
    for (int64_t after = 0; after < last;) {
      std::vector<Retranslated> batch;
      for (StoredRecord& record : store.ReadStored(switch_name, calls, after, kChunk)) {
        if (record.id > last) break;
        after = record.id;
        const std::u16string raw = velqua_records::U16(record.raw);
        if (loaded.form.IsHeading(raw)) {  // stays a page heading, as import keeps it
          sink.row = velqua_records::Row();
          sink.row.error = velqua_records::kPageHeadingReason;
        } else {
          translation.Input("database", UtcToLocal(record.received_utc));
          translation.Record(raw, record.position);
        }
        total.unlisted += sink.row.random_extension;
        batch.push_back({std::move(record), sink.row});
      }
      if (batch.empty()) break;
      Add(total, store.Rewrite(switch_name, batch, dry_run));
    }
  }
  return total;
}

}  // namespace velqua_store
