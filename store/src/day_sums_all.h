// Every call of a SQLite store summed again into call_days, in one read of
// the calls: five grouped passes in the engine cost several times one read
// and a hash table here.
#pragma once

namespace velqua_store {

class Connection;

// Replaces call_days with the sums of every call, by the rules of the
// grouped SQL of day_summaries.cpp (kind, item and class; the prices'
// currency and decimals; calls, talk time, cost, unpriced and the kinds of
// call). Runs in the caller's transaction.
void SumEveryCall(Connection& db);

}  // namespace velqua_store
