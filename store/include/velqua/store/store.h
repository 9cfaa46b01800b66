// The call store: every record a switch sent, translated into calls (or kept
// as unrecognised), with where it came from, in SQLite (the default, one
// file) or PostgreSQL (many sites, one server). Both engines hold the same
// schema (doc/store.md) and give the same results.
//
// Writers are `velqua import` (historical files) and the capture service
// (records as they arrive, each with its spool position). Both write batches
// through Store::Write: one transaction a batch, and a record's place of
// origin (source + position) is unique, so writing a batch again after a
// crash or a lost connection adds nothing.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velqua/rating/directory.h"
#include "velqua/records/call_row.h"
#include "velqua/records/common.h"

namespace velqua_store {

// A failure of the store, in one line that names the database (e.g.
// "database 'calls.db': disk is full"). Nothing of the transaction at hand
// was written.
class StoreError : public velqua_records::Failure {
 public:
  using Failure::Failure;
};

// The connection to the PostgreSQL server was lost (server stopped, network
// down, connection refused on reconnecting). Nothing of the transaction at
// hand was written. The store reconnects on its next call, so a caller that
// can wait (the capture service keeps spooling) retries the same batch later.
class ConnectionLost : public StoreError {
 public:
  using StoreError::StoreError;
};

// A switch whose records the store holds.
struct SwitchInfo {
  std::string name;         // unique in the store; chosen by the user ("hq-kx-tda")
  std::string config_path;  // the configuration the records were last translated with
  std::string config_hash;  // its content hash (ConfigHash)
  std::string time_zone;    // IANA name ("Europe/Madrid"), or "": no UTC times
  // The text of its extension list (extension_list.h), or "": none kept.
  std::string extension_list = {};
};

// Where a switch's records come from: a file (import) or a capture source.
// Positions are unique per source; the checkpoint is the writer's own mark,
// written with a batch in its transaction (an import: the byte offset where
// reading resumes; the capture service: the last spool position committed).
struct Source {
  int64_t id = 0;
  int64_t switch_id = 0;
  std::string switch_name;
  std::string name;                   // a file's absolute path, or a capture source's name
  std::string kind;                   // "file" or "capture"
  std::optional<int64_t> checkpoint;  // none until a batch set it
  std::string fingerprint;            // a file's first bytes (import.h), or ""
};

// One record as received, with its translation. A row without fields (an
// unrecognised record, or one the library failed on) goes to `unrecognised`
// with its reason, every other row to `calls`.
struct Record {
  int64_t position = 0;      // byte offset in the file, or spool position
  std::string raw;           // the record as given to the translator, UTF-8
  std::string received_utc;  // when it was received, "YYYY-MM-DDTHH:MM:SSZ"
  velqua_records::Row row;   // its text views are not used: raw holds the record
  int64_t line = 0;          // the file's line it starts on; 0: none (a capture)
};

// What a batch added. Records whose place of origin was already stored
// (in either table) are counted as duplicates and left as they are.
struct WriteResult {
  int64_t calls = 0;
  int64_t unrecognised = 0;
  int64_t duplicates = 0;
};

// A raw record read back (RecentRecords).
struct RawRecord {
  int64_t position = 0;
  std::string raw;
  std::string received_utc;
};

// Something that happened to a source: "connect", "disconnect", "gap",
// "torn-tail", "resent-dropped", "import", "retranslate", or another word
// of the writer's. `count` is the number of records concerned, if any.
struct Event {
  std::string kind;
  std::string at_utc;  // "YYYY-MM-DDTHH:MM:SSZ"; "" = now
  int64_t count = 0;
  std::string detail;
};

// Which calls ListCalls gives; an empty member does not filter.
struct CallFilter {
  std::string from;  // first day, "YYYY-MM-DD" (local start date)
  std::string to;    // last day, included
  std::string switch_name;
  std::string extension;
  std::string trunk;
  std::optional<int32_t> type;          // call type number
  std::optional<int32_t> attribute;     // transfer attribute number (4: unanswered)
  std::optional<int64_t> min_duration;  // seconds; a call without a duration is left out
  std::string number_prefix;            // the dialled number starts with it
  std::string account_code;
  // The directory's entry of the call's extension on its start date: its
  // person contains `person` (ASCII letters in any case), its department is
  // `department`.
  std::string person, department;
  // The call's cost, in millionths of its currency's unit, is at least / at
  // most this (compared exactly, whatever the currency); a call without a
  // cost is left out.
  std::optional<int64_t> min_cost, max_cost;
  bool unpriced = false;  // only calls kept without a cost (velqua rate --unpriced)
  int64_t limit = 0;      // 0 = no limit
};

// A stored call as ListCalls reads it; absent values are std::nullopt.
struct StoredCall {
  int64_t id = 0;  // the store's own number of the call (browse.h)
  std::string switch_name, source_name;
  int64_t position = 0;
  int32_t type = 0, attribute = 0;
  std::optional<std::string> start, start_utc;  // the call's true start
  std::optional<std::string> ended, ended_utc;  // its end (none without a duration)
  std::optional<int64_t> duration, ring;
  std::optional<std::string> dialled, extension, trunk, receiving_extension, receiving_trunk,
      account_code;
  bool extension_random = false;
  // The switch printed no date: the start's date is the date it was
  // received on (the day before when its time is later in the day).
  bool date_received = false;
  std::string raw, received_utc;
  // The switch's own charge for the call, as printed, and all the extra
  // fields its configuration names, as a JSON object ({"charge":"0.12"}).
  std::optional<std::string> switch_charge, extras;
  // Its price (none until a rating plan priced it): the cost as exact
  // decimal text (none when it could not be priced), and why a call costs
  // 0 or nothing ("incoming", "no tariff for +99...").
  std::optional<std::string> cost, currency, destination, destination_class, cost_reason;
  // From the directory, as in force on the call's start date: its
  // extension's person, department and cost centre, its account code's
  // client and project.
  std::optional<std::string> person, department, cost_centre, client, project;
};

// Which stored calls Rate prices again: days as CallFilter's, "" = all.
struct RatePeriod {
  std::string from, to, switch_name;
  int64_t batch = 20000;  // calls a transaction
};

// What Rate did: calls priced (a cost), free by rule (0), left unpriced;
// whether it went on from where an earlier run of the same period stopped.
struct RateResult {
  int64_t priced = 0, free = 0, unpriced = 0;
  bool resumed = false;
};

// A stored unrecognised record as ListUnrecognised reads it.
struct StoredUnrecognised {
  std::string switch_name, source_name;
  int64_t position = 0;  // a file's byte offset, or a spool position
  std::string received_utc, reason, raw;
  int64_t line = 0;  // the file's line it starts on; 0: none kept (a capture)
};

// A stored record as retranslation reads it.
struct StoredRecord {
  int64_t id = 0;
  bool is_call = false;  // in `calls`, else in `unrecognised`
  int64_t source_id = 0;
  int64_t position = 0;
  std::string raw, received_utc;
  std::string stored;  // its stored translation (or reason), as Rewrite compares it
  int64_t line = 0;    // as Record's
};

// A stored record with its translation under a corrected configuration.
struct Retranslated {
  StoredRecord record;
  velqua_records::Row row;
};

// What Rewrite did: records left as they were, calls updated in place
// (an unrecognised record's reason included), unrecognised records that
// became calls, and calls that are no longer recognised.
struct RewriteResult {
  int64_t unchanged = 0;
  int64_t updated = 0;
  int64_t recognised = 0;
  int64_t unrecognised = 0;
  // Of the calls updated: how many changed in each column ("duration": 6).
  std::map<std::string, int64_t> changed = {};
  // Calls (stored or not) whose account code the extension list lacks.
  int64_t unlisted = 0;
};

// What Purge removes: everything older than `before` ("YYYY-MM-DD", a day
// that exists), of one switch or ("") of all.
struct PurgeFilter {
  std::string before;
  std::string switch_name;
};

// What Purge removed (or, on a dry run, would remove).
struct PurgeResult {
  int64_t calls = 0;
  int64_t unrecognised = 0;
  int64_t events = 0;
};

// One interface, two engines. A Store is used by one thread at a time.
class Store {
 public:
  virtual ~Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // The database as named in messages (a PostgreSQL URL without password).
  const std::string& name() const { return name_; }

