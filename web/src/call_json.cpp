#include "call_json.h"

#include "velqua/records/names.h"

namespace velqua_web {
namespace {

template <typename T>
nlohmann::json OrNull(const std::optional<T>& value) {
  return value ? nlohmann::json(*value) : nlohmann::json();
}

}  // namespace

nlohmann::json CallJson(const velqua_store::StoredCall& c) {
  return {{"id", c.id},
          {"switch", c.switch_name},
          {"source", c.source_name},
          {"position", c.position},
          {"type", velqua_records::CallTypeWord(c.type)},
          {"attribute", velqua_records::AttributeWord(c.attribute)},
          {"start", OrNull(c.start)},
          {"start_utc", OrNull(c.start_utc)},
          {"ended", OrNull(c.ended)},
          {"duration", OrNull(c.duration)},
          {"ring", OrNull(c.ring)},
          {"dialled", OrNull(c.dialled)},
          {"extension", OrNull(c.extension)},
          {"trunk", OrNull(c.trunk)},
          {"receiving_extension", OrNull(c.receiving_extension)},
          {"receiving_trunk", OrNull(c.receiving_trunk)},
          {"account_code", OrNull(c.account_code)},
          {"cost", OrNull(c.cost)},
          {"currency", OrNull(c.currency)},
          {"destination", OrNull(c.destination)},
          {"cost_reason", OrNull(c.cost_reason)},
          {"person", OrNull(c.person)},
          {"department", OrNull(c.department)},
          {"received_utc", c.received_utc},
          {"raw", c.raw}};
}

nlohmann::json UnrecognisedJson(const velqua_store::StoredUnrecognised& u) {
  return {{"switch", u.switch_name}, {"source", u.source_name},        {"position", u.position},
          {"reason", u.reason},      {"received_utc", u.received_utc}, {"raw", u.raw}};
}

}  // namespace velqua_web
