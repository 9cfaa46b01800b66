// The import's writer: translated rows gathered into batches, each batch
// written in its own transaction with the checkpoint where reading resumes
// after it. Batches are written on a thread of their own while the next one
// is translated, so that reading and translating (one core) and the
// database's work (another) overlap; two batches are held at most, so
// memory stays flat whatever the size of the input.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "velqua/records/call_row.h"
#include "velqua/store/store.h"

namespace velqua_store {

class BatchWriter : public velqua_records::RowSink {
 public:
  // Called on the writer's thread after each batch is committed, with what
  // it wrote, the checkpoint and the number of records read up to it.
  using Committed = std::function<void(const WriteResult&, int64_t checkpoint, int64_t read)>;

  BatchWriter(Store& store, size_t size);
  // Writes the batch in hand (if any) and stops the thread.
  ~BatchWriter() override;
  BatchWriter(const BatchWriter&) = delete;
  BatchWriter& operator=(const BatchWriter&) = delete;

  // The source the next rows belong to, when they were received, and what
  // to call after each batch.
  void Start(const Source& source, std::string received_utc, Committed committed);

  // Adds a row; a full batch is handed to the writer, the checkpoint set
  // to this row's offset (every byte before it is then stored).
  void Write(const velqua_records::Row& row) override;

  // Hands over what is gathered with the checkpoint `resume_at` (a file's
  // end), waits until everything is written, and throws what the writer
  // met (StoreError, ConnectionLost), if anything.
  void Commit(int64_t resume_at);

  // The number of rows added since Start.
  int64_t rows() const { return rows_; }

 private:
  struct Batch {
    std::vector<Record> records;  // reused: their strings keep their storage
    size_t n = 0;
    Source source;
    int64_t checkpoint = 0;
    int64_t read = 0;
    Committed committed;
  };

  void Hand(int64_t resume_at);
  void WaitIdle(std::unique_lock<std::mutex>& lock);
  void Run();

  Store& store_;
  size_t size_;
  Batch filling_;
  std::string received_utc_;
  int64_t rows_ = 0;

  std::mutex mutex_;
  std::condition_variable changed_;
  Batch pending_;  // the writer's, while busy_
  bool busy_ = false;
  bool stop_ = false;
  std::exception_ptr error_;
  std::thread thread_;
};

}  // namespace velqua_store