  // Adds the switch, or updates its configuration, time zone and extension
  // list (an empty time_zone or extension_list keeps the stored one).
  // Returns it as stored.
  virtual SwitchInfo PutSwitch(const SwitchInfo& info) = 0;
  // The switch of that name, if stored.
  virtual std::optional<SwitchInfo> FindSwitch(const std::string& name) = 0;

  // The source of that name for the switch, added (with `kind`) if new; the
  // switch must have been put. Its checkpoint and fingerprint as stored.
  virtual Source OpenSource(const std::string& switch_name, const std::string& source_name,
                            const std::string& kind) = 0;
  // Stores a file source's fingerprint (the import's check that a file
  // name still means the same file).
  virtual void SetFingerprint(const Source& source, const std::string& fingerprint) = 0;
  // The switch's file sources that have a fingerprint, in the order they
  // were added: an import finds by them the source a file continues,
  // whatever the file is called now.
  virtual std::vector<Source> FileSources(const std::string& switch_name) = 0;
  // Gives a source another name (unique per switch: a name held by another
  // source is refused with StoreError). Its records stay with it.
  virtual void RenameSource(const Source& source, const std::string& new_name) = 0;

  // Writes the records of one source in one transaction, and, in the same
  // transaction, sets the source's checkpoint when one is given. Idempotent:
  // a record whose position the source already has (in calls or
  // unrecognised, or earlier in the batch) is skipped. Start times are given
  // in UTC too when the switch has a time zone. Throws ConnectionLost or
  // StoreError; then nothing of the batch is written. `before_commit`, when
  // set, is called once the records are written, before the checkpoint is
  // set and the transaction committed; what it throws rolls the batch back.
  // A writer that writes one source's batches on several connections at
  // once makes them commit in order with it.
  virtual WriteResult Write(const Source& source, const std::vector<Record>& records,
                            std::optional<int64_t> checkpoint,
                            const std::function<void()>& before_commit = nullptr) = 0;

