#include "batch_writer.h"

#include <utility>

#include "velqua/records/common.h"

namespace velqua_store {

BatchWriter::BatchWriter(Store& store, size_t size)
    : store_(store), size_(size > 0 ? size : 1), thread_([this] { Run(); }) {}

BatchWriter::~BatchWriter() {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    WaitIdle(lock);
    stop_ = true;
  }
  changed_.notify_all();
  thread_.join();
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
  ++rows_;
}

void BatchWriter::Commit(int64_t resume_at) {
  Hand(resume_at);
  std::unique_lock<std::mutex> lock(mutex_);
  WaitIdle(lock);
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

void BatchWriter::Hand(int64_t resume_at) {
  filling_.checkpoint = resume_at;
  filling_.read = rows_;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    WaitIdle(lock);
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
    std::swap(filling_, pending_);
    busy_ = true;
  }
  changed_.notify_all();
  filling_.n = 0;
  filling_.source = pending_.source;
  filling_.committed = pending_.committed;
}

void BatchWriter::WaitIdle(std::unique_lock<std::mutex>& lock) {
  changed_.wait(lock, [this] { return !busy_; });
}

void BatchWriter::Run() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return busy_ || stop_; });
    if (!busy_) return;
    lock.unlock();
    try {
      // Only this thread touches pending_ while busy_.
      std::vector<Record>& records = pending_.records;
      records.resize(pending_.n);  // shorter only at a file's end
      const WriteResult written = store_.Write(pending_.source, records, pending_.checkpoint);
      if (pending_.committed) pending_.committed(written, pending_.checkpoint, pending_.read);
    } catch (...) {
      lock.lock();
      error_ = std::current_exception();
      busy_ = false;
      changed_.notify_all();
      continue;
    }
    lock.lock();
    busy_ = false;
    changed_.notify_all();
  }
}

}  // namespace velqua_store
