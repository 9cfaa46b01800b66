// Calls and unrecognised records as the API gives them: one JSON object a
// call, absent values as null, the type and attribute as their words.
#pragma once

#include <nlohmann/json.hpp>

#include "velqua/store/store.h"

namespace velqua_web {

nlohmann::json CallJson(const velqua_store::StoredCall& call);
nlohmann::json UnrecognisedJson(const velqua_store::StoredUnrecognised& record);

}  // namespace velqua_web