  // The source's checkpoint as last committed.
  virtual std::optional<int64_t> Checkpoint(const Source& source) = 0;

  // The source's most recent records (calls and unrecognised), latest
  // position last: at most `limit` of them (0: no limit), and only those
  // received at or after `since_utc` when it is not "". The capture service
  // compares them with what a switch sends again after reconnecting.
  virtual std::vector<RawRecord> RecentRecords(const Source& source, int64_t limit,
                                               const std::string& since_utc) = 0;

  // Adds an event of a source, in its own transaction; called from a Write's
  // `before_commit`, in that Write's transaction (committed or rolled back
  // with its records and checkpoint).
  virtual void AddEvent(const Source& source, const Event& event) = 0;

  // The calls the filter lets through, by start (those without a start
  // date first), then switch, source and position; `each` is called for
  // every one in order, as it is read (none held: memory stays the same
  // however many), so `each` must not use the store itself. Throws
  // velqua_records::Failure for a malformed date in the filter.
  virtual void ListCalls(const CallFilter& filter,
                         const std::function<void(const StoredCall&)>& each) = 0;

  // The unrecognised records of a switch ("" = all), by switch, source and
  // position, at most `limit` (0: all); `each` is called for every one.
  virtual void ListUnrecognised(const std::string& switch_name, int64_t limit,
                                const std::function<void(const StoredUnrecognised&)>& each) = 0;

  // The `limit` unrecognised records of a switch ("" = all) stored last, in
  // the order they were stored: the newest samples of what a configuration
  // does not read yet.
  virtual void ListNewestUnrecognised(
      const std::string& switch_name, int64_t limit,
      const std::function<void(const StoredUnrecognised&)>& each) = 0;

  // The number of calls and of unrecognised records of a switch ("" = all).
  virtual int64_t CountCalls(const std::string& switch_name) = 0;
  virtual int64_t CountUnrecognised(const std::string& switch_name) = 0;

