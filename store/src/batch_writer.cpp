#include "batch_writer.h"

#include <utility>

#include "velqua/records/common.h"

namespace velqua_store {
namespace {

// Thrown inside a batch's transaction when an earlier batch failed: the
// batch must not commit past the hole.
struct EarlierBatchFailed {};

}  // namespace

BatchWriter::BatchWriter(const std::vector<Store*>& stores, size_t size)
    : size_(size > 0 ? size : 1) {
  for (Store* store : stores) threads_.emplace_back([this, store] { Run(*store); });
}

BatchWriter::~BatchWriter() {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    WaitIdle(lock);
    stop_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void BatchWriter::Start(const Source& source, std::string received_utc, Committed committed) {
  filling_.source = source;
  filling_.committed = std::move(committed);
  received_utc_ = std::move(received_utc);
  rows_ = 0;
}

void BatchWriter::Write(const velqua_records::Row& row) {
  if (filling_.n == size_) Hand(row.offset);
  if (filling_.records.size() <= filling_.n) filling_.records.resize(filling_.n + 1);
  Record& record = filling_.records[filling_.n++];
  record.position = row.offset;
  record.raw.clear();
  velqua_records::AppendUtf8(record.raw, row.text);
  record.received_utc = received_utc_;
  record.row = row;
  record.row.text = {};
  record.row.input = {};
  record.line = row.number;
  ++rows_;
}

void BatchWriter::Commit(int64_t resume_at) {
  Hand(resume_at);
  std::unique_lock<std::mutex> lock(mutex_);
  WaitIdle(lock);
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

void BatchWriter::Hand(int64_t resume_at) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return queue_.empty() || error_; });
  if (error_) std::rethrow_exception(error_);
  filling_.checkpoint = resume_at;
  filling_.read = rows_;
  filling_.sequence = ++handed_;
  Batch next;
  if (!pool_.empty()) {
    next = std::move(pool_.back());
    pool_.pop_back();
  }
  next.n = 0;
  next.source = filling_.source;
  next.committed = filling_.committed;
  queue_.push_back(std::move(filling_));
  filling_ = std::move(next);
  changed_.notify_all();
}

void BatchWriter::WaitIdle(std::unique_lock<std::mutex>& lock) {
  changed_.wait(lock, [this] { return queue_.empty() && in_flight_ == 0; });
}

void BatchWriter::Run(Store& store) {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return !queue_.empty() || stop_; });
    if (queue_.empty()) return;
    Batch batch = std::move(queue_.front());
    queue_.pop_front();
    ++in_flight_;
    changed_.notify_all();
    lock.unlock();
    WriteOne(store, batch);
    lock.lock();
    --in_flight_;
    pool_.push_back(std::move(batch));
    changed_.notify_all();
  }
}

void BatchWriter::WriteOne(Store& store, Batch& batch) {
  // Commits wait for the batch before, and give up if it failed.
  const auto in_turn = [&] {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return committed_ == batch.sequence - 1 || error_; });
    if (error_) throw EarlierBatchFailed();
  };
  try {
    batch.records.resize(batch.n);  // shorter only at a file's end
    const WriteResult written = store.Write(batch.source, batch.records, batch.checkpoint, in_turn);
    if (batch.committed) batch.committed(written, batch.checkpoint, batch.read);
    std::lock_guard<std::mutex> lock(mutex_);
    committed_ = batch.sequence;
  } catch (const EarlierBatchFailed&) {
  } catch (...) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!error_) error_ = std::current_exception();
  }
}

}  // namespace velqua_store