  // Retranslation: the switch's stored calls (`calls`) or unrecognised
  // records with ids above `after_id`, in id order, at most `limit`.
  virtual std::vector<StoredRecord> ReadStored(const std::string& switch_name, bool calls,
                                               int64_t after_id, int64_t limit) = 0;
  // The highest id of the switch's calls or unrecognised records (0: none):
  // where a retranslation stops, so that records it moves are not read again.
  virtual int64_t LastStoredId(const std::string& switch_name, bool calls) = 0;
  // Stores the new translations of a switch's records in one transaction,
  // touching only those whose stored form changes: a call is updated in
  // place, a record that changes table moves with its source, position, raw
  // text and received time.
  // With `dry_run` the transaction is rolled back: the result tells what
  // would change, and nothing does.
  virtual RewriteResult Rewrite(const std::string& switch_name,
                                const std::vector<Retranslated>& records, bool dry_run = false) = 0;

  // Retention: removes, in one transaction, the calls that started before
  // the day (the switch's local date; a call without a start date by when
  // it was received, UTC) with their raw records, the unrecognised records
  // and the events received before it (UTC). Sources and their checkpoints
  // stay, so an import or a capture goes on where it was and never brings
  // purged records back. SQLite overwrites what it removes (secure_delete)
  // and empties its write-ahead log, so the records leave the file's bytes
  // too. A dry run counts and removes nothing. Throws
  // velqua_records::Failure for a malformed day, StoreError for an unknown
  // switch.
  virtual PurgeResult Purge(const PurgeFilter& filter, bool dry_run) = 0;

  // A large load is coming (about `records` records): an engine may put off
  // work until EndBulk (SQLite builds its query indexes once at the end
  // when the load is larger than what is stored; until then queries are
  // slower, and if the process dies the next open builds them).
  virtual void BeginBulk(int64_t records) = 0;
  virtual void EndBulk() = 0;

  // Rating (doc/rating.md). Checks the rating plan at `path` and every
  // tariff it names, and keeps their texts in the store in one transaction:
  // from then on every call written is priced as it is stored (import and
  // capture alike). A plan or tariff that does not load is refused
  // (velqua_rating::TariffError naming file, line and reason) and the store
  // is left as it was. Returns the number of tariffs kept.
  virtual int64_t PutRatingPlan(const std::string& path) = 0;
  // Prices the period's calls again with the stored plan, one transaction
  // a batch; `progress` (if set) gets the calls done after each. Pricing is
  // idempotent, and a run that stopped goes on from its last batch when
  // the same period is priced again under the same plan. Throws StoreError
  // when no plan is stored.
  virtual RateResult Rate(const RatePeriod& period,
                          const std::function<void(int64_t)>& progress = nullptr) = 0;
  // Adds directory rows, or replaces those of the same kind, key and date,
  // in one transaction; returns how many were written.
  virtual int64_t PutDirectory(const std::vector<velqua_rating::DirectoryEntry>& entries) = 0;
  // Every directory row: extensions then account codes, by key and date.
  virtual std::vector<velqua_rating::DirectoryEntry> ListDirectory() = 0;

 protected:
  explicit Store(std::string name) : name_(std::move(name)) {}

 private:
  std::string name_;
};

// Opens the store named by `url`: "calls.db" or "sqlite:calls.db" (SQLite),
// or "postgresql://user@host:port/dbname" (also "postgres://"); a missing
// SQLite file is created, or refused when `create` is false. Brings the
// schema up to date; a schema newer than this program is refused. Throws
// StoreError (ConnectionLost when the server cannot be reached).
std::unique_ptr<Store> OpenStore(const std::string& url, bool create = true);

// Whether `url` names a PostgreSQL database (else a SQLite file).
bool IsPostgresUrl(const std::string& url);

// The further connections a bulk load writes through beside the one open on
// `url`: one for PostgreSQL, which then works on two batches at once, each
// in a server process of its own; none for SQLite, which has one writer.
std::vector<std::unique_ptr<Store>> OpenMoreWriters(const std::string& url);

// The content hash of a configuration file, as kept in `switches`: 16
// hexadecimal digits (64-bit FNV-1a). Throws velqua_records::Failure when
// the file cannot be read.
std::string ConfigHash(const std::string& path);

// A moment in UTC as the store keeps it, "YYYY-MM-DDTHH:MM:SSZ".
std::string UtcText(std::time_t moment);

// The current time in UTC, "YYYY-MM-DDTHH:MM:SSZ".
std::string UtcNow();

}  // namespace velqua_store
